// What the plug-in's own editor adds to a skin: the picture of the echoes, the note display, a menu above
// every control of a parameter.
#include "editor/my_editor.h"

#include "parameters/parameter_table.h"

#include "skin_bench.h"

#include "controls/midi_learn.h"
#include "controls/note_display.h"
#include "controls/view_taps.h"

#include "../controls/recorded_toolkit.h"

#include <gtest/gtest.h>
#include <limits>
#include <thread>

namespace {

using controls::CMidiLearn;
using controls::CNoteDisplay;
using controls::ViewTaps;
using VSTGUI::CColor;
using VSTGUI::CControl;
using VSTGUI::CRect;

std::array<base::Shared<float>, parameters::kMaxTaps> gains;

/// With the table of the test for the effect's.
class Exposed final : public editor::myEditor {
  public:
    explicit Exposed(vst2_door::AudioEffectX* owner) : myEditor(owner, gains) {}

    using myEditor::controls;
    using myEditor::frame;

    /// Built unseen, it counts as open.
    bool isOpen() override { return hasFrame(); }

    template <class Kind>
    std::vector<Kind*> all() const {
        std::vector<Kind*> found;
        for (CControl* control : controls())
            if (auto* const one = dynamic_cast<Kind*>(control))
                found.push_back(one);
        return found;
    }
};

class MyEditor : public testing::Test {
  protected:
    MyEditor() {
        // It knows no pictures, and none is needed: a background that is missing gives a frame too.
        test::useRecordedToolkit();
        for (auto& gain : gains)
            gain.store(0.5f);
    }

    Exposed& openWith(const std::string& objects) {
        bench.writeSkin(R"(<background filename="ground.png"/>)" + objects);
        auto& editor = bench.makeEditor<Exposed>();
        EXPECT_TRUE(editor.open(nullptr));
        return editor;
    }
    static std::string taps(const std::string& kind = "ViewTaps") {
        return "<" + kind + R"( x="10.5" y="20" w="300.5" h="100"/>)";
    }
    static std::vector<std::string> words(ViewTaps& view) { return test::drawingOf(view).words(); }
    static std::string note(const std::string& tags) { return "<NoteDisplay " + tags + "/>"; }

