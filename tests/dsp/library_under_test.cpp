#include "library_under_test.h"

#include "platform/private_folder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace {

class Surroundings : public testing::Environment {
  public:
    void SetUp() override {
        folder_ = std::make_unique<platform::PrivateFolder>();
        setenv("HOME", folder_->path().c_str(), 1);
        setenv("XDG_CONFIG_HOME", folder_->path().c_str(), 1);
        unsetenv("DISPLAY");
        library_ = std::make_unique<host::Library>(QUILLON_LIBRARY);
    }

    void TearDown() override {
        library_.reset();
        folder_.reset();
    }

    const host::Library& library() const { return *library_; }

  private:
    std::unique_ptr<platform::PrivateFolder> folder_;
    std::unique_ptr<host::Library> library_;
};

/// GoogleTest owns it and outlives every test.
const Surroundings* const surroundings = [] {
    auto* made = new Surroundings;
    testing::AddGlobalTestEnvironment(made);
    return made;
}();

} // namespace

const host::Library& libraryUnderTest() {
    return surroundings->library();
}

host::HostBehaviour quietHost() {
    host::HostBehaviour behaviour;
    behaviour.record = false;
    return behaviour;
}
