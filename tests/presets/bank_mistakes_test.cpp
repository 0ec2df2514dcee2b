// What people get wrong with quillon-bank. Each mistake is told in one line, and no file is written, changed
// or left behind.
#include "support/tool_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace {

const std::string kTable = QUILLON_SOURCE "/skins/factory_bank.tsv";
const std::string kBank = QUILLON_SOURCE "/skins/default.fxb";

struct Mistake {
    std::vector<std::string> words; ///< "@name" is a file of the test's folder
    std::string line;               ///< what is to be told, with "@" for the test's folder and a slash
};

class BankMistakes : public testing::TestWithParam<Mistake> {
  protected:
    BankMistakes() {
        const auto bank = readFile(kBank);
        folder_.writeBytes("bank.fxb", bank);
        folder_.writeBytes("cut.fxb", std::vector(bank.begin(), bank.begin() + 5000));
        auto foreign = bank;
        foreign[16] = 'x';
        folder_.writeBytes("foreign.fxb", foreign);
        const auto table = readFile(kTable);
        std::string text(table.begin(), table.end());
        folder_.writeText("table.tsv", text);
        folder_.writeText("short.tsv", text.substr(0, text.find('\n') + 1));
        text.replace(text.find("\t400\t"), 5, "\tlong\t");
        folder_.writeText("cell.tsv", text);
        folder_.writeText("map.txt", "cc 74 = High cut\n");
        folder_.writeText("name.txt", "# mine\ncc 74 = High cot\n");
        folder_.writeText("number.txt", "cc 128 = Mix\n");
        folder_.writeText("twice.txt", "cc 1 = Mix\ncc 2 = Dry Wet\n");
        folder_.writeText("words.txt", "high cut with the wheel\n");
    }

    std::string inFolder(std::string text, char mark) const {
        const std::string folder = (folder_.path() / "").make_preferred().string();
        for (std::size_t at = text.find(mark); at != std::string::npos;
             at = text.find(mark, at + folder.size()))
            text.replace(at, 1, folder);
        return text;
    }

    ScratchFolder folder_;
};

/// Size and content of all files, to see that nothing has changed.
std::vector<std::vector<std::uint8_t>> contentOf(const ScratchFolder& folder) {
    std::vector<std::vector<std::uint8_t>> content;
    for (const std::string& name : folder.names())
        content.push_back(readFile(folder.file(name)));
    return content;
}

TEST_P(BankMistakes, AreToldInOneLineAndChangeNothing) {
    std::vector<std::string> words;
    for (const std::string& word : GetParam().words)
        words.push_back(inFolder(word, '@'));
    const auto names = folder_.names();
    const auto content = contentOf(folder_);
    const ToolResult result = runTool(folder_, words, ErrorEnd::file, QUILLON_BANK);
    EXPECT_EQ(2, result.exitCode);
    EXPECT_EQ("", result.out);
    std::string line = GetParam().line;
    std::ranges::replace(line, '/', static_cast<char>(std::filesystem::path::preferred_separator));
    EXPECT_EQ("quillon-bank: " + inFolder(line, '@') + "\n", result.err);
    EXPECT_TRUE(result.leftBehind.empty());
    EXPECT_EQ(names, folder_.names());
    EXPECT_EQ(content, contentOf(folder_));
}

const std::string kWhichCommand =
    "which command? tempo, map, table, compile, page or loudness; quillon-bank --help has examples";