    test::SkinBench bench;
};

// Objects

TEST_F(MyEditor, BuildsTheTapViewInAnyLetterCase) {
    for (const char* kind : {"ViewTaps", "viewtaps", "VIEWTAPS"}) {
        auto& editor = openWith(taps(kind));
        ASSERT_EQ(editor.all<ViewTaps>().size(), 1u) << kind;
        const ViewTaps& view = *editor.all<ViewTaps>()[0];
        EXPECT_EQ(view.getTag(), -1);
        EXPECT_EQ(view.getListener(), nullptr);
        EXPECT_EQ(view.getViewSize(), CRect(10, 20, 311, 120));
    }
}

TEST_F(MyEditor, DrawsThePatternOfTheEffectAtOnce) {
    bench.effect().values[parameters::kTaps] = 0.5f;
    auto& editor = openWith(taps());
    const auto text = words(*editor.all<ViewTaps>()[0]);
    EXPECT_EQ(text[0], "2282");
    EXPECT_EQ(text[2], "Taps: 64");
}

TEST_F(MyEditor, ShowsANumberThatDependsOnTheSampleRateAlone) {
    auto& editor = openWith(taps());
    ViewTaps& view = *editor.all<ViewTaps>()[0];
    for (const float length : {0.0f, 0.3f, 1.0f}) {
        editor.updateTapView(1.0f, 0.5f, length, 44100.0f, gains);
        EXPECT_EQ(words(view)[0], "2282") << length;
        editor.updateTapView(1.0f, 0.5f, length, 48000.0f, gains);
        EXPECT_EQ(words(view)[0], "2097") << length;
    }
}

TEST_F(MyEditor, SurvivesAnyPatternAndRate) {
    auto& editor = openWith(taps());
    ViewTaps& view = *editor.all<ViewTaps>()[0];
    const float odd[] = {-1.0f,
                         2.0f,
                         1e30f,
                         -1e30f,
                         std::numeric_limits<float>::quiet_NaN(),
                         std::numeric_limits<float>::infinity()};
    for (const float value : odd) {
        editor.updateTapView(value, value, 0.5f, 44100.0f, gains);
        EXPECT_EQ(words(view)[0], "2282") << value;
        editor.updateTapView(0.5f, 0.5f, value, 44100.0f, gains);
        EXPECT_EQ(words(view)[2], "Taps: 64") << value;
        editor.updateTapView(0.5f, 0.5f, 0.5f, value, gains);
        EXPECT_EQ(words(view)[2], "Taps: 64") << value;
    }
    editor.updateTapView(0.5f, 0.5f, 0.5f, 0.0f, gains);
    words(view);
}

TEST_F(MyEditor, DrawsThePatternOfAnotherThreadAtTheNextIdle) {
    auto& editor = openWith(taps());
    ViewTaps& view = *editor.all<ViewTaps>()[0];
    std::thread([&] { editor.updateTapView(1.0f, 0.5f, 0.5f, 44100.0f, gains); }).join();
    EXPECT_EQ(words(view)[2], "Taps: 1");
    editor.idle();
    EXPECT_EQ(words(view)[2], "Taps: 128");
}

TEST_F(MyEditor, KeepsTheLastOfTwoTapViewsUpToDate) {
    auto& editor = openWith(taps() + taps());
    const auto views = editor.all<ViewTaps>();
    ASSERT_EQ(views.size(), 2u);
    editor.updateTapView(1.0f, 0.5f, 0.5f, 44100.0f, gains);
    EXPECT_EQ(words(*views[0])[2], "Taps: 1");
    EXPECT_EQ(words(*views[1])[2], "Taps: 128");
}

TEST_F(MyEditor, TakesPatternsWithoutATapViewOrAWindow) {
    auto& editor = openWith("");
    editor.updateTapView(1.0f, 0.5f, 0.5f, 44100.0f, gains);
    editor.close();
    editor.updateTapView(1.0f, 0.5f, 0.5f, 44100.0f, gains);
    std::thread([&] { editor.updateTapView(1.0f, 0.5f, 0.5f, 44100.0f, gains); }).join();
    editor.idle();
    EXPECT_TRUE(bench.messages.empty());
}

TEST_F(MyEditor, SaysWhatATapViewLacksAndOpensWithoutIt) {
    auto& editor = openWith(R"(<ViewTaps x="1" y="2" w="3"/>)");
    EXPECT_EQ(bench.messages, (std::vector<test::Message>{{"Missing tag h for object ViewTaps", "Skin Error",
                                                           platform::MessageIcon::error}}));
    EXPECT_TRUE(editor.all<ViewTaps>().empty());
    EXPECT_NE(editor.frame, nullptr);
}

TEST_F(MyEditor, SaysWhichNumberCannotBeCalculated) {
    openWith(R"(<ViewTaps x="1" y="nowhere" w="3" h="4"/>)");
    EXPECT_EQ(bench.messages,
              (std::vector<test::Message>{{"Error calculating value of tag y for object ViewTaps",
                                           "Skin Error", platform::MessageIcon::error}}));
}

TEST_F(MyEditor, BuildsANoteDisplayInColoursThatCannotBeSeen) {
    auto& editor =
        openWith(note(R"(x="1" y="2" w="30" h="10" id="300" fontcolor="FF8000" backcolor="102030")"));
    ASSERT_EQ(editor.all<CNoteDisplay>().size(), 1u);
    CNoteDisplay& display = *editor.all<CNoteDisplay>()[0];
    EXPECT_EQ(display.getTag(), 300);
    EXPECT_EQ(display.getListener(), &editor);
    EXPECT_EQ(display.getViewSize(), CRect(1, 2, 31, 12));
    EXPECT_EQ(display.getFontColor(), CColor(0xFF, 0x80, 0x00, 0));
    EXPECT_EQ(display.getBackColor(), CColor(0x10, 0x20, 0x30, 0));
    EXPECT_EQ(test::drawingOf(display).words(), std::vector<std::string>{"OFF"});
}

TEST_F(MyEditor, SaysThatTheLettersColourIsMissingBeforeTheGrounds) {
    openWith(note(R"(x="1" y="2" w="30" h="10" id="300")"));
    EXPECT_EQ(bench.messages, (std::vector<test::Message>{{"Missing tag fontcolor for object NoteDisplay",
                                                           "Skin Error", platform::MessageIcon::error}}));
    bench.messages.clear();
    openWith(note(R"(x="1" y="2" w="30" h="10" id="300" fontcolor="0")"));
    EXPECT_EQ(bench.messages, (std::vector<test::Message>{{"Missing tag backcolor for object NoteDisplay",
                                                           "Skin Error", platform::MessageIcon::error}}));
}

TEST_F(MyEditor, SetsNothingByControlAndClickOnANoteDisplay) {
    auto& editor = openWith(note(R"(x="1" y="2" w="30" h="40" id="6" fontcolor="1" backcolor="2")"));
    VSTGUI::MouseDownEvent press({5, 5}, VSTGUI::MouseButton::Left);
    press.modifiers.add(VSTGUI::ModifierKey::Control);
    editor.frame->dispatchEvent(press);
    EXPECT_TRUE(bench.effect().automated.empty());
}

TEST_F(MyEditor, MakesNothingOfAPresetsDisplay) {
    auto& editor = openWith(R"(<PresetsDisplay x="1" y="2" w="3" h="4" fontcolor="0"/>)");
    EXPECT_TRUE(bench.messages.empty());
    EXPECT_TRUE(editor.controls().empty());
}

TEST_F(MyEditor, CallsAPresetsDisplayByItsSistersName) {
    openWith(R"(<PresetsDisplay x="1" y="2" w="3" h="4"/>)");
    EXPECT_EQ(bench.messages, (std::vector<test::Message>{{"Missing tag fontcolor for object NoteDisplay",
                                                           "Skin Error", platform::MessageIcon::error}}));
}

TEST_F(MyEditor, PassesOverWhatItDoesNotKnowWithoutAWord) {
    auto& editor = openWith(R"(<Oscilloscope x="1" y="2" w="3" h="4"/>)");
    EXPECT_TRUE(bench.messages.empty());
    EXPECT_TRUE(editor.controls().empty());
}

// Overlays

TEST_F(MyEditor, CoversEveryControlOfAParameterInTheOrderOfTheIds) {
    auto& editor =
        openWith(R"(<knob x="0" y="0" w="10" h="10" id="6"/><knob x="20" y="0" w="10" h="10" id="300"/>
                               <knob x="40" y="0" w="10" h="10" id="2"/><knob x="60" y="0" w="10" h="10" id="6"/>)" +
                 taps());
    const auto overlays = editor.all<CMidiLearn>();
    const auto all = editor.controls();
    ASSERT_EQ(overlays.size(), 3u);
    EXPECT_EQ(overlays[0]->getControl(), all[2]);
    EXPECT_EQ(overlays[1]->getControl(), all[0]);
    EXPECT_EQ(overlays[2]->getControl(), all[3]);
    for (CMidiLearn* overlay : overlays) {
        EXPECT_EQ(overlay->getViewSize(), overlay->getControl()->getViewSize());
        EXPECT_EQ(overlay->getListener(), &editor);
        EXPECT_EQ(overlay->getEffect(), &bench.effect());
    }
    EXPECT_EQ(all.back(), overlays[2]) << "above all that the skin has made";
}

