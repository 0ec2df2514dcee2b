// The views in a real window with a real pointer: what only a display shows.
#include "controls/about.h"
#include "controls/default_values.h"
#include "controls/midi_learn.h"
#include "controls/view_taps.h"
#include "midi/cc_map.h"
#include "midi/learn_machine.h"
#include "toolkit/toolkit.h"
#include "toolkit/toolkit_window.h"

#include "vstgui/lib/cbitmap.h"
#include "vstgui/lib/cframe.h"
#include "vstgui/lib/coffscreencontext.h"
#include "vstgui/lib/controls/cknob.h"
#include "vstgui/lib/controls/coptionmenu.h"
#include "vstgui/lib/controls/icontrollistener.h"
#include "vstgui/lib/events.h"

#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>

// Xlib defines words that the headers above use, so it comes last.
#include "child_process.h"
#include "virtual_screen.h"

#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

namespace {

using controls::CAbout;
using controls::CMidiLearn;
using controls::ViewTaps;
using parameters::kFeedback;
using test::Pixel;
using VSTGUI::CPoint;
using VSTGUI::CRect;

/// Writes down what controls report.
class Reports final : public VSTGUI::IControlListener {
  public:
    void valueChanged(VSTGUI::CControl* control) override { values.push_back(control->getValue()); }
    std::vector<float> values;
};

/// A host with a window of 400 by 300, in which a frame is open and served.
class EditorWindow : public testing::Test {
  protected:
    EditorWindow() {
        controls::resetOnlyControlsWithDefault();
        for (std::int32_t id = 0; id < parameters::kNumParameters; ++id)
            midi::bindController(id, midi::kNoController);
        parent = XCreateSimpleWindow(display(), screen().root(), left, top, width, height, 0, 0, 0xFF00FF);
        XMapWindow(display(), parent);
        XSync(display(), False);
        frame = new VSTGUI::CFrame(CRect(0, 0, width, height), nullptr);
        frame->setBackgroundColor(VSTGUI::CColor(0x40, 0x40, 0x40));
    }
    ~EditorWindow() override {
        window.close();
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

    void open() {
        ASSERT_TRUE(window.open(frame, reinterpret_cast<void*>(parent)));
        point(395, 295);
        ASSERT_TRUE(serveUntil([this] { return pixelAt(395, 295) == grey; }));
    }

    /// Serves as a host does, until something holds.
    bool serveUntil(const std::function<bool()>& condition) {
        return test::waitUntil([&] {
            frame->idle();
            toolkit::serveToolkitWindows();
            return condition();
        });
    }

    /// Lets everything happen that the hand has done before: a corner that nothing covers changes its colour.
    void serveAll() {
        marker = marker == 0x00AA00 ? 0x00BB00 : 0x00AA00;
        frame->setBackgroundColor(VSTGUI::CColor(0, static_cast<std::uint8_t>(marker >> 8), 0));
        frame->invalid();
        EXPECT_TRUE(serveUntil([this] { return pixelAt(399, 299) == marker; }));
    }

    Pixel pixelAt(int x, int y) { return screen().pixel(left + x, top + y); }
    bool showsPixel(int x, int y, Pixel colour) {
        return serveUntil([=, this] { return pixelAt(x, y) == colour; });
    }
    /// Whether a colour is to be seen somewhere in a part of the window.
    bool showsInside(const CRect& part, const std::function<bool(Pixel)>& isIt) {
        XImage* image = XGetImage(display(), screen().root(), left + static_cast<int>(part.left),
                                  top + static_cast<int>(part.top), static_cast<unsigned>(part.getWidth()),
                                  static_cast<unsigned>(part.getHeight()), AllPlanes, ZPixmap);
        bool found = false;
        for (int y = 0; y < image->height && !found; ++y)
            for (int x = 0; x < image->width && !found; ++x)
                found = isIt(XGetPixel(image, x, y) & 0xFFFFFF);
        XDestroyImage(image);
        return found;
    }

    void point(int x, int y) { screen().movePointer(left + x, top + y); }
    void press(unsigned button) { moveButton(button, True); }
    void release(unsigned button) { moveButton(button, False); }
    void click(unsigned button) {
        press(button);
        release(button);
    }
    void holdKey(KeySym symbol, Bool down) {
        XTestFakeKeyEvent(display(), XKeysymToKeycode(display(), symbol), down, CurrentTime);
        XSync(display(), False);
    }

    static constexpr int width = 400, height = 300, left = 50, top = 40;
    static constexpr unsigned leftButton = 1, rightButton = 3, wheelUp = 4;
    static constexpr Pixel grey = 0x404040;

    toolkit::Toolkit toolkit;
    // Before the window, since its views use them to the end.
    Reports reports;
    toolkit::ToolkitWindow window;
    VSTGUI::CFrame* frame = nullptr;
    Window parent = None;

  private:
    void moveButton(unsigned button, Bool down) {
        XTestFakeButtonEvent(display(), button, down, CurrentTime);
        XSync(display(), False);
    }

    Pixel marker = 0;
};

class TapViewWindow : public EditorWindow {
  protected:
    TapViewWindow() {
        frame->addView(view);
        const std::array<float, ViewTaps::kMaxTaps> gains = [] {
            std::array<float, ViewTaps::kMaxTaps> full = {};
            full.fill(1);
            return full;
        }();
        view->showPattern(gains.data(), 2282, 4, 0.5f);
    }

