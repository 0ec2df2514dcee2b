// What stands in the way of removing a folder here.

#include "platform/private_folder.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <stdexcept>
#include <windows.h>

namespace {

namespace files = std::filesystem;
using platform::PrivateFolder;

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

TEST(PrivateFolderHere, LiesAmongTheTemporaryFiles) {
    const PrivateFolder folder;
    EXPECT_EQ(folder.path().find(files::temp_directory_path().string() + "quillon-"), 0u) << folder.path();
}

TEST(PrivateFolderHere, ThrowsIfNoneCanBeMade) {
    char temporary[MAX_PATH] = "";
    GetEnvironmentVariableA("TMP", temporary, MAX_PATH);
    const files::path before = files::current_path();
    SetEnvironmentVariableA("TMP", "C:\\no\\such\\folder");
    EXPECT_THROW(PrivateFolder(), std::runtime_error);
    SetEnvironmentVariableA("TMP", temporary);
    EXPECT_EQ(files::current_path(), before);
}

} // namespace
