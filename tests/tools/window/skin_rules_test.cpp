// What the words of a skin mean. The table of kinds and tags is held against the builder itself.

#include "skin/skin_table.h"
#include "tools/skin_check/recorded_build.h"
#include "tools/skin_check/skin_check.h"

#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

namespace {

using skin::KindRule;
using skin::skinKinds;
using skin::TagRule;
using skin::TagType;
using tools::window::checkSkinText;
using tools::window::Finding;

/// What is found in a skin with this object in it, one line each.
std::string judged(const std::string& object) {
    std::string lines;
    for (const Finding& finding :
         checkSkinText("<GUI><background filename=\"a.png\"/>\n" + object + "</GUI>"))
        lines += std::to_string(finding.place.line) + ":" + std::to_string(finding.place.column) + " " +
                 finding.text + "\n";
    return lines;
}

TEST(SkinRules, WantARootOfTheRightName) {
    const auto findings = checkSkinText("<SKIN/>");
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_EQ(findings[0].text, "a skin is one element <GUI>, and this one is <SKIN>");
    EXPECT_TRUE(checkSkinText("<gui><background filename=\"a.png\"/></GUI>").empty());
}

TEST(SkinRules, WantABackgroundThatNamesAPicture) {
    EXPECT_EQ(checkSkinText("<GUI></GUI>").front().text,
              "the skin has no <background> with a picture, and so no window");
    EXPECT_EQ(judged("<background/>"), "2:1 <background> without \"filename\" does nothing\n");
    EXPECT_EQ(judged("<background filename=\"b.png\"/>"),
              "2:1 a second <background> makes a second window over the first\n");
    EXPECT_EQ(judged("<onoff bitmap_handle=\"\"/>"), "2:23 \"bitmap_handle\" of <onoff> names no picture\n");
}

TEST(SkinRules, KnowTheTagsOfEachKindInAnyLetterCase) {
    EXPECT_EQ(judged("<KNOB X=\"1\" Bitmap_Handle=\"a.png\"/>"), "");
    EXPECT_EQ(judged("<knob widht=\"1\"/>"), "2:7 <knob> has no tag \"widht\"\n");
    EXPECT_EQ(judged("<viewtaps id=\"1\"/>"), "2:11 <ViewTaps> has no tag \"id\"\n");
    EXPECT_EQ(judged("<knob x=\"1\" X=\"2\"/>"), "2:13 \"X\" of <knob> is repeated; the first one counts\n");
}

TEST(SkinRules, LookIntoExpressions) {
    EXPECT_EQ(judged("<knob x=\"(1+2)*3\"/>"), "2:15 \"x\" of <knob>: text after a closing parenthesis is "
                                               "ignored: parentheses work only at the end\n");
    EXPECT_EQ(judged("<knob x=\"nobody\"/>"), "") << "the plug-in says that";
}

TEST(SkinRules, TellWhatIsTooLong) {
    EXPECT_EQ(judged("<onoff bitmap_handle=\"" + std::string(127, 'p') + "\"/>"), "");
    EXPECT_EQ(judged("<onoff bitmap_handle=\"" + std::string(128, 'p') + "\"/>"),
              "2:23 \"bitmap_handle\" of <onoff> is cut after 127 characters\n");
}

TEST(SkinRules, KnowWhatAColourIs) {
    for (const char* colour : {"FF8000", "ff8000", "0xFF8000", " 00aaFF "})
        EXPECT_EQ(judged("<display fontcolor=\"" + std::string(colour) + "\"/>"), "") << colour;
    for (const char* colour : {"#FF8000", "F80", "red", "FF8000FF", ""})
        EXPECT_EQ(
            judged("<display fontcolor=\"" + std::string(colour) + "\"/>"),
            "2:21 \"fontcolor\" of <display> should be six digits for red, green and blue as in FF8000, "
            "without #\n")
            << colour;
}

TEST(SkinRules, KnowWhatYesAndNoAre) {
    for (const char* value : {"y", "Yes", "1", "n", "0", "false"})
        EXPECT_EQ(judged("<knob stackbmp=\"" + std::string(value) + "\"/>"), "") << value;
    for (const char* value : {"true", "on", ""})
        EXPECT_EQ(judged("<knob stackbmp=\"" + std::string(value) + "\"/>"),
                  "2:17 \"stackbmp\" of <knob> means no: a yes begins with y, Y or 1\n")
            << value;
    EXPECT_EQ(judged("<display transparent=\"y\"/>"), "");
    EXPECT_EQ(judged("<display transparent=\"no\"/>"),
              "2:23 \"transparent\" of <display> counts as yes whatever it says; leave the tag out for no\n");
}

TEST(SkinRules, GoThroughConstantsLineByLine) {
    EXPECT_EQ(judged("<CONSTANTS>\n a = 1, b\n\tc = 2*(3+4)\n</CONSTANTS>"), "");
    EXPECT_EQ(judged("<CONSTANTS>\n a = 1, b = 2 c\n</CONSTANTS>"),
              "3:15 the constant: everything from \"c\" on is ignored\n");
    EXPECT_EQ(judged("<CONSTANTS>two words</CONSTANTS>"), "") << "the plug-in says that";
    const auto fatal = [](const std::string& line) {
        const auto findings = checkSkinText("<GUI><CONSTANTS>" + line + "</CONSTANTS></GUI>");
        return std::any_of(findings.begin(), findings.end(), [](const Finding& f) { return f.endsTheHost; });
    };
    EXPECT_TRUE(fatal("a = 1\n" + std::string(256, '1')));
    EXPECT_FALSE(fatal("a = 1\n" + std::string(255, '1')));
    EXPECT_TRUE(fatal(std::string(60, 'n')));
    EXPECT_FALSE(fatal(std::string(59, 'n')));
}

TEST(SkinRules, KnowWhatAMenuIsMadeOf) {
    EXPECT_EQ(judged("<optionmenu><list><entry>One</entry></list></optionmenu>"), "");
    const std::string meaningless =
        "2:1 <optionmenu> needs a <list> of entries as its first element; without one it shows meaningless "
        "entries\n";
    EXPECT_EQ(judged("<optionmenu/>"), meaningless);
    EXPECT_EQ(judged("<optionmenu><entry>One</entry></optionmenu>"), meaningless);
    EXPECT_EQ(judged("<optionmenu><list><item>One</item></list><list/></optionmenu>"),
              "2:19 a <list> holds elements <entry>; this one is ignored\n"
              "2:42 only the first element of <optionmenu> is read\n");
    EXPECT_EQ(judged("<knob><list/></knob>"),
              "2:7 only <optionmenu> may contain elements; this one is ignored\n");
}

TEST(SkinRules, TellOfTextThatMeansNothing) {
    EXPECT_EQ(judged("stray <knob>words</knob>"), "2:1 text is ignored here\n2:13 text is ignored here\n");
}

TEST(SkinRules, SayOnceWhatTheReaderTakesForTextByMistake) {
    const std::string found = judged("<knob 5/>");
    EXPECT_TRUE(found.starts_with("2:7 <knob> ends here")) << found;
    EXPECT_EQ(std::count(found.begin(), found.end(), '\n'), 1) << found;
}

// The table against the builder

/// A skin's folder with one picture.
class KindsAndTags : public testing::Test {
  protected:
    KindsAndTags() {
        std::filesystem::copy_file(QUILLON_SOURCE "/tests/toolkit/pictures/squares.png",
                                   folder.file("a.png"));
    }

