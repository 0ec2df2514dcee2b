// What a library finds out about its own place, where paths may be long and lead through links.

#include "desk/private_folder.h"
#include "desk/shared_library.h"
#include "platform/module_folder.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

namespace {

namespace files = std::filesystem;
using desk::PrivateFolder;
using desk::SharedLibrary;

const char* const sample = QUILLON_SAMPLE_LIBRARY;

std::string folderAsSeenBy(const SharedLibrary& library) {
    const auto folder = reinterpret_cast<const char* (*)()>(library.symbol("sampleFolder"));
    return folder ? folder() : "no such function";
}

TEST(ModuleFolder, IsTheRealOneForALibraryThatWasLoadedThroughALink) {
    const PrivateFolder folder;
    files::create_directory("data");
    files::copy_file(sample, "data/sample.so");
    files::create_symlink("data/sample.so", "link.so");
    const SharedLibrary library("./link.so");
    EXPECT_EQ(folderAsSeenBy(library), files::canonical("data").string() + "/");
}

TEST(ModuleFolder, MayBeLongerThanTheNameOfAnyOneFolder) {
    const PrivateFolder folder;
    const files::path deep =
        files::path(std::string(200, 'a')) / std::string(200, 'b') / std::string(200, 'c');
    files::create_directories(deep);
    files::copy_file(sample, deep / "sample.so");
    const SharedLibrary library((deep / "sample.so").string());
    EXPECT_EQ(folderAsSeenBy(library), files::canonical(deep).string() + "/");
}

TEST(ModuleFolder, OfAProgramIsWhereTheProgramLies) {
    EXPECT_EQ(platform::moduleFolder(), files::read_symlink("/proc/self/exe").parent_path().string() + "/");
}

TEST(SharedLibraryLoader, UnloadsTheLibraryWithTheObject) {
    const PrivateFolder folder;
    files::copy_file(sample, "one.so");
    const auto isMapped = [&] {
        std::ifstream maps("/proc/self/maps");
        const std::string all((std::istreambuf_iterator<char>(maps)), std::istreambuf_iterator<char>());
        return all.find(folder.path() + "/one.so") != std::string::npos;
    };
    {
        const SharedLibrary library("one.so");
        EXPECT_TRUE(isMapped());
    }
    EXPECT_FALSE(isMapped());
}

} // namespace
