// The overlay above a parameter's control: what it passes on, and its menu, which on some systems answers
// while it opens and on others later.
#include "controls/midi_learn.h"

#include "doors/vst2/audio_effect_x.h"
#include "midi/cc_map.h"
#include "midi/learn_machine.h"
#include "recorded_toolkit.h"

#include "vstgui/lib/controls/cbuttons.h"
#include "vstgui/lib/controls/cknob.h"
#include "vstgui/lib/controls/coptionmenu.h"

#include <gtest/gtest.h>

namespace {

using controls::CMidiLearn;
using parameters::kFeedback;
using test::both;
using test::Listener;
using test::OpenedMenu;
using test::RecordedFrame;
using VSTGUI::CButtonState;
using VSTGUI::CMouseEventResult;
using VSTGUI::CPoint;
using VSTGUI::CRect;
using VSTGUI::Modifiers;
using VSTGUI::MouseButton;

/// Writes down what reaches it.
class Below final : public VSTGUI::CControl {
  public:
    Below(const CRect& size, std::int32_t ownTag) : CControl(size, nullptr, ownTag) {}
    ~Below() override {
        if (gone)
            *gone = true;
    }

    void draw(VSTGUI::CDrawContext*) override {}
    VSTGUI::CBaseObject* newCopy() const override { return nullptr; }

    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override {
        return noteMouse("down", where, buttons);
    }
    CMouseEventResult onMouseUp(CPoint& where, const CButtonState& buttons) override {
        return noteMouse("up", where, buttons);
    }
    CMouseEventResult onMouseMoved(CPoint& where, const CButtonState& buttons) override {
        return noteMouse("move", where, buttons);
    }
    CMouseEventResult onMouseCancel() override {
        calls.emplace_back("cancel");
        return VSTGUI::kMouseEventHandled;
    }
    void onMouseWheelEvent(VSTGUI::MouseWheelEvent& event) override {
        calls.emplace_back("wheel");
        event.consumed = true;
    }
    void onKeyboardEvent(VSTGUI::KeyboardEvent& event) override {
        calls.emplace_back("key");
        event.consumed = true;
    }

    std::vector<std::string> calls;
    CButtonState lastButtons;
    CPoint lastWhere;
    CMouseEventResult answer = VSTGUI::kMouseEventHandled;
    bool* gone = nullptr;

  private:
    CMouseEventResult noteMouse(const char* what, const CPoint& where, const CButtonState& buttons) {
        calls.emplace_back(what);
        lastWhere = where;
        lastButtons = buttons;
        return answer;
    }
};

using Calls = std::vector<std::string>;

class LearnOverlay : public testing::Test {
  protected:
    LearnOverlay() {
        test::useRecordedToolkit();
        for (std::int32_t id = 0; id < parameters::kNumParameters; ++id)
            midi::bindController(id, midi::kNoController);
        frame.onMenu = [this](OpenedMenu& opened) { menus.push_back(opened); };
    }

    CMidiLearn* cover(VSTGUI::CControl* control) {
        return frame.add(new CMidiLearn(control->getViewSize(), &listener,
                                        midi::kLearnTagBase + control->getTag(), control, nullptr));
    }

    /// Opens the menu by a right click, and gives it.
    OpenedMenu& openMenu() {
        frame.click(inside, MouseButton::Right);
        EXPECT_FALSE(menus.empty());
        return menus.back();
    }
    std::vector<std::string> entries() { return openMenu().entries; }