    /// What the builder says of an object, one line each.
    std::string built(const std::string& object) {
        const std::string text = "<GUI><background filename=\"a.png\"/>" + object + "</GUI>";
        folder.writeText("skin.xml", text);
        std::string lines;
        const auto source = tools::window::readSkinSource(text);
        for (const Finding& finding : buildRecorded(folder.path(), *source.root).findings)
            lines += finding.text + "\n";
        return lines;
    }

    static std::string valueFor(const TagRule& tag) {
        switch (tag.type) {
        case TagType::number:
            return "1";
        case TagType::picture:
            return "a.png";
        case TagType::colour:
            return "FF8000";
        case TagType::flag:
        case TagType::presence:
            break;
        }
        return "y";
    }

    /// An object with all tags of its kind, but for `missing`, and another value for `changed`.
    static std::string object(const KindRule& kind, std::string_view missing = {},
                              std::string_view changed = {}, const std::string& value = {}) {
        std::string text = "<" + std::string(kind.name);
        for (const TagRule& tag : kind.tags)
            if (tag.name != missing)
                text += " " + std::string(tag.name) + "=\"" + (tag.name == changed ? value : valueFor(tag)) +
                        "\"";
        return text + "/>";
    }

    /// What the builder calls a kind when it speaks of one of its tags.
    static bool isReportedAs(const std::string& message, std::string_view tag) {
        return message.find(" tag " + std::string(tag) + " for object ") != std::string::npos;
    }

