#include "library_under_test.h"

#include "desk/private_folder.h"
#include "support/own_process.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

/// Never unloaded: drawing libraries that come with it leave a few blocks behind when they go, and a leak
/// checker could not tell whose they are.
std::vector<NamedLibrary>* libraries = nullptr;

std::vector<NamedLibrary> loadAll() {
    std::vector<NamedLibrary> all;
    all.push_back({"the library", host::Library(QUILLON_LIBRARY)});
    for (const std::string set : {"sse2", "avx2", "avx512"}) {
        host::Library held(QUILLON_HELD_LIBRARIES "/" + set + QUILLON_LIBRARY_ENDING);
        const auto isUsed = reinterpret_cast<bool (*)()>(held.symbol("usesItsInstructionSet"));
        if (isUsed && isUsed())
            all.push_back({"the library held to " + set, std::move(held)});
    }
    return all;
}

class Surroundings : public testing::Environment {
  public:
    void SetUp() override {
        folder_ = std::make_unique<desk::PrivateFolder>();
        conversation::leaveThePersonsSettingsAlone(folder_->path());
        libraries = new std::vector<NamedLibrary>(loadAll());
    }

    void TearDown() override { folder_.reset(); }

  private:
    std::unique_ptr<desk::PrivateFolder> folder_;
};

/// Owned by GoogleTest from then on.
const testing::Environment* const surroundings = testing::AddGlobalTestEnvironment(new Surroundings);

} // namespace

const host::Library& libraryUnderTest() {
    return libraries->front().library;
}

const std::vector<NamedLibrary>& librariesUnderTest() {
    return *libraries;
}

host::HostBehaviour quietHost() {
    host::HostBehaviour behaviour;
    behaviour.record = false;
    return behaviour;
}
