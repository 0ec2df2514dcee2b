// What the command line of quillon-bench takes: whatever is wrong is said in one line before anything is
// timed.
#include "support/tool_run.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

class BenchErrors : public testing::Test {
  protected:
    void expectError(const std::vector<std::string>& arguments, const std::string& words) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const ToolResult result = runTool(folder, arguments, ErrorEnd::file, QUILLON_BENCH);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_EQ(result.out, "");
        const auto lines = result.errorLines();
        ASSERT_EQ(lines.size(), 1u) << result.err;
        EXPECT_TRUE(lines[0].starts_with("quillon-bench: ")) << lines[0];
        EXPECT_NE(lines[0].find(words), std::string::npos) << lines[0];
    }

    ScratchFolder folder;
};

TEST_F(BenchErrors, NameAnUnknownOption) {
    expectError({"--shout"}, "--shout");
}

TEST_F(BenchErrors, NameAnInstructionSetThatTheProcessorLacks) {
    expectError({"--instruction-set", "abacus"}, "this processor has no \"abacus\"");
}

TEST_F(BenchErrors, NameAnInstructionSetThatIsGivenTwice) {
    expectError({"--instruction-set", "sse2", "--instruction-set", "sse2"}, "\"sse2\" is given twice");
}

TEST_F(BenchErrors, NameAFolderForThePageThatIsNotThere) {
    expectError({"--page", "nowhere"}, "nowhere");
}

TEST_F(BenchErrors, RefuseAPageOfSomeSituationsOnly) {
    expectError({"--page", ".", "--only", "cubic"}, "--only");
}

TEST_F(BenchErrors, RefuseToRedrawWithoutAPage) {
    expectError({"--redraw"}, "--page");
}

TEST_F(BenchErrors, NameAFileOfRunsThatIsNone) {
    folder.writeText("performance_runs.tsv", "these are only words\n");
    expectError({"--page", ".", "--redraw"}, "performance_runs.tsv does not hold runs");
}

TEST_F(BenchErrors, SayThatThereAreNoRunsToShow) {
    expectError({"--page", ".", "--redraw"}, "there are no runs to show");
}

TEST_F(BenchErrors, SayThatNoSituationIsCalledSo) {
    expectError({"--json", "--only", "a thousand taps"},
                "--only: the name of no situation contains \"a thousand taps\"");
}

TEST(Bench, TimesTheSituationsThatAreAskedForAndGivesThemAsJson) {
    const ScratchFolder folder;
    const ToolResult result =
        runTool(folder, {"--json", "--only", "101 taps, whole"}, ErrorEnd::file, QUILLON_BENCH);
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const auto runs = nlohmann::json::parse(result.out);
    ASSERT_EQ(runs.size(), 1u);
    ASSERT_EQ(runs[0]["rows"].size(), 1u);
    EXPECT_EQ(runs[0]["rows"][0]["case"], "101 taps, whole, spread, at rest, blocks of 512");
    for (const auto& row : runs[0]["rows"]) {
        EXPECT_GT(row["effect"].get<double>(), 0.0);
        EXPECT_GT(row["other"].get<double>(), 0.0);
    }
}

TEST(Bench, CountsThePageFaultsWhenTheirSectionIsAskedFor) {
    const ScratchFolder folder;
    const ToolResult result = runTool(folder, {"--json", "--only", "faults"}, ErrorEnd::file, QUILLON_BENCH);
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const auto rows = nlohmann::json::parse(result.out)[0]["rows"];
    ASSERT_EQ(rows.size(), 2u);
    for (const auto& row : rows) {
        EXPECT_EQ(row["section"], "faults");
        EXPECT_EQ(row["unit"], "page faults");
        EXPECT_GE(row["effect"].get<double>(), 0.0);
    }
}

TEST(Bench, TimesACornerBesideThePlainLoopAndBesideItself) {
    const ScratchFolder folder;
    const ToolResult result = runTool(folder, {"--json", "--only", "1 tap, cubic, silence after a stereo"},
                                      ErrorEnd::file, QUILLON_BENCH);
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const auto rows = nlohmann::json::parse(result.out)[0]["rows"];
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0]["against"], "reference");
    EXPECT_EQ(rows[1]["against"], "itself, fresh");
    EXPECT_EQ(rows[0]["effect"], rows[1]["effect"]);
    for (const auto& row : rows) {
        EXPECT_EQ(row["unit"], "ns");
        EXPECT_GT(row["other"].get<double>(), 0.0);
    }
}

TEST(Bench, TimesTheWindowUnderAutomationWhenAskedTo) {
    const ScratchFolder folder;
    const ToolResult result =
        runTool(folder, {"--json", "--window", "--only", "idle calls"}, ErrorEnd::file, QUILLON_BENCH);
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const auto rows = nlohmann::json::parse(result.out)[0]["rows"];
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0]["section"], "window");
    EXPECT_EQ(rows[0]["against"], "itself at rest");
    EXPECT_GT(rows[0]["effect"].get<double>(), 0.0);
    EXPECT_GT(rows[0]["other"].get<double>(), 0.0);
}

} // namespace
