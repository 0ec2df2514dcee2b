// The toolkit's windows as a host sees them: inside a plain X11 window of its own, with a real pointer, and
// with no time but what serveToolkitWindows() gives.

#include "skin/images.h"
#include "toolkit/toolkit.h"
#include "toolkit/toolkit_window.h"

#include "vstgui/lib/cframe.h"
#include "vstgui/lib/controls/cknob.h"
#include "vstgui/lib/controls/coptionmenu.h"
#include "vstgui/lib/controls/csplashscreen.h"
#include "vstgui/lib/controls/ctextlabel.h"
#include "vstgui/lib/cvstguitimer.h"
#include "vstgui/lib/events.h"

#include <cstdlib>
#include <gtest/gtest.h>

// Xlib defines words that the headers above use, so it comes last.
#include "child_process.h"
#include "virtual_screen.h"

#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>

namespace {

using test::Pixel;
using toolkit::ToolkitWindow;
using VSTGUI::CButtonState;
using VSTGUI::CColor;
using VSTGUI::CFrame;
using VSTGUI::CPoint;
using VSTGUI::CRect;

constexpr Pixel grey = 0x404040, blue = 0x0000FF;

/// What a test makes of a control's messages.
class Listener final : public VSTGUI::IControlListener {
  public:
    void valueChanged(VSTGUI::CControl* control) override {
        values.push_back(control->getValue());
        if (action)
            action(control);
    }

    std::vector<float> values;
    std::function<void(VSTGUI::CControl*)> action;
};

/// Writes down the buttons of everything that reaches it.
class ButtonRecorder final : public VSTGUI::CView {
  public:
    using CView::CView;

    VSTGUI::CMouseEventResult onMouseDown(CPoint&, const CButtonState& buttons) override {
        pressed = buttons.getButtonState();
        return VSTGUI::kMouseEventHandled;
    }
    VSTGUI::CMouseEventResult onMouseMoved(CPoint&, const CButtonState& buttons) override {
        moved = buttons.getButtonState();
        return VSTGUI::kMouseEventHandled;
    }
    VSTGUI::CMouseEventResult onMouseUp(CPoint&, const CButtonState& buttons) override {
        released = buttons.getButtonState();
        return VSTGUI::kMouseEventHandled;
    }

    int pressed = 0, moved = 0, released = 0;
};

/// Counts the views that live.
class CountedView final : public VSTGUI::CView {
  public:
    explicit CountedView(int& count) : CView(CRect(0, 0, 1, 1)), count_(count) { ++count_; }
    ~CountedView() noexcept override { --count_; }

  private:
    int& count_;
};

/// A host: a screen and a container, inside which windows open.
class ToolkitWindows : public testing::Test {
  protected:
    static constexpr int width = 200, height = 100;
    static constexpr int left = 50, top = 40;

    ToolkitWindows() : parent(makeContainer(screen().root(), left, top, width, height)) {}
    ~ToolkitWindows() override {
        window.close();
        if (parent != None)
            XDestroyWindow(display(), parent);
        XSync(display(), False);
    }

    /// One for the process, as the toolkit stays with the first it has met.
    static test::VirtualScreen& screen() {
        static test::VirtualScreen theScreen;
        static const int named = setenv("DISPLAY", theScreen.name().c_str(), 1);
        (void)named;
        return theScreen;
    }
    static Display* display() { return screen().display(); }

    Window makeContainer(Window around, int x, int y, unsigned w, unsigned h) {
        const Window made = XCreateSimpleWindow(display(), around, x, y, w, h, 0, 0, 0xFF00FF);
        XMapWindow(display(), made);
        XSync(display(), False);
        return made;
    }

    static void* handle(Window window) { return reinterpret_cast<void*>(window); }

    CFrame* makeFrame() {
        auto* made = new CFrame(CRect(0, 0, width, height), nullptr);
        made->setBackgroundColor(CColor(0x40, 0x40, 0x40));
        return made;
    }

