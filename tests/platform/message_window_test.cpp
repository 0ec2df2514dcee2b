// The message box with a display: a real window on a screen of the test's own, closed with a real pointer and
// real keys. The box runs in a program of its own, as it would in a host.
//
// That something does not close the box is shown without waiting for nothing to happen: the server hands
// events on in order, so once the box has answered a later move of the pointer by lighting its button up, it
// has seen all that came before.

// First of all, because the X headers' macros would break it.
#include <gtest/gtest.h>

#include "child_process.h"
#include "virtual_screen.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
#include <algorithm>
#include <cairo-xlib.h>
#include <functional>

namespace {

using test::ChildProcess;
using test::Pixel;
using test::Place;
using test::VirtualScreen;

constexpr Pixel restingButton = 0xE0A030, litButton = 0xE9B14D, pressedButton = 0xC2851C;

/// The smallest place on the screen that holds every pixel that is one of those.
Place findPixels(VirtualScreen& screen, Place within, const std::function<bool(Pixel)>& isOneOfThose) {
    XImage* image =
        XGetImage(screen.display(), screen.root(), within.x, within.y, static_cast<unsigned>(within.width),
                  static_cast<unsigned>(within.height), AllPlanes, ZPixmap);
    int left = within.width, right = -1, top = within.height, bottom = -1;
    for (int y = 0; image && y < within.height; ++y)
        for (int x = 0; x < within.width; ++x)
            if (isOneOfThose(XGetPixel(image, x, y) & 0xFFFFFF)) {
                left = std::min(left, x);
                right = std::max(right, x);
                top = std::min(top, y);
                bottom = std::max(bottom, y);
            }
    if (image)
        XDestroyImage(image);
    if (right < 0)
        return {};
    return {within.x + left, within.y + top, right - left + 1, bottom - top + 1};
}

Place findColour(VirtualScreen& screen, Place within, Pixel colour) {
    return findPixels(screen, within, [colour](Pixel pixel) { return pixel == colour; });
}

/// A box on a screen, ready for the hand: shown, drawn, with the keyboard.
class MessageWindow : public testing::Test {
  protected:
    void show(const std::string& text = "Default bank error: file not found",
              const std::string& caption = "Preset loader") {
        box = std::make_unique<ChildProcess>(
            std::vector<std::string>{QUILLON_SHOW_MESSAGE, text, caption},
            ChildProcess::Setting{.environment = {{"DISPLAY", screen.name()}}, .currentDirectory = {}});
        window = screen.waitForWindow();
        ASSERT_NE(window, None) << "no window came up; standard error: " << box->standardError();
        place = placeOf(screen, window);
        ASSERT_TRUE(test::waitUntil([this] {
            button = findColour(screen, place, restingButton);
            return button.width > 0;
        })) << "the box has no button";
        ASSERT_TRUE(test::waitUntil([this] { return screen.hasKeyboard(window); }));
    }

    void pointAtButton() { screen.movePointer(button.x + button.width / 4, button.y + button.height / 2); }
    void pointAtText() { screen.movePointer(place.x + place.width / 2, place.y + 20); }
    bool waitForButton(Pixel colour) {
        return screen.waitForPixel(button.x + button.width / 4, button.y + button.height / 2, colour);
    }
    /// Whether the box, having seen all that was done to it, is still there.
    bool staysOpen() {
        pointAtText();
        pointAtButton();
        return waitForButton(litButton) && screen.isShown(window) && box->isRunning();
    }
    void expectClosed() {
        EXPECT_EQ(box->wait(), 0);
        EXPECT_TRUE(test::waitUntil([this] { return !screen.isShown(window); }));
        EXPECT_EQ(box->standardError(), "") << "a message that was shown is not printed as well";
    }

