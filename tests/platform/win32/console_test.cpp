#include "desk/own_output.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace {

TEST(OwnOutput, KnowsAConsole) {
    FreeConsole();
    ASSERT_TRUE(AllocConsole());
    // Open for both, as the streams of a program are.
    std::FILE* console = std::fopen("CONOUT$", "r+");
    ASSERT_NE(console, nullptr);
    EXPECT_TRUE(desk::isTerminal(console));
    std::fclose(console);
    FreeConsole();
}

} // namespace
