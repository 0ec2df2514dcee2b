// The sound and its picture, where something gets into their way at the last moment.

#include "support/tool_run.h"

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <thread>

namespace {

TEST(SoundAndPicture, AreBothAbsentWhereTheSoundCannotTakeItsName) {
    const ScratchFolder folder;
    folder.writeSound("in.wav", noise(1000));
    RunningTool tool(folder, {"in.wav", "out.wav", "--plot", "out.png", "--pre-roll", "600", "--quiet",
                              "--library", PROBES "/probe.so"});
    while (folder.names().size() < 3)
        std::this_thread::yield();
    tool.send(SIGSTOP);
    std::filesystem::create_directory(folder.path() / "out.wav");
    tool.send(SIGCONT);
    const ToolResult result = tool.wait();
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err.find("quillon-render: " + folder.file("out.wav") + " cannot be written: "), 0u)
        << result.err;
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"in.wav", "out.wav"}));
}

TEST(SoundAndPicture, AreNamedAsWrittenWhereTheReportFindsNoRoom) {
    const ScratchFolder folder;
    folder.writeSound("in.wav", noise(1000));
    const auto run = [&](std::vector<std::string> more) {
        std::vector<std::string> words = {"-c",
                                          "exec \"$0\" \"$@\" >/dev/full",
                                          QUILLON_RENDER,
                                          "in.wav",
                                          "out.wav",
                                          "--library",
                                          PROBES "/probe.so"};
        words.insert(words.end(), more.begin(), more.end());
        const ToolResult result = runTool(folder, words, ErrorEnd::file, "/bin/sh");
        EXPECT_EQ(result.exitCode, 2);
        return result.errorLines().back();
    };
    const std::string complaint = "quillon-render: standard output cannot be written; ";
    EXPECT_EQ(run({}), complaint + folder.file("out.wav") + " is written");
    EXPECT_EQ(run({"--plot", "out.png"}),
              complaint + folder.file("out.wav") + " and " + folder.file("out.png") + " are written");
}

} // namespace
