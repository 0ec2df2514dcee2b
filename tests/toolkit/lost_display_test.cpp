// A display that goes away under open windows. It takes a host with it only if the host wants that.

#include "toolkit/toolkit.h"
#include "toolkit/toolkit_window.h"

#include "vstgui/lib/ccolor.h"
#include "vstgui/lib/cframe.h"
#include "vstgui/lib/controls/ctextlabel.h"

#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>

// Xlib defines words that the headers above use, so it comes last.
#include "child_process.h"
#include "virtual_screen.h"

namespace {

TEST(ALostDisplay, LeavesTheToolkitAlive) {
    test::VirtualScreen screen;
    setenv("DISPLAY", screen.name().c_str(), 1);
    const Window parent = XCreateSimpleWindow(screen.display(), screen.root(), 10, 10, 50, 50, 0, 0, 0);
    XMapWindow(screen.display(), parent);
    XSync(screen.display(), False);
    void* const handle = reinterpret_cast<void*>(parent);

    const toolkit::Toolkit toolkit;
    toolkit::ToolkitWindow window;
    auto* frame = new VSTGUI::CFrame(VSTGUI::CRect(0, 0, 50, 50), nullptr);
    frame->setBackgroundColor(VSTGUI::kBlueCColor);
    ASSERT_TRUE(window.open(frame, handle));
    ASSERT_TRUE(test::waitUntil([&] {
        toolkit::serveToolkitWindows();
        return screen.pixel(20, 20) == 0x0000FF;
    }));

    screen.stopServer();
    frame->invalid();
    for (int i = 0; i < 5; ++i) {
        frame->idle();
        toolkit::serveToolkitWindows();
    }
    window.close();

    EXPECT_FALSE(window.open(new VSTGUI::CFrame(VSTGUI::CRect(0, 0, 50, 50), nullptr), handle));
    window.close();

    // The connection to a display that is gone does not keep a window from another one.
    test::VirtualScreen other;
    setenv("DISPLAY", other.name().c_str(), 1);
    frame = new VSTGUI::CFrame(VSTGUI::CRect(0, 0, 50, 50), nullptr);
    frame->setBackgroundColor(VSTGUI::kGreenCColor);
    ASSERT_TRUE(window.open(frame, reinterpret_cast<void*>(other.root())));
    EXPECT_TRUE(test::waitUntil([&] {
        toolkit::serveToolkitWindows();
        return other.pixel(20, 20) == 0x00FF00;
    }));
}

/// Counts the presses of the left button.
class PressCounter final : public VSTGUI::CView {
  public:
    using CView::CView;
    VSTGUI::CMouseEventResult onMouseDown(VSTGUI::CPoint&, const VSTGUI::CButtonState&) override {
        ++presses;
        return VSTGUI::kMouseEventHandled;
    }
    int presses = 0;
};

/// A window in the corner of the screen that takes presses, with a word in it.
struct WordWindow {
    static constexpr int size = 100;

    WordWindow(test::VirtualScreen& onScreen, toolkit::ToolkitWindow& window) : screen(onScreen) {
        auto* const frame = new VSTGUI::CFrame(VSTGUI::CRect(0, 0, size, size), nullptr);
        frame->setBackgroundColor(VSTGUI::kBlackCColor);
        auto* const label = new VSTGUI::CTextLabel(VSTGUI::CRect(0, 0, size, 40), "WMWMWM");
        label->setBackColor(VSTGUI::kBlackCColor);
        label->setFontColor(VSTGUI::kWhiteCColor);
        frame->addView(label);
        counter = new PressCounter(VSTGUI::CRect(0, 40, size, size));
        frame->addView(counter);
        const Window parent =
            XCreateSimpleWindow(screen.display(), screen.root(), 0, 0, size, size, 0, 0, 0xFF00FF);
        XMapWindow(screen.display(), parent);
        XSync(screen.display(), False);
        isOpen = window.open(frame, reinterpret_cast<void*>(parent));
    }

    bool showsItsWord() const {
        return serveUntil([this] {
            int bright = 0;
            for (int x = 0; x < size; ++x)
                bright += screen.pixel(x, 20) != 0;
            return bright > 5 && screen.pixel(size - 1, size - 1) == 0;
        });
    }
    bool takesAPress() const {
        const int before = counter->presses;
        screen.movePointer(size / 2, size - 10);
        screen.click();
        return serveUntil([&] { return counter->presses > before; });
    }
    static bool serveUntil(const std::function<bool()>& condition) {
        return test::waitUntil([&] {
            toolkit::serveToolkitWindows();
            return condition();
        });
    }

    test::VirtualScreen& screen;
    PressCounter* counter;
    bool isOpen;
};

TEST(ALostDisplay, LeavesItsWindowsToBeClosedAfterOthersHaveOpenedOnTheNext) {
    const toolkit::Toolkit toolkit;
    toolkit::ToolkitWindow lost[2], window;
    {
        test::VirtualScreen screen;
        setenv("DISPLAY", screen.name().c_str(), 1);
        for (auto& each : lost) {
            const WordWindow shown(screen, each);
            ASSERT_TRUE(shown.isOpen && shown.showsItsWord());
        }
        screen.stopServer();
    }
    test::VirtualScreen screen;
    setenv("DISPLAY", screen.name().c_str(), 1);
    const WordWindow shown(screen, window);
    ASSERT_TRUE(shown.isOpen && shown.showsItsWord());
    EXPECT_TRUE(shown.takesAPress());
    for (auto& each : lost) {
        each.fitContainers(30, 30);
        each.close();
        EXPECT_TRUE(shown.takesAPress());
    }
    EXPECT_EQ(screen.pixel(WordWindow::size - 1, WordWindow::size - 1), 0u) << "it is still there, as large";
}

TEST(ALostDisplay, IsFollowedByAsManyOthersAsThereAre) {
    const toolkit::Toolkit toolkit;
    for (int i = 0; i < 4; ++i) {
        test::VirtualScreen screen;
        setenv("DISPLAY", screen.name().c_str(), 1);
        toolkit::ToolkitWindow window;
        const WordWindow shown(screen, window);
        ASSERT_TRUE(shown.isOpen && shown.showsItsWord()) << i;
        EXPECT_TRUE(shown.takesAPress()) << i;
        screen.stopServer();
    }
}

} // namespace
