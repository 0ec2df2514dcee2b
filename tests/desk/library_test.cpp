// Loading a library, and what the library finds out about its own place.

#include "desk/private_folder.h"
#include "desk/shared_library.h"
#include "platform/folders.h"
#include "platform/module_folder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace {

namespace files = std::filesystem;
using desk::PrivateFolder;
using desk::SharedLibrary;

/// As a full path, since tests go into other folders.
const std::string sample = files::absolute(QUILLON_SAMPLE_LIBRARY).string();

std::string folderAsSeenBy(const SharedLibrary& library) {
    const auto folder = reinterpret_cast<const char* (*)()>(library.symbol("sampleFolder"));
    return folder ? folder() : "no such function";
}

TEST(ModuleFolder, IsTheFolderOfTheLibraryAndEndsInASeparator) {
    const SharedLibrary library(sample);
    EXPECT_EQ(folderAsSeenBy(library),
              files::canonical(sample).parent_path().string() + platform::kFolderSeparator);
}

TEST(ModuleFolder, IsAbsoluteForALibraryThatWasLoadedByARelativePath) {
    const PrivateFolder folder;
    files::create_directory("sub");
    files::copy_file(sample, "sub/sample.so");
    const std::string expected = files::canonical("sub").string() + platform::kFolderSeparator;
    const SharedLibrary library("sub/sample.so");
    files::current_path(files::current_path().root_path());
    EXPECT_EQ(folderAsSeenBy(library), expected) << "although the current directory changed after loading";
    files::current_path(folder.path());
}

TEST(SharedLibraryLoader, FindsASymbolAndNullForAnyOther) {
    const SharedLibrary library(sample);
    EXPECT_NE(library.symbol("sampleFolder"), nullptr);
    EXPECT_EQ(library.symbol("noSuchThing"), nullptr);
}

TEST(SharedLibraryLoader, TakesABareNameAsAFileOfTheCurrentDirectory) {
    const PrivateFolder folder;
    files::copy_file(sample, "bare.so");
    EXPECT_NE(SharedLibrary("bare.so").symbol("sampleFolder"), nullptr);
}

TEST(SharedLibraryLoader, SaysWhichFileItCannotLoad) {
    const PrivateFolder folder;
    try {
        const SharedLibrary library("missing.so");
        FAIL() << "loaded what is not there";
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find("missing.so"), std::string::npos) << error.what();
    }
}

TEST(SharedLibraryLoader, GivesTheLibraryOnWhenMoved) {
    SharedLibrary first(sample);
    SharedLibrary second(std::move(first));
    EXPECT_NE(second.symbol("sampleFolder"), nullptr);
    EXPECT_EQ(first.symbol("sampleFolder"), nullptr);
    SharedLibrary third;
    EXPECT_EQ(third.symbol("sampleFolder"), nullptr);
    third = std::move(second);
    EXPECT_NE(third.symbol("sampleFolder"), nullptr);
}

} // namespace
