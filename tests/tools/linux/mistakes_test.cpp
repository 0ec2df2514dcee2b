// Mistakes with a shell's redirections, with devices, and with disks that are full: one line each, and
// nothing is left behind.

#include "support/tool_run.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace {

class ShellMistake : public testing::Test {
  protected:
    ShellMistake() { folder.writeSound("in.wav", noise(50000), 2); }

    /// `command` has the tool as $0.
    void expectOneLine(const std::string& command, const std::string& atFault, std::size_t lines = 1) const {
        SCOPED_TRACE(command);
        const ToolResult result = runTool(folder, {"-c", command, QUILLON_RENDER}, ErrorEnd::file, "/bin/sh");
        EXPECT_EQ(result.exitCode, 2);
        ASSERT_EQ(result.errorLines().size(), lines) << result.err;
        const std::string line = result.errorLines().back();
        EXPECT_TRUE(line.starts_with("quillon-render: ")) << line;
        EXPECT_NE(line.find(atFault), std::string::npos) << line;
        EXPECT_EQ(folder.names(), std::vector<std::string>{"in.wav"});
        EXPECT_EQ(result.leftBehind, std::vector<std::string>{});
    }
    const ScratchFolder folder;
};

TEST_F(ShellMistake, AFullDiskBehindStandardOutput) {
    expectOneLine("\"$0\" --list >/dev/full", "standard output cannot be written");
}

TEST_F(ShellMistake, ADeviceAsOutput) {
    expectOneLine("\"$0\" in.wav /dev/full", "/dev/full is not a plain file");
    expectOneLine("\"$0\" in.wav --to /dev/null", "/dev/null is a file");
}

TEST_F(ShellMistake, AFolderWhereNothingCanBeMade) {
    expectOneLine("\"$0\" in.wav --to /proc/new", "/proc/new cannot be made");
    expectOneLine("\"$0\" in.wav /proc/new.wav", "/proc/new.wav cannot be written");
}

TEST_F(ShellMistake, NoSoundBehindStandardInput) {
    expectOneLine("\"$0\" - out.wav </dev/null", "standard input");
    expectOneLine("echo words | \"$0\" - out.wav", "standard input");
}

TEST_F(ShellMistake, ATerminalAsStandardInput) {
    // The terminal is at the other end of standard error.
    const ToolResult result =
        runTool(folder, {"-c", "\"$0\" - out.wav <&2 2>&1", QUILLON_RENDER}, ErrorEnd::terminal, "/bin/sh");
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.out,
              "quillon-render: standard input is a terminal; send a sound file to it, or name one in "
              "place of -\n");
    EXPECT_EQ(folder.names(), std::vector<std::string>{"in.wav"});
}

TEST_F(ShellMistake, ADiskWithoutRoomForTheSound) {
    const std::string small = "trap '' XFSZ; ulimit -f 64; ";
    expectOneLine(small + "exec \"$0\" in.wav out.wav --tail 0 --quiet", "out.wav cannot be written");
    expectOneLine(small + "exec \"$0\" in.wav --to new --tail 0 --quiet", "in.wav cannot be written");
}

} // namespace