    void openFrame() {
        frame = makeFrame();
        ASSERT_TRUE(window.open(frame, handle(parent)));
    }

    /// Serves as a host does, until something holds.
    static bool serveUntil(const std::function<bool()>& condition) {
        return test::waitUntil([&] {
            toolkit::serveToolkitWindows();
            return condition();
        });
    }

    /// Lets everything happen that has been asked for before.
    void serveAll() {
        Pixel& next = marker_;
        next = next == 0x00AA00 ? 0x00BB00 : 0x00AA00;
        frame->setBackgroundColor(CColor(0, static_cast<std::uint8_t>(next >> 8), 0));
        frame->invalid();
        EXPECT_TRUE(serveUntil([&] { return pixelAt(width - 1, height - 1) == next; }));
    }

    Pixel pixelAt(int x, int y) { return screen().pixel(left + x, top + y); }
    bool showsPixel(int x, int y, Pixel colour) {
        return serveUntil([=, this] { return pixelAt(x, y) == colour; });
    }

    std::vector<Window> childrenOf(Window around) {
        Window ignored = None, *children = nullptr;
        unsigned count = 0;
        std::vector<Window> found;
        if (XQueryTree(display(), around, &ignored, &ignored, &children, &count)) {
            found.assign(children, children + count);
            XFree(children);
        }
        return found;
    }

    void point(int x, int y) { screen().movePointer(left + x, top + y); }
    void press(unsigned button) { moveButton(button, True); }
    void release(unsigned button) { moveButton(button, False); }

    toolkit::Toolkit toolkit;
    // Before the window, since its views use them to the end.
    Listener listener;
    int views = 0;
    ToolkitWindow window;
    Window parent;
    CFrame* frame = nullptr;

  private:
    void moveButton(unsigned button, Bool down) {
        XTestFakeButtonEvent(display(), button, down, CurrentTime);
        XSync(display(), False);
    }

