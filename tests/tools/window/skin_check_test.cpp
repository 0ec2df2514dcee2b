// A whole skin, checked: what its text holds and what its building shows, in the order of the file.

#include "tools/skin_check/skin_check.h"

#include "platform/module_folder.h"
#include "platform/settings.h"
#include "support/scratch_folder.h"
#include "tools/common/tool_error.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace {

using tools::window::checkSkin;
using tools::window::Finding;
using tools::window::lineFor;

class CheckedSkin : public testing::Test {
  protected:
    CheckedSkin() { addPicture("squares.png", "bg.png"); }

    void addPicture(const std::string& picture, const std::string& name) {
        std::filesystem::copy_file(QUILLON_SOURCE "/tests/toolkit/pictures/" + picture, folder.file(name));
    }

    /// All that is found, one line each, without the file's name.
    std::string check(const std::string& text) {
        folder.writeText("skin.xml", text);
        std::string lines;
        for (const Finding& finding : checkSkin(folder.path()))
            lines += lineFor("", finding);
        return lines;
    }

    ScratchFolder folder;
};

TEST_F(CheckedSkin, IsInOrder) {
    EXPECT_EQ(
        check(
            "<GUI>\n<background filename=\"BG.png\"/>\n<ViewTaps x=\"1\" y=\"1\" w=\"9\" h=\"9\"/>\n</GUI>"),
        "");
}

TEST_F(CheckedSkin, IsJudgedByTheTextThatWasRead) {
    const std::string good = "<GUI>\n<background filename=\"bg.png\" colour=\"red\"/>\n<knoob/></GUI>";
    folder.writeText("skin.xml", good);
    const tools::window::SkinText text(folder.path());
    folder.writeText("skin.xml", "<GUI>\n<knob");
    EXPECT_EQ(text.obstacle(), nullptr);
    EXPECT_EQ(text.findings().size(), 1u) << "the tag that no background has";
    const tools::window::SkinText later(folder.path());
    ASSERT_NE(later.obstacle(), nullptr);
    EXPECT_EQ(later.obstacle()->place.line, 2);
    EXPECT_EQ(later.findingsBuiltIn(folder.path()).size(), later.findings().size());
    folder.writeText("skin.xml", good);
    EXPECT_EQ(text.findingsBuiltIn(folder.path()).size(), 2u) << "that, and the object of no kind";
}

TEST_F(CheckedSkin, IsReadInAnyLetterCaseOfItsFile) {
    folder.writeText("Skin.XML", "<GUI><background filename=\"bg.png\"/></GUI>");
    EXPECT_TRUE(checkSkin(folder.path()).empty());
}

TEST_F(CheckedSkin, ShowsEachMessageWhereItBelongs) {
    EXPECT_EQ(check("<GUI>\n"
                    "<CONSTANTS>a = 5\n  b = nobody, c</CONSTANTS>\n"
                    "<background filename=\"bg.png\"/>\n"
                    "<knob x=\"1\" y=\"1\"\n w=\"unknown\" h=\"9\" id=\"0\"/>\n"
                    "<knob x=\"1\" y=\"1\" w=\"9\" id=\"0\"/>\n"
                    "<autodisp x=\"1\" y=\"1\" w=\"9\" h=\"9\" id=\"1\" link=\"99\"/>\n"
                    "</GUI>"),
              ":3:3: b = nobody: Expression parser error\n"
              ":6:5: Skin Error: Error calculating value of tag w for object knob\n"
              ":7:1: Skin Error: Missing tag h for object knob\n"
              ":8:48: Skin Error: Error attempting to link a display to an invalid parameter id\n");
}

TEST_F(CheckedSkin, ShowsAFaultThatCostsTheObjectNothing) {
    EXPECT_EQ(check("<GUI><background filename=\"bg.png\"/>\n"
                    "<knob x=\"1\" y=\"1\" w=\"9\" h=\"9\" id=\"0\" default=\"nobody\"/></GUI>"),
              ":2:47: Skin Error: Error calculating value of tag default for object knob\n");
}

