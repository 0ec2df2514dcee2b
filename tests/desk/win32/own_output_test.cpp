#include "desk/own_output.h"

#include "child_process.h"

#include <gtest/gtest.h>

namespace {

using test::ChildProcess;

TEST(OwnOutput, HoldsOnlyWhatTheToolItselfSays) {
    ChildProcess tool({QUILLON_SPLIT_OUTPUT}, {});
    EXPECT_EQ(tool.wait(), 0);
    EXPECT_EQ(tool.standardOutput(), "before|answer\n") << "with the line ends of every system";
    EXPECT_EQ(tool.standardError(), "chatter through the stream|chatter through the descriptor|"
                                    "chatter through the system|");
}

TEST(OwnOutput, IsKeptApartWithStandardErrorClosedToo) {
    ChildProcess tool({QUILLON_SPLIT_OUTPUT},
                      {.environment = {}, .currentDirectory = {}, .closeStandardError = true});
    EXPECT_EQ(tool.wait(), 0);
    EXPECT_EQ(tool.standardOutput(), "before|answer\n");
}

TEST(OwnOutput, CannotBeTakenWhereThereIsNone) {
    ChildProcess tool({QUILLON_SPLIT_OUTPUT},
                      {.environment = {}, .currentDirectory = {}, .closeStandardOutput = true});
    EXPECT_EQ(tool.wait(), 1);
    EXPECT_NE(tool.standardError().find("standard output cannot be kept apart"), std::string::npos);
}

TEST(OwnOutput, KnowsATerminalFromAFileAndFromNowhere) {
    std::FILE* file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    EXPECT_FALSE(desk::isTerminal(file));
    std::fclose(file);
    std::FILE* nowhere = std::fopen("NUL", "w");
    ASSERT_NE(nowhere, nullptr);
    EXPECT_FALSE(desk::isTerminal(nowhere)) << "nobody reads there";
    std::fclose(nowhere);
}

} // namespace
