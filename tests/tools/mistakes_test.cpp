// What people do wrong. Each mistake is told in one line that begins with the tool's name and names what is
// at fault, the exit code is 2, and no file has changed.

#include "support/tool_run.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <ostream>

namespace {

namespace files = std::filesystem;

struct Mistake {
    const char* name; ///< of the test
    std::vector<std::string> words;
    const char* atFault; ///< in the line
};

void PrintTo(const Mistake& mistake, std::ostream* stream) {
    *stream << testing::PrintToString(mistake.words);
}

std::string nameOf(const testing::TestParamInfo<Mistake>& info) {
    return info.param.name;
}

/// A folder as somebody might have it.
class Mistaken : public testing::TestWithParam<Mistake> {
  protected:
    Mistaken() {
        for (const char* name : {"empty", "takes", "day1", "day2"})
            files::create_directory(folder.path() / name);
        folder.writeSound("in.wav", noise(500));
        folder.writeSound("takes/x.wav", noise(500));
        folder.writeSound("takes/y.wav", noise(500));
        folder.writeSound("day1/mix.wav", noise(500));
        folder.writeSound("day2/mix.wav", noise(500));
        folder.writeText("words.wav", "These are only words, and a person has called them a sound.\n");
        folder.writeText("zero.wav", "");
        folder.writeSound("silent.wav", {});
        folder.writeSound("wide.wav", noise(9600), 96);
        folder.writeText("moves.txt", "0.1 Feedback 0.5\n0.2 Feedbak 0.5\n");
        folder.writeText("late.txt", "yesterday Feedback 0.5\n");
        folder.writeText("table.tsv", "name\tLoudness\nPing\t1\n");
        folder.writeText("bound.txt", "cc 200 = Feedback\n");
        folder.writeText("out.wav", "what was here before");
    }

    /// Everything in the folder, with its content.
    std::map<std::string, std::vector<std::uint8_t>> snapshot() const {
        std::map<std::string, std::vector<std::uint8_t>> all;
        for (const auto& entry : files::recursive_directory_iterator(folder.path()))
            all[entry.path().string()] =
                entry.is_directory() ? std::vector<std::uint8_t>() : readFile(entry.path().string());
        return all;
    }

    void expectOneLine(const std::string& tool, const char* program) {
        const auto before = snapshot();
        const ToolResult result = runTool(folder, GetParam().words, ErrorEnd::file, program);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_EQ(result.out, "");
        const auto lines = result.errorLines();
        ASSERT_EQ(lines.size(), 1u) << result.err;
        EXPECT_TRUE(lines[0].starts_with(tool + ": ")) << lines[0];
        EXPECT_NE(lines[0].find(GetParam().atFault), std::string::npos)
            << lines[0] << "\n  does not say: " << GetParam().atFault;
        EXPECT_TRUE(snapshot() == before) << "something has changed in the folder";
        EXPECT_EQ(result.leftBehind, std::vector<std::string>{});
    }

