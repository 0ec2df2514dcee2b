// Folders with files to list and to search.
#pragma once

#include "desk/private_folder.h"
#include "platform/files.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace test {

/// Each test works in an empty folder of its own.
class Folders : public testing::Test {
  protected:
    /// Makes a file, and the folders above it.
    void make(const std::string& path) {
        const auto above = std::filesystem::path(path).parent_path();
        if (!above.empty())
            std::filesystem::create_directories(above);
        ASSERT_TRUE(platform::writeWholeFile(path, path.data(), path.size()));
    }

    desk::PrivateFolder folder;
};

} // namespace test