    Pixel marker_ = 0;
};

TEST_F(ToolkitWindows, ShowAPictureOnceTheyAreServed) {
    frame = makeFrame();
    const auto picture = skin::loadImage(QUILLON_PICTURES, "squares.bmp");
    auto* view = new VSTGUI::CView(CRect(10, 20, 13, 22));
    view->setBackground(picture);
    frame->addView(view);
    ASSERT_TRUE(window.open(frame, handle(parent)));
    EXPECT_NE(pixelAt(10, 20), 0xFF0000U) << "there is no thread that could have drawn it";
    EXPECT_TRUE(showsPixel(10, 20, 0xFF0000));
    EXPECT_EQ(pixelAt(11, 20), 0x00FF00U);
    EXPECT_EQ(pixelAt(12, 20), 0x0000FFU);
    EXPECT_EQ(pixelAt(12, 21), 0x804020U);
    EXPECT_EQ(pixelAt(9, 20), grey);
    EXPECT_EQ(pixelAt(width - 1, height - 1), grey) << "as large as the frame";
}

TEST_F(ToolkitWindows, DrawWhatHasBecomeDirty) {
    openFrame();
    auto* view = new VSTGUI::CViewContainer(CRect(0, 0, 50, 50));
    view->setBackgroundColor(VSTGUI::kRedCColor);
    frame->addView(view);
    ASSERT_TRUE(showsPixel(5, 5, 0xFF0000));
    view->setBackgroundColor(VSTGUI::kBlueCColor);
    view->setDirty(true);
    frame->idle();
    EXPECT_TRUE(showsPixel(5, 5, blue));
}

TEST_F(ToolkitWindows, DrawInsideALongGestureWithoutTakingInput) {
    openFrame();
    auto* recorder = new ButtonRecorder(CRect(0, 0, width, height));
    frame->addView(recorder);
    ASSERT_TRUE(showsPixel(5, 5, grey));
    point(5, 5);
    press(1);
    frame->setBackgroundColor(VSTGUI::kBlueCColor);
    frame->invalid();
    EXPECT_TRUE(test::waitUntil([this] {
        toolkit::paintToolkitWindows();
        return pixelAt(5, 5) == blue;
    }));
    EXPECT_EQ(recorder->pressed, 0);
    EXPECT_TRUE(serveUntil([&] { return recorder->pressed == VSTGUI::kLButton; }));
    release(1);
    serveAll();
}

TEST_F(ToolkitWindows, LetARealPointerTurnAKnob) {
    openFrame();
    auto* knob = new VSTGUI::CKnob(CRect(20, 20, 60, 60), &listener, 7, nullptr, nullptr);
    frame->addView(knob);
    ASSERT_TRUE(showsPixel(5, 5, grey));
    EXPECT_FALSE(window.leftButtonDown());

    point(25, 50);
    press(1);
    ASSERT_TRUE(serveUntil([this] { return window.leftButtonDown(); }));
    EXPECT_EQ(frame->getFocusView(), knob);
    for (int step = 0; step <= 30; ++step)
        point(25 + step, 50 - step);
    ASSERT_TRUE(serveUntil([&] { return knob->getValue() > 0.5f; }));
    EXPECT_TRUE(window.leftButtonDown());
    EXPECT_TRUE(knob->isEditing());
    release(1);
    ASSERT_TRUE(serveUntil([this] { return !window.leftButtonDown(); }));
    EXPECT_FALSE(knob->isEditing());
    ASSERT_FALSE(listener.values.empty());
    EXPECT_EQ(listener.values.back(), knob->getValue());
}

TEST_F(ToolkitWindows, FollowADragOutOfThemselves) {
    openFrame();
    frame->addView(new VSTGUI::CKnob(CRect(20, 20, 60, 60), &listener, 7, nullptr, nullptr));
    ASSERT_TRUE(showsPixel(5, 5, grey));
    point(25, 50);
    press(1);
    ASSERT_TRUE(serveUntil([this] { return window.leftButtonDown(); }));
    screen().movePointer(20, 6);
    screen().movePointer(20, 5);
    release(1);
    ASSERT_TRUE(serveUntil([this] { return !window.leftButtonDown(); }));
    EXPECT_FALSE(listener.values.empty());
}

TEST_F(ToolkitWindows, TellTheRightButtonFromTheMiddleOne) {
    openFrame();
    auto* recorder = new ButtonRecorder(CRect(0, 0, width, height));
    frame->addView(recorder);
    ASSERT_TRUE(showsPixel(5, 5, grey));
    const int expected[] = {0, VSTGUI::kLButton, VSTGUI::kMButton, VSTGUI::kRButton};
    for (unsigned button : {1U, 2U, 3U}) {
        SCOPED_TRACE(button);
        point(30, 30);
        press(button);
        EXPECT_TRUE(serveUntil([&] { return recorder->pressed == expected[button]; }));
        point(31 + static_cast<int>(button), 30);
        EXPECT_TRUE(serveUntil([&] { return recorder->moved == expected[button]; })) << recorder->moved;
        release(button);
        EXPECT_TRUE(serveUntil([&] { return recorder->released == expected[button]; }));
        serveAll();
    }
}

TEST_F(ToolkitWindows, NameAllHeldButtonsInASecondPress) {
    openFrame();
    auto* recorder = new ButtonRecorder(CRect(0, 0, width, height));
    frame->addView(recorder);
    ASSERT_TRUE(showsPixel(5, 5, grey));
    point(30, 30);
    press(1);
    ASSERT_TRUE(serveUntil([&] { return recorder->pressed == VSTGUI::kLButton; }));
    press(3);
    EXPECT_TRUE(serveUntil([&] { return recorder->pressed == (VSTGUI::kLButton | VSTGUI::kRButton); }));
    release(3);
    serveAll();
    EXPECT_TRUE(window.leftButtonDown());
    release(1);
    EXPECT_TRUE(serveUntil([this] { return !window.leftButtonDown(); }));
}

TEST_F(ToolkitWindows, OpenAgainAndAgainAndLeaveNothingBehind) {
    for (int round = 0; round < 20; ++round) {
        SCOPED_TRACE(round);
        openFrame();
        frame->addView(new CountedView(views));
        auto* label = new VSTGUI::CTextLabel(CRect(0, 0, 60, 60), "M");
        label->setFont(VSTGUI::makeOwned<VSTGUI::CFontDesc>("Arial", 50));
        label->setFontColor(VSTGUI::kGreenCColor);
        label->setBackColor(VSTGUI::kBlackCColor);
        label->setFrameColor(VSTGUI::kBlackCColor);
        frame->addView(label);
        ASSERT_TRUE(showsPixel(100, 90, grey));
        // A second window that finds a stale connection in the toolkit's memory draws, but without text.
        bool hasText = false;
        for (int x = 0; x < 60; ++x)
            hasText = hasText || pixelAt(x, 30) == 0x00FF00;
        EXPECT_TRUE(hasText);
        EXPECT_EQ(childrenOf(parent).size(), 1U);
        window.close();
        EXPECT_EQ(childrenOf(parent).size(), 0U);
        EXPECT_EQ(views, 0);
    }
}

TEST_F(ToolkitWindows, CloseOneByOne) {
    openFrame();
    const Window secondParent = makeContainer(screen().root(), 400, 300, width, height);
    ToolkitWindow second;
    CFrame* secondFrame = makeFrame();
    ASSERT_TRUE(second.open(secondFrame, handle(secondParent)));
    ASSERT_TRUE(showsPixel(5, 5, grey));
    window.close();
    EXPECT_EQ(childrenOf(parent).size(), 0U) << "though the connection lives on";
    EXPECT_EQ(childrenOf(secondParent).size(), 1U);
    secondFrame->setBackgroundColor(VSTGUI::kBlueCColor);
    secondFrame->invalid();
    EXPECT_TRUE(serveUntil([] { return screen().pixel(405, 305) == blue; }));
    second.close();
    EXPECT_EQ(childrenOf(secondParent).size(), 0U);
    XDestroyWindow(display(), secondParent);
}

TEST_F(ToolkitWindows, TakeBackEveryFrameTheyWereGiven) {
    for (int i = 0; i < 2; ++i) {
        openFrame();
        frame->addView(new CountedView(views));
    }
    EXPECT_EQ(childrenOf(parent).size(), 2U);
    window.close();
    EXPECT_EQ(childrenOf(parent).size(), 0U);
    EXPECT_EQ(views, 0);
}

TEST_F(ToolkitWindows, CloseInTheirDestructor) {
    {
        ToolkitWindow shortLived;
        CFrame* its = makeFrame();
        its->addView(new CountedView(views));
        ASSERT_TRUE(shortLived.open(its, handle(parent)));
    }
    EXPECT_EQ(childrenOf(parent).size(), 0U);
    EXPECT_EQ(views, 0);
}

TEST_F(ToolkitWindows, MayBeClosedTwiceAndWithoutHavingBeenOpen) {
    window.close();
    openFrame();
    window.close();
    window.close();
    EXPECT_FALSE(window.leftButtonDown());
    window.fitContainers(10, 10);
    toolkit::serveToolkitWindows();
}

TEST_F(ToolkitWindows, MayBeClosedFromInsideTheirOwnEvents) {
    int viewsInsideTheEvent = 0;
    openFrame();
    frame->addView(new CountedView(views));
    frame->addView(new VSTGUI::CKnob(CRect(20, 20, 60, 60), &listener, 7, nullptr, nullptr));
    listener.action = [&](VSTGUI::CControl*) {
        window.close();
        viewsInsideTheEvent = views;
        EXPECT_EQ(childrenOf(parent).size(), 0U) << "the host may take its own window away now";
    };
    ASSERT_TRUE(showsPixel(5, 5, grey));
    point(25, 40);
    press(1);
    point(25, 30);
    ASSERT_TRUE(serveUntil([&] { return !listener.values.empty(); }));
    EXPECT_EQ(viewsInsideTheEvent, 1);
    EXPECT_EQ(views, 0);
    release(1);
    toolkit::serveToolkitWindows();
}

TEST_F(ToolkitWindows, MayBeClosedFromInsideAKeyThatTheHostHasPassedOn) {
    int viewsInsideTheEvent = 0;
    openFrame();
    auto* knob = new VSTGUI::CKnob(CRect(20, 20, 60, 60), &listener, 7, nullptr, nullptr);
    frame->addView(knob);
    frame->addView(new CountedView(views));
    frame->setFocusView(knob);
    listener.action = [&](VSTGUI::CControl*) {
        window.close();
        viewsInsideTheEvent = views;
    };
    VSTGUI::KeyboardEvent key;
    key.type = VSTGUI::EventType::KeyDown;
    key.virt = VSTGUI::VirtualKey::Up;
    frame->dispatchEvent(key);
    EXPECT_TRUE(static_cast<bool>(key.consumed));
    EXPECT_EQ(listener.values.size(), 1U);
    EXPECT_EQ(viewsInsideTheEvent, 1);
    EXPECT_EQ(views, 0);
}

/// A window that gets a key from its host, which serves all windows before the key is worked off.
class WindowServedInAKey : public ToolkitWindows {
  protected:
    WindowServedInAKey() {
        openFrame();
        knob = new VSTGUI::CKnob(CRect(20, 20, 60, 60), &listener, 7, nullptr, nullptr);
        frame->addView(knob);
        frame->addView(new CountedView(views));
        frame->setFocusView(knob);
    }