    void clickAndServe(unsigned button) {
        click(button);
        serveAll();
    }

    ViewTaps* view = new ViewTaps(CRect(20, 30, 320, 125));
};

TEST_F(TapViewWindow, ShowsItsBars) {
    open();
    // The first bar: two columns with a bright core and a dim one, nothing in front of it.
    EXPECT_TRUE(showsPixel(20, 100, 0x66BD7F));
    EXPECT_EQ(pixelAt(21, 100), 0x66BD7Fu);
    EXPECT_EQ(pixelAt(22, 100), 0x66667Fu);
    EXPECT_EQ(pixelAt(19, 100), grey);
    EXPECT_EQ(pixelAt(23, 100), grey);
    EXPECT_EQ(pixelAt(20, 31), 0x66BD7Fu) << "up to the top edge";
}

TEST_F(TapViewWindow, ShowsItsTexts) {
    open();
    ASSERT_TRUE(showsPixel(20, 100, 0x66BD7F));
    // Between the bars and the edge there is nothing but the banner, and lower down the three texts.
    EXPECT_TRUE(showsInside(CRect(165, 31, 300, 43), [](Pixel pixel) { return pixel != grey; }));
    EXPECT_TRUE(showsInside(CRect(114, 62, 160, 74), [](Pixel pixel) { return pixel != grey; }));
    EXPECT_FALSE(showsInside(CRect(165, 50, 320, 125), [](Pixel pixel) { return pixel != grey; }));
}

TEST_F(TapViewWindow, TurnsAPageWithEachClickOfTheRightButton) {
    open();
    point(100, 60);
    for (int page : {1, 2, 2}) {
        clickAndServe(rightButton);
        EXPECT_EQ(view->shownPage(), page);
    }
    clickAndServe(leftButton);
    EXPECT_EQ(view->shownPage(), 0);
}

TEST_F(TapViewWindow, ReachesItsSecondPageInOneRightDrag) {
    open();
    point(100, 60);
    press(rightButton);
    serveAll();
    EXPECT_EQ(view->shownPage(), 1);
    point(101, 60);
    EXPECT_TRUE(serveUntil([this] { return view->shownPage() == 2; }));
    release(rightButton);
    serveAll();
    EXPECT_EQ(view->shownPage(), 2);
}

TEST_F(TapViewWindow, KeepsItsPageWhileBothButtonsAreHeld) {
    open();
    point(100, 60);
    clickAndServe(rightButton);
    press(rightButton);
    serveAll();
    ASSERT_EQ(view->shownPage(), 2);
    press(leftButton);
    point(102, 60);
    serveAll();
    EXPECT_EQ(view->shownPage(), 2);
    release(leftButton);
    release(rightButton);
    serveAll();
    EXPECT_EQ(view->shownPage(), 2);
}

TEST_F(TapViewWindow, ComesBackAtALeftClickWithTheControlKey) {
    open();
    point(100, 60);
    clickAndServe(rightButton);
    ASSERT_EQ(view->shownPage(), 1);
    holdKey(XK_Control_L, True);
    clickAndServe(leftButton);
    holdKey(XK_Control_L, False);
    EXPECT_EQ(view->shownPage(), 0);
}

/// A blue picture of 200 by 190 in the middle of the window; the about area is 308 by 200.
class AboutWindow : public EditorWindow {
  protected:
    AboutWindow() {
        const auto picture =
            VSTGUI::renderBitmapOffscreen(CPoint(200, 190), 1, [](VSTGUI::CDrawContext& context) {
                context.setFillColor(VSTGUI::kBlueCColor);
                context.drawRect(CRect(0, 0, 200, 190), VSTGUI::kDrawFilled);
            });
        about = new CAbout(CRect(0, 0, 308, 200), &reports, 1020, picture, CRect(100, 55, 300, 245));
        frame->addView(about);
    }

