// The skin author's guide keeps its word: its examples are skins without a fault, its tables are those of the
// skin language, and what it says of expressions and parameters is what the plug-in makes of them.
#include "guide_text.h"

#include "parameters/host_panel.h"
#include "parameters/parameter_table.h"
#include "skin/skin_table.h"
#include "skin_language/expression.h"
#include "support/scratch_folder.h"
#include "support/tool_run.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

namespace files = std::filesystem;
using skin::KindRule;
using skin::TagRule;
using skin::TagType;

const files::path docs = files::path(QUILLON_SOURCE) / "docs";
const files::path firstSkin = docs / "examples" / "First Skin";

std::string textOf(const files::path& file) {
    const std::vector<std::uint8_t> bytes = readFile(file.string());
    return {bytes.begin(), bytes.end()};
}

const std::string& guide() {
    static const std::string text = textOf(docs / "skins.md");
    return text;
}

Section sectionCalled(const std::string& heading) {
    const auto all = sections(guide());
    const auto found = std::ranges::find(all, heading, &Section::heading);
    return found == all.end() ? Section{} : *found;
}

std::vector<CodeBlock> examples(const std::string& language) {
    auto blocks = codeBlocks(guide());
    std::erase_if(blocks, [&](const CodeBlock& block) { return block.language != language; });
    return blocks;
}

/// One that is no whole skin lies on a plain panel.
std::string wholeSkin(const std::string& example) {
    if (example.starts_with("<GUI>"))
        return example;
    std::string skin = "<GUI>\n<background filename=\"panel.png\"/>\n";
    return skin.append(example).append("</GUI>\n");
}

/// What the tool finds in a skin of this text that has all the examples' pictures at hand, with nothing of
/// the folder in its lines.
ToolResult check(const std::string& skin) {
    const ScratchFolder scratch;
    const files::path folder = scratch.path() / "Example";
    files::copy(docs / "examples" / "parts", folder);
    files::copy(firstSkin / "background.png", folder);
    scratch.writeText("Example/skin.xml", skin);
    ToolResult result =
        runTool(scratch, {"--skin", folder.string(), "--check"}, ErrorEnd::file, QUILLON_WINDOW);
    const std::string prefix = folder.string() + "/";
    for (std::size_t at = 0; (at = result.out.find(prefix, at)) != std::string::npos;)
        result.out.erase(at, prefix.size());
    return result;
}

std::string wordFor(TagType type) {
    static const std::map<TagType, std::string> words = {{TagType::number, "number"},
                                                         {TagType::picture, "picture"},
                                                         {TagType::colour, "colour"},
                                                         {TagType::flag, "flag"},
                                                         {TagType::presence, "presence"}};
    return words.at(type);
}

/// Tag, type and whether it is needed, as one text for each tag, in the order in which they are read.
using TagLines = std::vector<std::string>;

TagLines tagsInGuide(const std::string& kind) {
    TagLines lines;
    for (const Row& row : sectionCalled(kind).rows) {
        if (row.size() != 3)
            continue;
        if (row[0].find("(#tags-of-text)") != std::string::npos)
            std::ranges::copy(tagsInGuide("Tags of text"), std::back_inserter(lines));
        else if (row[0].starts_with('`'))
            lines.push_back(code(row[0]) + " " + row[1] + (row[2] == "needed" ? " needed" : ""));
    }
    return lines;
}

TagLines tagsOf(const KindRule& kind) {
    TagLines lines;
    for (const TagRule& tag : kind.tags)
        lines.push_back(std::string(tag.name) + " " + wordFor(tag.type) + (tag.isRequired ? " needed" : ""));
    return lines;
}

TEST(SkinGuide, HasExamplesWithoutAFault) {
    const auto blocks = examples("xml");
    ASSERT_GE(blocks.size(), 15u);
    for (const CodeBlock& block : blocks) {
        const ToolResult result = check(wholeSkin(block.text));
        EXPECT_EQ(result.exitCode, 0) << "line " << block.line << "\n" << result.out << result.err;
        EXPECT_EQ(result.out, "") << "line " << block.line;
    }
}

