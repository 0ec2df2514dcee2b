#include "platform/win32/ansi_path.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using platform::endsInSeparator;
using platform::folderLength;

/// A letter whose second byte is that of a backslash, in each code page that has such letters.
struct Letter {
    UINT codePage;
    std::string bytes;
};
const Letter letters[] = {{932, "\x95\x5C"}, {936, "\x81\x5C"}, {950, "\xA5\x5C"}};

TEST(AnsiPaths, EndInASlashOrTheColonOfADrive) {
    for (const char* path : {"C:\\", "C:", "\\", "/", "folder/", "C:\\folder\\"})
        EXPECT_TRUE(endsInSeparator(path)) << path;
    for (const char* path : {"", "folder", "C:\\folder", "a"})
        EXPECT_FALSE(endsInSeparator(path)) << path;
}

TEST(AnsiPaths, HaveAFolderBeforeTheLastName) {
    EXPECT_EQ(folderLength("C:\\folder\\file"), 10u);
    EXPECT_EQ(folderLength("folder/file"), 7u);
    EXPECT_EQ(folderLength("C:file"), 2u);
    EXPECT_EQ(folderLength("C:\\folder\\"), 10u);
    EXPECT_EQ(folderLength("file"), 0u);
    EXPECT_EQ(folderLength(""), 0u);
}

TEST(AnsiPaths, DoNotTakeTheSecondByteOfALetterForABackslash) {
    for (const auto& [codePage, letter] : letters) {
        SCOPED_TRACE(codePage);
        ASSERT_TRUE(IsDBCSLeadByteEx(codePage, static_cast<BYTE>(letter[0]))) << "the code page is there";
        EXPECT_FALSE(endsInSeparator("C:\\" + letter, codePage));
        EXPECT_TRUE(endsInSeparator("C:\\" + letter + "\\", codePage));
        EXPECT_EQ(folderLength("C:\\folder\\" + letter + ".dll", codePage), 10u);
        EXPECT_EQ(folderLength("C:\\" + letter + "\\file", codePage), 6u);
        EXPECT_EQ(folderLength(letter, codePage), 0u);
        EXPECT_TRUE(endsInSeparator("C:\\" + letter, 1252)) << "where it is two letters";
    }
}

TEST(AnsiPaths, MayEndInTheMiddleOfALetter) {
    EXPECT_EQ(folderLength("C:\\\x95", 932), 3u);
    EXPECT_FALSE(endsInSeparator("C:\\\x95", 932));
}

} // namespace
