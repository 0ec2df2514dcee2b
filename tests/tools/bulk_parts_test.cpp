// The parts of rendering many files: which files, which programs, which names, and what the record knows.

#include "support/scratch_folder.h"
#include "tools/common/tool_error.h"
#include "tools/render/bulk_display.h"
#include "tools/render/bulk_plan.h"
#include "tools/render/bulk_record.h"
#include "tools/render/content_hash.h"
#include "tools/render/glob.h"
#include "tools/render/program_choice.h"
#include "tools/render/sound_files.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>

namespace {

namespace files = std::filesystem;
using namespace tools::render;

std::string complaintOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const tools::ToolError& error) {
        return error.what();
    }
    return "";
}

TEST(Patterns, MatchWholeNamesInEitherCase) {
    for (const char* pattern : {"Take 1.wav", "*", "take*", "*.WAV", "T*1*v", "??????.*", "take [0-9].wav",
                                "take [!a-z].wav", "**.wav", "*[v]"})
        EXPECT_TRUE(matchesPattern("Take 1.wav", pattern)) << pattern;
    for (const char* pattern :
         {"", "take", "*.flac", "?", "take [2-9].wav", "take [!0-9].wav", "*x*", "take 1.wav?"})
        EXPECT_FALSE(matchesPattern("Take 1.wav", pattern)) << pattern;
    EXPECT_TRUE(matchesPattern("", "*"));
    EXPECT_TRUE(matchesPattern("a[b", "a[b"));
    EXPECT_TRUE(matchesPattern("]", "[]]"));
    EXPECT_TRUE(matchesPattern("-", "[a-]"));
    EXPECT_FALSE(isPattern("Take 1.wav"));
    EXPECT_TRUE(isPattern("take?.wav"));
}

class ProgramChoice : public testing::Test {
  protected:
    std::vector<std::int32_t> choose(const std::vector<std::string>& texts) const {
        return choosePrograms(names, texts);
    }
    std::string complaint(const std::string& text) const {
        return complaintOf([&] { choose({text}); });
    }
    const std::vector<std::string> names = {"Ping",     "Ping Pong", "Slow Dawn", "Ping",
                                            "One, Two", "Star*",     "Starling",  "Dusk"};
    using Numbers = std::vector<std::int32_t>;
};

