// Many files at once, as a person renders an album: the finished tool, with the real plug-in.

#include "support/tool_run.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

namespace files = std::filesystem;
using Json = nlohmann::json;

class Bulk : public testing::Test {
  protected:
    Bulk() { files::create_directory(folder.path() / "takes"); }

    /// With short options that make the rendering quick.
    ToolResult render(std::vector<std::string> words) const {
        words.insert(words.end(), {"--tail", "0.01", "--pre-roll", "0"});
        return runTool(folder, words);
    }
    Json renderJson(std::vector<std::string> words) const {
        words.emplace_back("--json");
        return Json::parse(render(words).out);
    }
    std::vector<std::string> namesIn(const std::string& name) const {
        std::vector<std::string> names;
        for (const auto& entry : files::recursive_directory_iterator(folder.path() / name))
            if (!entry.is_directory() && entry.path().filename() != "quillon-render.jsonl")
                names.push_back(entry.path().lexically_relative(folder.path() / name).generic_string());
        std::sort(names.begin(), names.end());
        return names;
    }
    std::string text(const std::string& name) const {
        const auto bytes = readFile(folder.file(name));
        return {bytes.begin(), bytes.end()};
    }

    using Names = std::vector<std::string>;
    ScratchFolder folder;
};

TEST_F(Bulk, MakesTheSameFilesAsOneByOne) {
    folder.writeSound("takes/a.wav", noise(3000), 1);
    folder.writeSound("takes/b.wav", noise(5000), 2, 48000);
    const ToolResult result = render({"takes", "--to", "out", "--programs", "3,12", "--jobs", "3"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_NE(result.out.find("4 rendered"), std::string::npos) << result.out;
    EXPECT_EQ(result.leftBehind, Names{});
    EXPECT_EQ(namesIn("out"), (Names{"a - 003 Marbles on Tile.wav", "a - 012 Two-Sided Slap.wav",
                                     "b - 003 Marbles on Tile.wav", "b - 012 Two-Sided Slap.wav"}));
    for (const std::string name : {"a", "b"})
        for (const std::string program : {"003 Marbles on Tile", "012 Two-Sided Slap"}) {
            const std::string alone = name + program + ".wav";
            EXPECT_EQ(render({"takes/" + name + ".wav", alone, "--program", program.substr(4)}).exitCode, 0);
            EXPECT_EQ(readFile(folder.file("out/" + name + " - " + program + ".wav")),
                      readFile(folder.file(alone)))
                << alone;
        }
}

TEST_F(Bulk, TakesFilesFoldersAndPatternsAndAnotherType) {
    files::create_directories(folder.path() / "takes/day 1");
    folder.writeSound("takes/day 1/x.wav", noise(100));
    folder.writeSound("single.wav", noise(100));
    folder.writeSound("other.wav", noise(100));
    const ToolResult result =
        render({"takes", "--type", "aiff", "sing*.wav", "--to", "deep/out/", "other.wav", "--program", "3"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(namesIn("deep/out"), (Names{"day 1/x.aiff", "other.aiff", "single.aiff"}));
}

TEST_F(Bulk, DoesOnlyWhatIsMissingOrMadeOtherwise) {
    folder.writeSound("takes/a.wav", noise(1000));
    folder.writeSound("takes/b.wav", noise(2000));
    const auto counts = [&](std::vector<std::string> words) {
        words.insert(words.begin(), {"takes", "--to", "out"});
        const Json all = renderJson(words);
        return std::pair(all.at("rendered").get<int>(), all.at("kept").get<int>());
    };
    EXPECT_EQ(counts({}), std::pair(2, 0));
    EXPECT_EQ(counts({}), std::pair(0, 2));
    files::remove(folder.file("out/a.wav"));
    EXPECT_EQ(counts({}), std::pair(1, 1));
    EXPECT_EQ(counts({"--set", "Mix=1"}), std::pair(2, 0));
    EXPECT_EQ(counts({"--set", "Mix=1"}), std::pair(0, 2));
    folder.writeSound("takes/b.wav", noise(2500));
    EXPECT_EQ(counts({"--set", "Mix=1"}), std::pair(1, 1));
    EXPECT_EQ(counts({"--set", "Mix=1", "--again"}), std::pair(2, 0));
    folder.writeText("moves.txt", "0.001 Mix 0.5\n");
    EXPECT_EQ(counts({"--automate", "moves.txt"}), std::pair(2, 0));
    EXPECT_EQ(counts({"--automate", "moves.txt"}), std::pair(0, 2));
    folder.writeText("moves.txt", "0.002 Mix 0.5\n");
    EXPECT_EQ(counts({"--automate", "moves.txt"}), std::pair(2, 0));
}

TEST_F(Bulk, LeavesFilesThatItHasNotMade) {
    folder.writeSound("takes/a.wav", noise(1000));
    folder.writeSound("takes/b.wav", noise(1000));
    files::create_directory(folder.path() / "out");
    folder.writeText("out/a.wav", "mine");
    const std::string words = "is there already and is not from this tool; --again replaces it";
    const ToolResult first = render({"takes", "--to", "out", "--quiet"});
    EXPECT_EQ(first.exitCode, 2);
    ASSERT_EQ(first.errorLines().size(), 1u) << first.err;
    EXPECT_NE(first.err.find(words), std::string::npos) << first.err;
    EXPECT_EQ(text("out/a.wav"), "mine");
    EXPECT_TRUE(files::exists(folder.file("out/b.wav")));

    folder.writeText("out/b.wav", "edited");
    const ToolResult second = render({"takes", "--to", "out", "--quiet"});
    EXPECT_EQ(second.errorLines().size(), 2u) << second.err;
    EXPECT_NE(second.err.find("has been changed since it was rendered; --again replaces it"),
              std::string::npos);
    EXPECT_EQ(text("out/b.wav"), "edited");

    EXPECT_EQ(render({"takes", "--to", "out", "--quiet", "--again"}).exitCode, 0);
    EXPECT_EQ(readSound(folder.file("out/a.wav")).channels, 2);
    EXPECT_EQ(readSound(folder.file("out/b.wav")).channels, 2);
}

TEST_F(Bulk, GoesOnAfterAFileThatCannotBePlayed) {
    folder.writeSound("takes/a.wav", noise(1000));
    folder.writeText("takes/b.wav", "words, not sound");
    folder.writeSound("takes/c.wav", noise(1000));
    const ToolResult result = render({"takes", "--to", "out", "--jobs", "1"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(namesIn("out"), (Names{"a.wav", "c.wav"}));
    const auto lines = result.errorLines();
    ASSERT_EQ(lines.size(), 4u) << result.err;
    EXPECT_EQ(lines[0], "[1/3] a.wav");
    EXPECT_TRUE(lines[1].starts_with("[2/3] b.wav FAILED: ")) << lines[1];
    EXPECT_EQ(lines[2], "[3/3] c.wav");
    EXPECT_TRUE(lines[3].starts_with("quillon-render: ")) << lines[3];
    EXPECT_NE(lines[3].find("b.wav cannot be read: "), std::string::npos) << lines[3];
    EXPECT_NE(result.out.find("2 rendered, 1 failed"), std::string::npos) << result.out;
}

TEST_F(Bulk, GoesOnAfterACrashOfTheEffect) {
    folder.writeSound("takes/a.wav", noise(1000));
    folder.writeSound("takes/b.wav", noise(1000));
    const ToolResult result =
        render({"takes", "--to", "out", "--quiet", "--library", PROBES "/probe_crashes_in_process.so"});
    EXPECT_EQ(result.exitCode, 2);
    const auto lines = result.errorLines();
    ASSERT_EQ(lines.size(), 2u) << result.err;
    for (const std::string& line : lines)
        EXPECT_NE(line.find("in processReplacing"), std::string::npos) << line;
    EXPECT_FALSE(files::exists(folder.file("out")));
    EXPECT_EQ(result.leftBehind, Names{});
}

TEST_F(Bulk, TellsWhatIsWrongWithTheSettingsOnce) {
    folder.writeSound("takes/a.wav", noise(1000));
    folder.writeSound("takes/b.wav", noise(1000));
    const ToolResult result = render({"takes", "--to", "out", "--set", "Feedbak=0.5"});
    EXPECT_EQ(result.exitCode, 2);
    ASSERT_EQ(result.errorLines().size(), 1u) << result.err;
    EXPECT_NE(result.err.find("did you mean \"Feedback\"?"), std::string::npos) << result.err;
    EXPECT_FALSE(files::exists(folder.file("out")));
}

TEST_F(Bulk, ReportsOneDocumentInJson) {
    folder.writeSound("takes/a.wav", noise(1000));
    folder.writeText("takes/b.wav", "words");
    const Json all = renderJson({"takes", "--to", "out", "--programs", "7", "--jobs", "1"});
    EXPECT_EQ(all.at("rendered"), 1);
    EXPECT_EQ(all.at("failed"), 1);
    ASSERT_EQ(all.at("files").size(), 2u);
    const Json& good = all["files"][0];
    EXPECT_EQ(good.at("state"), "rendered");
    EXPECT_EQ(good.at("program"), 7);
    EXPECT_EQ(good.at("report").at("program").at("number"), 7);
    EXPECT_EQ(good.at("report").at("output"), good.at("output"));
    EXPECT_EQ(good.at("error"), Json());
    const Json& bad = all["files"][1];
    EXPECT_EQ(bad.at("state"), "failed");
    EXPECT_NE(bad.at("error").get<std::string>().find("b.wav"), std::string::npos);
    const Json again = renderJson({"takes", "--to", "out", "--programs", "7"});
    EXPECT_EQ(again["files"][0].at("state"), "kept");
    EXPECT_EQ(again["files"][0].at("report"), good.at("report"));
}

} // namespace
