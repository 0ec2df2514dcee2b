// quillon-bank as a person runs it.
#include "support/tool_run.h"

#include "desk/private_folder.h"
#include "host/plugin.h"

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>

namespace {

const std::string kTable = QUILLON_SOURCE "/skins/factory_bank.tsv";
const std::string kBank = QUILLON_SOURCE "/skins/default.fxb";

ToolResult runBankTool(const ScratchFolder& folder, const std::vector<std::string>& arguments) {
    return runTool(folder, arguments, ErrorEnd::file, QUILLON_BANK);
}

/// A path below the folder as this system writes it.
std::string below(const ScratchFolder& folder, const char* path) {
    return (folder.path() / path).make_preferred().string();
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
    EXPECT_EQ("quillon-bank: " + source + ":2:4: \"long\" is not Bs Lgh 1 [ms]: a number from 0 to 2000\n",
              result.err);
    EXPECT_EQ((std::vector<std::string>{"bad.tsv", "out.fxb"}), folder.names());
    EXPECT_EQ(9u, readFile(output).size());
}

TEST(BankTool, NamesAFileThatCannotBeReadOrWritten) {
    const ScratchFolder folder;
    const std::string missing = folder.file("missing.tsv");
    ToolResult result = runBankTool(folder, {"compile", missing, "-o", folder.file("out.fxb")});
    EXPECT_EQ(2, result.exitCode);
    EXPECT_EQ("quillon-bank: " + missing + " cannot be read: No such file or directory\n", result.err);

    const std::string unreachable = below(folder, "no/such/folder/out.fxb");
    result = runBankTool(folder, {"compile", kTable, "-o", unreachable});
    EXPECT_EQ(2, result.exitCode);
    EXPECT_EQ("quillon-bank: " + unreachable + " cannot be written: there is no folder " +
                  below(folder, "no/such/folder") + "\n",
              result.err);
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
    EXPECT_EQ("quillon-bank: " + file + ": not an fxb file\n", result.err);
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

TEST(BankTool, HelpsWithExamplesFirst) {
    const ScratchFolder folder;
    const ToolResult help = runBankTool(folder, {"--help"});
    EXPECT_EQ(0, help.exitCode);
    EXPECT_EQ("", help.err);
    EXPECT_LT(help.out.find("quillon-bank tempo 112 -o song.fxb"), help.out.find("Usage:"));
    for (const char* command : {"tempo", "map", "table", "compile", "page", "loudness"}) {
        EXPECT_NE(std::string::npos, help.out.find(std::string("\n  ") + command + " ")) << command;
        const ToolResult own = runBankTool(folder, {command, "--help"});
        EXPECT_EQ(0, own.exitCode);
        EXPECT_NE(std::string::npos, own.out.find(std::string("Usage: quillon-bank ") + command)) << own.out;
    }
}

TEST(BankTool, TellsItsVersion) {
    const ScratchFolder folder;
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"--version"}, {"tempo", "--version"}}) {
        const ToolResult result = runBankTool(folder, words);
        EXPECT_EQ(0, result.exitCode);
        EXPECT_EQ("quillon-bank " QUILLON_VERSION "\n", result.out);
    }
}

TEST(BankTool, SetsTheFactoryProgramsToATempoForTheRendererAndHosts) {
    const ScratchFolder folder;
    const ToolResult result = runBankTool(folder, {"tempo", "112", "-o", "song.fxb"});
    ASSERT_EQ(0, result.exitCode) << result.err;
    EXPECT_NE(std::string::npos, result.out.find("Dotted Eighths 112        1/8.    401.8 ms     803.6 ms\n"))
        << result.out;
    EXPECT_NE(std::string::npos, result.out.find(" programs follow 112 bpm; the other "));
    EXPECT_EQ(std::vector<std::string>{"song.fxb"}, folder.names());
    EXPECT_EQ(readFile(kBank).size(), readFile(folder.file("song.fxb")).size());

    const ToolResult list =
        runTool(folder, {"--list", "--bank", "song.fxb", "--program", "Dotted Eighths 112"});
    EXPECT_EQ(0, list.exitCode) << list.err;
    EXPECT_NE(std::string::npos, list.out.find("  804\n")) << list.out;
}

TEST(BankTool, SetsTheSameProgramsFromTheDeliveredBankAndFromTheTable) {
    const ScratchFolder folder;
    EXPECT_EQ(0, runBankTool(folder, {"tempo", "97.5", "-o", "a.fxb"}).exitCode);
    EXPECT_EQ(0, runBankTool(folder, {"tempo", "97.5", kBank, "-o", "b.fxb"}).exitCode);
    EXPECT_EQ(0, runBankTool(folder, {"tempo", kTable, "97.5", "-o", "c.fxb"}).exitCode);
    EXPECT_EQ(readFile(folder.file("a.fxb")), readFile(folder.file("b.fxb")));
    EXPECT_EQ(readFile(folder.file("a.fxb")), readFile(folder.file("c.fxb")));
}

