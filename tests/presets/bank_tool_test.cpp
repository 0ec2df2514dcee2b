// quillon-bank as a person runs it.
#include "support/tool_run.h"

#include <csignal>
#include <gtest/gtest.h>

namespace {

const std::string kTable = QUILLON_SOURCE "/skins/factory_bank.tsv";
const std::string kBank = QUILLON_SOURCE "/skins/default.fxb";

ToolResult runBankTool(const ScratchFolder& folder, const std::vector<std::string>& arguments) {
    return runTool(folder, arguments, ErrorEnd::file, QUILLON_BANK);
}

} // namespace

TEST(BankTool, CompilesTheFactoryBank) {
    const ScratchFolder folder;
    const ToolResult result = runBankTool(folder, {"compile", kTable, "-o", folder.file("made.fxb")});
    EXPECT_EQ(0, result.exitCode) << result.err;
    EXPECT_EQ("", result.out + result.err);
    EXPECT_EQ(readFile(kBank), readFile(folder.file("made.fxb")));
    EXPECT_EQ(std::vector<std::string>{"made.fxb"}, folder.names());
}

TEST(BankTool, TurnsABankIntoATableThatCompilesToTheSameBytes) {
    const ScratchFolder folder;
    EXPECT_EQ(0, runBankTool(folder, {"table", kBank, "-o", folder.file("back.tsv")}).exitCode);
    EXPECT_EQ(
        0,
        runBankTool(folder, {"compile", folder.file("back.tsv"), "-o", folder.file("again.fxb")}).exitCode);
    EXPECT_EQ(readFile(kBank), readFile(folder.file("again.fxb")));
}

TEST(BankTool, RefusesABadCellInOneLineAndLeavesTheOutputAsItWas) {
    const ScratchFolder folder;
    const auto bytes = readFile(kTable);
    std::string table(bytes.begin(), bytes.end());
    const std::size_t cell = table.find("\t400\t");
    ASSERT_NE(std::string::npos, cell);
    table.replace(cell, 5, "\tlong\t");
    const std::string source = folder.writeText("bad.tsv", table);
    const std::string output = folder.writeText("out.fxb", "as it was");

    const ToolResult result = runBankTool(folder, {"compile", source, "-o", output});
    EXPECT_EQ(2, result.exitCode);
    EXPECT_EQ("", result.out);
    EXPECT_EQ(source + ":2:4: \"long\" is not Bs Lgh 1 [ms]: a number from 0 to 2000\n", result.err);
    EXPECT_EQ((std::vector<std::string>{"bad.tsv", "out.fxb"}), folder.names());
    EXPECT_EQ(9u, readFile(output).size());
}

TEST(BankTool, NamesAFileThatCannotBeReadOrWritten) {
    const ScratchFolder folder;
    const std::string missing = folder.file("missing.tsv");
    ToolResult result = runBankTool(folder, {"compile", missing, "-o", folder.file("out.fxb")});
    EXPECT_EQ(2, result.exitCode);
    EXPECT_EQ(missing + ": cannot be opened\n", result.err);

    const std::string unreachable = folder.file("no/such/folder/out.fxb");
    result = runBankTool(folder, {"compile", kTable, "-o", unreachable});
    EXPECT_EQ(2, result.exitCode);
    EXPECT_EQ(unreachable + ": cannot be written\n", result.err);
    EXPECT_TRUE(folder.names().empty());
}

TEST(BankTool, WritesAFileOfTheLongestNameThatThereIs) {
    const ScratchFolder folder;
    const std::string name = std::string(251, 'n') + ".fxb";
    const ToolResult result = runBankTool(folder, {"compile", kTable, "-o", folder.file(name)});
    EXPECT_EQ(0, result.exitCode) << result.err;
    EXPECT_EQ(std::vector<std::string>{name}, folder.names());
}

TEST(BankTool, RefusesAFileThatIsNoBank) {
    const ScratchFolder folder;
    const std::string file = folder.writeText("song.fxb", "nothing of the kind");
    const ToolResult result = runBankTool(folder, {"table", file, "-o", folder.file("out.tsv")});
    EXPECT_EQ(2, result.exitCode);
    EXPECT_EQ(file + ": not an fxb file\n", result.err);
}

TEST(BankTool, NamesTheLibraryThatCrashesAndTheCall) {
    const ScratchFolder folder;
    const std::string library = PROBES "/probe_crashes_in_close.so";
    const ToolResult result =
        runBankTool(folder, {"page", kTable, "-o", folder.file("page.md"), "--pictures",
                             folder.file("pictures"), "--library", library, "--speech", QUILLON_SPEECH});
    EXPECT_EQ("quillon-bank: crash of " + library + " in effClose: segmentation fault\n", result.err);
    EXPECT_EQ(SIGSEGV, result.signal);
    EXPECT_TRUE(result.leftBehind.empty());
    EXPECT_TRUE(folder.names().empty());
}

TEST(BankTool, AsksForACommand) {
    const ScratchFolder folder;
    EXPECT_EQ(2, runBankTool(folder, {}).exitCode);
    EXPECT_EQ(0, runBankTool(folder, {"--help"}).exitCode);
}
