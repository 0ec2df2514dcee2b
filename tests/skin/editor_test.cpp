// The editor between a host, an effect and a skin's controls: its life, its queue, and how a change goes from
// one side to the other.
#include "skin_bench.h"

#include "controls/displays.h"
#include "platform/clock.h"
#include "skin/skin_menu.h"

#include "vstgui/lib/cframe.h"
#include "vstgui/lib/controls/cbuttons.h"
#include "vstgui/lib/controls/coptionmenu.h"

#include <cmath>
#include <gtest/gtest.h>
#include <thread>

namespace {

using skin::kRefreshAll;
using skin::xmlGuiEditor;
using test::ParameterChange;
using VSTGUI::CControl;

/// Writes down the hooks for those who derive.
class HookedEditor : public test::ExposedEditor<xmlGuiEditor> {
  public:
    using ExposedEditor::ExposedEditor;
    void parameterUpdated(std::int32_t index, float value) override { updated.push_back({index, value}); }

    std::vector<ParameterChange> updated;
};

class Editor : public testing::Test {
  protected:
    Editor() {
        bench.drawPicture("ground.png", 120, 80);
        bench.drawPicture("lamp.png", 10, 20, {VSTGUI::kRedCColor, VSTGUI::kGreenCColor});
    }

    /// Makes an editor for a skin of these objects on a background, and opens it.
    HookedEditor& openWith(const std::string& objects) {
        bench.writeSkin(R"(<background filename="ground.png"/>)" + objects);
        auto& editor = bench.makeEditor<HookedEditor>();
        EXPECT_TRUE(editor.open(nullptr));
        clean(editor);
        return editor;
    }
    static void clean(HookedEditor& editor) {
        for (CControl* control : editor.controls())
            control->setDirty(false);
    }
    static std::string knob(int id, int x = 0) {
        return "<knob x=\"" + std::to_string(x) + "\" y=\"0\" w=\"10\" h=\"10\" id=\"" + std::to_string(id) +
               "\"/>";
    }
    static std::string display(int id, int link) {
        return "<autodisp x=\"0\" y=\"0\" w=\"10\" h=\"10\" id=\"" + std::to_string(id) + "\" link=\"" +
               std::to_string(link) + "\"/>";
    }
    static std::string menu(int id, int entries) {
        std::string text =
            "<optionmenu x=\"0\" y=\"0\" w=\"10\" h=\"10\" id=\"" + std::to_string(id) + "\"><list>";
        for (int i = 0; i < entries; ++i)
            text += "<entry>" + std::to_string(i) + "</entry>";
        return text + "</list></optionmenu>";
    }
    static std::string lamp(int id) {
        return "<onoff x=\"0\" y=\"0\" id=\"" + std::to_string(id) + "\" bitmap_handle=\"lamp.png\"/>";
    }
    static std::string update(int src, int dst) {
        return "<update src=\"" + std::to_string(src) + "\" dst=\"" + std::to_string(dst) + "\"/>";
    }
    /// What an operation prints.
    template <class Operation>
    static std::string printedBy(Operation operation) {
        testing::internal::CaptureStdout();
        operation();
        return testing::internal::GetCapturedStdout();
    }