    /// `whenTurned` is called when the key has turned the knob.
    void typeUp(const std::function<void()>& whenTurned) {
        listener.action = [&](VSTGUI::CControl*) { whenTurned(); };
        VSTGUI::KeyboardEvent key;
        key.type = VSTGUI::EventType::KeyDown;
        key.virt = VSTGUI::VirtualKey::Up;
        frame->dispatchEvent(key);
        EXPECT_TRUE(static_cast<bool>(key.consumed));
    }

    VSTGUI::CKnob* knob = nullptr;
};

TEST_F(WindowServedInAKey, MayBeClosedWhileItIsServed) {
    typeUp([this] {
        bool closed = false;
        const auto timer = VSTGUI::makeOwned<VSTGUI::CVSTGUITimer>(
            [&](VSTGUI::CVSTGUITimer* rung) {
                rung->stop();
                window.close();
                closed = true;
            },
            1);
        ASSERT_TRUE(serveUntil([&] { return closed; }));
        EXPECT_EQ(views, 1) << "in the middle of the key";
    });
    EXPECT_EQ(views, 0);
}

TEST_F(WindowServedInAKey, MayBeClosedInAGestureThatIsServed) {
    ASSERT_TRUE(showsPixel(5, 5, grey));
    typeUp([this] {
        bool closed = false;
        listener.action = [&](VSTGUI::CControl*) {
            window.close();
            closed = true;
        };
        point(25, 40);
        press(1);
        point(25, 30);
        ASSERT_TRUE(serveUntil([&] { return closed; }));
        release(1);
        EXPECT_EQ(views, 1) << "in the middle of the key";
    });
    EXPECT_EQ(views, 0);
}

/// A menu that is open, which is a modal view of the frame.
class OpenMenu : public ToolkitWindows {
  protected:
    void openMenu() {
        openFrame();
        menu = VSTGUI::makeOwned<VSTGUI::COptionMenu>(CRect(0, 0, 0, 0), &listener, 5);
        menu->addEntry("MidiLearn");
        menu->addEntry("Forget CC 7");
        const auto submenu = VSTGUI::makeOwned<VSTGUI::COptionMenu>();
        submenu->addEntry("inside");
        menu->addEntry(submenu, "sub");
        frame->addView(new CountedView(views));
        ASSERT_TRUE(showsPixel(5, 5, grey));
        ASSERT_TRUE(menu->popup(frame, CPoint(30, 30), [this](VSTGUI::COptionMenu*) { ++answers; }));
        ASSERT_NE(frame->getModalView(), nullptr);
    }

