// The bench itself: a test that stands on it believes it.
#include "skin_bench.h"

#include "platform/message_box.h"

#include "vstgui/lib/cframe.h"
#include "vstgui/lib/controls/cbuttons.h"

#include <gtest/gtest.h>

namespace {

class Bench : public testing::Test {
  protected:
    test::SkinBench bench;
};

TEST_F(Bench, OpensAnEditorThatIsNotSeen) {
    bench.drawPicture("ground.png", 120, 80);
    bench.drawPicture("lamp.png", 10, 20, {VSTGUI::kRedCColor, VSTGUI::kGreenCColor});
    bench.writeSkin(R"(<background filename="ground.png"/>
                       <onoff x="3" y="4" id="6" bitmap_handle="lamp.png"/>)");
    auto& editor = bench.makeEditor();
    EXPECT_EQ(editor.rect.right, 120);
    EXPECT_EQ(editor.rect.bottom, 80);
    bench.effect().values[6] = 1.0f;
    ASSERT_TRUE(editor.open(nullptr));
    ASSERT_NE(editor.frame, nullptr);
    ASSERT_EQ(editor.controls().size(), 1U);
    EXPECT_NE(dynamic_cast<VSTGUI::COnOffButton*>(editor.controlAt(0)), nullptr);
    EXPECT_EQ(editor.controlAt(0), editor.controlOf(6));
    EXPECT_EQ(editor.controlOf(6)->getValue(), 1.0f);
    EXPECT_EQ(editor.controlAt(1), nullptr);
    EXPECT_EQ(editor.controlOf(7), nullptr);
    editor.close();
    EXPECT_EQ(editor.frame, nullptr);
}

TEST_F(Bench, WritesDownWhatIsDoneToTheEffect) {
    bench.effect().hostCan = {"sizeWindow"};
    bench.effect().beginEdit(3);
    bench.effect().setParameterAutomated(3, 0.25f);
    EXPECT_TRUE(bench.effect().canHostDo("sizeWindow"));
    EXPECT_FALSE(bench.effect().canHostDo("anything else"));
    using test::HostCall;
    EXPECT_EQ(bench.effect().hostCalls,
              (std::vector<HostCall>{{vst2::audioMasterBeginEdit, 3, 0, 0.0f, ""},
                                     {vst2::audioMasterAutomate, 3, 0, 0.25f, ""},
                                     {vst2::audioMasterCanDo, 0, 0, 0.0f, "sizeWindow"},
                                     {vst2::audioMasterCanDo, 0, 0, 0.0f, "anything else"}}));
    EXPECT_EQ(bench.effect().automated, (std::vector<test::ParameterChange>{{3, 0.25f}}));
    EXPECT_EQ(bench.effect().set, bench.effect().automated);
    EXPECT_EQ(bench.effect().values[3], 0.25f);
}

TEST_F(Bench, KeepsMessagesAndSettingsToItself) {
    platform::showMessage("the text", "the title");
    EXPECT_EQ(bench.messages, (std::vector<test::Message>{{"the text", "the title"}}));
    EXPECT_FALSE(platform::readSetting("SkinName"));
    EXPECT_TRUE(platform::writeSetting("SkinName", "blue"));
    EXPECT_EQ(platform::readSetting("SkinName"), "blue");
    bench.settings.keeps = false;
    EXPECT_FALSE(platform::writeSetting("SkinName", "red"));
    EXPECT_EQ(bench.settings.texts, (std::map<std::string, std::string>{{"SkinName", "blue"}}));
}

} // namespace