    test::SkinBench bench;
};

// Its life

TEST_F(Editor, KnowsTheWindowsSizeBeforeThereIsAWindow) {
    bench.writeSkin(R"(<background filename="ground.png"/>)" + knob(6));
    auto& editor = bench.makeEditor();
    interfaces::EditorRect* size = nullptr;
    EXPECT_TRUE(editor.getRect(&size));
    ASSERT_NE(size, nullptr);
    EXPECT_EQ(size->top, 0);
    EXPECT_EQ(size->left, 0);
    EXPECT_EQ(size->bottom, 80);
    EXPECT_EQ(size->right, 120);
    EXPECT_EQ(editor.frame, nullptr);
    EXPECT_EQ(editor.skinLoaded, 0);
    EXPECT_FALSE(editor.isOpen());
    EXPECT_TRUE(bench.messages.empty());
}

TEST_F(Editor, SaysThatTheEffectHasOne) {
    bench.writeSkin("");
    bench.makeEditor();
    EXPECT_TRUE(bench.effect().getAeffect()->flags & vst2::effFlagsHasEditor);
}

TEST_F(Editor, SaysWhichSkinFileIsMissingAtEachPass) {
    const std::string line = bench.folder() + "Quillon Skin/skin.xml skin file missing\n";
    HookedEditor* editor = nullptr;
    EXPECT_EQ(printedBy([&] { editor = &bench.makeEditor<HookedEditor>(); }), line);
    EXPECT_EQ(editor->rect.right, 0);
    EXPECT_EQ(editor->rect.bottom, 0);
    EXPECT_EQ(printedBy([&] { EXPECT_FALSE(editor->open(nullptr)); }), line);
    EXPECT_EQ(editor->frame, nullptr);
    EXPECT_EQ(editor->skinLoaded, 1);
    editor->close();
}

TEST_F(Editor, SaysTheSameOfASkinFileThatCannotBeRead) {
    bench.writeFile("Quillon Skin/skin.xml", "<GUI><background filename=\"ground.png\"/>");
    const std::string line = bench.folder() + "Quillon Skin/skin.xml skin file missing\n";
    EXPECT_EQ(printedBy([&] { bench.makeEditor(); }), line);
}

TEST_F(Editor, SaysThatARootOfAnotherNameIsNone) {
    bench.writeFile("Quillon Skin/skin.xml", "<WINDOW><background filename=\"ground.png\"/></WINDOW>");
    HookedEditor* editor = nullptr;
    EXPECT_EQ(printedBy([&] { editor = &bench.makeEditor<HookedEditor>(); }), "<GUI> node missing\n");
    EXPECT_EQ(printedBy([&] { EXPECT_FALSE(editor->open(nullptr)); }), "<GUI> node missing\n");
}

TEST_F(Editor, TakesTheRootInAnyLetterCase) {
    bench.writeFile("Quillon Skin/skin.xml", "<gui><background filename=\"ground.png\"/></gui>");
    EXPECT_EQ(bench.makeEditor().rect.right, 120);
}

TEST_F(Editor, OpensNothingForASkinWithoutABackground) {
    bench.writeSkin(knob(6));
    auto& editor = bench.makeEditor();
    EXPECT_TRUE(editor.open(nullptr));
    EXPECT_EQ(editor.frame, nullptr);
    EXPECT_EQ(editor.skinLoaded, 1);
    editor.queueWrite.store(3);
    editor.idle();
    editor.setParameter(6, 0.5f);
    editor.close();
    editor.idle();
}

TEST_F(Editor, OpensAndClosesAsOftenAsTheHostLikes) {
    auto& editor = openWith(knob(6) + display(40, 6) + menu(3, 2) + update(6, 40) +
                            R"(<about x="0" y="0" w="9" h="9" bitmap_pop="lamp.png"/>
                               <anydisp x="0" y="0" w="9" h="9"/>)");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(editor.controls().size(), 5u);
        EXPECT_EQ(editor.displayLinks.count, 1);
        EXPECT_EQ(editor.updateLinks.count, 1);
        EXPECT_EQ(editor.menuIds.count, 1);
        EXPECT_EQ(editor.skinNames.count, 1);
        EXPECT_EQ(editor.aboutCount, 1);
        EXPECT_NE(editor.anyDisplay, nullptr);
        editor.close();
        EXPECT_EQ(editor.frame, nullptr);
        EXPECT_EQ(editor.skinLoaded, 0);
        EXPECT_EQ(editor.background, nullptr);
        ASSERT_TRUE(editor.open(nullptr));
        EXPECT_EQ(editor.skinLoaded, 1);
    }
}

TEST_F(Editor, ForgetsTheHintDisplayOfASkinThatHasNoneAnyMore) {
    auto& editor = openWith(R"(<anydisp x="0" y="0" w="9" h="9"/>)");
    editor.close();
    bench.writeSkin(R"(<background filename="ground.png"/>)");
    editor.open(nullptr);
    EXPECT_EQ(editor.anyDisplay, nullptr);
    editor.idle();
}

TEST_F(Editor, StaysOpenInItsOwnEyesAfterItsFirstWindow) {
    auto& editor = openWith("");
    int parent = 0;
    editor.close();
    editor.open(&parent);
    EXPECT_TRUE(editor.isOpen());
    editor.close();
    EXPECT_TRUE(editor.isOpen());
}

TEST_F(Editor, AnswersNoForAWindowThatNoDisplayKnows) {
    auto& editor = openWith(knob(6) + R"(<knob x="nonsense" y="0" w="9" h="9" id="2"/>)");
    bench.messages.clear();
    editor.close();
    int parent = 0;
    EXPECT_FALSE(editor.open(&parent));
    EXPECT_TRUE(bench.messages.empty()) << "nobody waits for the rest of the skin";
    EXPECT_EQ(editor.frame, nullptr);
    EXPECT_EQ(editor.background, nullptr);
    EXPECT_EQ(editor.skinLoaded, 1);
    editor.setParameter(6, 0.5f);
    editor.queueParameterUpdate(6);
    editor.idle();
    editor.close();
    EXPECT_TRUE(editor.open(nullptr)) << "built unseen";
    EXPECT_EQ(editor.controls().size(), 1u);
}

