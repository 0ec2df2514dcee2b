// The command line.

#include "tools/common/tool_error.h"
#include "tools/render/options.h"

#include <gtest/gtest.h>

namespace {

using namespace tools;
using namespace tools::render;

std::variant<Options, HelpText> parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "quillon-render");
    return parseOptions(static_cast<int>(arguments.size()), arguments.data());
}

Options options(const std::vector<const char*>& arguments) {
    return std::get<Options>(parse(arguments));
}

void expectRefused(const std::vector<const char*>& arguments, const std::string& reason) {
    try {
        parse(arguments);
        FAIL() << "was taken; expected: " << reason;
    } catch (const ToolError& error) {
        EXPECT_NE(std::string(error.what()).find(reason), std::string::npos) << error.what();
        EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos) << error.what();
    }
}

TEST(CommandLine, NeedsTwoFilesAndNothingElse) {
    const Options plain = options({"in.wav", "out.wav"});
    EXPECT_EQ(plain.input, std::filesystem::current_path() / "in.wav");
    EXPECT_EQ(plain.output, std::filesystem::current_path() / "out.wav");
    EXPECT_TRUE(plain.tail.automatic);
    EXPECT_EQ(plain.blockSize, 512);
    EXPECT_FALSE(plain.preRollSeconds);
    EXPECT_TRUE(plain.format == SampleFormat::automatic);
    EXPECT_TRUE(plain.library.empty());
}

TEST(CommandLine, MakesEveryPathAbsolute) {
    const Options all = options({"a/../in.wav", "out.wav", "--library", "l.so", "--automate", "a.txt",
                                 "--midi", "m.mid", "--chunk", "c", "--bank", "b.fxb", "--plot", "p.png"});
    for (const auto& path :
         {all.input, all.output, all.library, all.automation, all.midi, all.chunk, all.bank, all.plot})
        EXPECT_TRUE(path.is_absolute()) << path;
    EXPECT_EQ(all.input, std::filesystem::current_path() / "in.wav");
}

TEST(CommandLine, TakesSettingsWithoutSwallowingTheFiles) {
    const Options set = options({"--set", "Feedback=0.5", "--set", "6=1", "in.wav", "out.wav"});
    ASSERT_EQ(set.settings.size(), 2u);
    EXPECT_EQ(set.settings[1].setting.parameter, "6");
    EXPECT_EQ(set.output.filename(), "out.wav");
}

TEST(CommandLine, TakesCommasAndBracketsInASettingAsTheyAre) {
    const Options set =
        options({"in.wav", "out.wav", "--set", "Set=display:LFO Off,Use Pitch Off", "--set", "[a,b]=0.5"});
    ASSERT_EQ(set.settings.size(), 2u);
    EXPECT_EQ(set.settings[0].setting.value.text, "LFO Off,Use Pitch Off");
    EXPECT_EQ(set.settings[1].setting.parameter, "[a,b]");
}

TEST(CommandLine, TakesTailFormatBlockAndPreRoll) {
    const Options some =
        options({"i", "o", "--tail", "2.5", "--format", "float", "--block", "64", "--pre-roll", "0"});
    EXPECT_FALSE(some.tail.automatic);
    EXPECT_DOUBLE_EQ(some.tail.seconds, 2.5);
    EXPECT_TRUE(some.format == SampleFormat::float32);
    EXPECT_EQ(some.blockSize, 64);
    EXPECT_EQ(some.preRollSeconds, 0.0);
    EXPECT_TRUE(options({"i", "o", "--tail", "auto"}).tail.automatic);
    EXPECT_TRUE(options({"i", "o", "--format", "24"}).format == SampleFormat::pcm24);
}

TEST(CommandLine, TakesFilesWhoseNamesBeginWithADash) {
    EXPECT_EQ(options({"--", "-in.wav", "-out.wav"}).input.filename(), "-in.wav");
}

TEST(CommandLine, HelpsInWordsForMusicians) {
    const std::string help = std::get<HelpText>(parse({"--help"})).text;
    for (const char* word :
         {"--program",       "--set",     "--automate",  "--midi",     "--chunk",  "--bank",    "--tail",
          "--block",         "--list",    "--plot",      "--json",     "--format", "--library", "--pre-roll",
          "--quiet",         "--version", "--to",        "--programs", "--type",   "--jobs",    "--again",
          "--contact-sheet", "Examples:", "120 seconds", "-80 dBFS",   "smp"})
        EXPECT_NE(help.find(word), std::string::npos) << word;
}

