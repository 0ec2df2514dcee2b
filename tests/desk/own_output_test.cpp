#include "desk/own_output.h"

#include "child_process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

namespace {

using test::ChildProcess;

TEST(OwnOutput, HoldsOnlyWhatTheToolItselfSays) {
    ChildProcess tool({QUILLON_SPLIT_OUTPUT}, {});
    EXPECT_EQ(tool.wait(), 0);
    EXPECT_EQ(tool.standardOutput(), "before|answer");
    EXPECT_EQ(tool.standardError(), "chatter through the stream|chatter through the descriptor|");
}

TEST(OwnOutput, IsKeptApartWithStandardErrorClosedToo) {
    ChildProcess tool({QUILLON_SPLIT_OUTPUT},
                      {.environment = {}, .currentDirectory = {}, .closeStandardError = true});
    EXPECT_EQ(tool.wait(), 0);
    EXPECT_EQ(tool.standardOutput(), "before|answer");
}

TEST(OwnOutput, CannotBeTakenWhereThereIsNone) {
    ChildProcess tool({QUILLON_SPLIT_OUTPUT},
                      {.environment = {}, .currentDirectory = {}, .closeStandardOutput = true});
    EXPECT_EQ(tool.wait(), 1);
    EXPECT_NE(tool.standardError().find("standard output cannot be kept apart"), std::string::npos);
}

TEST(OwnOutput, KnowsATerminalFromAFile) {
    const int keyboard = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(keyboard, 0);
    ASSERT_EQ(grantpt(keyboard), 0);
    ASSERT_EQ(unlockpt(keyboard), 0);
    std::FILE* terminal = std::fopen(ptsname(keyboard), "w");
    ASSERT_NE(terminal, nullptr);
    EXPECT_TRUE(desk::isTerminal(terminal));
    std::fclose(terminal);
    close(keyboard);

    std::FILE* file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    EXPECT_FALSE(desk::isTerminal(file));
    std::fclose(file);
}

} // namespace
