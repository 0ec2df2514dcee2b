#include "desk/private_folder.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace {

namespace files = std::filesystem;
using desk::PrivateFolder;

TEST(PrivateFolder, IsTheCurrentDirectoryAndEmpty) {
    const PrivateFolder folder;
    EXPECT_TRUE(files::equivalent(files::current_path(), folder.path()));
    EXPECT_TRUE(files::is_empty(folder.path()));
    EXPECT_TRUE(files::path(folder.path()).is_absolute());
}

TEST(PrivateFolder, GoesWithAllThatWasLeftInIt) {
    const files::path before = files::current_path();
    std::string path;
    {
        const PrivateFolder folder;
        path = folder.path();
        std::ofstream("Pluginccmap.bin") << "left over";
        files::create_directories("a/b/c");
        std::ofstream("a/b/c/deep") << "left over";
        files::permissions("Pluginccmap.bin", files::perms::none);
    }
    EXPECT_FALSE(files::exists(path));
    EXPECT_EQ(files::current_path(), before);
}

TEST(PrivateFolder, GoesEvenIfSomebodyWentElsewhere) {
    const files::path before = files::current_path();
    std::string path;
    {
        const PrivateFolder folder;
        path = folder.path();
        files::current_path("/");
    }
    EXPECT_FALSE(files::exists(path));
    EXPECT_EQ(files::current_path(), before);
}

TEST(PrivateFolder, IsAnotherOneEachTime) {
    const PrivateFolder first;
    const PrivateFolder second;
    EXPECT_NE(first.path(), second.path());
}

} // namespace