    // The list of reports outlives the frame.
    Listener listener;
    RecordedFrame frame;
    const CPoint inside{40, 50};
    Below* below = frame.add(new Below(CRect(20, 30, 60, 70), kFeedback));
    CMidiLearn* overlay = cover(below);
    std::vector<OpenedMenu> menus;
};

TEST_F(LearnOverlay, HasTheTagOfTheControlBelow) {
    EXPECT_EQ(overlay->getTag(), kFeedback);
    EXPECT_EQ(overlay->getControl(), below);
    EXPECT_EQ(overlay->getValue(), 0);
    EXPECT_TRUE(overlay->isTypeOf("CMidiLearn"));
    EXPECT_FALSE(overlay->isTypeOf("CControl"));
}

TEST_F(LearnOverlay, IsNotToBeSeen) {
    EXPECT_TRUE(test::drawingOf(*overlay).order.empty());
}

TEST_F(LearnOverlay, PassesALeftGestureOn) {
    EXPECT_TRUE(frame.press(inside, MouseButton::Left));
    EXPECT_EQ(below->lastWhere, inside);
    EXPECT_EQ(below->lastButtons.getButtonState(), VSTGUI::kLButton);
    EXPECT_TRUE(frame.move(CPoint(300, 200), MouseButton::Left));
    EXPECT_EQ(below->lastWhere, CPoint(300, 200));
    EXPECT_TRUE(frame.release(CPoint(300, 200), MouseButton::Left));
    EXPECT_EQ(below->calls, (Calls{"down", "move", "up"}));
    EXPECT_TRUE(menus.empty());
}

TEST_F(LearnOverlay, PassesModifiersAndDoubleClicksOn) {
    frame.press(inside, MouseButton::Left, Modifiers(VSTGUI::ModifierKey::Shift), 2);
    EXPECT_EQ(below->lastButtons(), VSTGUI::kLButton | VSTGUI::kShift | VSTGUI::kDoubleClick);
}

TEST_F(LearnOverlay, PassesAMiddleButtonOn) {
    frame.press(inside, MouseButton::Middle);
    EXPECT_EQ(below->lastButtons.getButtonState(), VSTGUI::kMButton);
}

TEST_F(LearnOverlay, PassesRightAndLeftTogetherOn) {
    EXPECT_TRUE(frame.press(inside, both(MouseButton::Left, MouseButton::Right)));
    EXPECT_EQ(below->calls, Calls{"down"});
    EXPECT_TRUE(menus.empty());
}

TEST_F(LearnOverlay, PassesWheelKeysAndTheEndOfAGestureOn) {
    EXPECT_TRUE(frame.wheel(inside, 1));
    frame.press(inside, MouseButton::Left);
    EXPECT_EQ(frame->getFocusView(), overlay) << "which the hint about the dragged parameter asks for";
    EXPECT_TRUE(frame.key(VSTGUI::VirtualKey::Up));
    VSTGUI::MouseCancelEvent cancel;
    frame->dispatchEvent(cancel);
    EXPECT_EQ(below->calls, (Calls{"wheel", "down", "key", "cancel"}));
}

TEST_F(LearnOverlay, RefreshesTheControlBeforeAPressTheWheelAndAKey) {
    overlay->setRefresh([this](VSTGUI::CControl& control) {
        EXPECT_EQ(&control, below);
        below->calls.emplace_back("refresh");
    });
    frame.wheel(inside, 1);
    frame.press(inside, MouseButton::Left);
    frame.move(CPoint(41, 50), MouseButton::Left);
    frame.key(VSTGUI::VirtualKey::Up);
    frame.release(CPoint(41, 50), MouseButton::Left);
    EXPECT_EQ(below->calls, (Calls{"refresh", "wheel", "refresh", "down", "move", "refresh", "key", "up"}));
    below->calls.clear();
    frame.press(inside, MouseButton::Right);
    frame.release(inside, MouseButton::Right);
    EXPECT_EQ(below->calls, Calls{}) << "which is the overlay's own";
    CPoint where = inside;
    overlay->onMouseDown(where, VSTGUI::kLButton);
    EXPECT_EQ(below->calls, (Calls{"refresh", "down"}));
}

TEST_F(LearnOverlay, KeepsTheRightButtonFromTheControl) {
    frame.click(inside, MouseButton::Right);
    frame.press(inside, MouseButton::Right);
    frame.move(CPoint(41, 50), MouseButton::Right);
    frame.release(CPoint(41, 50), MouseButton::Right);
    for (const std::string& call : below->calls)
        EXPECT_EQ(call, "move") << "the pointer may wander over it";
    for (const std::string& call : below->calls)
        EXPECT_EQ(below->lastButtons.getButtonState(), 0) << call;
}

TEST_F(LearnOverlay, DropsMovesAndReleasesOfTheRightButtonAlone) {
    CPoint where = inside;
    overlay->onMouseMoved(where, VSTGUI::kRButton);
    overlay->onMouseUp(where, VSTGUI::kRButton);
    EXPECT_TRUE(below->calls.empty());
    EXPECT_TRUE(menus.empty());
}

TEST_F(LearnOverlay, GivesTheAnswerOfTheControl) {
    CPoint where = inside;
    for (CMouseEventResult answer : {VSTGUI::kMouseEventHandled, VSTGUI::kMouseEventNotHandled,
                                     VSTGUI::kMouseDownEventHandledButDontNeedMovedOrUpEvents}) {
        below->answer = answer;
        EXPECT_EQ(overlay->onMouseDown(where, VSTGUI::kLButton), answer);
        EXPECT_EQ(overlay->onMouseMoved(where, VSTGUI::kLButton), answer);
        EXPECT_EQ(overlay->onMouseUp(where, VSTGUI::kLButton), answer);
    }
}

TEST_F(LearnOverlay, DoesNothingWhereItsMouseIsDisabled) {
    overlay->setMouseEnabled(false);
    CPoint where = inside;
    overlay->onMouseDown(where, VSTGUI::kRButton);
    overlay->onMouseDown(where, VSTGUI::kLButton);
    VSTGUI::MouseDownEvent press(inside, MouseButton::Left);
    overlay->dispatchEvent(press);
    EXPECT_TRUE(menus.empty());
    EXPECT_TRUE(below->calls.empty());
}

TEST_F(LearnOverlay, LetsAClickThatTheControlDoesNotTakeReachWhatLiesBelowThat) {
    auto* ground = new Below(CRect(0, 0, 400, 300), 1000);
    frame->addView(ground, below);
    below->setTransparency(true);
    below->answer = VSTGUI::kMouseEventNotHandled;
    EXPECT_TRUE(frame.press(inside, MouseButton::Middle));
    EXPECT_EQ(ground->calls, Calls{"down"});
}

TEST_F(LearnOverlay, OffersOneEntryForAnUnboundParameter) {
    EXPECT_EQ(entries(), std::vector<std::string>{"MidiLearn"});
    EXPECT_EQ(menus.back().place, inside);
}

TEST_F(LearnOverlay, TicksNoEntry) {
    midi::bindController(kFeedback, 74);
    EXPECT_EQ(openMenu().ticked, std::vector<std::string>{});
    menus.back().choose(1);
    midi::bindController(kFeedback, 74);
    EXPECT_EQ(openMenu().ticked, std::vector<std::string>{});
}

TEST_F(LearnOverlay, OffersToForgetABoundController) {
    midi::bindController(kFeedback, 74);
    EXPECT_EQ(entries(), (std::vector<std::string>{"MidiLearn", "Forget CC 74"}));
}

TEST_F(LearnOverlay, OffersToForgetControllerZero) {
    midi::bindController(kFeedback, 0);
    EXPECT_EQ(entries(), (std::vector<std::string>{"MidiLearn", "Forget CC 0"}));
}

TEST_F(LearnOverlay, TakesEveryNumberButMinusOneForAController) {
    midi::bindController(kFeedback, -2);
    EXPECT_EQ(entries().back(), "Forget CC -2");
}

TEST_F(LearnOverlay, GoesByTheControlsOwnParameter) {
    midi::bindController(parameters::kOutGain, 7);
    EXPECT_EQ(entries().size(), 1u);
}

/// The two ways in which systems answer.
enum class Answers { atOnce, later };

class LearnMenu : public LearnOverlay, public testing::WithParamInterface<Answers> {
  protected:
    /// Right-clicks, and answers in the way of the system.
    void answer(const std::function<void(OpenedMenu&)>& how) {
        if (GetParam() == Answers::atOnce) {
            frame.onMenu = [&](OpenedMenu& opened) { how(opened); };
            frame.click(inside, MouseButton::Right);
        } else {
            how(openMenu());
            menus.clear();
        }
        frame.onMenu = [this](OpenedMenu& opened) { menus.push_back(opened); };
    }
    void choose(std::int32_t entry) {
        answer([=](OpenedMenu& menu) { menu.choose(entry); });
    }