    const ScratchFolder folder;
};

class RenderMistake : public Mistaken {};

TEST_P(RenderMistake, IsToldInOneLine) {
    expectOneLine("quillon-render", QUILLON_RENDER);
}

const Mistake kFiles[] = {
    {"NoFiles", {}, "which file?"},
    {"NoOutput", {"in.wav"}, "\"in.wav\""},
    {"NoSuchInput", {"missing.wav", "out.wav"}, "missing.wav"},
    {"FolderAsInput", {"takes", "out.wav"}, "takes is a folder"},
    {"FolderAsOutput", {"in.wav", "takes"}, "takes is a folder"},
    {"NoSuchFolder", {"in.wav", "nowhere/out.wav"}, "nowhere"},
    {"FileAsFolder", {"in.wav", "words.wav/out.wav"}, "words.wav"},
    {"SameFileTwice", {"in.wav", "in.wav"}, "in.wav is an input"},
    {"SameFileByAnotherName", {"in.wav", "takes/../in.wav"}, "in.wav is an input"},
    {"ThreeFiles", {"in.wav", "out.wav", "more.wav"}, "\"more.wav\" is one file too many"},
    {"UnknownType", {"in.wav", "out.mp9"}, "out.mp9"},
    {"NoType", {"in.wav", "sound"}, "sound: what kind of file?"},
    {"TextAsSound", {"words.wav", "out.wav"}, "words.wav"},
    {"EmptyFile", {"zero.wav", "out.wav"}, "zero.wav"},
    {"NoSound", {"silent.wav", "out.wav"}, "silent.wav holds no sound"},
    {"NinetySixChannels", {"wide.wav", "out.wav"}, "wide.wav has 96 channels"},
};
INSTANTIATE_TEST_SUITE_P(OfFiles, RenderMistake, testing::ValuesIn(kFiles), nameOf);

/// For `in.wav` and `out.wav`.
std::vector<std::string> with(std::vector<std::string> words) {
    words.insert(words.begin(), {"in.wav", "out.wav"});
    return words;
}

const Mistake kSettings[] = {
    {"UnknownOption", with({"--shout"}), "--shout"},
    {"ProgramTooHigh", with({"--program", "128"}), "there is no program 128; they are numbered 0 to 127"},
    {"ProgramBelowZero", with({"--program", "-1"}), "--program"},
    {"ProgramMisspelt", with({"--program", "Slow Down"}), "did you mean \"Slow Dawn\"?"},
    {"ProgramWithoutName", with({"--program"}), "--program"},
    {"ParameterMisspelt", with({"--set", "Feedbak=0.5"}), "did you mean \"Feedback\"?"},
    {"ValueTooLarge", with({"--set", "Feedback=2"}), "\"Feedback=2\""},
    {"NoValue", with({"--set", "Feedback"}), "\"Feedback\""},
    {"UnknownUnit", with({"--set", "Base length=3fortnights"}), "\"Base length=3fortnights\""},
    {"WrongUnit", with({"--set", "Base length=3kHz"}), "\"Base length=3kHz\""},
    {"LengthOutOfRange", with({"--set", "Base length=3000ms"}), "\"Base length=3000ms\""},
    {"NoteWithoutTempo", with({"--set", "Base length=1/8"}), "--bpm"},
    {"TempoZero", with({"--bpm", "0", "--set", "Base length=1/8"}), "--bpm"},
    {"TailInWords", with({"--tail", "long"}), "--tail: \"long\""},
    {"SixteenBit", with({"--format", "16"}), "--format: \"16\""},
    {"BlockOfNothing", with({"--block", "0"}), "--block: \"0\""},
    {"PreRollBackwards", with({"--pre-roll", "-1"}), "--pre-roll: \"-1\""},
    {"NoSuchAutomation", with({"--automate", "missing.txt"}), "missing.txt"},
    {"AutomationMisspelt", with({"--automate", "moves.txt"}), "moves.txt, line 2"},
    {"AutomationWithoutTime", with({"--automate", "late.txt"}), "late.txt, line 1"},
    {"SoundAsMidi", with({"--midi", "takes/x.wav"}), "x.wav"},
    {"SoundAsBank", with({"--bank", "takes/x.wav"}), "x.wav is not a bank file"},
    {"EmptyChunk", with({"--chunk", "zero.wav"}), "zero.wav"},
    {"NoSuchLibrary", with({"--library", "missing.so"}), "missing.so: there is no such library"},
    {"SoundAsLibrary", with({"--library", "takes/x.wav"}), "x.wav"},
    {"PictureAsJpeg", with({"--plot", "picture.jpg"}), "picture.jpg"},
    {"PictureNowhere", with({"--plot", "nowhere/picture.png"}), "nowhere"},
    {"PictureOverSound", with({"--plot", "in.wav"}), "in.wav"},
    {"ListWithFiles", with({"--list"}), "leave out \"in.wav\""},
};
INSTANTIATE_TEST_SUITE_P(OfSettings, RenderMistake, testing::ValuesIn(kSettings), nameOf);

const Mistake kManyFiles[] = {
    {"NoInputs", {"--to", "new"}, "which files?"},
    {"NoSuchInputAmongMany", {"in.wav", "missing.wav", "--to", "new"}, "missing.wav"},
    {"StandardInputAmongMany", {"in.wav", "-", "--to", "new"}, "\"-\""},
    {"EmptyFolder", {"empty", "--to", "new"}, "empty holds no sound files"},
    {"PatternOfNothing", {"*.ogg", "--to", "new"}, "\"*.ogg\" matches no sound file"},
    {"FileAsOutputFolder", {"in.wav", "--to", "out.wav"}, "out.wav is a file"},
    {"FileOnTheWayToTheFolder", {"in.wav", "--to", "words.wav/new"}, "words.wav"},
    {"InputInOutputFolder", {"in.wav", "--to", "."}, "in.wav lies in the output folder"},
    {"InputFolderAsOutputFolder", {"takes", "--to", "takes"}, "takes is the output folder"},
    {"TwoInputsOfOneName", {"day1", "day2", "--to", "new"}, "would both become"},
    {"RangeBackwards", {"in.wav", "--to", "new", "--programs", "7-3"}, "7-3 runs backwards; write 3-7"},
    {"RangeTooLong", {"in.wav", "--to", "new", "--programs", "120-128"}, "there is no program 128"},
    {"ProgramsMisspelt", {"in.wav", "--to", "new", "--programs", "1,Slow Down"}, "\"Slow Dawn\""},
    {"ProgramsMatchNothing", {"in.wav", "--to", "new", "--programs", "zzz*"}, "\"zzz*\""},
    {"ProgramsOfNothing", {"in.wav", "--to", "new", "--programs", ","}, "--programs \",\""},
    {"ProgramAndPrograms", {"in.wav", "--to", "new", "--programs", "1", "--program", "2"}, "--program "},
    {"ProgramsWithoutFolder", with({"--programs", "1-3"}), "--to FOLDER"},
    {"AgainWithoutFolder", with({"--again"}), "--again"},
    {"NoJobs", {"in.wav", "--to", "new", "--jobs", "0"}, "--jobs: \"0\""},
    {"JobsInWords", {"in.wav", "--to", "new", "--jobs", "all"}, "--jobs: \"all\""},
    {"UnknownTypeForMany", {"in.wav", "--to", "new", "--type", "mp3"}, "--type: \"mp3\""},
    {"PlotOfMany", {"takes", "--to", "new", "--plot", "p.png"}, "--plot"},
    {"SettingOfMany", {"takes", "--to", "new", "--set", "Mixx=1"}, "\"Mixx=1\""},
    {"TextAmongMany", {"words.wav", "--to", "new", "--quiet"}, "words.wav"},
    {"MissingAutomationOfMany",
     {"in.wav", "--to", "new", "--automate", "missing.txt", "--quiet"},
     "missing.txt"},
    {"TwoFolders", {"in.wav", "--to", "new", "--contact-sheet", "sheet"}, "--contact-sheet"},
    {"SheetOfTwo", {"in.wav", "takes/x.wav", "--contact-sheet", "new"}, "x.wav\""},
    {"SheetOfAFolder", {"takes", "--contact-sheet", "new"}, "\"takes\" means 2"},
    {"SheetInAiff", {"in.wav", "--contact-sheet", "new", "--type", "aiff"}, "--type aiff"},
    {"SheetOfText", {"words.wav", "--contact-sheet", "new", "--programs", "1", "--quiet"}, "words.wav"},
};
INSTANTIATE_TEST_SUITE_P(OfManyFiles, RenderMistake, testing::ValuesIn(kManyFiles), nameOf);

class BankMistake : public Mistaken {};

TEST_P(BankMistake, IsToldInOneLine) {
    expectOneLine("quillon-bank", QUILLON_BANK);
}

const Mistake kBanks[] = {
    {"NoCommand", {}, "which command?"},
    {"UnknownCommand", {"compare"}, "\"compare\""},
    {"NoTable", {"compile"}, "compile"},
    {"NoSuchTable", {"compile", "missing.tsv", "-o", "new.fxb"}, "missing.tsv"},
    {"NoOutput", {"compile", "table.tsv"}, "compile"},
    {"TableOfNothing", {"compile", "zero.wav", "-o", "new.fxb"}, "zero.wav"},
    {"UnknownColumn", {"compile", "table.tsv", "-o", "new.fxb"}, "table.tsv"},
    {"SoundAsBank", {"table", "in.wav", "-o", "new.tsv"}, "in.wav"},
    {"NoSuchBank", {"table", "missing.fxb", "-o", "new.tsv"}, "missing.fxb"},
    {"OutputNowhere", {"tempo", "112", "-o", "nowhere/new.fxb"}, "nowhere"},
    {"OutputIsAFolder", {"tempo", "112", "-o", "takes"}, "takes"},
    {"TempoZero", {"tempo", "0", "-o", "new.fxb"}, "\"0\" is not a tempo"},
    {"TempoInWords", {"tempo", "fast", "-o", "new.fxb"}, "\"fast\""},
    {"NoControllers", {"map"}, "map"},
    {"NoSuchController", {"map", "bound.txt"}, "bound.txt"},
    {"UnknownOption", {"tempo", "112", "--shout"}, "--shout"},
};
INSTANTIATE_TEST_SUITE_P(OfBanks, BankMistake, testing::ValuesIn(kBanks), nameOf);

} // namespace
