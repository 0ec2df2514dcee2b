#include "platform/folders.h"

#include "../folders_fixture.h"
#include "platform/files.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <windows.h>

namespace {

using platform::findPath;
using platform::listFolder;

using FolderListing = test::Folders;
using PathSearch = test::Folders;

TEST_F(FolderListing, NamesEverythingButTheFolderItselfAndTheOneAbove) {
    make("a file");
    make("skin/skin.xml");
    make(".hidden");
    make("without a dot");
    ASSERT_TRUE(SetFileAttributesA("a file", FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM));
    std::vector<std::string> names = listFolder(folder.path());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{".hidden", "a file", "skin", "without a dot"}));
}

TEST_F(FolderListing, KeepsTheOrderOfTheFileSystem) {
    for (const char* name : {"zebra", "Alpha", "middle", "beta", "01", "Zed", "omega"})
        make(name);
    std::vector<std::string> expected;
    WIN32_FIND_DATAA entry;
    const HANDLE search = FindFirstFileA((folder.path() + "\\*.*").c_str(), &entry);
    do {
        const std::string name = entry.cFileName;
        if (name != "." && name != "..")
            expected.push_back(name);
    } while (FindNextFileA(search, &entry));
    FindClose(search);
    EXPECT_EQ(expected.size(), 7u);
    EXPECT_EQ(listFolder(folder.path()), expected);
}

TEST_F(FolderListing, TakesAFolderWithAnyEnd) {
    make("a file");
    const std::vector<std::string> expected = {"a file"};
    for (const char* end : {"", "\\", "/", "\\\\"})
        EXPECT_EQ(listFolder(folder.path() + end), expected) << end;
    EXPECT_EQ(listFolder(""), expected) << "the current one";
}

TEST_F(FolderListing, IsEmptyForAFolderThatIsNotThere) {
    make("a file");
    EXPECT_TRUE(listFolder(folder.path() + "\\nowhere").empty());
    EXPECT_TRUE(listFolder(folder.path() + "\\a file").empty());
    EXPECT_TRUE(listFolder(std::string(300, 'x')).empty());
}

TEST_F(FolderListing, LetsGoOfTheFolder) {
    make("sub/a file");
    listFolder("sub");
    ASSERT_TRUE(DeleteFileA("sub\\a file"));
    EXPECT_TRUE(RemoveDirectoryA("sub"));
}

TEST_F(PathSearch, FindsANameInAnyLetterCase) {
    make("Bg.Png");
    EXPECT_EQ(findPath(folder.path(), "Bg.Png"), folder.path() + "\\Bg.Png");
    EXPECT_TRUE(findPath(folder.path(), "bG.pNG"));
    EXPECT_TRUE(findPath(folder.path() + '\\', "BG.PNG"));
}

TEST_F(PathSearch, TakesEitherSlashAndGivesOutItsOwn) {
    make("Images/Knobs/small.bmp");
    const std::string expected = folder.path() + "\\Images\\Knobs\\small.bmp";
    EXPECT_EQ(findPath(folder.path(), "Images/Knobs/small.bmp"), expected);
    EXPECT_EQ(findPath(folder.path(), "Images\\Knobs/small.bmp"), expected);
    EXPECT_EQ(findPath(folder.path() + "/", "Images\\Knobs\\small.bmp"), expected);
}

TEST_F(PathSearch, TakesDoubledSlashes) {
    make("Images/small.bmp");
    const auto path = findPath(folder.path() + '\\', "\\Images//small.bmp");
    ASSERT_TRUE(path);
    EXPECT_EQ(platform::readWholeFile(*path)->size(), std::string("Images/small.bmp").size());
}

TEST_F(PathSearch, MayLeadOutOfTheFolderAndBack) {
    make("shared/bg.png");
    make("Blue/skin.xml");
    EXPECT_TRUE(findPath(folder.path() + "\\Blue", "..\\Shared\\bg.png"));
}

TEST_F(PathSearch, CountsAnEmptyFolderAsTheCurrentOne) {
    make("Bg.png");
    EXPECT_EQ(findPath("", "bg.png"), "bg.png");
}

TEST_F(PathSearch, FindsNothingWhereNothingIs) {
    make("bg.png");
    for (const char* name : {"bh.png", "bg.pn", "bg.png/inside", "", "\\/", "*.png", "b?.png"})
        EXPECT_EQ(findPath(folder.path(), name), std::nullopt) << name;
    EXPECT_EQ(findPath(folder.path() + "\\nowhere", "bg.png"), std::nullopt);
}

TEST_F(PathSearch, FindsNothingForAPathThatIsTooLong) {
    make("bg.png");
    std::string round;
    for (int i = 0; i < 100; ++i)
        round += ".\\";
    EXPECT_EQ(findPath(folder.path(), std::string(5000, 'x')), std::nullopt);
    EXPECT_EQ(findPath(folder.path(), round + round + "bg.png"), std::nullopt);
}

} // namespace
