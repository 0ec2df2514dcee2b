#include "platform/files.h"

#include "desk/private_folder.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace {

namespace files = std::filesystem;
using Bytes = std::vector<unsigned char>;

/// Each test writes into a folder of its own.
class Files : public testing::Test {
  protected:
    desk::PrivateFolder folder;
};

TEST_F(Files, GiveBackWhatWasWritten) {
    Bytes bytes(200000);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<unsigned char>(i * 7 + i / 256);
    ASSERT_TRUE(platform::writeWholeFile("file", bytes.data(), bytes.size()));
    EXPECT_EQ(platform::readWholeFile("file"), bytes);
}

TEST_F(Files, HoldNothingOfWhatTheyHeldBefore) {
    ASSERT_TRUE(platform::writeWholeFile("file", "longer", 6));
    ASSERT_TRUE(platform::writeWholeFile("file", "new", 3));
    EXPECT_EQ(platform::readWholeFile("file"), (Bytes{'n', 'e', 'w'}));
}

TEST_F(Files, AreReadUpToALimit) {
    ASSERT_TRUE(platform::writeWholeFile("file", "abcdef", 6));
    EXPECT_EQ(platform::readWholeFile("file", 4), (Bytes{'a', 'b', 'c', 'd'}));
    EXPECT_EQ(platform::readWholeFile("file", 6)->size(), 6u);
    EXPECT_EQ(platform::readWholeFile("file", 0), Bytes());
}

TEST_F(Files, MayBeEmptyWhichIsNotMissing) {
    ASSERT_TRUE(platform::writeWholeFile("file", "", 0));
    EXPECT_EQ(platform::readWholeFile("file"), Bytes());
    EXPECT_EQ(platform::readWholeFile("missing"), std::nullopt);
}

TEST_F(Files, AreReadOnlyIfTheyAreFiles) {
    files::create_directory("directory");
    EXPECT_EQ(platform::readWholeFile("directory"), std::nullopt);
}

TEST_F(Files, ExistWhateverTheyAre) {
    files::create_directory("directory");
    std::ofstream("file") << "x";
    EXPECT_TRUE(platform::fileExists("directory"));
    EXPECT_TRUE(platform::fileExists("file"));
    EXPECT_TRUE(platform::fileExists(folder.path() + "/file"));
    EXPECT_FALSE(platform::fileExists("missing"));
    EXPECT_FALSE(platform::fileExists(""));
}

TEST_F(Files, CannotBeWrittenWhereThereIsNoPlace) {
    EXPECT_FALSE(platform::writeWholeFile("no/such/folder/file", "x", 1));
    files::create_directory("directory");
    EXPECT_FALSE(platform::writeWholeFile("directory", "x", 1));
}

} // namespace