    /// Whether white letters are there; smoothed ones are not all white.
    bool hasText(const CRect& part) {
        return showsInside(part, [](Pixel pixel) { return (pixel >> 16) > 0x80; });
    }

    CAbout* about = nullptr;
};

TEST_F(AboutWindow, ShowsPictureAndLinesAtALeftClickAndTakesThemAway) {
    open();
    for (int round = 0; round < 2; ++round) {
        point(10, 10);
        click(leftButton);
        EXPECT_TRUE(showsPixel(110, 240, 0x0000FF));
        // 200 high: the second line from 60 to 75, the sixth from 162 to 177.
        EXPECT_TRUE(serveUntil([this] { return hasText(CRect(100, 60, 300, 75)); }));
        EXPECT_TRUE(hasText(CRect(100, 162, 300, 177)));
        EXPECT_TRUE(hasText(CRect(100, 40, 300, 55))) << "the first line stands above this picture";
        EXPECT_FALSE(hasText(CRect(100, 178, 300, 245)));
        point(200, 200);
        click(leftButton);
        EXPECT_TRUE(showsPixel(110, 240, grey));
        EXPECT_TRUE(serveUntil([this] { return !hasText(CRect(0, 0, 400, 300)); })) << "no line stays behind";
        EXPECT_EQ(about->getValue(), 0);
    }
    EXPECT_EQ(reports.values, (std::vector<float>{1, 0, 1, 0}));
}

TEST_F(AboutWindow, IsNotOpenedByARightClick) {
    open();
    point(10, 10);
    click(rightButton);
    serveAll();
    EXPECT_EQ(frame->getModalView(), nullptr);
    EXPECT_EQ(about->getValue(), 0);
}

TEST_F(AboutWindow, OpensWithTheControlKey) {
    open();
    point(10, 10);
    holdKey(XK_Control_L, True);
    click(leftButton);
    EXPECT_TRUE(serveUntil([this] { return frame->getModalView() != nullptr; }));
    holdKey(XK_Control_L, False);
}

TEST_F(AboutWindow, MayBeClosedWithTheBoxOpen) {
    open();
    point(10, 10);
    click(leftButton);
    ASSERT_TRUE(showsPixel(110, 240, 0x0000FF));
    window.close();
}

/// A knob for "Feedback" with its overlay.
class LearnWindow : public EditorWindow {
  protected:
    LearnWindow() {
        frame->addView(knob);
        overlay =
            new CMidiLearn(knob->getViewSize(), &reports, midi::kLearnTagBase + kFeedback, knob, nullptr);
        frame->addView(overlay);
        knob->setDefaultValue(0.75f);
    }

    void openMenu() {
        point(60, 60);
        click(rightButton);
        ASSERT_TRUE(serveUntil([this] { return frame->getModalView() != nullptr; }));
        serveAll();
    }
    /// A place is clicked again and again, since the menu takes a moment until it takes clicks.
    void clickUntilTheMenuIsGone(int x, int y) {
        point(x, y);
        EXPECT_TRUE(serveUntil([this] {
            if (frame->getModalView())
                click(leftButton);
            return frame->getModalView() == nullptr;
        }));
        serveAll();
    }