TEST_F(Editor, PutsASecondWindowInPlaceOfTheFirst) {
    auto& editor = openWith(knob(6));
    EXPECT_TRUE(editor.open(nullptr));
    EXPECT_EQ(editor.controls().size(), 1u);
}

TEST_F(Editor, ReportsTheSizeItFirstReadWhenTheSkinGrows) {
    auto& editor = openWith("");
    editor.close();
    bench.drawPicture("ground.png", 300, 200);
    editor.open(nullptr);
    EXPECT_EQ(editor.frame->getWidth(), 300);
    EXPECT_EQ(editor.rect.right, 120);
}

TEST_F(Editor, TakesTimeKeysAndChangesWithoutAWindow) {
    bench.writeSkin(R"(<background filename="ground.png"/>)" + knob(6));
    auto& editor = bench.makeEditor();
    const auto tryAll = [&] {
        editor.idle();
        editor.setParameter(6, 0.5f);
        editor.setParameter(kRefreshAll, static_cast<float>(kRefreshAll));
        editor.queueParameterUpdate(6);
        interfaces::KeyCode key = {'a', 0, 0};
        EXPECT_FALSE(editor.onKeyDown(key));
        EXPECT_FALSE(editor.onKeyUp(key));
        EXPECT_FALSE(editor.onWheel(1.0f));
        editor.doIdleStuff();
    };
    tryAll();
    editor.close();
    tryAll();
    editor.open(nullptr);
    editor.close();
    editor.close();
    tryAll();
    EXPECT_EQ(editor.queueWrite.load(), 0);
}

// The queue

TEST_F(Editor, ServesOneQueuedIdAtEachIdle) {
    auto& editor = openWith(knob(6) + knob(7));
    editor.queueParameterUpdate(6);
    editor.queueParameterUpdate(7);
    editor.idle();
    EXPECT_TRUE(editor.controlOf(6)->isDirty());
    EXPECT_FALSE(editor.controlOf(7)->isDirty());
    clean(editor);
    editor.idle();
    EXPECT_FALSE(editor.controlOf(6)->isDirty());
    EXPECT_TRUE(editor.controlOf(7)->isDirty());
    clean(editor);
    editor.idle();
    EXPECT_FALSE(editor.controlOf(7)->isDirty());
}

TEST_F(Editor, UsesUpAnIdThatNoViewHas) {
    auto& editor = openWith(knob(6));
    editor.queueParameterUpdate(9);
    editor.queueParameterUpdate(6);
    editor.idle();
    EXPECT_FALSE(editor.controlOf(6)->isDirty());
    EXPECT_EQ(editor.queueRead.load(), 1);
    editor.idle();
    EXPECT_TRUE(editor.controlOf(6)->isDirty());
}

TEST_F(Editor, LeavesAControlAloneThatIsBehindItsParameter) {
    auto& editor = openWith(knob(6));
    bench.effect().values[6] = 0.75f;
    editor.queueParameterUpdate(6);
    editor.idle();
    EXPECT_FALSE(editor.controlOf(6)->isDirty());
    EXPECT_EQ(editor.queueRead.load(), 1);
}

TEST_F(Editor, ServesTheFirstViewOfATagOnly) {
    auto& editor = openWith(knob(6) + knob(6, 20));
    editor.queueParameterUpdate(6);
    editor.idle();
    EXPECT_TRUE(editor.controlAt(0)->isDirty());
    EXPECT_FALSE(editor.controlAt(1)->isDirty());
}

TEST_F(Editor, ServesIdsBeyondTheParametersWhateverTheirValue) {
    auto& editor = openWith(knob(300));
    editor.controlOf(300)->setValue(0.3f);
    clean(editor);
    editor.queueParameterUpdate(300);
    editor.idle();
    EXPECT_TRUE(editor.controlOf(300)->isDirty());
}

TEST_F(Editor, QueuesARunOfOneIdOnce) {
    auto& editor = openWith("");
    for (const std::int32_t id : {0, 0, 5, 5, 5})
        editor.queueParameterUpdate(id);
    EXPECT_EQ(editor.queueWrite.load(), 2);
    EXPECT_EQ(editor.updateQueue[0].load(), 0);
    EXPECT_EQ(editor.updateQueue[1].load(), 5);
}

TEST_F(Editor, QueuesAnIdAgainAfterAnother) {
    auto& editor = openWith("");
    for (const std::int32_t id : {4, 5, 4})
        editor.queueParameterUpdate(id);
    EXPECT_EQ(editor.queueWrite.load(), 3);
}

