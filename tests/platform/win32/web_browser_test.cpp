#include "platform/web_browser.h"

#include "child_process.h"
#include "controls/help.h"
#include "desk/private_folder.h"
#include "platform/files.h"
#include "platform/module_folder.h"
#include "registry_key.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace {

namespace files = std::filesystem;

const files::path browserProgram = files::absolute(QUILLON_NOTE_ARGUMENTS);
const std::string commandKey = "http\\shell\\open\\command";
const std::string argument = "\"C:\\a folder\\Quillon Multitap Delay Help.htm\"";

/// A registry with no browser in it, and a browser that writes down how it is called, in a folder with
/// blanks.
class WebBrowser : public testing::Test {
  protected:
    WebBrowser() {
        files::create_directory("web browser");
        files::copy_file(browserProgram, browser);
    }

    void makeBrowserKnownAs(const std::string& command) {
        const test::RegistryKey key(registry.root().handle(), commandKey);
        key.setValue("", {REG_SZ, command + '\0'});
    }

    /// What the browser has written down, once it has.
    std::string note() const {
        std::optional<std::vector<unsigned char>> content;
        // There, it may still be held for a moment by the program that has put it there.
        test::waitUntil([&] { return (content = platform::readWholeFile(notePath)).has_value(); });
        return content ? std::string(content->begin(), content->end()) : "nothing";
    }

    std::string expectedNote() const {
        return "[C:\\a folder\\Quillon Multitap Delay Help.htm] in [" + folder.path() + "] shown 1";
    }

    desk::PrivateFolder folder;
    const std::string browser = folder.path() + "\\web browser\\browser.exe";
    const std::string notePath = folder.path() + "\\web browser\\note";
    test::PrivateRegistry registry{HKEY_CLASSES_ROOT};
};

TEST_F(WebBrowser, IsGivenThePathInItsQuotesInTheCurrentFolder) {
    makeBrowserKnownAs('"' + browser + "\" -osint -url \"%1\"");
    platform::openInBrowser(argument);
    EXPECT_EQ(note(), expectedNote()) << "and nothing of what the registry would add";
}

TEST_F(WebBrowser, IsFoundBehindOtherWords) {
    makeBrowserKnownAs("start \"" + browser + '"');
    platform::openInBrowser(argument);
    EXPECT_EQ(note(), expectedNote());
}

TEST_F(WebBrowser, IsFoundWithItsSecondQuoteMissing) {
    makeBrowserKnownAs('"' + browser);
    platform::openInBrowser(argument);
    EXPECT_EQ(note(), expectedNote());
}

TEST_F(WebBrowser, IsNotStartedTwice) {
    makeBrowserKnownAs('"' + browser + '"');
    platform::openInBrowser(argument);
    EXPECT_EQ(note(), expectedNote());
    ASSERT_TRUE(test::waitUntil([this] { return DeleteFileA(notePath.c_str()) != 0; }));
    platform::openInBrowser("\"second\"");
    EXPECT_EQ(note().substr(0, 8), "[second]");
}

TEST_F(WebBrowser, ShowsTheHelpThatLiesBesideTheLibrary) {
    makeBrowserKnownAs('"' + browser + '"');
    platform::replaceModuleFolder("C:\\a folder\\");
    controls::openHelp();
    platform::replaceModuleFolder("");
    EXPECT_EQ(note(), expectedNote());
}

/// Whatever the registry holds, no program is started and nothing is shown.
class NoWebBrowser : public WebBrowser {
  protected:
    void TearDown() override {
        platform::openInBrowser(argument);
        // The next call's browser is done; one that had been started by the first would have been done too.
        makeBrowserKnownAs('"' + browser + '"');
        platform::openInBrowser("\"sentinel\"");
        EXPECT_EQ(note().substr(0, 10), "[sentinel]");
    }
};

TEST_F(NoWebBrowser, IsMissedWithoutTheKey) {
    EXPECT_FALSE(registry.root().has(commandKey));
}

TEST_F(NoWebBrowser, IsMissedWithoutAValueInTheKey) {
    const test::RegistryKey key(registry.root().handle(), commandKey);
    EXPECT_FALSE(key.value(""));
}

TEST_F(NoWebBrowser, IsMissedInACommandWithoutQuotes) {
    files::copy_file(browserProgram, "plain.exe");
    makeBrowserKnownAs(folder.path() + "\\plain.exe");
}

TEST_F(NoWebBrowser, IsMissedBetweenEmptyQuotes) {
    makeBrowserKnownAs("\"\" " + browser);
}

TEST_F(NoWebBrowser, IsMissedWhenItsCommandIsTooLong) {
    makeBrowserKnownAs('"' + browser + "\" " + std::string(260, 'x'));
}

TEST_F(NoWebBrowser, IsMissedWhenTheProgramHasGone) {
    makeBrowserKnownAs('"' + folder.path() + "\\gone.exe\"");
}

TEST_F(WebBrowser, CanBeReplacedAndComesBack) {
    makeBrowserKnownAs('"' + browser + '"');
    std::string seen;
    platform::replaceBrowser(
        [](void* context, const char* given) { *static_cast<std::string*>(context) += given; }, &seen);
    platform::openInBrowser(argument);
    EXPECT_EQ(seen, argument);
    platform::replaceBrowser(nullptr, nullptr);
    platform::openInBrowser(argument);
    EXPECT_EQ(note(), expectedNote());
    EXPECT_EQ(seen, argument);
}

} // namespace
