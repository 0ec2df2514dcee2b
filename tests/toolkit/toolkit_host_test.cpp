// Hosts that are hard on windows: that load a plug-in, open its window and unload it, over and over, and that
// end with a window open.
//
// The libraries behind a window do not survive being unloaded; so the plug-in asks to stay, and the host's
// next window is one more of the same.

#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>

// Xlib defines words that the headers above use, so it comes last.
#include "child_process.h"
#include "virtual_screen.h"

namespace {

std::ptrdiff_t openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

template <typename Function>
Function find(void* library, const char* name) {
    return reinterpret_cast<Function>(dlsym(library, name));
}

class Unloading : public testing::Test {
  protected:
    void SetUp() override {
        setenv("DISPLAY", screen.name().c_str(), 1);
        XMapWindow(screen.display(), parent);
        XSync(screen.display(), False);
    }

    /// Loads the library, shows its window, unloads it.
    void useLibrary() {
        void* library = dlopen(QUILLON_SAMPLE_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library, nullptr) << dlerror();
        void* editor = find<void* (*)(void*)>(library, "openSample")(reinterpret_cast<void*>(parent));
        ASSERT_NE(editor, nullptr);
        EXPECT_TRUE(test::waitUntil([&] {
            find<void (*)()>(library, "serveSample")();
            return screen.pixel(50, 50) == 0x0000FF;
        }));
        find<void (*)(void*)>(library, "closeSample")(editor);
        EXPECT_EQ(dlclose(library), 0);
    }

    test::VirtualScreen screen;
    Window parent = XCreateSimpleWindow(screen.display(), screen.root(), 10, 10, 50, 50, 0, 0, 0);
};

TEST_F(Unloading, LeavesAPluginThatCanOpenItsWindowAgain) {
    useLibrary();
    const std::ptrdiff_t before = openDescriptors();
    for (int round = 0; round < 5; ++round)
        useLibrary();
    EXPECT_EQ(openDescriptors(), before) << "one connection to the display is enough";
}

TEST(AHostThatEndsWithItsWindowOpen, EndsInOrder) {
    test::VirtualScreen screen;
    const Window parent = XCreateSimpleWindow(screen.display(), screen.root(), 10, 10, 50, 50, 0, 0, 0);
    XMapWindow(screen.display(), parent);
    XSync(screen.display(), False);
    // What it has not released is lost; that is the host's doing, and no news for the leak sanitizer.
    test::ChildProcess host({QUILLON_FORGETFUL_HOST, std::to_string(parent)},
                            {.environment = {{"DISPLAY", screen.name()}, {"ASAN_OPTIONS", "detect_leaks=0"}},
                             .currentDirectory = {}});
    EXPECT_EQ(host.wait(), 0) << host.standardError();
    EXPECT_EQ(host.standardOutput(), "shown\n");
    EXPECT_EQ(host.standardError(), "");
    Window ignored = None, *children = nullptr;
    unsigned windowsLeft = 1;
    ASSERT_TRUE(XQueryTree(screen.display(), parent, &ignored, &ignored, &children, &windowsLeft));
    EXPECT_EQ(windowsLeft, 0U);
    if (children)
        XFree(children);
}

} // namespace
