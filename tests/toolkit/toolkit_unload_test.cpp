// A host that loads a plug-in, opens its window and unloads it, over and over.

#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>

// Xlib defines words that the headers above use, so it comes last.
#include "../platform/child_process.h"
#include "../platform/virtual_screen.h"

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
    void useLibrary(bool closeWindow = true) {
        void* library = dlopen(QUILLON_SAMPLE_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library, nullptr) << dlerror();
        void* editor = find<void* (*)(void*)>(library, "openSample")(reinterpret_cast<void*>(parent));
        ASSERT_NE(editor, nullptr);
        EXPECT_TRUE(test::waitUntil([&] {
            find<void (*)()>(library, "serveSample")();
            return screen.pixel(50, 50) == 0x0000FF;
        }));
        if (closeWindow)
            find<void (*)(void*)>(library, "closeSample")(editor);
        dlclose(library);
        EXPECT_EQ(dlopen(QUILLON_SAMPLE_LIBRARY, RTLD_NOW | RTLD_NOLOAD), nullptr) << "it is still there";
    }

    test::VirtualScreen screen;
    Window parent = XCreateSimpleWindow(screen.display(), screen.root(), 10, 10, 50, 50, 0, 0, 0);
};

TEST_F(Unloading, EndsTheConnectionToTheDisplay) {
    useLibrary();
    const std::ptrdiff_t before = openDescriptors();
    for (int round = 0; round < 5; ++round)
        useLibrary();
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(Unloading, WithAWindowStillOpenDoesNoHarm) {
    useLibrary(false);
    useLibrary();
}

} // namespace