TEST(CommandLine, TellsItsVersion) {
    EXPECT_TRUE(std::get<HelpText>(parse({"--version"})).text.starts_with("quillon-render 1."));
}

TEST(CommandLine, TakesManyFilesWithAFolderToWriteTo) {
    const Options all =
        options({"a.wav",      "b",       "--to",       "out/",   "c*.wav", "--set",  "Mix=1",
                 "--programs", "0-3",     "--programs", "7",      "--type", ".FLAC",  "--jobs",
                 "5",          "--again", "--json",     "--midi", "m.mid",  "--tail", "2"});
    ASSERT_TRUE(all.bulk);
    const BulkOptions& bulk = *all.bulk;
    EXPECT_EQ(bulk.inputs, (std::vector<std::string>{"a.wav", "b", "c*.wav"}));
    EXPECT_EQ(bulk.folder, std::filesystem::current_path() / "out");
    EXPECT_EQ(bulk.programs, (std::vector<std::string>{"0-3", "7"}));
    EXPECT_EQ(bulk.ending, ".flac");
    EXPECT_EQ(bulk.jobs, 5u);
    EXPECT_TRUE(bulk.again);
    EXPECT_EQ(bulk.words, (std::vector<std::string>{"--set", "Mix=1", "--midi", "m.mid", "--tail", "2"}));
    EXPECT_EQ(bulk.listWords, (std::vector<std::string>{"--set", "Mix=1", "--tail", "2"}));
    EXPECT_EQ(bulk.files, std::vector{std::filesystem::current_path() / "m.mid"});
    EXPECT_TRUE(all.input.empty());
    EXPECT_FALSE(options({"a", "b"}).bulk);
    EXPECT_GE(options({"a", "--to", "b"}).bulk->jobs, 1u);
}

TEST(CommandLine, SaysWhatIsWrongWithManyFiles) {
    expectRefused({"--to", "out"}, "which files?");
    expectRefused({"a", "--to", ""}, "--to: nothing was given");
    expectRefused({"a", "--to", "x", "--contact-sheet", "y"}, "--to and --contact-sheet");
    expectRefused({"a", "b", "--contact-sheet", "y"}, "leave out \"b\"");
    expectRefused({"a", "--contact-sheet", "x", "--program", "1"}, "--contact-sheet plays all");
    expectRefused({"a", "--to", "x", "--plot", "p.png"}, "--plot draws one file");
    expectRefused({"a", "--to", "x", "--program", "1", "--programs", "2"}, "--program chooses one program");
    expectRefused({"a", "b", "--programs", "2"}, "with --to FOLDER");
    expectRefused({"a", "b", "--again"}, "with --to FOLDER");
    expectRefused({"a", "--to", "x", "--type", "mp9"}, "--type: \"mp9\"");
    expectRefused({"a", "--to", "x", "--jobs", "0"}, "--jobs: \"0\" is not a number from 1 to 256");
    expectRefused({"a", "--to", "x", "--jobs", "-2"}, "--jobs: \"-2\"");
    expectRefused({"--list", "--to", "x"}, "leave out --to");
}

TEST(CommandLine, SaysWhatIsWrong) {
    expectRefused({}, "which file?");
    expectRefused({"in.wav"}, "where to?");
    expectRefused({"a", "b", "c"}, "\"c\" is one file too many");
    expectRefused({"a", "b", "--loud"}, "--loud");
    expectRefused({"a", "b", "--set"}, "--set");
    expectRefused({"a", "b", "--set", "Feedback"}, "--set \"Feedback\": write it as PARAMETER=VALUE");
    expectRefused({"a", "b", "--set", "Feedback=2"},
                  "--set \"Feedback=2\": a value without a unit must be from 0 to 1");
    expectRefused({"a", "b", "--tail", "-1"}, "--tail: \"-1\"");
    expectRefused({"a", "b", "--tail", "long"}, "--tail: \"long\"");
    expectRefused({"a", "b", "--tail", "1e9"}, "--tail");
    expectRefused({"a", "b", "--block", "0"}, "--block: \"0\"");
    expectRefused({"a", "b", "--block", "65537"}, "--block");
    expectRefused({"a", "b", "--block", "many"}, "--block");
    expectRefused({"a", "b", "--format", "16"}, "--format: \"16\"");
    expectRefused({"a", "b", "--pre-roll", "x"}, "--pre-roll: \"x\"");
    expectRefused({"a", "b", "--program", ""}, "--program: nothing was given");
    expectRefused({"--list", "a"}, "--list renders nothing");
    expectRefused({"--list", "--plot", "p.png"}, "--list renders nothing");
}

} // namespace