    ScratchFolder folder;
};

TEST_F(KindsAndTags, AreTheOnesThatTheBuilderKnows) {
    for (const KindRule& kind : skinKinds())
        EXPECT_EQ(built(object(kind)), "") << kind.name;
    EXPECT_EQ(built("<knobb/>"), "<knobb> is ignored: there is no such kind of object\n");
}

TEST_F(KindsAndTags, AreRequiredWhereTheBuilderMissesThem) {
    for (const KindRule& kind : skinKinds())
        for (const TagRule& tag : kind.tags) {
            const std::string message = built(object(kind, tag.name));
            if (tag.isRequired)
                EXPECT_TRUE(
                    message.starts_with("Skin Error: Missing tag " + std::string(tag.name) + " for object "))
                    << kind.name << " without " << tag.name << ": " << message;
            else
                EXPECT_EQ(message, "") << kind.name << " without " << tag.name;
        }
}

TEST_F(KindsAndTags, AreNumbersWhereTheBuilderCalculates) {
    for (const KindRule& kind : skinKinds())
        for (const TagRule& tag : kind.tags) {
            const std::string message = built(object(kind, {}, tag.name, "1.2.3"));
            if (tag.type == TagType::number)
                EXPECT_EQ(message.find("Skin Error: Error calculating value of tag " + std::string(tag.name)),
                          0u)
                    << kind.name << " " << tag.name << ": " << message;
            else
                EXPECT_FALSE(isReportedAs(message, tag.name))
                    << kind.name << " " << tag.name << ": " << message;
        }
}

TEST_F(KindsAndTags, AreAllThatTheBuilderReads) {
    std::set<std::string> numbers;
    for (const KindRule& kind : skinKinds())
        for (const TagRule& tag : kind.tags)
            if (tag.type == TagType::number)
                numbers.insert(tag.name);
    for (const KindRule& kind : skinKinds()) {
        std::string text = object(kind);
        for (const std::string& tag : numbers)
            if (!skin::tagNamed(kind, tag))
                text.insert(text.size() - 2, " " + tag + "=\"1.2.3\"");
        EXPECT_EQ(built(text), "") << kind.name;
    }
}

TEST_F(KindsAndTags, StandInTheOrderInWhichTheBuilderReadsThem) {
    for (const KindRule& kind : skinKinds()) {
        // Each number is known by the tag before it in the table, and stands in front of that in the file.
        std::string attributes, constant;
        for (const TagRule& tag : kind.tags) {
            const bool isNumber = tag.type == TagType::number;
            const std::string next = "c_" + std::string(tag.name);
            const std::string value = constant.empty() ? "1" : constant;
            attributes = " " + std::string(tag.name) + "=\"" +
                         (isNumber ? next + " = " + value : valueFor(tag)) + "\"" + attributes;
            if (isNumber)
                constant = next;
        }
        EXPECT_EQ(built("<" + std::string(kind.name) + attributes + "/>"), "") << kind.name;
    }
}

TEST_F(KindsAndTags, ArePicturesWhereTheBuilderLooksForAFile) {
    for (const KindRule& kind : skinKinds())
        for (const TagRule& tag : kind.tags)
            if (tag.type == TagType::picture) {
                EXPECT_EQ(built(object(kind, {}, tag.name, "b.png")),
                          "the picture \"b.png\" is not in the skin's folder\n")
                    << kind.name << " " << tag.name;
            }
}

} // namespace
