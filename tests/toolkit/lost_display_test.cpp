// A display that goes away under open windows. It takes a host with it only if the host wants that.

#include "platform/toolkit.h"
#include "platform/toolkit_window.h"

#include "vstgui/lib/ccolor.h"
#include "vstgui/lib/cframe.h"

#include <cstdlib>
#include <gtest/gtest.h>

// Xlib defines words that the headers above use, so it comes last.
#include "../platform/child_process.h"
#include "../platform/virtual_screen.h"

namespace {

TEST(ALostDisplay, LeavesTheToolkitAlive) {
    test::VirtualScreen screen;
    setenv("DISPLAY", screen.name().c_str(), 1);
    const Window parent = XCreateSimpleWindow(screen.display(), screen.root(), 10, 10, 50, 50, 0, 0, 0);
    XMapWindow(screen.display(), parent);
    XSync(screen.display(), False);
    void* const handle = reinterpret_cast<void*>(parent);

    const platform::Toolkit toolkit;
    platform::ToolkitWindow window;
    auto* frame = new VSTGUI::CFrame(VSTGUI::CRect(0, 0, 50, 50), nullptr);
    frame->setBackgroundColor(VSTGUI::kBlueCColor);
    ASSERT_TRUE(window.open(frame, handle));
    ASSERT_TRUE(test::waitUntil([&] {
        platform::serveToolkitWindows();
        return screen.pixel(20, 20) == 0x0000FF;
    }));

    screen.stopServer();
    frame->invalid();
    for (int i = 0; i < 5; ++i) {
        frame->idle();
        platform::serveToolkitWindows();
    }
    window.close();

    EXPECT_FALSE(window.open(new VSTGUI::CFrame(VSTGUI::CRect(0, 0, 50, 50), nullptr), handle));
    window.close();

    // Another display comes too late for what the toolkit keeps of the first; that is an orderly failure.
    test::VirtualScreen other;
    setenv("DISPLAY", other.name().c_str(), 1);
    void* const root = reinterpret_cast<void*>(other.root());
    EXPECT_FALSE(window.open(new VSTGUI::CFrame(VSTGUI::CRect(0, 0, 50, 50), nullptr), root));
    platform::serveToolkitWindows();
}

} // namespace
