// On Windows a folder does not open as a file does.
#include "support/unopenable_file.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace conversation {

void makeUnopenable(const std::string& name) {
    ASSERT_TRUE(std::filesystem::create_directory(name));
}

bool isUnopenable(const std::string& name) {
    return std::filesystem::is_directory(name);
}

} // namespace conversation
