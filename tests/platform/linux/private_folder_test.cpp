#include "platform/private_folder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <stdexcept>

namespace {

namespace files = std::filesystem;
using platform::PrivateFolder;

TEST(PrivateFolder, IsReadableByNobodyElse) {
    const PrivateFolder folder;
    EXPECT_EQ(files::status(folder.path()).permissions(), files::perms::owner_all);
}

TEST(PrivateFolder, LeavesWhatALinkInItPointsTo) {
    const PrivateFolder outer;
    files::create_directory("kept");
    std::ofstream("kept/file") << "precious";
    {
        const PrivateFolder inner;
        files::create_directory_symlink(files::path(outer.path()) / "kept", "link");
    }
    EXPECT_TRUE(files::exists("kept/file"));
}

TEST(PrivateFolder, ThrowsIfNoneCanBeMade) {
    const char* usual = std::getenv("TMPDIR");
    const std::optional<std::string> saved = usual ? std::optional<std::string>(usual) : std::nullopt;
    const files::path before = files::current_path();
    setenv("TMPDIR", "/no/such/folder", 1);
    EXPECT_THROW(PrivateFolder(), std::runtime_error);
    if (saved)
        setenv("TMPDIR", saved->c_str(), 1);
    else
        unsetenv("TMPDIR");
    EXPECT_EQ(files::current_path(), before);
}

} // namespace