TEST_F(ProgramChoice, TakesNumbersRangesNamesAndPatterns) {
    EXPECT_EQ(choose({"0-7"}), (Numbers{0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(choose({"3, 7,1-2"}), (Numbers{3, 7, 1, 2}));
    EXPECT_EQ(choose({"slow dawn"}), (Numbers{2}));
    EXPECT_EQ(choose({"Slow"}), (Numbers{2}));
    EXPECT_EQ(choose({"PING*, dusk"}), (Numbers{0, 1, 3, 7}));
    EXPECT_EQ(choose({"*"}), (Numbers{0, 1, 2, 3, 4, 5, 6, 7}));
}

TEST_F(ProgramChoice, TakesEachProgramOnce) {
    EXPECT_EQ(choose({"2,0-2", "2"}), (Numbers{2, 0, 1}));
}

TEST_F(ProgramChoice, TakesWholeNamesBeforeAllElse) {
    EXPECT_EQ(choose({"One, Two"}), (Numbers{4}));
    EXPECT_EQ(choose({"Star*"}), (Numbers{5}));
    EXPECT_EQ(choose({"7,Star*"}), (Numbers{7, 5}));
    EXPECT_EQ(choose({"Ping"}), (Numbers{0, 3}));
}

TEST_F(ProgramChoice, SaysWhichPartIsWrong) {
    EXPECT_EQ(complaint("7-3"), "--programs \"7-3\": 7-3 runs backwards; write 3-7");
    EXPECT_EQ(complaint("3-8"), "--programs \"3-8\": there is no program 8; they are numbered 0 to 7");
    EXPECT_EQ(complaint("0,128"), "--programs \"0,128\": there is no program 128; they are numbered 0 to 7");
    EXPECT_EQ(complaint("1,Slow Down"),
              "--programs \"1,Slow Down\": there is no program \"Slow Down\"; did you mean \"Slow Dawn\"?");
    EXPECT_EQ(complaint("x*"),
              "--programs \"x*\": no program matches \"x*\"; quillon-render --list shows them");
    EXPECT_NE(complaint("1,,2").find("nothing between two commas"), std::string::npos);
    EXPECT_NE(complaint("").find("--programs \"\""), std::string::npos);
}

class SoundFiles : public testing::Test {
  protected:
    SoundFiles() {
        for (const char* name :
             {"a.wav", "b.FLAC", "notes.txt", ".hidden.wav", "day1/mix.wav", "day1/x/deep.aiff",
              "day2/mix.wav", "day2/take [1].wav", "out/old.wav", ".trash/c.wav"}) {
            files::create_directories((folder.path() / name).parent_path());
            folder.writeText(name, "");
        }
    }
    /// Places under the output folder, of the words as paths in the folder.
    std::vector<std::string> places(std::vector<std::string> words) const {
        for (std::string& word : words)
            word = (folder.path() / word).string();
        std::vector<std::string> found;
        for (const SoundFile& file : findSoundFiles(words, folder.path() / "out")) {
            EXPECT_TRUE(files::exists(file.file)) << file.file;
            found.push_back(file.place.generic_string());
        }
        return found;
    }
    std::string complaint(const std::string& word) const {
        return complaintOf([&] { places({word}); });
    }
    using Places = std::vector<std::string>;
    const ScratchFolder folder;
};

TEST_F(SoundFiles, OfAFolderAreThoseInItsSubFoldersToo) {
    EXPECT_EQ(places({"."}), (Places{"a.wav", "b.FLAC", "day1/mix.wav", "day1/x/deep.aiff", "day2/mix.wav",
                                     "day2/take [1].wav"}));
    EXPECT_EQ(places({"day1", "day2"}), (Places{"mix.wav", "x/deep.aiff", "mix.wav", "take [1].wav"}));
}

TEST_F(SoundFiles, OfAPatternKeepTheFoldersThatItNames) {
    EXPECT_EQ(places({"*.wav"}), (Places{"a.wav"}));
    EXPECT_EQ(places({"day?/mix.*"}), (Places{"day1/mix.wav", "day2/mix.wav"}));
    EXPECT_EQ(places({"**/*.aiff"}), (Places{"day1/x/deep.aiff"}));
    EXPECT_EQ(places({"day*"}),
              (Places{"day1/mix.wav", "day1/x/deep.aiff", "day2/mix.wav", "day2/take [1].wav"}));
}

TEST_F(SoundFiles, MayHaveTheCharactersOfAPatternInTheirNames) {
    EXPECT_EQ(places({"day2/take [1].wav"}), (Places{"take [1].wav"}));
}

TEST_F(SoundFiles, NamedOneByOneMayHaveAnyEnding) {
    EXPECT_EQ(places({"notes.txt", "a.wav"}), (Places{"notes.txt", "a.wav"}));
}

TEST_F(SoundFiles, NamedTwiceAreTakenOnce) {
    EXPECT_EQ(places({"a.wav", "*.wav", "./a.wav"}), (Places{"a.wav"}));
}

TEST_F(SoundFiles, ThatAreNotThereAreTold) {
    files::create_directory(folder.path() / "empty");
    EXPECT_TRUE(complaint("missing.wav").ends_with("missing.wav: there is no such file or folder"));
    EXPECT_TRUE(complaint("*.ogg").ends_with("*.ogg\" matches no sound file"));
    EXPECT_TRUE(complaint("nowhere/*.wav").ends_with("*.wav\" matches no sound file"));
    EXPECT_TRUE(complaint("empty").ends_with("empty holds no sound files"));
}

TEST_F(SoundFiles, InTheOutputFolderAreRefused) {
    EXPECT_TRUE(complaint("out").ends_with("out is the output folder; choose another folder for the output"));
    EXPECT_TRUE(complaint("out/old.wav")
                    .ends_with("old.wav lies in the output folder; choose another folder for the output"));
}

TEST(PortableName, IsOneOnEverySystem) {
    EXPECT_EQ(portableName("Slow Dawn"), "Slow Dawn");
    EXPECT_EQ(portableName("1/4 \"Dotted\" <a:b>|?*\\"), "1-4 -Dotted- -a-b-----");
    EXPECT_EQ(portableName(" dots... "), "dots");
    EXPECT_EQ(portableName("Aux"), "_Aux");
    EXPECT_EQ(portableName("com1.left"), "_com1.left");
    EXPECT_EQ(portableName("Auxiliary"), "Auxiliary");
    EXPECT_EQ(portableName("\u00C9cho\n"), "\u00C9cho");
}

TEST(Plan, NamesEachOutputAfterItsInputAndItsProgram) {
    const std::vector<SoundFile> inputs = {
        {"/in/voice.wav", "voice.wav"}, {"/in/sub/bell.FLAC", "sub/bell.FLAC"}, {"/in/old.mp3", "old.mp3"}};
    std::vector<std::string> names;
    const auto plan = [&](const std::vector<ProgramName>& programs, const std::string& ending) {
        names.clear();
        for (const BulkJob& job : planJobs(inputs, programs, "/out", ending))
            names.push_back(job.output.generic_string());
        return names;
    };
    EXPECT_EQ(plan({}, ""),
              (std::vector<std::string>{"/out/voice.wav", "/out/sub/bell.flac", "/out/old.wav"}));
    EXPECT_EQ(plan({{3, "Ping"}, {127, "A/B"}}, ".aiff"),
              (std::vector<std::string>{"/out/voice - 003 Ping.aiff", "/out/voice - 127 A-B.aiff",
                                        "/out/sub/bell - 003 Ping.aiff", "/out/sub/bell - 127 A-B.aiff",
                                        "/out/old - 003 Ping.aiff", "/out/old - 127 A-B.aiff"}));
}

TEST(Plan, RefusesTwoOutputsOfOneName) {
    const auto complaint = [](const SoundFile& a, const SoundFile& b) {
        return complaintOf([&] { planJobs({a, b}, {}, "/out", ".wav"); });
    };
    EXPECT_EQ(complaint({"/x/a.wav", "a.wav"}, {"/y/a.wav", "a.wav"}),
              files::path("/x/a.wav").string() + " and " + files::path("/y/a.wav").string() +
                  " would both become " + (files::path("/out") / "a.wav").string() +
                  "; give them different names, or render them into different folders");
    EXPECT_NE(complaint({"/x/a.wav", "a.wav"}, {"/x/a.flac", "a.flac"}), "");
    EXPECT_NE(complaint({"/x/a.wav", "a.wav"}, {"/y/A.wav", "A.wav"}), "");
    EXPECT_EQ(complaint({"/x/a.wav", "x/a.wav"}, {"/y/a.wav", "y/a.wav"}), "");
}

TEST(ContentHash, TellsContentsApart) {
    const ScratchFolder folder;
    EXPECT_EQ(contentHash(""), "cbf29ce484222325");
    EXPECT_EQ(contentHash("a"), "af63dc4c8601ec8c");
    EXPECT_EQ(contentHashOf(folder.writeText("a", "foobar")), "85944171f73967e8");
    const std::string large(3000000, 'x');
    EXPECT_EQ(contentHashOf(folder.writeText("large", large)), contentHash(large));
    EXPECT_NE(complaintOf([&] { contentHashOf(folder.path() / "missing"); }), "");
}

class Record : public testing::Test {
  protected:
    RecordEntry entry(const std::string& fingerprint) const {
        RecordEntry made = entryFor(folder.writeText("a.wav", "sound"));
        made.fingerprint = fingerprint;
        made.report = R"({"peak":0.5})";
        return made;
    }
    const ScratchFolder folder;
    const files::path output = folder.path() / "a.wav";
};

TEST_F(Record, IsReadAsItWasWritten) {
    {
        BulkRecord record(folder.path());
        EXPECT_EQ(record.find(output), nullptr);
        record.open();
        record.begin(output);
        record.begin(folder.path() / "sub/b.wav");
        record.finish(output, entry("1234"));
    }
    const BulkRecord record(folder.path());
    const RecordEntry* known = record.find(output);
    ASSERT_NE(known, nullptr);
    EXPECT_TRUE(known->isDone);
    EXPECT_EQ(known->fingerprint, "1234");
    EXPECT_EQ(known->report, R"({"peak":0.5})");
    EXPECT_TRUE(isUnchanged(output, *known));
    ASSERT_NE(record.find(folder.path() / "sub/b.wav"), nullptr);
    EXPECT_FALSE(record.find(folder.path() / "sub/b.wav")->isDone);
}

TEST_F(Record, OutlivesATornLine) {
    {
        BulkRecord record(folder.path());
        record.open();
        record.finish(output, entry("1234"));
    }
    std::ofstream(folder.path() / kRecordName, std::ios::app) << R"({"output":"b.wav","sta)";
    {
        BulkRecord record(folder.path());
        EXPECT_NE(record.find(output), nullptr);
        EXPECT_EQ(record.find(folder.path() / "b.wav"), nullptr);
        record.open();
        record.finish(folder.path() / "c.wav", entry("5678"));
    }
    const BulkRecord record(folder.path());
    EXPECT_NE(record.find(output), nullptr);
    EXPECT_NE(record.find(folder.path() / "c.wav"), nullptr);
}

TEST_F(Record, ForgetsWhatCameToNothingAndKeepsWhatWasThereBefore) {
    BulkRecord record(folder.path());
    record.open();
    record.begin(output);
    record.abandon(output);
    EXPECT_EQ(record.find(output), nullptr);
    record.finish(output, entry("1234"));
    record.begin(output);
    record.abandon(output);
    ASSERT_NE(record.find(output), nullptr);
    EXPECT_TRUE(record.find(output)->isDone);
    EXPECT_EQ(BulkRecord(folder.path()).find(output)->fingerprint, "1234");
}

TEST_F(Record, IsTakenAwayIfItSaysNothing) {
    BulkRecord record(folder.path());
    record.open();
    record.begin(output);
    record.abandon(output);
    record.removeIfEmpty();
    EXPECT_EQ(folder.names(), std::vector<std::string>{});
}

TEST_F(Record, KnowsAChangedFileFromOneThatWasOnlyCopied) {
    const RecordEntry made = entry("1234");
    files::last_write_time(output, files::last_write_time(output) + std::chrono::hours(1));
    EXPECT_TRUE(isUnchanged(output, made));
    folder.writeText("a.wav", "SOUND");
    files::last_write_time(output, files::last_write_time(output) + std::chrono::hours(2));
    EXPECT_FALSE(isUnchanged(output, made));
    folder.writeText("a.wav", "more sound");
    EXPECT_FALSE(isUnchanged(output, made));
}

TEST(ProgressLine, FitsIntoItsWidth) {
    const BulkProgress progress{36, 12, 1, 200.0, "disc1/01 Caf\u00E9 - 003 Ping.wav"};
    EXPECT_EQ(progressLine(progress, 78),
              "12 of 36 done, 1 failed, about 3 min left: disc1/01 Caf\u00E9 - 003 Ping.wav");
    EXPECT_EQ(progressLine(progress, 20), "12 of 36 done, 1 fa\u2026");
    EXPECT_EQ(progressLine({3, 0, 0, {}, ""}, 78), "0 of 3 done");
    EXPECT_EQ(roughTime(0.2), "1 s");
    EXPECT_EQ(roughTime(59.5), "60 s");
    EXPECT_EQ(roughTime(4800.0), "1 h 20 min");
}

} // namespace
