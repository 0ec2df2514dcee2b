// Whatever ends the tool, it says so in one line and leaves no unfinished file and no private folder behind.

#include "support/abrupt_end.h"

namespace {

TEST_F(AbruptEnd, ByALibraryThatCallsExitIsNoSuccess) {
    const ToolResult result = render("probe_exits");
    EXPECT_EQ(result.exitCode, 2);
    expectEndWith(result, "the process was ended by ", "probe_exits", " in effOpen");
    const ToolResult list = runTool(folder, {"--list", "--library", probe("probe_exits")});
    EXPECT_EQ(list.exitCode, 2);
    expectEndWith(list, "the process was ended by ", "probe_exits", " in effOpen");
}

TEST_F(AbruptEnd, IsNotBroughtAboutByClaimsThatCannotBe) {
    for (const char* what : {"Programs", "Params", "Inputs", "Outputs"}) {
        SCOPED_TRACE(what);
        const std::string library = std::string("probe_claims_") + what;
        const std::string inWords = what == std::string("Params") ? "parameters" : what;
        std::string words = inWords;
        words[0] = static_cast<char>(words[0] | 0x20);
        expectEndWith(render(library), "", library,
                      ": the plug-in claims to have 2000000000 " + words + ", which cannot be");
    }
}

} // namespace