TEST_F(Editor, HoldsTwoHundredAndFiftyFiveIdsAndDropsTheRest) {
    auto& editor = openWith(knob(6));
    for (std::int32_t i = 0; i < 300; ++i)
        editor.queueParameterUpdate(1000 + i);
    EXPECT_EQ(editor.queueWrite.load(), 255);
    for (int i = 0; i < 255; ++i)
        EXPECT_EQ(editor.updateQueue[i].load(), 1000 + i);
    for (int i = 0; i < 300; ++i)
        editor.idle();
    EXPECT_EQ(editor.queueRead.load(), 255);
    editor.queueParameterUpdate(6);
    EXPECT_EQ(editor.queueWrite.load(), 0);
    editor.idle();
    EXPECT_TRUE(editor.controlOf(6)->isDirty());
}

TEST_F(Editor, ShowsValuesThoughTheQueueIsFull) {
    auto& editor = openWith(knob(6));
    for (std::int32_t i = 0; i < 300; ++i)
        editor.queueParameterUpdate(1000 + i);
    editor.setParameter(6, 0.75f);
    editor.queueParameterUpdate(6);
    EXPECT_EQ(editor.controlOf(6)->getValue(), 0.75f);
    EXPECT_TRUE(editor.controlOf(6)->isDirty());
}

TEST_F(Editor, WorksOffInANewWindowWhatWasQueuedInTheOld) {
    auto& editor = openWith(knob(6));
    editor.queueParameterUpdate(7);
    editor.queueParameterUpdate(6);
    editor.close();
    editor.open(nullptr);
    EXPECT_EQ(editor.queueRead.load(), 0);
    EXPECT_EQ(editor.queueWrite.load(), 2);
    clean(editor);
    editor.idle();
    editor.idle();
    EXPECT_TRUE(editor.controlOf(6)->isDirty());
}

// From the effect to the window

TEST_F(Editor, ShowsAChangeInTheFirstControlOfItsTag) {
    auto& editor = openWith(knob(6) + knob(6, 20) + knob(7));
    editor.setParameter(6, 0.75f);
    EXPECT_EQ(editor.controlAt(0)->getValue(), 0.75f);
    EXPECT_TRUE(editor.controlAt(0)->isDirty());
    EXPECT_EQ(editor.controlAt(1)->getValue(), 0.0f);
    EXPECT_FALSE(editor.controlAt(1)->isDirty());
    EXPECT_FALSE(editor.controlAt(2)->isDirty());
}

TEST_F(Editor, MarksTheFirstDisplayThatIsLinkedToTheParameter) {
    auto& editor = openWith(knob(6) + display(40, 6) + display(41, 6) + display(42, 7));
    editor.setParameter(6, 0.75f);
    EXPECT_TRUE(editor.controlOf(40)->isDirty());
    EXPECT_FALSE(editor.controlOf(41)->isDirty());
    EXPECT_FALSE(editor.controlOf(42)->isDirty());
}

TEST_F(Editor, MarksNoDisplayOfAParameterThatHasNoControl) {
    auto& editor = openWith(display(40, 6));
    editor.setParameter(6, 0.75f);
    EXPECT_FALSE(editor.controlOf(40)->isDirty());
}

TEST_F(Editor, MarksWhatAnUpdateTiesToTheParameter) {
    auto& editor =
        openWith(knob(6) + knob(300) + knob(300, 20) + knob(301) + update(6, 300) + update(7, 301));
    editor.setParameter(6, 0.75f);
    EXPECT_TRUE(editor.controlAt(1)->isDirty());
    EXPECT_TRUE(editor.controlAt(2)->isDirty());
    EXPECT_FALSE(editor.controlAt(3)->isDirty());
    EXPECT_EQ(editor.controlAt(1)->getValue(), 0.0f);
}

TEST_F(Editor, MarksButDoesNotSetASecondControlThatAnUpdateTiesToItsOwnTag) {
    auto& editor = openWith(knob(6) + knob(6, 20) + update(6, 6));
    editor.setParameter(6, 0.75f);
    EXPECT_TRUE(editor.controlAt(1)->isDirty());
    EXPECT_EQ(editor.controlAt(1)->getValue(), 0.0f);
}

TEST_F(Editor, SetsAMenuToTheNearestEntry) {
    auto& editor = openWith(menu(8, 3));
    auto* const shown = static_cast<VSTGUI::COptionMenu*>(editor.controlOf(8));
    for (const auto& [value, entry] :
         {std::pair(0.0f, 0), {0.24f, 0}, {0.25f, 1}, {0.74f, 1}, {0.75f, 2}, {1.0f, 2}}) {
        editor.setParameter(8, value);
        EXPECT_EQ(shown->getValue(), static_cast<float>(entry)) << value;
        EXPECT_EQ(shown->getCurrentIndex(), entry) << value;
    }
}