    /// Nothing of the menu is left in the frame.
    void expectNoMenu() {
        EXPECT_EQ(frame->getNbViews(), 2u);
        EXPECT_EQ(dynamic_cast<VSTGUI::COptionMenu*>(frame->getFocusView()), nullptr);
        EXPECT_EQ(overlay->getNbReference(), below->getNbReference()) << "nobody holds it but the frame";
        EXPECT_EQ(overlay->getValue(), 0);
    }
};

INSTANTIATE_TEST_SUITE_P(Answering, LearnMenu, testing::Values(Answers::atOnce, Answers::later),
                         [](const auto& way) { return way.param == Answers::atOnce ? "AtOnce" : "Later"; });

TEST_P(LearnMenu, ChangesNothingWhenItIsDismissed) {
    for (std::int32_t controller : {midi::kNoController, 5}) {
        midi::bindController(kFeedback, controller);
        answer([](OpenedMenu& menu) { menu.dismiss(); });
        EXPECT_TRUE(listener.reports.empty());
        EXPECT_EQ(midi::controllerOf(kFeedback), controller);
        expectNoMenu();
    }
}

TEST_P(LearnMenu, ChangesNothingWhenItIsLeftByEscape) {
    midi::bindController(kFeedback, 5);
    choose(-1);
    EXPECT_TRUE(listener.reports.empty());
    EXPECT_EQ(midi::controllerOf(kFeedback), 5);
    expectNoMenu();
}

TEST_P(LearnMenu, ReportsOneForTheParameterAtMidiLearn) {
    choose(0);
    ASSERT_EQ(listener.reports.size(), 1u);
    EXPECT_EQ(listener.reports[0].control, overlay);
    EXPECT_EQ(listener.reports[0].tag, kFeedback);
    EXPECT_EQ(listener.reports[0].value, 1.0f);
    expectNoMenu();
}

TEST_P(LearnMenu, KeepsABindingAtMidiLearn) {
    midi::bindController(kFeedback, 74);
    choose(0);
    EXPECT_EQ(midi::controllerOf(kFeedback), 74);
    EXPECT_EQ(listener.reports.at(0).value, 1.0f);
}

TEST_P(LearnMenu, ReportsMinusOneAndUnbindsAtForget) {
    midi::bindController(kFeedback, 74);
    listener.action = [](VSTGUI::CControl*) {
        EXPECT_EQ(midi::controllerOf(kFeedback), 74) << "the report comes first";
    };
    choose(1);
    ASSERT_EQ(listener.reports.size(), 1u);
    EXPECT_EQ(listener.reports[0].tag, kFeedback);
    EXPECT_EQ(listener.reports[0].value, -1.0f);
    EXPECT_EQ(midi::controllerOf(kFeedback), midi::kNoController);
    expectNoMenu();
    EXPECT_EQ(entries(), std::vector<std::string>{"MidiLearn"}) << "as the next menu shows";
}

TEST_P(LearnMenu, UnbindsWhateverTheListenerMakesOfTheValue) {
    midi::bindController(kFeedback, 74);
    listener.action = [](VSTGUI::CControl* control) { control->setValue(0.7f); };
    choose(1);
    EXPECT_EQ(midi::controllerOf(kFeedback), midi::kNoController);
    EXPECT_EQ(overlay->getValue(), 0);
}

TEST_P(LearnMenu, WorksForEveryControlOfOneParameter) {
    midi::bindController(kFeedback, 74);
    frame->removeView(overlay);
    auto* second = frame.add(new Below(CRect(20, 30, 60, 70), kFeedback));
    overlay = cover(second);
    choose(1);
    EXPECT_EQ(midi::controllerOf(kFeedback), midi::kNoController);
}

TEST_P(LearnMenu, AsksItsListenerWithAControlThatIsNoMenu) {
    listener.action = [](VSTGUI::CControl* control) {
        EXPECT_EQ(dynamic_cast<VSTGUI::COptionMenu*>(control), nullptr);
    };
    choose(0);
    EXPECT_EQ(listener.reports.size(), 1u);
}

TEST_F(LearnOverlay, ForgetsItsMenuWithItsWindow) {
    bool controlIsGone = false;
    below->gone = &controlIsGone;
    midi::bindController(kFeedback, 74);
    openMenu();
    frame.close();
    ASSERT_EQ(menus.size(), 1u);
    menus.back().choose(1);
    EXPECT_TRUE(listener.reports.empty());
    EXPECT_EQ(midi::controllerOf(kFeedback), 74);
    menus.clear();
    EXPECT_TRUE(controlIsGone);
}

TEST_F(LearnOverlay, MayLoseItsWindowInsideTheReport) {
    midi::bindController(kFeedback, 74);
    openMenu();
    bool controlIsGone = false;
    below->gone = &controlIsGone;
    listener.action = [&](VSTGUI::CControl* control) {
        frame.close();
        EXPECT_FALSE(controlIsGone) << "the listener may ask for the parameter once more";
        EXPECT_EQ(control->getTag(), kFeedback);
    };
    menus.back().choose(1);
    menus.clear();
    EXPECT_TRUE(controlIsGone);
    EXPECT_EQ(listener.reports.size(), 1u);
    EXPECT_EQ(midi::controllerOf(kFeedback), midi::kNoController);
}

TEST_F(LearnOverlay, OpensNoMenuOverAControlWithoutAParameter) {
    for (std::int32_t tag : {-1, 21, 999}) {
        below->setTag(tag);
        frame.click(inside, MouseButton::Right);
        EXPECT_TRUE(menus.empty());
    }
}

/// An effect whose parameters no controller can be bound to.
class WithoutControllers final : public vst2_door::AudioEffectX {
  public:
    WithoutControllers() : AudioEffectX(nullptr, 1, parameters::kNumParameters) {}
    void processReplacing(float**, float**, std::int32_t) override {}
    bool bindsControllers() const override { return false; }
};

TEST_F(LearnOverlay, OpensNoMenuWhereNoControllerCanBeBound) {
    WithoutControllers effect;
    frame.add(
        new CMidiLearn(below->getViewSize(), &listener, midi::kLearnTagBase + kFeedback, below, &effect));
    EXPECT_TRUE(frame.click(inside, MouseButton::Right));
    EXPECT_TRUE(menus.empty());
    EXPECT_TRUE(below->calls.empty());
    frame.press(inside, MouseButton::Left);
    EXPECT_EQ(below->calls, (Calls{"down"}));
}

TEST_F(LearnOverlay, OpensNoMenuOutsideAFrame) {
    const auto lone =
        VSTGUI::makeOwned<CMidiLearn>(CRect(0, 0, 9, 9), &listener, midi::kLearnTagBase, below, nullptr);
    CPoint where(1, 1);
    lone->onMouseDown(where, VSTGUI::kRButton);
    EXPECT_TRUE(menus.empty());
}

TEST_F(LearnOverlay, WithoutAControlIsStillAndKeepsItsOwnTag) {
    const auto lone =
        VSTGUI::makeOwned<CMidiLearn>(CRect(0, 0, 9, 9), &listener, midi::kLearnTagBase, nullptr, nullptr);
    CPoint where(1, 1);
    EXPECT_EQ(lone->getTag(), midi::kLearnTagBase);
    for (int buttons : {+VSTGUI::kLButton, +VSTGUI::kRButton}) {
        lone->onMouseDown(where, buttons);
        lone->onMouseMoved(where, buttons);
        lone->onMouseUp(where, buttons);
    }
    EXPECT_TRUE(menus.empty());
}

TEST_F(LearnOverlay, CopiesWithItsControlAndItsListener) {
    const auto copy = VSTGUI::owned(dynamic_cast<CMidiLearn*>(overlay->newCopy()));
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->getControl(), below);
    EXPECT_EQ(copy->getListener(), &listener);
    EXPECT_EQ(copy->getViewSize(), overlay->getViewSize());
}

