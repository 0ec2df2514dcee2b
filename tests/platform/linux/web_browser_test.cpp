#include "platform/web_browser.h"

#include "child_process.h"
#include "desk/private_folder.h"
#include "platform/files.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/wait.h>

namespace {

std::string textOf(const std::string& path) {
    const auto content = platform::readWholeFile(path);
    return content ? std::string(content->begin(), content->end()) : std::string();
}

/// A search path that holds a program called xdg-open, which writes down what it was given.
class WebBrowser : public testing::Test {
  protected:
    void SetUp() override { setenv("PATH", (folder.path() + "/bin").c_str(), 1); }
    void TearDown() override { setenv("PATH", oldPath.c_str(), 1); }

    void install() {
        const std::string script = "#!/bin/sh\nprintf '%s|' \"$#\" \"$@\" >'" + folder.path() +
                                   "/draft'\n/bin/mv '" + folder.path() + "/draft' '" + note + "'\n";
        std::filesystem::create_directory("bin");
        ASSERT_TRUE(platform::writeWholeFile("bin/xdg-open", script.data(), script.size()));
        std::filesystem::permissions("bin/xdg-open", std::filesystem::perms::owner_all);
    }

    desk::PrivateFolder folder;
    const std::string note = folder.path() + "/note";
    const std::string oldPath = std::getenv("PATH");
};

TEST_F(WebBrowser, IsGivenThePathAsOneArgumentWithoutItsQuotes) {
    install();
    platform::openInBrowser("\"/a folder/Quillon Multitap Delay Help.htm\"");
    ASSERT_TRUE(test::waitUntil([this] { return platform::fileExists(note); }));
    EXPECT_EQ(textOf(note), "1|/a folder/Quillon Multitap Delay Help.htm|");
}

TEST_F(WebBrowser, IsStartedWithoutAShell) {
    install();
    const std::string path = "/$(touch hit)/`touch hit`;touch hit&'\"*.htm";
    platform::openInBrowser('"' + path + '"');
    ASSERT_TRUE(test::waitUntil([this] { return platform::fileExists(note); }));
    EXPECT_EQ(textOf(note), "1|" + path + "|");
    EXPECT_FALSE(platform::fileExists("hit"));
}

TEST_F(WebBrowser, LeavesNoChildToTheHost) {
    install();
    platform::openInBrowser("\"/help.htm\"");
    EXPECT_EQ(waitpid(-1, nullptr, 0), -1);
    EXPECT_EQ(errno, ECHILD);
    EXPECT_TRUE(test::waitUntil([this] { return platform::fileExists(note); }));
}

TEST_F(WebBrowser, IsNotMissed) {
    platform::openInBrowser("\"/help.htm\"");
    EXPECT_EQ(waitpid(-1, nullptr, 0), -1) << "nothing was started";
}

TEST_F(WebBrowser, CanBeReplacedAndComesBack) {
    install();
    std::string seen;
    platform::replaceBrowser(
        [](void* context, const char* argument) { *static_cast<std::string*>(context) += argument; }, &seen);
    platform::openInBrowser("\"/a folder/help.htm\"");
    EXPECT_EQ(seen, "\"/a folder/help.htm\"");
    platform::replaceBrowser(nullptr, nullptr);
    platform::openInBrowser("\"/help.htm\"");
    ASSERT_TRUE(test::waitUntil([this] { return platform::fileExists(note); }));
    EXPECT_EQ(textOf(note), "1|/help.htm|");
    EXPECT_EQ(seen, "\"/a folder/help.htm\"");
}

} // namespace
