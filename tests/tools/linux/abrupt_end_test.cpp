// Signals that end the tool, sent by a person, the system or its own processor.

#include "support/abrupt_end.h"

#include <csignal>

namespace {

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
          Case{"probe_nests_too_deep", "effSetBlockSize", "segmentation fault", SIGSEGV},
          Case{"probe_stops_at_a_trap", "effOpen", "breakpoint", SIGTRAP},
          Case{"probe_asks_for_no_call", "effClose", "bad system call", SIGSYS}}) {
        SCOPED_TRACE(crash.library);
        const ToolResult result = render(crash.library);
        EXPECT_EQ(result.signal, crash.signal);
        expectEnd(result, "crash of " + probe(crash.library) + " in " + crash.call + ": " + crash.name);
    }
}

TEST_F(AbruptEnd, LeavesNothingWhereTheTemporaryFolderIsNamedFromTheCurrentOne) {
    const ToolResult result = runTool(folder,
                                      {"TMPDIR=.", QUILLON_RENDER, "in.wav", "out.wav", "--plot", "out.png",
                                       "--quiet", "--library", probe("probe_crashes_in_process")},
                                      ErrorEnd::file, "/usr/bin/env");
    EXPECT_EQ(result.signal, SIGSEGV);
    expectNothingIsLeft(result);
}

TEST_F(AbruptEnd, ByAStackThatIsUsedUpLeavesNoFolderHoweverDeep) {
    const ToolResult result = render("probe_nests_folders");
    EXPECT_EQ(result.signal, SIGSEGV);
    expectEnd(result,
              "crash of " + probe("probe_nests_folders") + " in processReplacing: segmentation fault");
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
