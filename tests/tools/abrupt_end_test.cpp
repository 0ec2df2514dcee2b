// Whatever ends the tool, it says so in one line and leaves no unfinished file and no private folder behind.

#include "support/tool_run.h"

#include <csignal>
#include <gtest/gtest.h>
#include <thread>

namespace {

std::string probe(const std::string& name) {
    return PROBES "/" + name + ".so";
}

class AbruptEnd : public testing::Test {
  protected:
    AbruptEnd() { folder.writeSound("in.wav", noise(1000)); }

    ToolResult render(const std::string& library) {
        return runTool(folder,
                       {"in.wav", "out.wav", "--plot", "out.png", "--quiet", "--library", probe(library)});
    }
    /// What the tool says of the library of this name, in one line, and nothing is left of its work.
    void expectEnd(const ToolResult& result, const std::string& line) {
        EXPECT_NE(result.exitCode, 0);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, "quillon-render: " + line + "\n");
        expectNothingIsLeft(result);
    }
    void expectNothingIsLeft(const ToolResult& result) {
        EXPECT_EQ(folder.names(), std::vector<std::string>{"in.wav"});
        EXPECT_EQ(result.leftBehind, std::vector<std::string>{});
    }
    void waitForUnfinishedFile() {
        while (folder.names().size() < 2)
            std::this_thread::yield();
    }

    ScratchFolder folder;
};

TEST_F(AbruptEnd, ByACrashNamesTheLibraryAndTheCall) {
    struct Case {
        const char* library;
        const char* call;
        const char* name;
        int signal;
    };
    for (const Case& crash :
         {Case{"probe_crashes_in_open", "effOpen", "segmentation fault", SIGSEGV},
          Case{"probe_crashes_in_process", "processReplacing", "segmentation fault", SIGSEGV},
          Case{"probe_crashes_in_close", "effClose", "segmentation fault", SIGSEGV},
          Case{"probe_divides_by_nothing", "effMainsChanged", "arithmetic error", SIGFPE},
          Case{"probe_aborts", "effSetSampleRate", "abort", SIGABRT},
          Case{"probe_nests_too_deep", "effSetBlockSize", "segmentation fault", SIGSEGV}}) {
        SCOPED_TRACE(crash.library);
        const ToolResult result = render(crash.library);
        EXPECT_EQ(result.signal, crash.signal);
        expectEnd(result, "crash of " + probe(crash.library) + " in " + crash.call + ": " + crash.name);
    }
}

TEST_F(AbruptEnd, ByALibraryThatCallsExitIsNoSuccess) {
    const ToolResult result = render("probe_exits");
    EXPECT_EQ(result.exitCode, 2);
    expectEnd(result, "the process was ended by " + probe("probe_exits") + " in effOpen");
    const ToolResult list = runTool(folder, {"--list", "--library", probe("probe_exits")});
    EXPECT_EQ(list.exitCode, 2);
    expectEnd(list, "the process was ended by " + probe("probe_exits") + " in effOpen");
}

TEST_F(AbruptEnd, IsNotBroughtAboutByClaimsThatCannotBe) {
    for (const char* what : {"Programs", "Params", "Inputs", "Outputs"}) {
        SCOPED_TRACE(what);
        const std::string library = std::string("probe_claims_") + what;
        const std::string inWords = what == std::string("Params") ? "parameters" : what;
        std::string words = inWords;
        words[0] = static_cast<char>(words[0] | 0x20);
        expectEnd(render(library),
                  probe(library) + ": the plug-in claims to have 2000000000 " + words + ", which cannot be");
    }
}

TEST_F(AbruptEnd, ByAnyRequestLeavesNothing) {
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
        SCOPED_TRACE(signal);
        // A day of silence ahead keeps it busy.
        RunningTool tool(folder, {"in.wav", "out.wav", "--pre-roll", "86400", "--library", probe("probe")});
        waitForUnfinishedFile();
        tool.send(signal);
        const ToolResult result = tool.wait();
        EXPECT_EQ(result.exitCode, 130);
        expectEnd(result, "stopped; nothing was written");
    }
}

TEST_F(AbruptEnd, ByASecondRequestComesAtOnceFromALibraryThatHangs) {
    RunningTool tool(folder, {"in.wav", "out.wav", "--library", probe("probe_hangs")});
    while (!tool.hasTemporaryFile("hanging"))
        std::this_thread::yield();
    tool.send(SIGTERM);
    tool.send(SIGINT);
    const ToolResult result = tool.wait();
    EXPECT_TRUE(result.signal == SIGTERM || result.signal == SIGINT) << result.signal;
    expectNothingIsLeft(result);
}

TEST_F(AbruptEnd, ByOneRequestComesToALibraryThatHangsToo) {
    RunningTool tool(folder, {"in.wav", "out.wav", "--library", probe("probe_hangs")});
    while (!tool.hasTemporaryFile("hanging"))
        std::this_thread::yield();
    tool.send(SIGTERM);
    const ToolResult result = tool.wait();
    EXPECT_EQ(result.signal, SIGTERM);
    expectEnd(result, "stopped; no answer from " + probe("probe_hangs") + " in processReplacing");
}

TEST_F(AbruptEnd, IsNotBroughtAboutByAHangUpThatWasIgnoredAtTheStart) {
    const std::vector<std::string> arguments = {"-c",           "trap '' HUP; exec \"$0\" \"$@\"",
                                                QUILLON_RENDER, "in.wav",
                                                "out.wav",      "--pre-roll",
                                                "86400",        "--library",
                                                probe("probe")};
    RunningTool tool(folder, arguments, ErrorEnd::file, "/bin/sh");
    waitForUnfinishedFile();
    tool.send(SIGHUP);
    tool.send(SIGHUP);
    EXPECT_EQ(folder.names().size(), 2u);
    tool.send(SIGTERM);
    const ToolResult result = tool.wait();
    EXPECT_EQ(result.exitCode, 130) << "the hang-up has ended it";
    expectEnd(result, "stopped; nothing was written");
}

} // namespace