    VirtualScreen screen;
    std::unique_ptr<ChildProcess> box;
    Window window = None;
    Place place;
    Place button;
};

TEST_F(MessageWindow, IsClosedByAClickOnItsButton) {
    show();
    pointAtButton();
    screen.click();
    expectClosed();
}

TEST_F(MessageWindow, IsClosedByReturn) {
    show();
    screen.typeKey(XK_Return);
    expectClosed();
}

TEST_F(MessageWindow, IsClosedByTheKeypadsEnter) {
    show();
    screen.typeKey(XK_KP_Enter);
    expectClosed();
}

TEST_F(MessageWindow, IsClosedByEscape) {
    show();
    screen.typeKey(XK_Escape);
    expectClosed();
}

TEST_F(MessageWindow, IsClosedByTheWindowManagersCloseButton) {
    show();
    XEvent message = {};
    message.xclient.type = ClientMessage;
    message.xclient.window = window;
    message.xclient.message_type = XInternAtom(screen.display(), "WM_PROTOCOLS", False);
    message.xclient.format = 32;
    message.xclient.data.l[0] = static_cast<long>(XInternAtom(screen.display(), "WM_DELETE_WINDOW", False));
    XSendEvent(screen.display(), window, False, NoEventMask, &message);
    XSync(screen.display(), False);
    expectClosed();
}

TEST_F(MessageWindow, StaysOpenOnAClickBesideTheButton) {
    show();
    pointAtText();
    screen.click();
    EXPECT_TRUE(staysOpen());
    screen.click();
    expectClosed();
}

TEST_F(MessageWindow, StaysOpenIfThePressIsLetGoOutsideTheButton) {
    show();
    pointAtButton();
    screen.pressButton();
    EXPECT_TRUE(waitForButton(pressedButton)) << "a pressed button looks pressed";
    pointAtText();
    EXPECT_TRUE(waitForButton(restingButton)) << "away from it, it would do nothing and says so";
    screen.releaseButton();
    EXPECT_TRUE(staysOpen());
}

TEST_F(MessageWindow, StaysOpenIfAPressFromOutsideIsLetGoOnTheButton) {
    show();
    pointAtText();
    screen.pressButton();
    pointAtButton();
    screen.releaseButton();
    EXPECT_TRUE(staysOpen());
}

TEST_F(MessageWindow, ClosesIfThePressLeftTheButtonAndCameBack) {
    show();
    pointAtButton();
    screen.pressButton();
    pointAtText();
    pointAtButton();
    EXPECT_TRUE(waitForButton(pressedButton));
    screen.releaseButton();
    expectClosed();
}

TEST_F(MessageWindow, StaysOpenOnOtherKeysAndOtherButtons) {
    show();
    screen.typeKey(XK_space);
    screen.typeKey(XK_a);
    pointAtButton();
    for (const unsigned other : {2u, 3u, 4u}) {
        XTestFakeButtonEvent(screen.display(), other, True, CurrentTime);
        XTestFakeButtonEvent(screen.display(), other, False, CurrentTime);
    }
    EXPECT_TRUE(staysOpen());
}

TEST_F(MessageWindow, StaysOpenOnAnotherClientMessage) {
    show();
    XEvent message = {};
    message.xclient.type = ClientMessage;
    message.xclient.window = window;
    message.xclient.message_type = XInternAtom(screen.display(), "WM_PROTOCOLS", False);
    message.xclient.format = 32;
    message.xclient.data.l[0] = static_cast<long>(XInternAtom(screen.display(), "WM_TAKE_FOCUS", False));
    XSendEvent(screen.display(), window, False, NoEventMask, &message);
    EXPECT_TRUE(staysOpen());
}

TEST_F(MessageWindow, ComesUpAsOftenAsThereIsSomethingToSay) {
    const std::vector<std::string> captions = {"first", "second", "third"};
    std::vector<std::string> arguments = {QUILLON_SHOW_MESSAGE};
    for (const std::string& caption : captions)
        arguments.insert(arguments.end(), {"text", caption});
    box = std::make_unique<ChildProcess>(
        arguments,
        ChildProcess::Setting{.environment = {{"DISPLAY", screen.name()}}, .currentDirectory = {}});
    for (const std::string& caption : captions) {
        ASSERT_TRUE(test::waitUntil([&] {
            window = screen.waitForWindow();
            return screen.property(window, "WM_NAME") == caption && screen.hasKeyboard(window);
        })) << caption;
        screen.typeKey(XK_Return);
    }
    expectClosed();
}

TEST_F(MessageWindow, HasTheCaptionAsItsTitle) {
    show("text", "SKIN SELECTED!");
    char* title = nullptr;
    ASSERT_TRUE(XFetchName(screen.display(), window, &title));
    EXPECT_STREQ(title, "SKIN SELECTED!");
    XFree(title);
    EXPECT_EQ(screen.property(window, "_NET_WM_NAME"), "SKIN SELECTED!");
}

TEST_F(MessageWindow, CarriesATitleBeyondAscii) {
    show("text", "Gr\u00fc\u00dfe");
    EXPECT_EQ(screen.property(window, "_NET_WM_NAME"), "Gr\u00fc\u00dfe");
    EXPECT_EQ(screen.property(window, "WM_NAME"), "Gr\u00fc\u00dfe");
}

TEST_F(MessageWindow, ComesUpWithBytesThatAreNoUtf8) {
    show("The skin \xC4rger\xFF is missing\xE2\x82", "Skin \xE9rror");
    EXPECT_EQ(screen.property(window, "_NET_WM_NAME"), "Skin \u00e9rror");
}

TEST_F(MessageWindow, ComesUpWithNothingToSay) {
    show("", "");
    EXPECT_GT(place.width, 200);
    EXPECT_EQ(screen.property(window, "_NET_WM_NAME"), "");
}

TEST_F(MessageWindow, TellsWindowManagersThatItIsADialog) {
    show();
    const auto atomIn = [this](const char* property) {
        const std::string bytes = screen.property(window, property);
        return bytes.size() < sizeof(Atom) ? None : *reinterpret_cast<const Atom*>(bytes.data());
    };
    EXPECT_EQ(atomIn("_NET_WM_WINDOW_TYPE"),
              XInternAtom(screen.display(), "_NET_WM_WINDOW_TYPE_DIALOG", False));
    EXPECT_EQ(atomIn("WM_PROTOCOLS"), XInternAtom(screen.display(), "WM_DELETE_WINDOW", False));
    XSizeHints size = {};
    long supplied = 0;
    ASSERT_TRUE(XGetWMNormalHints(screen.display(), window, &size, &supplied));
    EXPECT_EQ(size.flags, PMinSize | PMaxSize);
    EXPECT_EQ(size.min_width, place.width);
    EXPECT_EQ(size.max_width, place.width);
    EXPECT_EQ(size.min_height, place.height);
    EXPECT_EQ(size.max_height, place.height);
    XWMHints* hints = XGetWMHints(screen.display(), window);
    ASSERT_NE(hints, nullptr);
    EXPECT_EQ(hints->flags, InputHint);
    EXPECT_TRUE(hints->input);
    XFree(hints);
}

TEST_F(MessageWindow, StandsInTheMiddleOfTheScreen) {
    show();
    EXPECT_NEAR(place.x + place.width / 2, 500, 1);
    EXPECT_NEAR(place.y + place.height / 2, 400, 1);
}

TEST_F(MessageWindow, GrowsWithItsTextButNotBeyondTheScreen) {
    std::string endless;
    for (int line = 0; line < 2000; ++line)
        endless += "A sentence that goes on about a skin's faults.\n";
    show(endless);
    EXPECT_GT(place.height, 500);
    EXPECT_LE(place.height, 800);
    EXPECT_LE(place.width, 1000);
    EXPECT_LT(button.y + button.height, place.y + place.height) << "the button can be reached";
    pointAtButton();
    screen.click();
    expectClosed();
}

TEST_F(MessageWindow, IsTwiceAsLargeOnAScreenTwiceAsDense) {
    show();
    const Place ordinary = place;
    screen.typeKey(XK_Return);
    expectClosed();

    const std::string resources = "Other.thing:\t1\nXft.dpi:\t192\n";
    XChangeProperty(screen.display(), screen.root(), XA_RESOURCE_MANAGER, XA_STRING, 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(resources.data()),
                    static_cast<int>(resources.size()));
    XSync(screen.display(), False);
    show();
    EXPECT_NEAR(place.width, 2 * ordinary.width, 2);
    EXPECT_NEAR(place.height, 2 * ordinary.height, 2);
    pointAtButton();
    screen.click();
    expectClosed();
}

TEST_F(MessageWindow, DrawsAgainWhatWasCovered) {
    show();
    const Window cover = XCreateSimpleWindow(screen.display(), screen.root(), place.x, place.y,
                                             static_cast<unsigned>(place.width),
                                             static_cast<unsigned>(place.height), 0, 0, 0x112233);
    XMapRaised(screen.display(), cover);
    ASSERT_TRUE(waitForButton(0x112233));
    XDestroyWindow(screen.display(), cover);
    EXPECT_TRUE(waitForButton(restingButton));
}

TEST_F(MessageWindow, KeepsItsButtonInTheCornerIfItIsResized) {
    show();
    XResizeWindow(screen.display(), window, static_cast<unsigned>(place.width + 100),
                  static_cast<unsigned>(place.height + 60));
    XSync(screen.display(), False);
    const Place larger = {place.x, place.y, place.width + 100, place.height + 60};
    const int right = button.x + button.width + 100;
    EXPECT_TRUE(test::waitUntil([&] {
        button = findColour(screen, larger, restingButton);
        return button.x + button.width == right;
    }));
    pointAtButton();
    screen.click();
    expectClosed();
}

TEST_F(MessageWindow, TurnsIntoALineWhenTheServerGoesAway) {
    show("Can't load bank, wrong file size!", "Error!");
    screen.stopServer();
    EXPECT_EQ(box->wait(), 0) << "whoever shows a message survives the server";
    EXPECT_EQ(box->standardError(), "Error!: Can't load bank, wrong file size!\n");
}

TEST_F(MessageWindow, TurnsIntoALineWhenItsConnectionIsCut) {
    show("text", "caption");
    XKillClient(screen.display(), window);
    XSync(screen.display(), False);
    EXPECT_EQ(box->wait(), 0);
    EXPECT_EQ(box->standardError(), "caption: text\n");
}

TEST_F(MessageWindow, CountsAsClosedIfItsWindowIsDestroyed) {
    show();
    XDestroyWindow(screen.display(), window);
    XSync(screen.display(), False);
    expectClosed();
}

/// Leaves the picture in the build folder, for a person to look at.
TEST_F(MessageWindow, IsALightPageWithSlateTypeAndAnAmberButton) {
    show("The new skin has been selected.\nPlease close and open this window.\nIf nothing changes it's "
         "probably because your host only hides\nthe editor windows, so you may have to reopen the plug-in",
         "SKIN SELECTED!");
    pointAtText();
    cairo_surface_t* view = cairo_xlib_surface_create(
        screen.display(), window, DefaultVisual(screen.display(), 0), place.width, place.height);
    cairo_surface_write_to_png(view, QUILLON_PICTURE);
    cairo_surface_destroy(view);

    EXPECT_EQ(screen.pixel(place.x + 4, place.y + 4), 0xFBFAF7u);
    const Place type = findColour(screen, {place.x, place.y, place.width, button.y - place.y - 10}, 0x2B3540);
    EXPECT_GT(type.width, place.width / 2) << "the text is to be seen";
    EXPECT_GT(type.x, place.x + 10);
    EXPECT_LT(type.x + type.width, place.x + place.width - 10) << "and stays inside";
    EXPECT_GT(button.width, 60);
}

TEST_F(MessageWindow, HasItsButtonsWordInTheButtonsMiddle) {
    show();
    const auto isDark = [](Pixel pixel) { return (pixel >> 16) < 0x80; };
    Place word;
    ASSERT_TRUE(test::waitUntil([&] {
        word = findPixels(screen, button, isDark);
        return word.height > 5;
    }));
    const int above = word.y - button.y, below = button.y + button.height - (word.y + word.height);
    EXPECT_NEAR(above, below, 3);
    const int left = word.x - button.x, right = button.x + button.width - (word.x + word.width);
    EXPECT_NEAR(left, right, 3);
}

/// A box of a host whose window has others around it, none of them shown.
class MessageWindowOfAnOwner : public MessageWindow {
  protected:
    Window windowIn(Window parent) {
        return XCreateSimpleWindow(screen.display(), parent, 0, 0, 100, 100, 0, 0, 0);
    }
    /// The window that the box is said to belong to.
    Window hostOfABoxFor(Window owner) {
        XSync(screen.display(), False);
        box = std::make_unique<ChildProcess>(
            std::vector<std::string>{QUILLON_SHOW_MESSAGE, "owner=" + std::to_string(owner), "text",
                                     "caption"},
            ChildProcess::Setting{.environment = {{"DISPLAY", screen.name()}}, .currentDirectory = {}});
        window = screen.waitForWindow();
        Window host = None;
        XGetTransientForHint(screen.display(), window, &host);
        return host;
    }

    const Window outermost = windowIn(screen.root());
    const Window between = windowIn(outermost);
    const Window innermost = windowIn(between);
};

TEST_F(MessageWindowOfAnOwner, BelongsToTheOutermostWindowAroundIt) {
    EXPECT_EQ(hostOfABoxFor(innermost), outermost);
}

TEST_F(MessageWindowOfAnOwner, BelongsToTheWindowThatAManagerLooksAfter) {
    const Atom state = XInternAtom(screen.display(), "WM_STATE", False);
    const long normal[] = {1, None};
    XChangeProperty(screen.display(), between, state, state, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(normal), 2);
    EXPECT_EQ(hostOfABoxFor(innermost), between);
}

TEST(MessageWindowOnAPoorScreen, TurnsIntoALine) {
    VirtualScreen screen("640x480x8");
    ChildProcess box({QUILLON_SHOW_MESSAGE, "text", "caption"},
                     {.environment = {{"DISPLAY", screen.name()}}, .currentDirectory = {}});
    EXPECT_EQ(box.wait(), 0);
    EXPECT_EQ(box.standardError(), "caption: text\n");
}

} // namespace
