// How the loader sees a library, and what it tells it.

#include "desk/private_folder.h"
#include "desk/shared_library.h"
#include "platform/module_folder.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <windows.h>

namespace {

namespace files = std::filesystem;
using desk::PrivateFolder;
using desk::SharedLibrary;

const std::string sample = files::absolute(QUILLON_SAMPLE_LIBRARY).make_preferred().string();
const std::string dependent = files::absolute(QUILLON_DEPENDENT_LIBRARY).make_preferred().string();

std::string folderAsSeenBy(const SharedLibrary& library) {
    const auto folder = reinterpret_cast<const char* (*)()>(library.symbol("sampleFolder"));
    return folder ? folder() : "no such function";
}

std::string folderOfProgram() {
    char path[MAX_PATH];
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    const std::string program = path;
    return program.substr(0, program.rfind('\\') + 1);
}

TEST(ModuleHandle, OfAProgramIsItsOwn) {
    EXPECT_EQ(platform::moduleFolder(), folderOfProgram());
}

TEST(ModuleHandle, IsTheOneThatDllMainWasGiven) {
    const PrivateFolder folder;
    files::copy_file(sample, "sample.dll");
    const SharedLibrary library("sample.dll");
    EXPECT_EQ(folderAsSeenBy(library), folder.path() + '\\') << "not the program's folder";
}

TEST(ModuleHandle, IsEachCopysOwn) {
    const PrivateFolder folder;
    for (const char* name : {"one", "two"}) {
        files::create_directory(name);
        files::copy_file(sample, files::path(name) / "sample.dll");
    }
    const SharedLibrary one("one\\sample.dll"), two("two\\sample.dll");
    EXPECT_EQ(folderAsSeenBy(one), folder.path() + "\\one\\");
    EXPECT_EQ(folderAsSeenBy(two), folder.path() + "\\two\\");
}

TEST(ModuleHandle, DllMainAgreesToEverything) {
    const SharedLibrary library(sample);
    const auto main =
        reinterpret_cast<BOOL(WINAPI*)(HINSTANCE, DWORD, LPVOID)>(library.symbol("sampleDllMain"));
    ASSERT_NE(main, nullptr);
    const auto module = GetModuleHandleA(sample.c_str());
    for (const DWORD reason :
         {DLL_PROCESS_ATTACH, DLL_THREAD_ATTACH, DLL_THREAD_DETACH, DLL_PROCESS_DETACH, 4711})
        EXPECT_EQ(main(module, reason, nullptr), 1) << reason;
}

TEST(LibraryLoader, FindsWhatALibraryNeedsBesideIt) {
    const PrivateFolder folder;
    files::create_directory("plug-ins");
    files::copy_file(sample, "plug-ins\\desk_sample_library.dll");
    files::copy_file(dependent, "plug-ins\\dependent.dll");
    const SharedLibrary library("plug-ins\\dependent.dll");
    const auto folderOfSample = reinterpret_cast<const char* (*)()>(library.symbol("folderOfSample"));
    ASSERT_NE(folderOfSample, nullptr);
    EXPECT_EQ(folderOfSample(), folder.path() + "\\plug-ins\\");
}

TEST(LibraryLoader, KnowsALetterWithAnAccentInBothEncodings) {
    const PrivateFolder folder;
    files::create_directory(L"Bl\u00E5");
    files::copy_file(sample, files::path(L"Bl\u00E5") / "sample.dll");
    EXPECT_NO_THROW(SharedLibrary("Bl\xC3\xA5\\sample.dll")) << "as the standard library writes it";
    char name[8] = "";
    WideCharToMultiByte(CP_ACP, 0, L"Bl\u00E5", -1, name, sizeof name, nullptr, nullptr);
    EXPECT_NO_THROW(SharedLibrary(std::string(name) + "\\sample.dll")) << "as the system writes it";
}

TEST(LibraryLoader, UnloadsTheLibraryWithTheObject) {
    const PrivateFolder folder;
    files::copy_file(sample, "one.dll");
    {
        const SharedLibrary library("one.dll");
        EXPECT_NE(GetModuleHandleA("one.dll"), nullptr);
    }
    EXPECT_EQ(GetModuleHandleA("one.dll"), nullptr);
}

TEST(LibraryLoader, SaysInTheLoadersWordsWhatIsNoLibrary) {
    const PrivateFolder folder;
    std::ofstream("text.dll") << "nothing to be run";
    try {
        const SharedLibrary library("text.dll");
        FAIL() << "loaded what is no library";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(std::string(error.what()).find("text.dll: "), 0u) << error.what();
        EXPECT_GT(std::string(error.what()).size(), std::string("text.dll: ").size());
    }
}

} // namespace
