// Reading a skin's text with lines and columns: always to what the plug-in's reader makes of it, and with a
// word where that one has none.

#include "tools/skin_check/skin_source.h"

#include "support/scratch_folder.h"
#include "support/tree_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>

namespace {

using tools::window::Finding;
using tools::window::Place;
using tools::window::placeWithin;
using tools::window::readSkinSource;

std::string shown(Place place) {
    return std::to_string(place.line) + ":" + std::to_string(place.column);
}

/// All that is found, one line each.
std::string findingsIn(const std::string& text) {
    std::string lines;
    for (const Finding& finding : readSkinSource(text).findings)
        lines += shown(finding.place) + " " + finding.text + "\n";
    return lines;
}

/// What the plug-in's reader makes of it; "refused" if it does not take it.
std::string readByPlugin(const std::string& text) {
    XmlNode* root = nullptr;
    const bool accepted = xmlParseNode(text.c_str(), 0, &root) >= 0;
    const std::string result = accepted ? treeText(*root) : "refused";
    xmlFreeNode(root);
    return result;
}

std::string readHere(const std::string& text) {
    const auto source = readSkinSource(text);
    return source.root ? treeText(*source.root) : "refused";
}

TEST(SkinSource, SaysNothingAboutAWellFormedSkin) {
    EXPECT_EQ(
        findingsIn("<GUI>\n  <CONSTANTS>a = 1, b</CONSTANTS>\n  <knob x=\"1\" y = \"a > b\"/>\n</gui>\n"),
        "");
}

TEST(SkinSource, KnowsWhereEverythingStands) {
    const auto source = readSkinSource("<GUI>\n\t<knob\n  x=\"1\"\n  y=\"22\"/>\n <C> some\n text</C></GUI>");
    ASSERT_TRUE(source.root);
    const auto& knob = source.root->children.at(0);
    EXPECT_EQ(shown(source.root->place), "1:1");
    EXPECT_EQ(shown(knob.place), "2:2");
    EXPECT_EQ(shown(knob.attributes.at(1).place), "4:3");
    EXPECT_EQ(shown(knob.attributes.at(1).valuePlace), "4:6");
    EXPECT_EQ(shown(source.root->children.at(1).textPlace), "5:6");
    EXPECT_EQ(source.root->children.at(1).text, "some\n text");
}

TEST(SkinSource, CountsCharactersAndNotBytes) {
    const auto source = readSkinSource("<a b=\"\u00e4\u00f6\u2013\" c=\"1\"/>");
    EXPECT_EQ(shown(source.root->attributes.at(1).place), "1:12");
    EXPECT_EQ(shown(placeWithin("ab\r\ncd", 5, {3, 7})), "4:2");
}

TEST(SkinSource, FindsAnAttributeInAnyLetterCaseAndTheFirstOfTwo) {
    const auto source = readSkinSource("<a X=\"1\" x=\"2\"/>");
    EXPECT_EQ(source.root->find("x")->value, "1");
    EXPECT_EQ(source.root->find("y"), nullptr);
}

TEST(SkinSource, TellsWhatIsPassedOverInSilence) {
    EXPECT_EQ(findingsIn("<a b c=\"1\"/>"), "1:4 the attribute \"b\" of <a> has no value and is ignored\n");
    EXPECT_EQ(findingsIn("<a/>trailing"), "1:5 everything after the end of <a> is ignored\n");
    EXPECT_EQ(findingsIn("<a/> \n"), "");
    EXPECT_EQ(findingsIn("<a>one<b/>two</a>"),
              "1:4 this text of <a> is lost: only the last one between its children counts\n");
    EXPECT_EQ(findingsIn("<a>Rock &amp; roll</a>"),
              "1:9 \"&amp;\" stays as it is written here; entities are not replaced\n");
    EXPECT_EQ(findingsIn("<a b=\"&#65; & &; x\"/>"),
              "1:7 \"&#65;\" stays as it is written here; entities are not replaced\n");
}

TEST(SkinSource, TellsWhereAnElementEndsInSilence) {
    const std::string found = findingsIn("<GUI><knob x=\"10 y=\"20\"/></GUI>");
    EXPECT_TRUE(found.starts_with("1:21 <knob> ends here, at \"20\"/></GUI>\"")) << found;
    EXPECT_TRUE(findingsIn("<a><b x=\"1\" / ></b></a>").starts_with("1:16 </b> is here, but <a> of line 1"));
    EXPECT_TRUE(findingsIn("<a><b /x></a>").starts_with("1:7 <b> ends here")) << findingsIn("<a><b /x></a>");
    EXPECT_TRUE(findingsIn("<a 1=\"2\"/>").starts_with("1:4 <a> ends here"));
}

TEST(SkinSource, SaysWhyTheReaderRefusesAFile) {
    const struct {
        const char* text;
        const char* place;
        const char* words;
    } cases[] = {
        {"", "1:1", "the file is empty"},
        {" \n ", "2:2", "the file ends where"},
        {"hello", "1:1", "and not with \"hello\""},
        {"<?xml version=\"1.0\"?><GUI/>", "1:1", "<?xml"},
        {"<GUI>\n<!-- knobs -->\n</GUI>", "2:1", "comments are not understood"},
        {"<GUI><![CDATA[x]]></GUI>", "1:6", "CDATA"},
        {"<!DOCTYPE GUI><GUI/>", "1:1", "begin with <!"},
        {"\xEF\xBB\xBF<GUI/>", "1:1", "byte-order mark"},
        {"\xFF\xFE<", "1:1", "UTF-16"},
        {"< a/>", "1:1", "must follow \"<\" at once"},
        {"<_a/>", "1:1", "begin with a letter"},
        {"</a>", "1:1", "never opened"},
        {"<a b='1'/>", "1:6", "\"b\" of <a> must be in double quotes"},
        {"<a b=1/>", "1:6", "double quotes"},
        {"<a>\n<b c=\"1/>\n</a>", "2:6", "\"c\" of <b> has no closing quote"},
        {"<a>\n<b>\n</a>", "3:1", "</a> is here, but <b> of line 2 must be closed first"},
        {"<a></a", "1:7", "must end with \">\""},
        {"<a></a b>", "1:8", "must end with \">\""},
        {"<a>\ntext", "2:5", "<a> of line 1 is not closed"},
        {"<a>\n <b", "2:4", "inside the tag <b> of line 2"},
        {"<a/", "1:4", "inside a tag"},
    };
    for (const auto& expected : cases) {
        const auto source = readSkinSource(expected.text);
        EXPECT_FALSE(source.root) << expected.text;
        ASSERT_FALSE(source.findings.empty()) << expected.text;
        EXPECT_EQ(shown(source.findings.back().place), expected.place) << expected.text;
        EXPECT_NE(source.findings.back().text.find(expected.words), std::string::npos)
            << expected.text << ": " << source.findings.back().text;
        EXPECT_EQ(readByPlugin(expected.text), "refused") << expected.text;
    }
}

TEST(SkinSource, SaysThatAZeroByteEndsTheFile) {
    const std::string text("<GUI>\0</GUI>", 12);
    const auto source = readSkinSource(text);
    EXPECT_FALSE(source.root);
    EXPECT_NE(source.findings.back().text.find("zero byte"), std::string::npos);
    EXPECT_TRUE(readSkinSource(std::string("<GUI/>\0x", 8)).root);
}

TEST(SkinSource, TellsOfAClosingNameThatEndsTheHost) {
    const auto source = readSkinSource("<a>\n</" + std::string(256, 'a') + ">");
    EXPECT_TRUE(source.findings.back().endsTheHost);
    EXPECT_EQ(shown(source.findings.back().place), "2:1");
    EXPECT_FALSE(readSkinSource("<a>\n</" + std::string(255, 'a') + ">").findings.back().endsTheHost);
}

TEST(SkinSource, NestsAsDeepAsThePluginsReader) {
    const auto nested = [](int depth) {
        std::string text;
        for (int i = 0; i < depth; ++i)
            text += "<a>";
        for (int i = 0; i < depth; ++i)
            text += "</a>";
        return text;
    };
    for (int depth : {999, 1000, 1001})
        EXPECT_EQ(readHere(nested(depth)), readByPlugin(nested(depth))) << depth;
}

// The same tree, whatever the text

TEST(BothReaders, AgreeOnTheKeptInputsOfTheFuzzer) {
    int seen = 0;
    for (const auto& entry :
         std::filesystem::directory_iterator(QUILLON_SOURCE "/tests/fuzz/corpus/xml_reader")) {
        const auto bytes = readFile(entry.path());
        const std::string text(bytes.begin(), bytes.end());
        EXPECT_EQ(readHere(text), readByPlugin(text)) << entry.path();
        ++seen;
    }
    EXPECT_GT(seen, 15);
}

TEST(BothReaders, AgreeOnPiecesInAnyOrder) {
    static const char* const pieces[] = {"<",   "</",   ">",       "/>",      "/",      "<a>", "</a>",
                                         "<b ", "</B>", "x=\"1\"", "x=",      "\"",     "=",   " ",
                                         "\n",  "text", "&lt;",    "<!--",    "?",      "_y",  "1",
                                         "a",   "b",    "'",       "<A x=\"", "</ a >", "-",   "\t"};
    int accepted = 0;
    for (unsigned seed = 0; seed < 60000; ++seed) {
        std::mt19937 chance(seed);
        std::string text = seed % 2 ? "<a>" : "";
        for (auto count = chance() % 12; count > 0; --count)
            text += pieces[chance() % std::size(pieces)];
        if (seed % 2)
            text += "</a>";
        const std::string expected = readByPlugin(text);
        ASSERT_EQ(readHere(text), expected) << text;
        accepted += expected != "refused";
    }
    EXPECT_GT(accepted, 1000) << "too few to say anything";
}

TEST(BothReaders, AgreeOnASkinThatWasDamagedAnywhere) {
    const auto bytes = readFile(QUILLON_SOURCE "/tests/fuzz/corpus/xml_reader/skin.xml");
    const std::string whole(bytes.begin(), bytes.end());
    ASSERT_NE(readByPlugin(whole), "refused");
    for (std::size_t at = 0; at < whole.size(); ++at) {
        const std::string cut = whole.substr(0, at), holed = whole.substr(0, at) + whole.substr(at + 1);
        ASSERT_EQ(readHere(cut), readByPlugin(cut)) << at;
        ASSERT_EQ(readHere(holed), readByPlugin(holed)) << at;
    }
}

} // namespace
