// The controller map from inside: what becomes of a binding that was forgotten in the editor's menu.
#include "desk/private_folder.h"
#include "midi/cc_map.h"
#include "platform/files.h"

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

namespace {

using namespace midi;

class ControllerMap : public testing::Test {
  protected:
    ControllerMap() {
        for (std::int32_t id = 0; id < parameters::kNumParameters; ++id)
            bindController(id, 40 + id);
        writeCcMap();
    }
    void readAgain() { readCcMap(folder.path() + "/nowhere/"); }

    desk::PrivateFolder folder;
};

TEST_F(ControllerMap, ForgetsOneBindingAndKeepsTheOthers) {
    bindController(6, kNoController);
    for (std::int32_t id = 0; id < parameters::kNumParameters; ++id)
        EXPECT_EQ(controllerOf(id), id == 6 ? kNoController : 40 + id) << id;
}

TEST_F(ControllerMap, BringsBackWhatWasForgottenSinceItWasWritten) {
    bindController(6, kNoController);
    readAgain();
    EXPECT_EQ(controllerOf(6), 46);
}

TEST_F(ControllerMap, StaysWithoutWhatWasForgottenBeforeItWasWritten) {
    bindController(6, kNoController);
    writeCcMap();
    bindController(6, 7);
    readAgain();
    EXPECT_EQ(controllerOf(6), kNoController);
}

TEST_F(ControllerMap, IsWrittenAs84BytesLittleEndian) {
    bindController(1, kNoController);
    writeCcMap();
    const auto bytes = platform::readWholeFile("Pluginccmap.bin");
    ASSERT_TRUE(bytes);
    ASSERT_EQ(bytes->size(), 84u);
    using Bytes = std::vector<unsigned char>;
    EXPECT_EQ(Bytes(bytes->begin(), bytes->begin() + 8), (Bytes{40, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(Bytes(bytes->end() - 4, bytes->end()), (Bytes{60, 0, 0, 0}));
}

TEST_F(ControllerMap, IsReadInTheCurrentDirectoryRatherThanBesideTheLibrary) {
    const std::string beside = folder.path() + "/beside/";
    std::filesystem::create_directory(beside);
    std::filesystem::rename("Pluginccmap.bin", beside + "Pluginccmap.bin");
    bindController(6, 7);
    readCcMap(beside);
    EXPECT_EQ(controllerOf(6), 46);
    bindController(6, 7);
    writeCcMap();
    readCcMap(beside);
    EXPECT_EQ(controllerOf(6), 7);
}

} // namespace