TEST_F(Editor, SwitchesAButtonAtOneHalf) {
    auto& editor = openWith(lamp(8));
    for (const auto& [value, state] : {std::pair(0.49f, 0.0f), {0.5f, 1.0f}, {0.2f, 0.0f}, {1.0f, 1.0f}}) {
        editor.setParameter(8, value);
        EXPECT_EQ(editor.controlOf(8)->getValue(), state) << value;
    }
}

TEST_F(Editor, SetsEverythingFromTheEffectForIndexMinusOne) {
    auto& editor = openWith(knob(6) + knob(6, 20) + menu(8, 3) + display(40, 6) + knob(300));
    bench.effect().values[6] = 0.75f;
    bench.effect().values[8] = 0.5f;
    editor.setParameter(-1, 0.1f);
    EXPECT_EQ(editor.controlAt(0)->getValue(), 0.75f);
    EXPECT_EQ(editor.controlAt(1)->getValue(), 0.75f);
    EXPECT_EQ(editor.controlAt(2)->getValue(), 1.0f);
    EXPECT_TRUE(editor.controlAt(3)->isDirty());
    EXPECT_EQ(editor.controlAt(4)->getValue(), 0.0f);
    EXPECT_FALSE(editor.controlAt(4)->isDirty());
}

TEST_F(Editor, LeavesUpdatesAloneForIndexMinusOne) {
    auto& editor = openWith(knob(6) + knob(300) + update(6, 300));
    editor.setParameter(-1, 0.0f);
    EXPECT_FALSE(editor.controlOf(300)->isDirty());
}

TEST_F(Editor, RefreshesEverythingWithoutScalingMenus) {
    auto& editor = openWith(knob(6) + knob(6, 20) + menu(8, 3) + lamp(9) + knob(300));
    bench.effect().values[6] = 0.75f;
    bench.effect().values[8] = 1.0f;
    bench.effect().values[9] = 0.6f;
    editor.setParameter(kRefreshAll, static_cast<float>(kRefreshAll));
    EXPECT_EQ(editor.controlAt(0)->getValue(), 0.75f);
    EXPECT_EQ(editor.controlAt(1)->getValue(), 0.75f);
    EXPECT_EQ(editor.controlAt(2)->getValue(), 1.0f);
    EXPECT_EQ(editor.controlAt(3)->getValue(), 0.6f);
    for (std::size_t place = 0; place < 4; ++place)
        EXPECT_TRUE(editor.controlAt(place)->isDirty()) << place;
    EXPECT_FALSE(editor.controlAt(4)->isDirty());
}

TEST_F(Editor, KnowsTheRequestForARefreshByItsValueAlone) {
    auto& editor = openWith(knob(6));
    bench.effect().values[6] = 0.75f;
    editor.setParameter(6, -909090.5f);
    EXPECT_EQ(editor.controlOf(6)->getValue(), 0.75f);
}

TEST_F(Editor, ShowsAMenuBetweenItsEntriesAfterARefresh) {
    auto& editor = openWith(menu(8, 3));
    bench.effect().values[8] = 0.7f;
    editor.setParameter(kRefreshAll, static_cast<float>(kRefreshAll));
    EXPECT_EQ(editor.controlOf(8)->getValue(), 0.7f);
}

TEST_F(Editor, TellsThoseWhoDeriveOfEachViewThatItPasses) {
    auto& editor = openWith(knob(5) + knob(300) + knob(6) + knob(7));
    editor.updated.clear();
    editor.setParameter(6, 0.75f);
    EXPECT_EQ(editor.updated, (std::vector<ParameterChange>{{6, 0.75f}, {6, 0.75f}}));
}

TEST_F(Editor, TellsThoseWhoDeriveTwiceOfEachViewForIndexMinusOne) {
    auto& editor = openWith(knob(5) + knob(300));
    bench.effect().values[5] = 0.75f;
    editor.updated.clear();
    editor.setParameter(-1, 0.25f);
    EXPECT_EQ(editor.updated,
              (std::vector<ParameterChange>{{-1, 0.75f}, {-1, 0.0f}, {-1, 0.75f}, {-1, 0.0f}}));
}