TEST_F(CheckedSkin, ShowsObjectsThatArePassedOver) {
    EXPECT_EQ(check("<GUI>\n<onoff x=\"1\" y=\"1\" id=\"0\" bitmap_handle=\"bg.png\"/>\n"
                    "<background filename=\"bg.png\"/>\n<knoob/>\n</GUI>"),
              ":2:1: <onoff> is ignored: it must come after <background>\n"
              ":4:1: <knoob> is ignored: there is no such kind of object\n");
}

TEST_F(CheckedSkin, ShowsEachUseOfAPictureThatIsNotThere) {
    addPicture("torn.png", "torn.png");
    folder.writeText("words.png", "no picture at all");
    EXPECT_EQ(check("<GUI>\n<background filename=\"bg.png\"/>\n"
                    "<onoff x=\"1\" y=\"1\" id=\"0\" bitmap_handle=\"images\\Gone.png\"/>\n"
                    "<onoff x=\"1\" y=\"1\" id=\"1\" bitmap_handle=\"IMAGES\\gone.png\"/>\n"
                    "<onoff x=\"1\" y=\"1\" id=\"2\" bitmap_handle=\"words.png\"/>\n"
                    "<onoff x=\"1\" y=\"1\" id=\"3\" bitmap_handle=\"torn.png\"/>\n</GUI>"),
              ":3:42: the picture \"images\\Gone.png\" is not in the skin's folder\n"
              ":4:42: the picture \"IMAGES\\gone.png\" is not in the skin's folder\n"
              ":5:42: the picture \"words.png\" cannot be read: it is truncated, too large, or not a PNG, "
              "BMP, JPEG, GIF, TIFF or ICO\n"
              ":6:42: the picture \"torn.png\" cannot be read: it is truncated, too large, or not a PNG, "
              "BMP, JPEG, GIF, TIFF or ICO\n");
}

TEST_F(CheckedSkin, ThatIsRefusedIsNotBuilt) {
    EXPECT_EQ(check("<GUI>\n<background filename=\"gone.png\"/>\n<!-- soon -->\n</GUI>"),
              ":3:1: comments are not understood; leave them out\n");
    EXPECT_EQ(check("<skin>\n<background filename=\"gone.png\"/></skin>"),
              ":1:1: a skin is one element <GUI>, and this one is <skin>\n");
}

TEST_F(CheckedSkin, ThatWouldEndTheHostIsNotBuilt) {
    const std::string name(60, 'k');
    EXPECT_EQ(check("<GUI>\n<background filename=\"gone.png\"/>\n<update src=\"1 + " + name +
                    "\" dst=\"1\"/></GUI>"),
              ":3:18: \"src\" of <update>: a name of 60 characters or more crashes the host\n");
    EXPECT_EQ(check("<GUI>\n<CONSTANTS>" + std::string(300, '1') +
                    "</CONSTANTS>\n"
                    "<background filename=\"bg.png\"/></GUI>"),
              ":2:12: a constant of 256 characters or more crashes the host\n");
}

TEST_F(CheckedSkin, MissesItsFile) {
    EXPECT_THROW(checkSkin(folder.path()), tools::ToolError);
}

TEST_F(CheckedSkin, LeavesTheProcessAsItWas) {
    setenv("XDG_CONFIG_HOME", folder.path().c_str(), 1);
    platform::writeSetting("SkinName", "mine");
    const std::string module = platform::moduleFolder();
    check("<GUI><background filename=\"bg.png\"/></GUI>");
    EXPECT_EQ(platform::readSetting("SkinName"), "mine");
    EXPECT_EQ(platform::moduleFolder(), module);
}

TEST(LinesForFindings, StandInOneLineEach) {
    EXPECT_EQ(lineFor("my skin/skin.xml", {{3, 14}, "two\nlines"}), "my skin/skin.xml:3:14: two lines\n");
}

} // namespace