TEST(BankTool, RefusesABankWithoutAnyRhythm) {
    const ScratchFolder folder;
    auto bank = readFile(kBank);
    for (std::size_t record = 160; record < bank.size(); record += 112)
        bank[record + 84] = '_'; // the first letter of each name
    const std::string mine = folder.writeBytes("mine.fxb", bank);
    const ToolResult result = runBankTool(folder, {"tempo", "112", mine, "-o", "song.fxb"});
    EXPECT_EQ(2, result.exitCode);
    EXPECT_EQ("quillon-bank: " + mine + " has no program with a rhythm, so there is nothing to set\n",
              result.err);
}

/// A copy of the plug-in in a folder of its own.
std::string copiedLibrary(const ScratchFolder& folder) {
    const std::filesystem::path original = QUILLON_LIBRARY;
    std::filesystem::create_directory(folder.path() / "plug-in");
    const auto copy = folder.path() / "plug-in" / original.filename();
    std::filesystem::copy_file(original, copy);
    return copy.string();
}

TEST(BankTool, WritesAMapByWhichAControllerMovesAControlOfThePlugin) {
    const ScratchFolder folder;
    const std::string library = copiedLibrary(folder);
    folder.writeText("mine.txt", "# wheel and filter\ncc 74 = High cut\ncc 1 = Mix\n");
    const ToolResult result = runBankTool(folder, {"map", "mine.txt", "--library", library});
    EXPECT_EQ(0, result.exitCode) << result.err;
    const std::string map = below(folder, "plug-in/Pluginccmap.bin");
    EXPECT_EQ(map + " is written\n", result.out);

    constexpr std::int32_t highCut = 9, mix = 14, feedback = 6;
    const desk::PrivateFolder home;
    const host::Library loaded(library);
    host::Plugin plugin(loaded);
    plugin.start(44100.0f, 64);
    const float before = plugin.getParameter(feedback);
    const auto send = [&](unsigned char controller, unsigned char value) {
        const host::MidiMessage message = {0, {0xB0, controller, value}};
        plugin.sendMidi({&message, 1});
    };
    send(74, 127);
    send(1, 0);
    EXPECT_EQ(1.0f, plugin.getParameter(highCut));
    EXPECT_EQ(0.0f, plugin.getParameter(mix));
    send(74, 0);
    EXPECT_EQ(0.0f, plugin.getParameter(highCut));
    for (unsigned char controller = 0; controller < 128; ++controller)
        if (controller != 74 && controller != 1)
            send(controller, 99);
    EXPECT_EQ(0.0f, plugin.getParameter(highCut));
    EXPECT_EQ(before, plugin.getParameter(feedback));

    const ToolResult shown = runBankTool(folder, {"map", "--print", "--library", library});
    EXPECT_EQ(0, shown.exitCode) << shown.err;
    EXPECT_EQ("# " + map +
                  "\n# MIDI controllers of the Quillon Multitap Delay\ncc 74 = High cut\ncc 1 = Mix\n",
              shown.out.substr(0, shown.out.find("# without: ")));
}

TEST(BankTool, WritesTheMapToAnyFileAndPrintsItAgain) {
    const ScratchFolder folder;
    folder.writeText("mine.txt", "cc 3 = Echoes\ncc 3 = Stereo\n");
    const ToolResult result = runBankTool(folder, {"map", "mine.txt", "-o", "Pluginccmap.bin"});
    EXPECT_EQ(folder.file("Pluginccmap.bin") + " is written\ncc 3 moves Echoes and Stereo together\n",
              result.out);
    EXPECT_EQ(84u, readFile(folder.file("Pluginccmap.bin")).size());
    const ToolResult shown = runBankTool(folder, {"map", "--print", "Pluginccmap.bin"});
    EXPECT_NE(std::string::npos, shown.out.find("\ncc 3 = Echoes\ncc 3 = Stereo\n# without: Base length, "))
        << shown.out;
}

TEST(BankTool, TellsOfAMapThatHostsReadInstead) {
    const ScratchFolder folder;
    const std::string library = copiedLibrary(folder);
    folder.writeText("mine.txt", "cc 3 = Echoes\n");
    folder.writeText("Pluginccmap.bin", "");
    const ToolResult result = runBankTool(folder, {"map", "mine.txt", "--library", library});
    EXPECT_EQ(0, result.exitCode);
    EXPECT_EQ(below(folder, "plug-in/Pluginccmap.bin") + " is written\n" + folder.file("Pluginccmap.bin") +
                  " is read instead by hosts that work in that folder: delete it, or write it with -o\n",
              result.out);
    EXPECT_TRUE(readFile(folder.file("Pluginccmap.bin")).empty());
}

TEST(BankTool, PrintsWhatAShortMapMeans) {
    const ScratchFolder folder;
    folder.writeBytes("short.bin", std::vector<std::uint8_t>(40, 0xFF));
    const ToolResult result = runBankTool(folder, {"map", "--print", "short.bin"});
    EXPECT_EQ(0, result.exitCode);
    EXPECT_NE(std::string::npos, result.out.find("cc 0 = Mix\n"));
    EXPECT_NE(
        std::string::npos,
        result.out.find("# The file has 40 bytes instead of 84; what is missing counts as controller 0.\n"));
}