TEST_F(Editor, ShowsAtTheNextIdleWhatAnotherThreadHasChanged) {
    auto& editor = openWith(knob(6) + knob(7) + menu(8, 3));
    bench.effect().values = {};
    bench.effect().values[6] = 0.75f;
    std::thread([&] { editor.setParameter(6, 0.75f); }).join();
    EXPECT_EQ(editor.controlOf(6)->getValue(), 0.0f);
    editor.idle();
    EXPECT_EQ(editor.controlOf(6)->getValue(), 0.75f);

    bench.effect().values[7] = 0.25f;
    std::thread([&] { editor.setParameter(kRefreshAll, static_cast<float>(kRefreshAll)); }).join();
    editor.idle();
    EXPECT_EQ(editor.controlOf(7)->getValue(), 0.25f);

    bench.effect().values[8] = 0.5f;
    std::thread([&] { editor.setParameter(-1, 0.0f); }).join();
    editor.idle();
    EXPECT_EQ(editor.controlOf(8)->getValue(), 1.0f);
}

TEST_F(Editor, TakesAnyIndexFromAnotherThread) {
    auto& editor = openWith(knob(6));
    std::thread([&] {
        for (const std::int32_t index : {-2, 20, 21, 31, 32, 1000, std::numeric_limits<std::int32_t>::min(),
                                         std::numeric_limits<std::int32_t>::max()})
            for (const float value : {0.5f, NAN, INFINITY, -1.0f})
                editor.setParameter(index, value);
    }).join();
    editor.idle();
    EXPECT_EQ(editor.controlOf(6)->getValue(), 0.0f);
}

// From the hand to the effect

TEST_F(Editor, ReportsAMovedControlAsAutomation) {
    auto& editor = openWith(knob(6));
    editor.controlOf(6)->setValue(0.75f);
    editor.controlOf(6)->valueChanged();
    EXPECT_EQ(bench.effect().automated, (std::vector<ParameterChange>{{6, 0.75f}}));
    EXPECT_TRUE(editor.controlOf(6)->isDirty());
}

TEST_F(Editor, SpreadsTheEntriesOfAMenuEvenly) {
    auto& editor = openWith(menu(8, 3));
    for (const float entry : {0.0f, 1.0f, 2.0f}) {
        editor.controlOf(8)->setValue(entry);
        editor.valueChanged(editor.controlOf(8));
    }
    EXPECT_EQ(bench.effect().automated, (std::vector<ParameterChange>{{8, 0.0f}, {8, 0.5f}, {8, 1.0f}}));
}

TEST_F(Editor, ReportsNothingForAMenuOfOneEntry) {
    auto& editor = openWith(menu(8, 1));
    editor.valueChanged(editor.controlOf(8));
    EXPECT_TRUE(bench.effect().automated.empty());
}

TEST_F(Editor, ReportsAnotherControlOfAMenusTagUnscaled) {
    auto& editor = openWith(menu(8, 3) + knob(8));
    editor.controlAt(1)->setValue(0.75f);
    editor.valueChanged(editor.controlAt(1));
    EXPECT_EQ(bench.effect().automated, (std::vector<ParameterChange>{{8, 0.75f}}));
}

TEST_F(Editor, ReportsNoTagBeyondTheParameters) {
    auto& editor = openWith(knob(21) + knob(300) + knob(6) + update(300, 6));
    for (const std::int32_t tag : {21, 300})
        editor.valueChanged(editor.controlOf(tag));
    EXPECT_TRUE(bench.effect().automated.empty());
    EXPECT_TRUE(editor.controlOf(300)->isDirty());
    EXPECT_TRUE(editor.controlOf(6)->isDirty());
}

TEST_F(Editor, MarksWhatAnUpdateTiesToTheControl) {
    auto& editor = openWith(knob(6) + knob(300) + update(6, 300));
    editor.valueChanged(editor.controlOf(6));
    EXPECT_TRUE(editor.controlOf(300)->isDirty());
}

TEST_F(Editor, SetsAMenuOfActionsBackToItsFirstEntry) {
    for (const int tag : {1000, 1003}) {
        auto& editor = openWith(menu(tag, 3));
        editor.controlOf(tag)->setValue(2.0f);
        editor.valueChanged(editor.controlOf(tag));
        EXPECT_EQ(editor.controlOf(tag)->getValue(), 0.0f);
        EXPECT_TRUE(bench.effect().set.empty());
    }
}

TEST_F(Editor, RunsTheActionsOfTheChosenEntryWithoutAutomation) {
    auto& editor = openWith(menu(1001, 3));
    editor.menuActions.append({1, 2, 6, 0.75f});
    editor.menuActions.append({1, 2, 7, 0.5f});
    editor.menuActions.append({1, 1, 8, 0.5f});
    editor.menuActions.append({0, 2, 9, 0.5f});
    editor.controlOf(1001)->setValue(2.0f);
    editor.valueChanged(editor.controlOf(1001));
    EXPECT_EQ(bench.effect().set, (std::vector<ParameterChange>{{6, 0.75f}, {7, 0.5f}}));
    EXPECT_TRUE(bench.effect().automated.empty());
}

