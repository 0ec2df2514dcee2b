// A host that closes the effect while the process ends, with the window open.
#include "support/plugin_folder.h"

#include "child_process.h"

#include <filesystem>

// Xlib defines words that the headers above use, so it comes last.
#include "virtual_screen.h"

namespace {

using namespace test;

class LateHost : public conversation::QuietPlugin, public ::testing::WithParamInterface<const char*> {};

TEST_P(LateHost, ClosesWhatItHasOpenedWithoutHarm) {
    const VirtualScreen screen;
    std::filesystem::copy(QUILLON_STAGE "/Quillon Skin", module.beside("Quillon Skin"),
                          std::filesystem::copy_options::recursive);
    ChildProcess host({QUILLON_LATE_HOST, module.path(), GetParam()},
                      // At that end nobody frees what libraries keep.
                      {.environment = {{"DISPLAY", screen.name()}, {"ASAN_OPTIONS", "detect_leaks=0"}},
                       .currentDirectory = module.folder()});
    EXPECT_EQ(host.wait(), 0) << host.standardError();
    EXPECT_TRUE(std::filesystem::exists(module.beside(conversation::kMapFile)))
        << "which the effect's end writes";
}

INSTANTIATE_TEST_SUITE_P(First, LateHost, ::testing::Values("window", "effect"));

} // namespace