INSTANTIATE_TEST_SUITE_P(
    Of, BankMistakes,
    testing::Values(
        Mistake{{}, kWhichCommand},
        Mistake{{"compil", "@table.tsv"}, "there is no command \"compil\"; did you mean \"compile\"?"},
        Mistake{{"@table.tsv"}, "there is no command \"@table.tsv\"; did you mean \"table\"?"},
        Mistake{{"open"},
                "there is no command \"open\"; there are tempo, map, table, compile, page and loudness"},
        Mistake{{"--fast"}, "The following argument was not expected: --fast"},
        Mistake{{"compile"}, "compile: which table? Give the .tsv file, and -o FILE.fxb"},
        Mistake{{"compile", "@table.tsv"}, "compile: where to? Give the .fxb file to write with -o"},
        Mistake{{"compile", "@table.tsv", "-o", ""}, "--output: nothing was given"},
        Mistake{{"compile", "@table.tsv", "-o", "@out.wav"},
                "@out.wav is to be a bank file, so its name should end in .fxb"},
        Mistake{{"compile", "@table.tsv", "@cell.tsv", "-o", "@out.fxb"},
                "The following argument was not expected: @cell.tsv"},
        Mistake{{"compile", "@missing.tsv", "-o", "@out.fxb"},
                "@missing.tsv cannot be read: No such file or directory"},
        Mistake{{"compile", "@.", "-o", "@out.fxb"}, "@ is a folder, not a file"},
        Mistake{{"compile", "@bank.fxb", "-o", "@out.fxb"},
                "@bank.fxb is a bank file; give the table that it is made from"},
        Mistake{{"compile", "@bank.fxb", "-o", "@bank.fxb"},
                "@bank.fxb is an input and would be overwritten; choose another name"},
        Mistake{{"compile", "@cell.tsv", "-o", "@bank.fxb"},
                "@cell.tsv:2:4: \"long\" is not Bs Lgh 1 [ms]: a number from 0 to 2000"},
        Mistake{{"compile", "@short.tsv", "-o", "@out.fxb"},
                "@short.tsv:2:1: the table ends after 0 programs, a bank holds 128"},
        Mistake{{"compile", "@table.tsv", "-o", "@no/out.fxb"},
                "@no/out.fxb cannot be written: there is no folder @no"},
        Mistake{{"table"}, "table: which bank? Give the .fxb file, and -o FILE.tsv"},
        Mistake{{"table", "@bank.fxb"}, "table: where to? Give the .tsv file to write with -o"},
        Mistake{{"table", "@table.tsv", "-o", "@out.tsv"}, "@table.tsv: not an fxb file"},
        Mistake{{"table", "@cut.fxb", "-o", "@out.tsv"},
                "@cut.fxb: an fxb file that ends before the end of its bank"},
        Mistake{{"table", "@foreign.fxb", "-o", "@out.tsv"}, "@foreign.fxb: a bank of another plug-in"},
        Mistake{{"tempo"}, "tempo: which tempo? Give the beats per minute, and -o FILE.fxb"},
        Mistake{{"tempo", "fast", "-o", "@out.fxb"},
                "tempo: \"fast\" is not a tempo; give the beats per minute, from 20 to 400"},
        Mistake{{"tempo", "1120", "-o", "@out.fxb"},
                "tempo: \"1120\" is not a tempo; give the beats per minute, from 20 to 400"},
        Mistake{{"tempo", "112"}, "tempo: where to? Give the .fxb file to write with -o"},
        Mistake{{"tempo", "112", "@bank.fxb", "-o", "@bank.fxb"},
                "@bank.fxb is an input and would be overwritten; choose another name"},
        Mistake{{"tempo", "112", "@map.txt", "-o", "@out.fxb"},
                "@map.txt:1:1: the heading is \"cc 74 = High cut\" and must be \"family\""}));

INSTANTIATE_TEST_SUITE_P(
    OfMaps, BankMistakes,
    testing::Values(
        Mistake{{"map"}, "map: which controllers? Give a text with lines like cc 74 = High cut, or --print"},
        Mistake{{"map", "@missing.txt"}, "@missing.txt cannot be read: No such file or directory"},
        Mistake{{"map", "@name.txt", "-o", "@map.bin"},
                "@name.txt, line 2: there is no control \"High cot\"; did you mean \"High cut\"?"},
        Mistake{{"map", "@number.txt", "-o", "@map.bin"},
                "@number.txt, line 1: there is no controller \"128\"; they are numbered 0 to 127"},
        Mistake{{"map", "@twice.txt", "-o", "@map.bin"},
                "@twice.txt, line 2: Mix has a controller already, in line 1"},
        Mistake{
            {"map", "@words.txt", "-o", "@map.bin"},
            "@words.txt, line 1: \"high cut with the wheel\" is no binding; write it as cc 74 = High cut"},
        Mistake{{"map", "@map.txt", "-o", "@map.txt"},
                "@map.txt is an input and would be overwritten; choose another name"},
        Mistake{{"map", "@map.txt", "-o", "@map.bin", "--library", "@x.so"},
                "map: -o and --library both say where to write; leave one out"},
        Mistake{{"map", "@map.txt", "--library", "@x.so"}, "@x.so: there is no such library"},
        Mistake{{"map", "--print", "-o", "@map.bin"}, "map: --print writes no file; leave out -o"},
        Mistake{{"map", "--print", "@map.txt", "--library", "@x.so"},
                "map: --print shows either a file or what lies beside --library; leave one out"},
        Mistake{{"map", "--print", "@missing.bin"}, "@missing.bin cannot be read: No such file or directory"},
        Mistake{{"page", "@table.tsv", "-o", "@page.md", "--speech", "@s.wav"},
                "page: where to put the pictures? Give --pictures"},
        Mistake{{"loudness", "@table.tsv"},
                "loudness: which speech? Give a mono recording at 48 kHz with --speech"}));

} // namespace