TEST_F(MyEditor, RebuildsOverlaysAndPictureAtEachOpening) {
    auto& editor = openWith(R"(<knob x="0" y="0" w="10" h="10" id="6"/>)" + taps());
    editor.close();
    bench.effect().values[parameters::kTaps] = 1.0f;
    ASSERT_TRUE(editor.open(nullptr));
    EXPECT_EQ(editor.all<CMidiLearn>().size(), 1u);
    ASSERT_EQ(editor.all<ViewTaps>().size(), 1u);
    EXPECT_EQ(words(*editor.all<ViewTaps>()[0])[2], "Taps: 128");
}

TEST_F(MyEditor, LaysNoOverlaysForAWindowThatNoDisplayKnows) {
    auto& editor = openWith(R"(<knob x="0" y="0" w="10" h="10" id="6"/>)" + taps());
    editor.close();
    int window = 0;
    EXPECT_FALSE(editor.open(&window));
    EXPECT_TRUE(editor.controls().empty());
    editor.updateTapView(1.0f, 0.5f, 1.0f, 44100.0f, gains);
    editor.idle();
    editor.close();
}

TEST_F(MyEditor, GivesAnOverlayTheValueOfItsParameter) {
    auto& editor = openWith(R"(<knob x="0" y="0" w="10" h="10" id="6"/>)");
    bench.effect().values[6] = 0.75f;
    editor.setParameter(skin::kRefreshAll, static_cast<float>(skin::kRefreshAll));
    EXPECT_EQ(editor.all<CMidiLearn>()[0]->getValue(), 0.75f);
}

