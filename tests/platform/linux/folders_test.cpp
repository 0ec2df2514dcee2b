#include "platform/folders.h"

#include "../folders_fixture.h"

#include <algorithm>
#include <dirent.h>
#include <gtest/gtest.h>

namespace {

using platform::findPath;

using FolderListing = test::Folders;
using PathSearch = test::Folders;

TEST_F(FolderListing, NamesEverythingButTheFolderItselfAndTheOneAbove) {
    make("a file");
    make("skin/skin.xml");
    make(".hidden");
    std::vector<std::string> names = platform::listFolder(folder.path());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{".hidden", "a file", "skin"}));
}

TEST_F(FolderListing, KeepsTheOrderOfTheFileSystem) {
    for (const char* name : {"zebra", "Alpha", "middle", "beta", "01", "Zed", "omega"})
        make(name);
    std::vector<std::string> expected;
    DIR* stream = opendir(folder.path().c_str());
    while (const dirent* entry = readdir(stream))
        if (std::string(entry->d_name) != "." && std::string(entry->d_name) != "..")
            expected.push_back(entry->d_name);
    closedir(stream);
    EXPECT_EQ(platform::listFolder(folder.path()), expected);
}

TEST_F(FolderListing, IsEmptyForAFolderThatIsNotThere) {
    EXPECT_TRUE(platform::listFolder(folder.path() + "/nowhere").empty());
    make("a file");
    EXPECT_TRUE(platform::listFolder(folder.path() + "/a file").empty());
}

TEST_F(FolderListing, TakesNoNameForTheCurrentFolder) {
    make("a file");
    EXPECT_EQ(platform::listFolder(""), std::vector<std::string>{"a file"});
}

TEST_F(PathSearch, FindsTheExactName) {
    make("bg.png");
    EXPECT_EQ(findPath(folder.path(), "bg.png"), folder.path() + "/bg.png");
    EXPECT_EQ(findPath(folder.path() + "/", "bg.png"), folder.path() + "/bg.png");
}

TEST_F(PathSearch, ForgivesLetterCase) {
    make("Bg.Png");
    EXPECT_EQ(findPath(folder.path(), "bG.pNG"), folder.path() + "/Bg.Png");
}

TEST_F(PathSearch, FindsASkinFileInAnyLetterCase) {
    make("Blue/SKIN.XML");
    EXPECT_EQ(findPath(folder.path(), "blue/skin.xml"), folder.path() + "/Blue/SKIN.XML");
}

TEST_F(PathSearch, TakesEitherSlashBetweenFolders) {
    make("Images/Knobs/small.bmp");
    EXPECT_EQ(findPath(folder.path(), "images\\knobs\\SMALL.BMP"), folder.path() + "/Images/Knobs/small.bmp");
    EXPECT_EQ(findPath(folder.path(), "images/knobs/small.bmp"), folder.path() + "/Images/Knobs/small.bmp");
    EXPECT_EQ(findPath(folder.path(), "\\images//knobs\\small.bmp"),
              folder.path() + "/Images/Knobs/small.bmp");
}

TEST_F(PathSearch, PrefersTheExactNameToItsLookAlikes) {
    make("BG.png");
    make("bg.PNG");
    make("bg.png");
    EXPECT_EQ(findPath(folder.path(), "bg.png"), folder.path() + "/bg.png");
}

TEST_F(PathSearch, TakesTheFirstLookAlikeInByteOrder) {
    make("bg.PNG");
    make("BG.png");
    EXPECT_EQ(findPath(folder.path(), "bg.png"), folder.path() + "/BG.png");
}

TEST_F(PathSearch, LooksIntoEveryFolderThatTheNameMayMean) {
    make("Images/other.png");
    make("images/other.png");
    make("IMAGES/bg.png");
    EXPECT_EQ(findPath(folder.path(), "images/bg.png"), folder.path() + "/IMAGES/bg.png");
}

TEST_F(PathSearch, KnowsABackslashThatIsALetterOfAName) {
    make("odd\\name.png");
    make("odd/name.png");
    EXPECT_EQ(findPath(folder.path(), "odd\\name.png"), folder.path() + "/odd\\name.png");
}

TEST_F(PathSearch, MayLeadOutOfTheFolderAndBack) {
    make("shared/bg.png");
    make("Blue/skin.xml");
    EXPECT_EQ(findPath(folder.path() + "/Blue", "..\\Shared\\bg.png"),
              folder.path() + "/Blue/../shared/bg.png");
}

TEST_F(PathSearch, CountsAnEmptyFolderAsTheCurrentOne) {
    make("Bg.png");
    EXPECT_EQ(findPath("", "bg.png"), "Bg.png");
}

TEST_F(PathSearch, FindsNothingWhereNothingIs) {
    make("bg.png");
    EXPECT_EQ(findPath(folder.path(), "bh.png"), std::nullopt);
    EXPECT_EQ(findPath(folder.path(), "bg.pn"), std::nullopt);
    EXPECT_EQ(findPath(folder.path(), "bg.png/inside"), std::nullopt);
    EXPECT_EQ(findPath(folder.path() + "/nowhere", "bg.png"), std::nullopt);
}

TEST_F(PathSearch, FindsNothingForAnEmptyName) {
    EXPECT_EQ(findPath(folder.path(), ""), std::nullopt);
    EXPECT_EQ(findPath(folder.path(), "\\/"), std::nullopt);
}

TEST_F(PathSearch, FindsNothingForAPathThatIsTooLong) {
    EXPECT_EQ(findPath(folder.path(), std::string(5000, 'x')), std::nullopt);
    std::string deep;
    for (int i = 0; i < 5000; ++i)
        deep += "deeper\\";
    EXPECT_EQ(findPath(folder.path(), deep), std::nullopt);
}

TEST_F(PathSearch, DoesNotFoldLettersBeyondTheLatinOnes) {
    make("\xC3\x84.png"); // Ä
    EXPECT_EQ(findPath(folder.path(), "\xC3\xA4.png"), std::nullopt) << "ä";
    EXPECT_EQ(findPath(folder.path(), "\xC3\x84.PNG"), folder.path() + "/\xC3\x84.png");
}

} // namespace
