// What stands in the way of removing a folder here.

#include "desk/links.h"
#include "desk/private_folder.h"
#include "desk/win32/left_over.h"

#include <cwchar>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <stdexcept>
#include <windows.h>

namespace {

namespace files = std::filesystem;
using desk::PrivateFolder;

TEST(PrivateFolderHere, GoesWithWhatIsWriteProtectedOrHidden) {
    std::string path;
    {
        const PrivateFolder folder;
        path = folder.path();
        files::create_directory("sub");
        for (const char* name : {"protected", "hidden", "sub\\deep"})
            std::ofstream(name) << "left over";
        SetFileAttributesA("protected", FILE_ATTRIBUTE_READONLY);
        SetFileAttributesA("hidden", FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
        SetFileAttributesA("sub\\deep", FILE_ATTRIBUTE_READONLY);
    }
    EXPECT_FALSE(files::exists(path));
}

/// Where temporary files lie, for the length of a test.
class TemporaryFiles {
  public:
    explicit TemporaryFiles(const std::string& folder) {
        GetEnvironmentVariableA("TMP", before_, sizeof before_);
        SetEnvironmentVariableA("TMP", folder.c_str());
    }
    ~TemporaryFiles() { SetEnvironmentVariableA("TMP", before_); }
    TemporaryFiles(const TemporaryFiles&) = delete;
    TemporaryFiles& operator=(const TemporaryFiles&) = delete;

  private:
    char before_[MAX_PATH] = "";
};

TEST(PrivateFolderHere, LiesAmongTheTemporaryFiles) {
    const PrivateFolder outer;
    const TemporaryFiles place(outer.path());
    const PrivateFolder folder;
    EXPECT_EQ(folder.path().find(outer.path() + "\\quillon-"), 0u) << folder.path();
}

TEST(PrivateFolderHere, ComesAndGoesForSomebodyWithAnAccentInTheirName) {
    const PrivateFolder outer;
    files::create_directory(L"J\u00F6rg");
    char name[16] = "";
    WideCharToMultiByte(CP_ACP, 0, L"J\u00F6rg", -1, name, sizeof name, nullptr, nullptr);
    const TemporaryFiles place(outer.path() + '\\' + name);
    {
        const PrivateFolder folder;
        std::ofstream("Pluginccmap.bin") << "left over";
        EXPECT_FALSE(files::is_empty(L"."));
    }
    EXPECT_TRUE(files::is_empty(L"J\u00F6rg"));
}

TEST(PrivateFolderHere, ComesAndGoesForSomebodyWhoseNameTheCodePageLacks) {
    const PrivateFolder outer;
    const files::path place = files::current_path() / L"\u65E5\u672C";
    files::create_directory(place);
    wchar_t before[MAX_PATH] = L"";
    GetEnvironmentVariableW(L"TMP", before, MAX_PATH);
    SetEnvironmentVariableW(L"TMP", place.c_str());
    {
        const PrivateFolder folder;
        std::ofstream("Pluginccmap.bin") << "left over";
        std::ofstream(files::path(L"\u97F3")) << "left over";
        EXPECT_FALSE(files::is_empty(place));
        EXPECT_NE(GetFileAttributesA((folder.path() + "\\Pluginccmap.bin").c_str()), INVALID_FILE_ATTRIBUTES)
            << folder.path();
    }
    SetEnvironmentVariableW(L"TMP", before);
    EXPECT_TRUE(files::is_empty(place));
    EXPECT_TRUE(files::equivalent(files::current_path(), outer.path()));
}

TEST(PrivateFolderHere, ComesBackToAFolderThatTheCodePageLacks) {
    const PrivateFolder outer;
    const files::path place = files::current_path() / L"\u65E5\u672C";
    files::create_directory(place);
    files::current_path(place);
    {
        const PrivateFolder folder;
    }
    EXPECT_EQ(files::current_path(), place);
    files::current_path(outer.path());
}

TEST(PrivateFolderHere, TakesAwayWhatAProcessThatIsOverHasLeft) {
    const PrivateFolder outer;
    const TemporaryFiles place(outer.path());
    const std::string ofNobody = "quillon-4294967288-0";
    const std::string ofThisProcess = "quillon-" + std::to_string(GetCurrentProcessId()) + "-77";
    for (const std::string& name : {ofNobody, ofThisProcess, ofNobody + "x", std::string("quillon-")}) {
        files::create_directory(name);
        std::ofstream(name + "\\library.dll") << "left over";
    }
    {
        const PrivateFolder folder;
    }
    EXPECT_FALSE(files::exists(ofNobody));
    EXPECT_TRUE(files::exists(ofThisProcess + "\\library.dll"));
    EXPECT_TRUE(files::exists(ofNobody + "x\\library.dll"));
    EXPECT_TRUE(files::exists("quillon-\\library.dll"));
}

TEST(PrivateFolderHere, TakesNoFileAndNoLinkForWhatAProcessHasLeft) {
    WIN32_FIND_DATAW entry = {};
    std::wcscpy(entry.cFileName, L"quillon-4294967288-0");
    entry.dwFileAttributes = FILE_ATTRIBUTE_DIRECTORY;
    EXPECT_TRUE(desk::isLeftOver(entry));
    entry.dwFileAttributes = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    EXPECT_FALSE(desk::isLeftOver(entry));
    entry.dwFileAttributes = FILE_ATTRIBUTE_NORMAL;
    EXPECT_FALSE(desk::isLeftOver(entry));
}

TEST(PrivateFolderHere, LeavesWhatLiesBehindALinkThatIsNamedLikeALeftOver) {
    const PrivateFolder outer;
    files::create_directory("mine");
    std::ofstream("mine\\precious") << "kept";
    files::create_directory("temporary");
    const files::path link = files::current_path() / "temporary" / "quillon-4294967288-0";
    if (!desk::makeLink(files::current_path() / "mine", link))
        GTEST_SKIP() << "this file system knows no junctions";
    const TemporaryFiles place(outer.path() + "\\temporary");
    {
        const PrivateFolder folder;
    }
    EXPECT_TRUE(files::exists("mine\\precious"));
    EXPECT_TRUE(files::exists(link));
    desk::removeLink(link);
}

TEST(PrivateFolderHere, ThrowsIfNoneCanBeMade) {
    const files::path before = files::current_path();
    const TemporaryFiles place("C:\\no\\such\\folder");
    EXPECT_THROW(PrivateFolder(), std::runtime_error);
    EXPECT_EQ(files::current_path(), before);
}

} // namespace