TEST_F(Editor, LeavesTheMenuBehindTheActionMenusAlone) {
    auto& editor = openWith(menu(1004, 3));
    editor.controlOf(1004)->setValue(2.0f);
    editor.valueChanged(editor.controlOf(1004));
    EXPECT_EQ(editor.controlOf(1004)->getValue(), 2.0f);
}

TEST_F(Editor, TellsTheHostOfGestures) {
    auto& editor = openWith(knob(6));
    editor.controlOf(6)->beginEdit();
    editor.beginEdit(3);
    editor.endEdit(3);
    EXPECT_EQ(bench.effect().callsOf(vst2::audioMasterBeginEdit).back().index, 3);
    EXPECT_EQ(bench.effect().callsOf(vst2::audioMasterEndEdit).back().index, 3);
}

TEST_F(Editor, TellsTheHostOfNoGestureOfWhatIsNoParameter) {
    auto& editor = openWith(knob(6));
    for (const std::int32_t tag : {-1, 21, 300, 999, 1000, 1021, 0x100000 + 6}) {
        editor.frame->beginEdit(tag);
        editor.frame->endEdit(tag);
    }
    EXPECT_TRUE(bench.effect().callsOf(vst2::audioMasterBeginEdit).empty());
    EXPECT_TRUE(bench.effect().callsOf(vst2::audioMasterEndEdit).empty());
    for (const std::int32_t id : {0, 20})
        editor.frame->beginEdit(id);
    EXPECT_EQ(bench.effect().callsOf(vst2::audioMasterBeginEdit).size(), 2u);
}

// Sizes, keys, time

TEST_F(Editor, AsksAHostThatCanForAnotherSize) {
    auto& editor = openWith("");
    bench.effect().hostCan = {"sizeWindow"};
    bench.effect().hostCalls.clear();
    EXPECT_TRUE(editor.beforeSizeChange({0, 0, 200.9, 100.9}, {0, 0, 120, 80}));
    using test::HostCall;
    EXPECT_EQ(bench.effect().hostCalls,
              (std::vector<HostCall>{{vst2::audioMasterCanDo, 0, 0, 0.0f, "sizeWindow"},
                                     {vst2::audioMasterSizeWindow, 200, 100, 0.0f, ""}}));
    bench.effect().hostAnswer = 0;
    EXPECT_FALSE(editor.beforeSizeChange({0, 0, 200, 100}, {0, 0, 120, 80}));
}

TEST_F(Editor, AllowsAnySizeWhereTheHostCannotBeAsked) {
    auto& editor = openWith("");
    EXPECT_TRUE(editor.beforeSizeChange({0, 0, 200, 100}, {0, 0, 120, 80}));
    editor.close();
    EXPECT_TRUE(editor.beforeSizeChange({0, 0, 200, 100}, {0, 0, 120, 80}));
    EXPECT_TRUE(bench.effect().callsOf(vst2::audioMasterSizeWindow).empty());
}

TEST_F(Editor, SharesOneKnobModeWithAllOthers) {
    bench.writeSkin("");
    auto& first = bench.makeEditor();
    vst2_door::AudioEffectX& effect = bench.effect();
    const test::ExposedEditor<xmlGuiEditor> second(&effect);
    EXPECT_TRUE(first.setKnobMode(1));
    EXPECT_EQ(second.getKnobMode(), 1);
    EXPECT_TRUE(first.setKnobMode(2));
    EXPECT_EQ(second.getKnobMode(), 2);
}

TEST_F(Editor, LeavesKeysToTheHostThatNoViewUses) {
    auto& editor = openWith(knob(6));
    interfaces::KeyCode key = {'x', 0, 0};
    EXPECT_FALSE(editor.onKeyDown(key));
    EXPECT_FALSE(editor.onKeyUp(key));
}

/// A clock whose hands a test turns.
class ToyClock final : public platform::Clock {
  public:
    ToyClock() { platform::replaceClock(this); }
    ~ToyClock() override { platform::replaceClock(nullptr); }
    std::uint32_t milliseconds() override { return now; }
    void sleepMilliseconds(std::uint32_t duration) override { slept += duration; }

    std::uint32_t now = 5000;
    std::uint32_t slept = 0;
};

