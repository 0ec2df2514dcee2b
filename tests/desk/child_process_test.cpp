// A tool's own child processes: words arrive whole, ends are told apart, and none outlives its object.

#include "desk/child_process.h"
#include "platform/module_folder.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <thread>

namespace {

namespace files = std::filesystem;

class ChildProcess : public testing::Test {
  protected:
    ChildProcess() {
        static std::atomic<int> count = 0;
        folder = files::temp_directory_path() /
                 ("quillon-child-" + std::to_string(desk::ownProcessId()) + "-" + std::to_string(count++));
        files::create_directory(folder);
    }
    ~ChildProcess() override { files::remove_all(folder); }

    desk::ChildCommand command(std::vector<std::string> words) const {
        return {QUILLON_CHILD, std::move(words), folder, folder / "out", folder / "err"};
    }
    static desk::ProcessEnd waitFor(desk::ChildProcess& child) {
        for (;;) {
            if (const auto end = child.end())
                return *end;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    std::string textOf(const char* name) const {
        std::ifstream file(folder / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    void waitForOutput() const {
        while (textOf("out").empty())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

    files::path folder;
};

TEST_F(ChildProcess, GetsItsWordsAsTheyAre) {
    const std::vector<std::string> words = {
        "say", "two words", "", "\"quoted\"", "a\\", "a\\\"", "*", "$HOME %PATH%", "\u65E5\u672C"};
    desk::ChildProcess child(command(words));
    EXPECT_EQ(waitFor(child).exitCode, 0);
    std::string expected;
    for (const std::string& word : words)
        expected += "[" + word + "]";
    EXPECT_EQ(textOf("out"), expected);
    EXPECT_EQ(textOf("err"), "done");
}

TEST_F(ChildProcess, RunsInTheFolderItIsGivenAndReadsNothing) {
    desk::ChildProcess child(command({"look"}));
    EXPECT_EQ(waitFor(child).exitCode, 0);
    EXPECT_TRUE(files::equivalent(textOf("out"), folder)) << textOf("out");
    EXPECT_EQ(textOf("err"), "end of input");
}

TEST_F(ChildProcess, TellsHowItEnded) {
    desk::ChildProcess refused(command({"exit", "7"}));
    EXPECT_EQ(waitFor(refused).exitCode, 7);
    EXPECT_EQ(waitFor(refused).reason, "");
    desk::ChildProcess aborted(command({"wait"}));
    aborted.endByForce();
    EXPECT_EQ(waitFor(aborted).exitCode, -1);
    EXPECT_NE(waitFor(aborted).reason, "");
}

TEST_F(ChildProcess, IsRunningUntilItEnds) {
    desk::ChildProcess child(command({"wait"}));
    waitForOutput();
    EXPECT_FALSE(child.end());
    EXPECT_NE(child.id(), desk::ownProcessId());
    EXPECT_EQ(textOf("out"), std::to_string(child.id()));
}

TEST_F(ChildProcess, DoesNotOutliveItsObject) {
    {
        const desk::ChildProcess child(command({"writeAgainAndAgain"}));
    }
    std::error_code error;
    files::remove(folder / "mark", error);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_FALSE(files::exists(folder / "mark"));
}

TEST_F(ChildProcess, CannotBeAProgramThatIsNotThere) {
    desk::ChildCommand missing = command({});
    missing.program = folder / "nothing";
    try {
        desk::ChildProcess child(missing);
        EXPECT_EQ(waitFor(child).exitCode, 127);
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find("nothing cannot be started"), std::string::npos);
    }
}

TEST_F(ChildProcess, MayBeThisProgramItself) {
    EXPECT_TRUE(files::exists(platform::programPath()));
    EXPECT_EQ(platform::programPath().stem(), "desk_child_test");
}

} // namespace