TEST(SkinGuide, QuotesWhatTheToolFindsInItsWrongExample) {
    const auto blocks = examples("xml wrong");
    ASSERT_EQ(blocks.size(), 1u);
    const ToolResult result = check(wholeSkin(blocks[0].text));
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(guide().find("```\n" + result.out + "```\n"), std::string::npos) << result.out;
}

TEST(SkinGuide, BeginsWithTheSkinThatLiesBesideIt) {
    const auto blocks = examples("xml");
    ASSERT_FALSE(blocks.empty());
    EXPECT_EQ(blocks[0].text, textOf(firstSkin / "skin.xml"));
    EXPECT_EQ(std::ranges::count(blocks[0].text, '\n'), 10);
    const ScratchFolder scratch;
    const ToolResult result =
        runTool(scratch, {"--skin", firstSkin.string(), "--check"}, ErrorEnd::file, QUILLON_WINDOW);
    EXPECT_EQ(result.exitCode, 0) << result.out << result.err;
}

TEST(SkinGuide, TellsOfEveryKindWhichTagsItHasAndWhichItNeeds) {
    for (const KindRule& kind : skin::skinKinds()) {
        const std::string name(kind.name);
        EXPECT_EQ(sectionCalled(name).heading, name);
        EXPECT_EQ(tagsInGuide(name), tagsOf(kind)) << name;
    }
}

TEST(SkinGuide, HasAnExampleForEveryKind) {
    std::string all;
    for (const CodeBlock& block : examples("xml"))
        all += block.text;
    for (const KindRule& kind : skin::skinKinds())
        EXPECT_NE(all.find(std::string("<").append(kind.name)), std::string::npos) << kind.name;
}

TEST(SkinGuide, TellsWhatExpressionsAreWorth) {
    const auto rows = sectionCalled("Numbers").rows;
    ASSERT_GE(rows.size(), 20u);
    for (const Row& row : rows) {
        ExprTable constants;
        int position = 0;
        double value = 0.0;
        const std::string expression = code(row.at(0));
        const bool isGood = exprEvaluate(&constants, expression.c_str(), &position, &value);
        ASSERT_EQ(isGood, row.at(1) != "error") << expression;
        if (isGood) {
            EXPECT_EQ(value, std::stod(row.at(1))) << expression;
        }
    }
}

TEST(SkinGuide, NamesEveryParameter) {
    const auto rows = sectionCalled("The parameters").rows;
    ASSERT_EQ(rows.size(), std::size_t{parameters::kNumLiveParameters});
    for (std::int32_t id = 0; id < parameters::kNumLiveParameters; ++id) {
        const Row& row = rows[static_cast<std::size_t>(id)];
        EXPECT_EQ(row.at(0), std::to_string(id));
        EXPECT_EQ(code(row.at(1)), parameters::parameter(id).name);
        EXPECT_EQ(row.at(2), parameters::panelEntry(id).name);
    }
}

TEST(SkinGuide, ShowsThePicturesThatThereAre) {
    const auto shown = linksTo(guide(), "images/skins/");
    std::set<std::string> there;
    for (const files::directory_entry& entry : files::directory_iterator(docs / "images" / "skins"))
        there.insert(entry.path().filename().string());
    EXPECT_EQ(std::set<std::string>(shown.begin(), shown.end()), there);
}

TEST(SkinGuide, LinksToHeadingsThatItHas) {
    std::set<std::string> anchors;
    for (const Section& section : sections(guide()))
        anchors.insert(anchorOf(section.heading));
    for (const std::string& link : linksTo(guide(), "#"))
        EXPECT_TRUE(anchors.contains(link)) << link;
}

} // namespace
