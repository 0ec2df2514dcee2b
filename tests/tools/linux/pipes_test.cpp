// quillon-render between pipes.

#include "support/tool_run.h"

#include <gtest/gtest.h>

namespace {

class RenderPipe : public testing::Test {
  protected:
    /// Runs a line of the shell; $render is the tool with a probe effect.
    ToolResult shell(const std::string& line) {
        return runTool(folder,
                       {"-c", "render() { '" QUILLON_RENDER "' --library '" PROBES
                              "/probe.so' --tail 0 --format float \"$@\"; }; " +
                                  line},
                       ErrorEnd::file, "/bin/sh");
    }

    ScratchFolder folder;
};

TEST_F(RenderPipe, ReadsStandardInputAndWritesStandardOutput) {
    const auto samples = noise(30000);
    folder.writeSound("in.wav", samples, 2);
    const ToolResult result = shell("cat in.wav | render - - | cat > out.wav");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(readSound(folder.file("out.wav")).samples, samples);
    EXPECT_NE(result.err.find("standard output.wav: 0.34 s"), std::string::npos) << result.err;
    EXPECT_NE(result.err.find("\nloudness "), std::string::npos) << result.err;
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"in.wav", "out.wav"}));
    EXPECT_TRUE(result.leftBehind.empty());
}

TEST_F(RenderPipe, WritesTheSameBytesAsToAFile) {
    folder.writeSound("in.wav", noise(30000), 2);
    EXPECT_EQ(shell("render in.wav file.wav --quiet; render - - --quiet < in.wav | cat > piped.wav").err, "");
    EXPECT_EQ(readFile(folder.file("file.wav")), readFile(folder.file("piped.wav")));
    EXPECT_EQ(shell("render - half.wav --json < in.wav > report.json").exitCode, 0);
    EXPECT_EQ(readFile(folder.file("file.wav")), readFile(folder.file("half.wav")));
}

TEST_F(RenderPipe, SaysWhatIsWrong) {
    folder.writeSound("in.wav", noise(3000), 2);
    folder.writeText("text", "not a sound at all, but more than a few bytes of text");
    const auto error = [&](const std::string& line) {
        const ToolResult result = shell(line);
        EXPECT_EQ(result.exitCode, 2) << line;
        EXPECT_TRUE(result.leftBehind.empty()) << line;
        return result.err;
    };
    EXPECT_TRUE(
        error("render - out.wav < text").starts_with("quillon-render: standard input cannot be read: "));
    EXPECT_TRUE(
        error("render - out.wav < /dev/null").starts_with("quillon-render: standard input cannot be read: "));
    EXPECT_EQ(error("render - out.wav <&-"), "quillon-render: standard input cannot be read\n");
    EXPECT_EQ(error("render in.wav - --json"),
              "quillon-render: --json: standard output carries the sound; name a "
              "file in place of the second -\n");
    EXPECT_EQ(error("render in.wav - --quiet > /dev/full"),
              "quillon-render: standard output cannot be written\n");
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"in.wav", "text"}));
}

} // namespace
