// Loading a library, and what the library finds out about its own place.

#include "platform/module_folder.h"
#include "platform/private_folder.h"
#include "platform/shared_library.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <stdexcept>

namespace {

namespace files = std::filesystem;
using platform::PrivateFolder;
using platform::SharedLibrary;

const char* const sample = QUILLON_SAMPLE_LIBRARY;

std::string folderAsSeenBy(const SharedLibrary& library) {
    const auto folder = reinterpret_cast<const char* (*)()>(library.symbol("sampleFolder"));
    return folder ? folder() : "no such function";
}

TEST(ModuleFolder, IsTheFolderOfTheLibraryAndEndsInASeparator) {
    const SharedLibrary library(sample);
    EXPECT_EQ(folderAsSeenBy(library), files::canonical(sample).parent_path().string() + "/");
}

TEST(ModuleFolder, IsAbsoluteForALibraryThatWasLoadedByARelativePath) {
    const PrivateFolder folder;
    files::create_directory("sub");
    files::copy_file(sample, "sub/sample.so");
    const std::string expected = files::canonical("sub").string() + "/";
    const SharedLibrary library("sub/sample.so");
    files::current_path("/");
    EXPECT_EQ(folderAsSeenBy(library), expected) << "although the current directory changed after loading";
    files::current_path(folder.path());
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