TEST_F(Editor, GivesTheHostATurnInALongGesture) {
    ToyClock clock;
    auto& editor = openWith(knob(6));
    EXPECT_EQ(editor.lastTicks, 5000u);
    bool wasInside = false;
    bench.effect().whenAsked = [&](const test::HostCall& call) {
        if (call.opcode == vst2::audioMasterIdle)
            wasInside = editor.inIdleStuff;
    };
    editor.doIdleStuff();
    EXPECT_EQ(bench.effect().callsOf(vst2::audioMasterIdle).size(), 1u);
    EXPECT_TRUE(wasInside);
    EXPECT_FALSE(editor.inIdleStuff);
    EXPECT_EQ(editor.lastTicks, 5100u);
    EXPECT_EQ(clock.slept, 0u);
}

TEST_F(Editor, RestsInALongGestureUntilItIsNearlyTime) {
    ToyClock clock;
    auto& editor = openWith(knob(6));
    editor.lastTicks = 5055;
    editor.doIdleStuff();
    EXPECT_EQ(clock.slept, 4u);
    EXPECT_TRUE(bench.effect().callsOf(vst2::audioMasterIdle).empty());
    EXPECT_EQ(editor.lastTicks, 5055u);
    editor.lastTicks = 5054;
    editor.doIdleStuff();
    EXPECT_EQ(clock.slept, 8u);
    EXPECT_EQ(bench.effect().callsOf(vst2::audioMasterIdle).size(), 1u);
    EXPECT_EQ(editor.lastTicks, 5104u);
}

TEST_F(Editor, ServesTheQueueInALongGesture) {
    auto& editor = openWith(knob(6));
    editor.queueParameterUpdate(6);
    editor.lastTicks = 0;
    editor.doIdleStuff();
    EXPECT_TRUE(editor.controlOf(6)->isDirty());
}

// The hint

TEST_F(Editor, ShowsTheRestingHintWhileNothingIsTurned) {
    auto& editor = openWith(R"(<anydisp x="0" y="0" w="9" h="9"/>)");
    EXPECT_STREQ(editor.anyDisplay->getText(), "init");
    editor.idle();
    EXPECT_STREQ(editor.anyDisplay->getText(), "Parameter Value");
    EXPECT_TRUE(editor.anyDisplay->isDirty());
}

TEST_F(Editor, ShowsEveryHintAtTheLeft) {
    auto& editor = openWith(R"(<anydisp x="0" y="0" w="9" h="9" halign="2"/>)");
    EXPECT_EQ(editor.anyDisplay->getHoriAlign(), VSTGUI::kRightText);
    editor.idle();
    EXPECT_EQ(editor.anyDisplay->getHoriAlign(), VSTGUI::kLeftText) << "the resting one too";
}

TEST_F(Editor, DrawsAHintOnlyWhenItChanges) {
    auto& editor = openWith(R"(<anydisp x="0" y="0" w="9" h="9"/>)");
    editor.idle();
    clean(editor);
    editor.idle();
    EXPECT_FALSE(editor.anyDisplay->isDirty());
}

TEST_F(Editor, HintsAtTheParameterOfAModalView) {
    auto& editor = openWith(R"(<anydisp x="0" y="0" w="9" h="9" halign="2"/>)");
    auto* const modal = new VSTGUI::CKickButton({0, 0, 5, 5}, nullptr, 0x100000 + 6, nullptr);
    const auto modality = editor.frame->beginModalViewSession(modal);
    ASSERT_TRUE(modality);
    editor.idle();
    EXPECT_STREQ(editor.anyDisplay->getText(), "name 6: display 6 label 6");
    EXPECT_EQ(editor.anyDisplay->getHoriAlign(), VSTGUI::kLeftText);
    editor.frame->endModalViewSession(*modality);
    editor.idle();
    EXPECT_STREQ(editor.anyDisplay->getText(), "Parameter Value");
}

TEST_F(Editor, HintsAtNothingForAModalViewThatIsNoParameters) {
    auto& editor = openWith(R"(<anydisp x="0" y="0" w="9" h="9"/>)");
    for (const std::int32_t tag : {21, 300, -1}) {
        auto* const modal = new VSTGUI::CKickButton({0, 0, 5, 5}, nullptr, tag, nullptr);
        const auto modality = editor.frame->beginModalViewSession(modal);
        editor.idle();
        EXPECT_STREQ(editor.anyDisplay->getText(), "Parameter Value") << tag;
        editor.frame->endModalViewSession(*modality);
    }
}

TEST_F(Editor, NeedsNoHintDisplay) {
    auto& editor = openWith(knob(6));
    EXPECT_EQ(editor.anyDisplay, nullptr);
    editor.idle();
}

} // namespace