TEST_F(MyEditor, BringsAControlOfABoundKindUpToDateBeforeTheHandGetsToIt) {
    auto& editor = openWith(R"(
        <slider x="0" y="0" len="50" id="2" style="1" bitmap_handle="a.png"/>
        <knob x="0" y="20" w="9" h="9" id="3"/>
        <onoff x="0" y="40" id="4" bitmap_handle="a.png"/>
        <vswitch x="0" y="60" id="5" entries="2" bitmap_handle="a.png"/>
        <hswitch x="0" y="80" id="6" entries="2" bitmap_handle="a.png"/>
        <optionmenu x="0" y="100" w="50" h="9" id="7"><list><entry>a</entry><entry>b</entry><entry>c</entry></list></optionmenu>
        <kick x="0" y="120" id="8" bitmap_handle="a.png"/>
        <autodisp x="0" y="140" w="9" h="9" id="9" link="9"/>
        <display x="0" y="160" w="9" h="9" id="10"/>
        <NoteDisplay x="0" y="180" w="9" h="9" id="11" fontcolor="1" backcolor="2"/>)");
    bench.effect().values.fill(0.75f);
    for (CMidiLearn* overlay : editor.all<CMidiLearn>()) {
        VSTGUI::KeyboardEvent key;
        key.virt = VSTGUI::VirtualKey::Help; // of use to no control
        overlay->dispatchEvent(key);
        CControl* const control = overlay->getControl();
        const std::int32_t id = control->getTag();
        EXPECT_EQ(control->getValue(), id >= 8 ? 0.0f : id == 7 ? 2.0f : id == 4 ? 1.0f : 0.75f) << id;
        EXPECT_EQ(overlay->getValue(), 0.0f) << id;
    }
    EXPECT_EQ(editor.all<CMidiLearn>().size(), 10u);
    EXPECT_TRUE(bench.effect().automated.empty());
}

// Learning

TEST_F(MyEditor, ArmsNothingFromAnOverlaySinceItHidesItsTag) {
    auto& editor = openWith(R"(<knob x="0" y="0" w="10" h="10" id="6"/>)");
    CMidiLearn& overlay = *editor.all<CMidiLearn>()[0];
    overlay.setValue(1.0f);
    editor.controlChanged(nullptr, &overlay);
    EXPECT_FALSE(editor.learn.isArmed());
    editor.valueChanged(&overlay);
    EXPECT_FALSE(editor.learn.isArmed());
    EXPECT_EQ(bench.effect().automated, (std::vector<test::ParameterChange>{{6, 1.0f}}));
}

TEST_F(MyEditor, ForgetsAtEachOpeningWhoWaitedForAController) {
    auto& editor = openWith("");
    editor.learn.controlChanged(midi::kLearnTagBase + 6, 1.0f);
    ASSERT_TRUE(editor.learn.isArmed());
    editor.close();
    EXPECT_TRUE(editor.learn.isArmed());
    editor.open(nullptr);
    EXPECT_FALSE(editor.learn.isArmed());
}

} // namespace