TEST_F(LearnOverlay, IsNoPartOfAControlThatCameLater) {
    auto* late = frame.add(new Below(CRect(100, 100, 140, 140), parameters::kStereo));
    frame.click(CPoint(110, 110), MouseButton::Right);
    EXPECT_TRUE(menus.empty());
    EXPECT_EQ(late->calls.at(0), "down");
}

/// The same hand on a bare knob and on one below an overlay: nothing may differ.
class CoveredKnob : public LearnOverlay {
  protected:
    struct Knob {
        VSTGUI::CKnob* knob;
        CPoint at; ///< its left edge
    };

    CoveredKnob() {
        bare = addKnob(100);
        covered = addKnob(200);
        cover(covered.knob);
        frame->idle(); // as after opening a window
    }

    Knob addKnob(double x) {
        auto* knob = frame.add(
            new VSTGUI::CKnob(CRect(x, 100, x + 40, 140), &listener, parameters::kStereo, nullptr, nullptr));
        knob->setDefaultValue(0.25f);
        knob->setValue(0.5f);
        return {knob, CPoint(x + 5, 130)};
    }

    void expectTheSameFrom(const std::function<void(const Knob&)>& hand) {
        hand(bare);
        const auto reports = std::exchange(listener.reports, {});
        hand(covered);
        EXPECT_EQ(bare.knob->getValue(), covered.knob->getValue());
        ASSERT_EQ(listener.reports.size(), reports.size());
        EXPECT_FALSE(reports.empty());
        for (std::size_t i = 0; i < reports.size(); ++i)
            EXPECT_EQ(listener.reports[i].value, reports[i].value);
        for (const Listener::Report& report : listener.reports)
            EXPECT_EQ(report.control, covered.knob);
    }

