// The command line.

#include "tools/window/options.h"

#include "tools/common/tool_error.h"

#include <gtest/gtest.h>

namespace {

using namespace tools;
using namespace tools::window;

std::variant<Options, HelpText> parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "quillon-window");
    return parseOptions(static_cast<int>(arguments.size()), arguments.data());
}

Options optionsOf(const std::vector<const char*>& arguments) {
    return std::get<Options>(parse(arguments));
}

std::string errorOf(const std::vector<const char*>& arguments) {
    try {
        parse(arguments);
    } catch (const ToolError& error) {
        return error.what();
    }
    return "none";
}

TEST(WindowOptions, MayAllBeLeftOut) {
    const Options options = optionsOf({});
    EXPECT_EQ(options.skin, "");
    EXPECT_TRUE(options.library.empty());
    EXPECT_TRUE(options.screenshot.empty());
    EXPECT_FALSE(options.watch);
    EXPECT_FALSE(options.check);
}

TEST(WindowOptions, AreRead) {
    const Options options =
        optionsOf({"--skin", "my skin", "--program", "3", "--set", "Feedback=0.8", "--set", "Stretch=10%",
                   "--screenshot", "a.PNG", "--watch", "--library", "x.so"});
    EXPECT_EQ(options.skin, "my skin");
    EXPECT_EQ(options.program, "3");
    ASSERT_EQ(options.settings.size(), 2u);
    EXPECT_EQ(options.settings[1].setting.parameter, "Stretch");
    EXPECT_EQ(options.screenshot, std::filesystem::current_path() / "a.PNG");
    EXPECT_EQ(options.library, std::filesystem::current_path() / "x.so");
    EXPECT_TRUE(options.watch);
}

TEST(WindowOptions, ThatDoNotGoTogetherAreRefused) {
    EXPECT_EQ(errorOf({"--check"}), "--check: choose the skin with --skin");
    EXPECT_EQ(errorOf({"--watch"}), "--watch: choose the skin with --skin");
    for (const std::vector<const char*>& also : {std::vector<const char*>{"--watch"},
                                                 {"--screenshot", "a.png"},
                                                 {"--program", "1"},
                                                 {"--set", "a=1"}}) {
        std::vector<const char*> arguments = {"--skin", "x", "--check"};
        arguments.insert(arguments.end(), also.begin(), also.end());
        EXPECT_EQ(errorOf(arguments), "--check opens no window; use it with --skin and --library only");
    }
}

TEST(WindowOptions, AskForOutlinesOfASkinInAPicture) {
    EXPECT_FALSE(optionsOf({"--skin", "x", "--screenshot", "a.png"}).outlines);
    EXPECT_TRUE(optionsOf({"--skin", "x", "--screenshot", "a.png", "--outlines"}).outlines);
    EXPECT_EQ(errorOf({"--outlines", "--screenshot", "a.png"}), "--outlines: choose the skin with --skin");
    EXPECT_EQ(errorOf({"--outlines", "--skin", "x"}),
              "--outlines: choose the picture file with --screenshot");
}

TEST(WindowOptions, AskForANewSkinAndNothingElse) {
    EXPECT_EQ(optionsOf({"--new-skin", "my skin"}).newSkin, std::filesystem::current_path() / "my skin");
    EXPECT_TRUE(optionsOf({}).newSkin.empty());
    for (const std::vector<const char*>& also : {std::vector<const char*>{"--skin", "x"},
                                                 {"--skin", "x", "--check"},
                                                 {"--screenshot", "a.png"},
                                                 {"--library", "x.so"},
                                                 {"--program", "1"},
                                                 {"--set", "a=1"}}) {
        std::vector<const char*> arguments = {"--new-skin", "y"};
        arguments.insert(arguments.end(), also.begin(), also.end());
        EXPECT_EQ(errorOf(arguments), "--new-skin opens no window; use it without other options");
    }
}

TEST(WindowOptions, ThatMeanNothingAreRefused) {
    EXPECT_EQ(errorOf({"--screenshot", "a.jpg"}),
              "a.jpg: the picture is a PNG, so its name should end in .png");
    EXPECT_EQ(errorOf({"--skin", ""}), "--skin: nothing was given");
    EXPECT_NE(errorOf({"--set", "Feedback"}).find("--set \"Feedback\": write it as PARAMETER=VALUE"),
              std::string::npos);
    EXPECT_NE(errorOf({"--nothing"}), "none");
    EXPECT_NE(errorOf({"file"}), "none");
}

TEST(WindowOptions, AreExplained) {
    const auto parsed = parse({"--help"});
    const std::string help = std::get<HelpText>(parsed).text;
    for (const char* option : {"--skin NAME|FOLDER", "--watch", "--check", "--program", "--set", "--library",
                               "--screenshot FILE.png", "--outlines", "--new-skin FOLDER", "--version"})
        EXPECT_NE(help.find(option), std::string::npos) << option;
    EXPECT_TRUE(std::get<HelpText>(parse({"--version"})).text.starts_with("quillon-window "));
}

} // namespace