    VSTGUI::CKnob* knob = new VSTGUI::CKnob(CRect(40, 40, 80, 80), nullptr, kFeedback, nullptr, nullptr);
    CMidiLearn* overlay = nullptr;
};

TEST_F(LearnWindow, LearnsAtTheFirstEntry) {
    open();
    openMenu();
    clickUntilTheMenuIsGone(80, 70);
    EXPECT_EQ(reports.values, std::vector<float>{1});
    EXPECT_EQ(midi::controllerOf(kFeedback), midi::kNoController);
    EXPECT_EQ(frame->getNbViews(), 2u);
}

TEST_F(LearnWindow, ForgetsAtTheSecondEntry) {
    midi::bindController(kFeedback, 74);
    open();
    openMenu();
    clickUntilTheMenuIsGone(80, 90);
    EXPECT_EQ(reports.values, std::vector<float>{-1});
    EXPECT_EQ(midi::controllerOf(kFeedback), midi::kNoController);
    EXPECT_EQ(overlay->getValue(), 0);
}

TEST_F(LearnWindow, ChangesNothingAtAClickBesideTheMenu) {
    midi::bindController(kFeedback, 74);
    open();
    openMenu();
    clickUntilTheMenuIsGone(300, 250);
    EXPECT_TRUE(reports.values.empty());
    EXPECT_EQ(midi::controllerOf(kFeedback), 74);
    EXPECT_EQ(knob->getValue(), 0);
}

TEST_F(LearnWindow, ChangesNothingAtEscape) {
    midi::bindController(kFeedback, 74);
    open();
    openMenu();
    VSTGUI::KeyboardEvent escape;
    escape.virt = VSTGUI::VirtualKey::Escape;
    frame->dispatchEvent(escape);
    EXPECT_TRUE(static_cast<bool>(escape.consumed));
    EXPECT_TRUE(serveUntil([this] { return frame->getModalView() == nullptr; }));
    EXPECT_TRUE(reports.values.empty());
    EXPECT_EQ(midi::controllerOf(kFeedback), 74);
}

TEST_F(LearnWindow, OpensItsMenuAgainAndAgain) {
    open();
    for (int round = 0; round < 3; ++round) {
        openMenu();
        clickUntilTheMenuIsGone(300, 250);
        EXPECT_EQ(frame->getNbViews(), 2u);
    }
}

TEST_F(LearnWindow, MayBeClosedWithTheMenuOpen) {
    midi::bindController(kFeedback, 74);
    open();
    openMenu();
    window.close();
    EXPECT_TRUE(reports.values.empty());
    EXPECT_EQ(midi::controllerOf(kFeedback), 74);
}

TEST_F(LearnWindow, LetsTheKnobBeTurnedAndNamesItMeanwhile) {
    open();
    point(45, 70);
    press(leftButton);
    ASSERT_TRUE(serveUntil([this] { return window.leftButtonDown(); }));
    auto* focus = dynamic_cast<VSTGUI::CControl*>(frame->getFocusView());
    ASSERT_NE(focus, nullptr);
    EXPECT_EQ(focus->getTag(), kFeedback);
    for (int step = 0; step <= 30; ++step)
        point(45 + step, 70 - step);
    EXPECT_TRUE(serveUntil([this] { return knob->getValue() > 0.5f; }));
    EXPECT_TRUE(knob->isEditing());
    release(leftButton);
    EXPECT_TRUE(serveUntil([this] { return !window.leftButtonDown(); }));
    EXPECT_FALSE(knob->isEditing());
    EXPECT_TRUE(reports.values.empty()) << "the overlay itself has nothing to say";
}

TEST_F(LearnWindow, LetsTheKnobGoBackToItsDefaultAndTurnWithTheWheel) {
    open();
    point(60, 60);
    holdKey(XK_Control_L, True);
    click(leftButton);
    EXPECT_TRUE(serveUntil([this] { return knob->getValue() == 0.75f; }));
    holdKey(XK_Control_L, False);
    click(wheelUp);
    EXPECT_TRUE(serveUntil([this] { return knob->getValue() > 0.75f; }));
}

TEST_F(LearnWindow, OpensNoMenuWithBothButtons) {
    open();
    point(60, 60);
    press(leftButton);
    press(rightButton);
    serveAll();
    EXPECT_EQ(frame->getModalView(), nullptr);
    release(rightButton);
    release(leftButton);
    serveAll();
    EXPECT_EQ(frame->getModalView(), nullptr);
}

} // namespace