    void drag(const Knob& knob, Modifiers keys, std::uint32_t clicks = 1) {
        frame.press(knob.at, MouseButton::Left, keys, clicks);
        for (int step = 1; step <= 30; ++step)
            frame.move(CPoint(knob.at.x + step, knob.at.y - step), MouseButton::Left, keys);
        frame.release(CPoint(knob.at.x + 30, knob.at.y - 30), MouseButton::Left);
    }

    Knob bare = {};
    Knob covered = {};
};

TEST_F(CoveredKnob, TurnsAsABareOne) {
    expectTheSameFrom([this](const Knob& knob) { drag(knob, Modifiers()); });
}

TEST_F(CoveredKnob, KnowsItsKeys) {
    for (VSTGUI::ModifierKey key : {VSTGUI::ModifierKey::Shift, VSTGUI::ModifierKey::Alt}) {
        SCOPED_TRACE(static_cast<int>(key));
        listener.reports.clear();
        expectTheSameFrom([&](const Knob& knob) { drag(knob, Modifiers(key)); });
    }
}

TEST_F(CoveredKnob, GoesBackToItsDefaultAtAControlClick) {
    expectTheSameFrom([this](const Knob& knob) {
        frame.click(knob.at, MouseButton::Left, Modifiers(VSTGUI::ModifierKey::Control));
        EXPECT_EQ(knob.knob->getValue(), 0.25f);
    });
}