    VSTGUI::SharedPointer<VSTGUI::COptionMenu> menu;
    int answers = 0;
};

TEST_F(OpenMenu, AnswersWithWhatWasClicked) {
    openMenu();
    serveAll();
    // The second entry: a row below the first, where the menu opens.
    point(60, 64);
    ASSERT_TRUE(serveUntil([this] {
        press(1);
        release(1);
        return answers == 1;
    }));
    EXPECT_EQ(menu->getLastResult(), 1);
    EXPECT_EQ(listener.values.size(), 1U);
    EXPECT_EQ(frame->getModalView(), nullptr);
}

TEST_F(OpenMenu, EndsWithItsWindowAndChoosesNothing) {
    openMenu();
    window.close();
    EXPECT_EQ(answers, 1);
    EXPECT_EQ(menu->getLastResult(), -1);
    EXPECT_TRUE(listener.values.empty());
    EXPECT_EQ(views, 0) << "the frame is gone with all its views";
    EXPECT_EQ(menu->getNbReference(), 1);
    for (int i = 0; i < 3; ++i)
        toolkit::serveToolkitWindows();
}

TEST_F(OpenMenu, EndsWithItsWindowWhenItHasBeenShownForAWhile) {
    openMenu();
    serveAll();
    window.close();
    EXPECT_EQ(answers, 1);
    EXPECT_TRUE(listener.values.empty());
    EXPECT_EQ(views, 0);
}

TEST_F(ToolkitWindows, TakeAnOpenSplashScreenWithThem) {
    openFrame();
    frame->addView(new CountedView(views));
    const auto picture = skin::loadImage(QUILLON_PICTURES, "squares.jpg");
    frame->addView(
        new VSTGUI::CSplashScreen(CRect(0, 0, 40, 40), &listener, 9, picture, CRect(60, 20, 108, 52)));
    ASSERT_TRUE(showsPixel(100, 90, grey));
    point(10, 10);
    press(1);
    release(1);
    ASSERT_TRUE(serveUntil([this] { return frame->getModalView() != nullptr; }));
    window.close();
    EXPECT_EQ(views, 0);
}

TEST_F(ToolkitWindows, SurviveAHostThatDestroysItsWindowFirst) {
    openFrame();
    frame->addView(new VSTGUI::CKnob(CRect(20, 20, 60, 60), &listener, 7, nullptr, nullptr));
    ASSERT_TRUE(showsPixel(5, 5, grey));
    XDestroyWindow(display(), parent);
    XSync(display(), False);
    parent = None;
    frame->invalid();
    for (int i = 0; i < 3; ++i)
        toolkit::serveToolkitWindows();
    window.close();
    parent = makeContainer(screen().root(), left, top, width, height);
    openFrame();
    EXPECT_TRUE(showsPixel(5, 5, grey)) << "and can be opened again";
}

TEST_F(ToolkitWindows, DoNotOpenInAWindowThatIsNone) {
    for (void* nonsense : {static_cast<void*>(nullptr), handle(0x12345678)}) {
        frame = makeFrame();
        EXPECT_FALSE(window.open(frame, nonsense));
        window.close();
    }
}

TEST_F(ToolkitWindows, WithoutADisplayTakeTheirFrameAndDoNothing) {
    for (const char* none : {"", ":54321", "no such machine:0"}) {
        setenv("DISPLAY", none, 1);
        frame = makeFrame();
        frame->addView(new CountedView(views));
        EXPECT_FALSE(window.open(frame, handle(parent)));
        frame->addView(new CountedView(views));
        frame->setDirty(true);
        frame->idle();
        toolkit::serveToolkitWindows();
        EXPECT_FALSE(window.leftButtonDown());
        window.fitContainers(10, 10);
        EXPECT_EQ(views, 2);
        window.close();
        EXPECT_EQ(views, 0);
    }
    setenv("DISPLAY", screen().name().c_str(), 1);
    openFrame();
    EXPECT_TRUE(showsPixel(5, 5, grey)) << "and can be opened when there is one";
}

TEST_F(ToolkitWindows, TellHostsHowLargeTheyAreAndMayBecome) {
    openFrame();
    window.announceSize(300, 110);
    XSizeHints hints = {};
    long given = 0;
    ASSERT_TRUE(XGetWMNormalHints(display(), childrenOf(parent).front(), &hints, &given));
    EXPECT_EQ(hints.flags, PMaxSize | PBaseSize);
    EXPECT_EQ(hints.max_width, 300);
    EXPECT_EQ(hints.max_height, 110);
    EXPECT_EQ(hints.base_width, 300);
    EXPECT_EQ(hints.base_height, 110);
}

TEST_F(ToolkitWindows, AnnounceNoSizeWhereTheyAreNotOpen) {
    window.announceSize(300, 110);
    openFrame();
    const Window gone = childrenOf(parent).front();
    XDestroyWindow(display(), gone);
    XSync(display(), False);
    window.announceSize(300, 110);
}

/// Windows around windows, as hosts make them.
class Containers : public ToolkitWindows {
  protected:
    test::Place sizeOf(Window of) { return test::placeOf(screen(), of); }
    void expectSize(Window of, int w, int h, const char* what) {
        EXPECT_EQ(sizeOf(of).width, w) << what;
        EXPECT_EQ(sizeOf(of).height, h) << what;
    }
};

TEST_F(Containers, GrowAndShrinkWithTheFrame) {
    openFrame();
    for (int size : {300, 120}) {
        window.fitContainers(size, size + 10);
        expectSize(parent, size, size + 10, "the container");
        expectSize(childrenOf(parent).front(), size, size + 10, "the frame's window");
    }
}

TEST_F(Containers, KeepTheirBorders) {
    const Window around = makeContainer(screen().root(), 0, 0, width + 10, height + 30);
    const Window inside = makeContainer(around, 5, 25, width, height);
    ToolkitWindow other;
    ASSERT_TRUE(other.open(makeFrame(), handle(inside)));
    other.fitContainers(300, 310);
    expectSize(inside, 300, 310, "the container");
    expectSize(around, 310, 340, "the window with a border");
    other.close();
    XDestroyWindow(display(), around);
}

TEST_F(Containers, WithMoreToShowStayAsTheyAre) {
    const Window around = makeContainer(screen().root(), 0, 0, width + 81, height);
    const Window inside = makeContainer(around, 0, 0, width, height);
    ToolkitWindow other;
    ASSERT_TRUE(other.open(makeFrame(), handle(inside)));
    other.fitContainers(300, 310);
    expectSize(inside, 300, 310, "the container");
    expectSize(around, width + 81, height, "the host's main window");
    other.close();
    XDestroyWindow(display(), around);
}

TEST_F(Containers, EndAtTheWindowThatAManagerLooksAfter) {
    const Window decoration = makeContainer(screen().root(), 0, 0, width + 4, height + 20);
    const Window inside = makeContainer(decoration, 2, 18, width, height);
    const Atom state = XInternAtom(display(), "WM_STATE", False);
    const long normal[] = {1, None};
    XChangeProperty(display(), inside, state, state, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(normal), 2);
    XSync(display(), False);
    ToolkitWindow other;
    ASSERT_TRUE(other.open(makeFrame(), handle(inside)));
    other.fitContainers(300, 310);
    expectSize(inside, 300, 310, "the managed window");
    expectSize(decoration, width + 4, height + 20, "the manager's own");
    other.close();
    XDestroyWindow(display(), decoration);
}

} // namespace
