#include "library_under_test.h"

#include "platform/private_folder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace {

/// Never unloaded: drawing libraries that come with it leave a few blocks behind when they go, and a leak
/// checker could not tell whose they are.
const host::Library* library = nullptr;

class Surroundings : public testing::Environment {
  public:
    void SetUp() override {
        folder_ = std::make_unique<platform::PrivateFolder>();
        setenv("HOME", folder_->path().c_str(), 1);
        setenv("XDG_CONFIG_HOME", folder_->path().c_str(), 1);
        unsetenv("DISPLAY");
        library = new host::Library(QUILLON_LIBRARY);
    }

    void TearDown() override { folder_.reset(); }

  private:
    std::unique_ptr<platform::PrivateFolder> folder_;
};

/// Owned by GoogleTest from then on.
const testing::Environment* const surroundings = testing::AddGlobalTestEnvironment(new Surroundings);

} // namespace

const host::Library& libraryUnderTest() {
    return *library;
}

host::HostBehaviour quietHost() {
    host::HostBehaviour behaviour;
    behaviour.record = false;
    return behaviour;
}
