// The tools on a machine with a screen, where nobody sits: whatever the effect has to say, they come to their
// end.

// First of all, because the X headers' macros would break it.
#include <gtest/gtest.h>

#include "support/tool_run.h"
#include "virtual_screen.h"

#include <filesystem>

namespace {

/// A copy of the library without its bank, which each instance reports in a message box.
class UnattendedTool : public testing::Test {
  protected:
    UnattendedTool() {
        std::filesystem::copy_file(QUILLON_LIBRARY, library);
        folder.writeSound("in.wav", noise(1000));
    }

    /// Runs a tool with the screen at hand. A message box would keep it until its time is up.
    ToolResult run(const std::string& tool, std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"DISPLAY=" + screen.name(), "timeout", "120", tool});
        return runTool(folder, arguments, ErrorEnd::file, "/usr/bin/env");
    }

    ScratchFolder folder;
    const std::string library = folder.file("effect.so");
    test::VirtualScreen screen;
};

constexpr char kNoBank[] = "Preset loader: Default bank error: file not found";

TEST_F(UnattendedTool, RendersWithoutWaitingForAMessageToBeAcknowledged) {
    const ToolResult result = run(QUILLON_RENDER, {"in.wav", "out.wav", "--tail", "0", "--library", library});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_NE(result.err.find(kNoBank), std::string::npos) << "the message is lost: " << result.err;
    EXPECT_EQ(readSound(folder.file("out.wav")).frames(), 1000u);
}

TEST_F(UnattendedTool, ListsWithoutWaitingForAMessageToBeAcknowledged) {
    const ToolResult result = run(QUILLON_RENDER, {"--list", "--library", library});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_NE(result.out.find("Fiber Cascade"), std::string::npos) << result.out;
}

TEST_F(UnattendedTool, RefusesToDescribeAnotherBankWithoutWaiting) {
    const ToolResult result =
        run(QUILLON_BANK, {"page", QUILLON_SOURCE "/skins/factory_bank.tsv", "-o", "page.md", "--pictures",
                           "pictures", "--library", library, "--speech", QUILLON_SPEECH});
    EXPECT_EQ(result.exitCode, 2) << result.err;
    EXPECT_NE(result.err.find(kNoBank), std::string::npos) << "the message is lost: " << result.err;
    EXPECT_NE(result.err.find("was not made from this table"), std::string::npos) << result.err;
}

TEST_F(UnattendedTool, FailsWhereItsListFindsNoRoom) {
    const ToolResult result =
        runTool(folder, {"-c", "exec \"$0\" --list >/dev/full", QUILLON_RENDER}, ErrorEnd::file, "/bin/sh");
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_NE(result.err.find("standard output cannot be written"), std::string::npos) << result.err;
}

} // namespace
