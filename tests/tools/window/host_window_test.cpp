// The window of a host: what a window manager and a plug-in see of it, and what can be read back from it; the
// display that nobody sees, and the hand that acknowledges messages.

#include <gtest/gtest.h>

#include "desk/host_window.h"
#include "desk/message_watch.h"
#include "desk/virtual_display.h"
#include "platform/message_box.h"

#include <atomic>
#include <cstdlib>
#include <thread>

// Xlib defines words that the headers above use, so it comes last.
#include "child_process.h"
#include "support/close_window.h"
#include "virtual_screen.h"
#include <X11/Xutil.h>

namespace {

using desk::HostWindow;
using desk::Picture;

/// 0xRRGGBB.
unsigned colourAt(const Picture& picture, int x, int y) {
    const auto at = static_cast<std::size_t>(y * picture.width + x) * 3;
    return static_cast<unsigned>(picture.rgb[at] << 16 | picture.rgb[at + 1] << 8 | picture.rgb[at + 2]);
}

class AHostWindow : public testing::Test {
  protected:
    AHostWindow() { setenv("DISPLAY", screen.name().c_str(), 1); }

    static Window of(const HostWindow& window) { return reinterpret_cast<Window>(window.handle()); }

    /// What a plug-in does: its own window in the host's.
    void put(Window parent, int x, int y, int width, int height, unsigned long colour) {
        const Window child = XCreateSimpleWindow(screen.display(), parent, x, y, static_cast<unsigned>(width),
                                                 static_cast<unsigned>(height), 0, 0, colour);
        XMapWindow(screen.display(), child);
        XSync(screen.display(), False);
    }

    test::VirtualScreen screen;
};

TEST_F(AHostWindow, IsNotSeenBeforeItIsShown) {
    HostWindow window("editor", 120, 80);
    EXPECT_FALSE(screen.isShown(of(window)));
    EXPECT_FALSE(window.picture());
    window.show();
    EXPECT_TRUE(screen.isShown(of(window)));
}

TEST_F(AHostWindow, HasItsTitleItsSizeAndNoOther) {
    const HostWindow window("Quillon \u2013 Copper", 120, 80);
    EXPECT_EQ(screen.property(of(window), "_NET_WM_NAME"), "Quillon \u2013 Copper");
    XSizeHints hints = {};
    long given = 0;
    ASSERT_TRUE(XGetWMNormalHints(screen.display(), of(window), &hints, &given));
    EXPECT_EQ(hints.min_width, 120);
    EXPECT_EQ(hints.max_width, 120);
    EXPECT_EQ(hints.min_height, 80);
    EXPECT_EQ(hints.max_height, 80);
}

TEST_F(AHostWindow, TakesAnotherSize) {
    HostWindow window("editor", 120, 80);
    window.show();
    window.resize(200, 100);
    const test::Place place = placeOf(screen, of(window));
    EXPECT_EQ(place.width, 200);
    EXPECT_EQ(place.height, 100);
    EXPECT_EQ(window.width(), 200);
    EXPECT_EQ(window.height(), 100);
    ASSERT_TRUE(window.picture());
    EXPECT_EQ(window.picture()->width, 200);
}

TEST_F(AHostWindow, IsReadBackWithTheWindowsInIt) {
    HostWindow window("editor", 120, 80);
    window.show();
    put(of(window), 10, 20, 30, 40, 0xFF8001);
    const auto picture = window.picture();
    ASSERT_TRUE(picture);
    ASSERT_EQ(picture->rgb.size(), 120u * 80u * 3u);
    EXPECT_EQ(colourAt(*picture, 10, 20), 0xFF8001u);
    EXPECT_EQ(colourAt(*picture, 39, 59), 0xFF8001u);
    EXPECT_EQ(colourAt(*picture, 9, 20), 0x000000u);
    EXPECT_EQ(colourAt(*picture, 40, 59), 0x000000u);
}

TEST_F(AHostWindow, HasNoPictureWhereItReachesBeyondTheScreen) {
    HostWindow window("editor", 1200, 80);
    window.show();
    EXPECT_FALSE(window.picture());
}

TEST_F(AHostWindow, IsClosedWhenThePersonAsksForIt) {
    HostWindow window("editor", 120, 80);
    window.show();
    window.serve(0);
    EXPECT_FALSE(window.isClosed());
    askToClose(screen, of(window));
    EXPECT_TRUE(test::waitUntil([&] {
        window.serve(20);
        return window.isClosed();
    }));
}

TEST_F(AHostWindow, IsClosedWhenTheDisplayGoesAway) {
    HostWindow window("editor", 120, 80);
    window.show();
    screen.stopServer();
    EXPECT_TRUE(test::waitUntil([&] {
        window.serve(20);
        return window.isClosed();
    }));
    EXPECT_FALSE(window.picture());
}

TEST_F(AHostWindow, GoesWithItsObject) {
    Window handle = None;
    {
        HostWindow window("editor", 120, 80);
        window.show();
        handle = of(window);
    }
    EXPECT_TRUE(test::waitUntil([&] { return !screen.isShown(handle); }));
}

TEST(NoDisplay, LetsNoWindowBeMade) {
    unsetenv("DISPLAY");
    EXPECT_FALSE(desk::hasDisplay());
    try {
        HostWindow window("editor", 10, 10);
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "there is no display to open a window on");
    }
}