TEST_F(CoveredKnob, TakesADoubleClickAsABareOne) {
    expectTheSameFrom([this](const Knob& knob) { drag(knob, Modifiers(), 2); });
}

TEST_F(CoveredKnob, TurnsWithTheWheel) {
    expectTheSameFrom([this](const Knob& knob) {
        frame.wheel(knob.at, 1);
        EXPECT_GT(knob.knob->getValue(), 0.5f);
    });
}

TEST_F(CoveredKnob, TurnsWithTheKeysOnceItWasTouched) {
    expectTheSameFrom([this](const Knob& knob) {
        frame.click(knob.at, MouseButton::Left);
        frame.key(VSTGUI::VirtualKey::Up);
    });
}

TEST_F(CoveredKnob, GoesBackWhenItsGestureIsCancelled) {
    expectTheSameFrom([this](const Knob& knob) {
        frame.press(knob.at, MouseButton::Left);
        frame.move(CPoint(knob.at.x + 20, knob.at.y - 20), MouseButton::Left);
        VSTGUI::MouseCancelEvent cancel;
        frame->dispatchEvent(cancel);
        EXPECT_FALSE(knob.knob->isEditing());
    });
}

TEST_F(LearnOverlay, LetsAMenuOfASkinOpenBelowIt) {
    auto* menu = frame.add(new VSTGUI::COptionMenu(CRect(200, 200, 260, 220), &listener, parameters::kSet));
    menu->addEntry("one");
    menu->addEntry("two");
    cover(menu);
    frame.click(CPoint(210, 210), MouseButton::Left);
    ASSERT_EQ(menus.size(), 1u);
    EXPECT_EQ(menus[0].entries, (std::vector<std::string>{"one", "two"}));
    menus[0].choose(1);
    ASSERT_EQ(listener.reports.size(), 1u);
    EXPECT_EQ(listener.reports[0].control, menu);
    EXPECT_EQ(menu->getValue(), 1);

    menus.clear();
    frame.click(CPoint(210, 210), MouseButton::Right);
    ASSERT_EQ(menus.size(), 1u);
    EXPECT_EQ(menus[0].entries, std::vector<std::string>{"MidiLearn"})
        << "and keeps the right click for itself";
    menus[0].choose(0);
    EXPECT_EQ(menu->getValue(), 1);
}

TEST_F(LearnOverlay, LetsAButtonSwitchBelowIt) {
    auto* button = frame.add(new VSTGUI::COnOffButton(CRect(200, 200, 240, 220), &listener, 3));
    cover(button);
    frame.click(CPoint(210, 210), MouseButton::Left);
    EXPECT_EQ(button->getValue(), 1);
    frame.click(CPoint(210, 210), MouseButton::Right);
    EXPECT_EQ(button->getValue(), 1);
    EXPECT_EQ(listener.reports.size(), 1u);
}

} // namespace
