// An album that is interrupted and resumed, and what a terminal shows of it.

#include "support/tool_run.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <thread>

namespace {

namespace files = std::filesystem;

using Contents = std::map<std::string, std::vector<std::uint8_t>>;

/// The sounds in a folder, by name; anything unfinished too.
Contents soundsIn(const std::string& folder) {
    Contents sounds;
    for (const auto& entry : files::directory_iterator(folder))
        if (entry.path().extension() != ".jsonl")
            sounds[entry.path().filename().string()] = readFile(entry.path().string());
    return sounds;
}

class Album : public testing::Test {
  protected:
    Album() {
        files::create_directory(folder.path() / "album");
        for (int i = 1; i <= 12; ++i)
            folder.writeSound("album/" + std::to_string(i) + ".wav",
                              noise(static_cast<std::size_t>(1000 + 100 * i)), 1 + i % 2);
    }
    const std::vector<std::string> words = {"album",  "--to", "out",    "--programs", "3,7,100",
                                            "--tail", "0.5",  "--jobs", "2"};
    ScratchFolder folder;
};

TEST_F(Album, IsTheSameInterruptedAndResumedAsOneByOne) {
    RunningTool tool(folder, words);
    while (!files::exists(folder.file("out")) || soundsIn(folder.file("out")).size() < 5)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    tool.send(SIGINT);
    const ToolResult stopped = tool.wait();
    EXPECT_EQ(stopped.exitCode, 130);
    EXPECT_NE(stopped.err.find(" of 36 files are written, and the same command goes on from there"),
              std::string::npos)
        << stopped.err;
    EXPECT_EQ(stopped.leftBehind, std::vector<std::string>{});
    const std::size_t before = soundsIn(folder.file("out")).size();
    ASSERT_LT(before, 36u);
    for (const auto& [name, content] : soundsIn(folder.file("out")))
        EXPECT_TRUE(name.ends_with(".wav")) << name << " is left";

    std::vector<std::string> again = words;
    again.emplace_back("--json");
    const ToolResult resumed = runTool(folder, again);
    EXPECT_EQ(resumed.exitCode, 0) << resumed.err;
    const auto report = nlohmann::json::parse(resumed.out);
    EXPECT_EQ(report.at("kept"), before);
    EXPECT_EQ(report.at("rendered"), 36 - before);

    files::create_directory(folder.path() / "alone");
    for (const auto& file : report.at("files")) {
        const files::path output = file.at("output").get<std::string>();
        const ToolResult alone =
            runTool(folder, {file.at("input"), "alone/" + output.filename().string(), "--program",
                             std::to_string(file.at("program").get<int>()), "--tail", "0.5", "--quiet"});
        EXPECT_EQ(alone.exitCode, 0) << alone.err;
    }
    EXPECT_EQ(soundsIn(folder.file("out")).size(), 36u);
    EXPECT_TRUE(soundsIn(folder.file("out")) == soundsIn(folder.file("alone")));
}

TEST_F(Album, GoesOnAfterAnEndByForce) {
    {
        RunningTool tool(folder, words);
        while (!files::exists(folder.file("out")) || soundsIn(folder.file("out")).size() < 5)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        tool.send(SIGKILL);
        EXPECT_EQ(tool.wait().signal, SIGKILL);
    }
    // The renderings that were running are asked to end by the system, and take their unfinished files away.
    const auto isUnfinished = [](const auto& sound) { return sound.first.starts_with('.'); };
    while (std::ranges::any_of(soundsIn(folder.file("out")), isUnfinished))
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    const ToolResult resumed = runTool(folder, words);
    EXPECT_EQ(resumed.exitCode, 0) << resumed.err;
    EXPECT_EQ(soundsIn(folder.file("out")).size(), 36u);
}

TEST_F(Album, LosesOneFileAloneIfARenderingIsKilled) {
    // With so long a pre-roll, a rendering is killed before it is done; the other waits for Control-C.
    RunningTool tool(folder,
                     {"album/1.wav", "album/2.wav", "--to", "out", "--pre-roll", "80000", "--jobs", "2"});
    std::string part;
    while (part.empty()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        if (files::exists(folder.file("out")))
            for (const auto& [name, content] : soundsIn(folder.file("out")))
                part = name;
    }
    // ".quillon-PROCESS-NUMBER.part"
    kill(std::stoi(part.substr(part.find('-') + 1)), SIGKILL);
    while (soundsIn(folder.file("out")).contains(part))
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    tool.send(SIGINT);
    const ToolResult result = tool.wait();
    EXPECT_EQ(result.exitCode, 130);
    EXPECT_NE(result.err.find("the rendering ended with signal 9"), std::string::npos) << result.err;
    EXPECT_FALSE(files::exists(folder.file("out")));
}

TEST_F(Album, ShowsOneLineOnATerminal) {
    const ToolResult result = runTool(folder, words, ErrorEnd::terminal);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_NE(result.err.find("\r\033[K0 of 36 done: 1 - 0"), std::string::npos) << result.err;
    EXPECT_EQ(result.err.find('\n'), std::string::npos) << result.err;
    EXPECT_TRUE(result.err.ends_with("\r\033[K")) << result.err;
}

} // namespace