TEST(AVirtualDisplay, IsOneForWindowsAndLeavesNone) {
    unsetenv("DISPLAY");
    {
        const desk::VirtualDisplay display(300, 200);
        ASSERT_TRUE(desk::hasDisplay());
        HostWindow fitting("editor", 300, 200), larger("editor", 301, 200);
        fitting.show();
        larger.show();
        EXPECT_TRUE(fitting.picture());
        EXPECT_FALSE(larger.picture());
    }
    EXPECT_EQ(std::getenv("DISPLAY"), nullptr);
}

TEST(AVirtualDisplay, SaysWhatIsMissing) {
    const std::string path = std::getenv("PATH");
    setenv("PATH", "/nowhere", 1);
    try {
        const desk::VirtualDisplay display(300, 200);
        ADD_FAILURE();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "there is no display, and no Xvfb to make one: install xvfb");
    }
    setenv("PATH", path.c_str(), 1);
}

class AMessageWatch : public AHostWindow {
  protected:
    std::atomic<bool> acknowledges = false;
    std::atomic<int> messages = 0;
    desk::ShownMessage last;
};

TEST_F(AMessageWatch, ReadsAMessageAndAcknowledgesIt) {
    acknowledges = true;
    const desk::MessageWatch watch(
        [&](const desk::ShownMessage& message) {
            last = message;
            ++messages;
        },
        [&] { return acknowledges.load(); });
    platform::showMessage("two\nlines \u2013", "Caption"); // would wait for ever
    EXPECT_EQ(messages, 1);
    EXPECT_EQ(last.text, "two\nlines \u2013");
    EXPECT_EQ(last.caption, "Caption");
    platform::showMessage("again", "Caption");
    EXPECT_EQ(messages, 2);
}

TEST_F(AMessageWatch, LeavesAMessageToThePersonUntilItIsToldOtherwise) {
    const desk::MessageWatch watch([&](const desk::ShownMessage&) { ++messages; },
                                   [&] { return acknowledges.load(); });
    std::atomic<bool> isOver = false;
    std::thread shower([&] {
        platform::showMessage("text", "Caption");
        isOver = true;
    });
    const bool wasSeen = test::waitUntil([&] { return messages == 1; });
    EXPECT_TRUE(wasSeen);
    EXPECT_FALSE(isOver);
    acknowledges = true;
    shower.join();
}

TEST_F(AMessageWatch, KeepsItsHandsOffTheMessagesOfOtherPrograms) {
    acknowledges = true;
    const desk::MessageWatch watch([&](const desk::ShownMessage&) { ++messages; },
                                   [&] { return acknowledges.load(); });
    test::ChildProcess other({QUILLON_SHOW_MESSAGE, "text", "Caption"},
                             {.environment = {{"DISPLAY", screen.name()}}, .currentDirectory = {}});
    ASSERT_NE(screen.waitForWindow(), None);
    // One of ours comes later and goes first.
    platform::showMessage("ours", "Caption");
    EXPECT_EQ(messages, 1);
    EXPECT_TRUE(other.isRunning());
}

TEST(AMessageWatchWithoutADisplay, SeesNothing) {
    unsetenv("DISPLAY");
    const desk::MessageWatch watch([](const desk::ShownMessage&) { FAIL(); }, [] { return true; });
}

} // namespace
