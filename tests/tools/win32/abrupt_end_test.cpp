// Exceptions, and names in letters that the machine's code page does not have.

#include "support/abrupt_end.h"

#include <filesystem>
#include <fstream>
#include <windows.h>

namespace {

namespace files = std::filesystem;

TEST_F(AbruptEnd, ByACrashNamesTheLibraryAndTheCall) {
    struct Case {
        const char* library;
        const char* what;
    };
    for (const Case& crash : {Case{"probe_crashes_in_open", " in effOpen: access violation"},
                              Case{"probe_crashes_in_process", " in processReplacing: access violation"},
                              Case{"probe_crashes_in_close", " in effClose: access violation"},
                              Case{"probe_divides_by_nothing", " in effMainsChanged: arithmetic error"},
                              Case{"probe_nests_too_deep", " in effSetBlockSize: stack overflow"}}) {
        SCOPED_TRACE(crash.library);
        expectEndWith(render(crash.library), "crash of ", crash.library, crash.what);
    }
}

TEST_F(AbruptEnd, ByACrashOnAThreadOfTheLibrarysOwnNamesTheLibrary) {
    expectEndWith(render("probe_nests_on_a_thread"), "crash outside of the calls of ",
                  "probe_nests_on_a_thread", ": stack overflow");
}

class AnyLetters : public AbruptEnd {};

TEST_F(AnyLetters, MayBeInTheNamesOfAllFiles) {
    const files::path place = folder.path() / L"\u0395\u03BB\u03BB\u03AC\u03B4\u03B1 \u65E5\u672C";
    files::create_directory(place);
    files::rename(folder.path() / "in.wav", place / L"\u03C6\u03C9\u03BD\u03AE.wav");
    files::copy_file(probe("probe"), place / L"\u97F3.dll");
    std::ofstream(place / L"\u03BA.txt") << "0.01 Gain 0.5\n";
    const auto named = [&](const wchar_t* name) {
        const std::u8string text = (place / name).u8string();
        return std::string(text.begin(), text.end());
    };
    const ToolResult result = runTool(
        folder, {named(L"\u03C6\u03C9\u03BD\u03AE.wav"), named(L"\u51FA.wav"), "--plot", named(L"\u56F3.png"),
                 "--automate", named(L"\u03BA.txt"), "--tail", "0", "--library", named(L"\u97F3.dll")});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_TRUE(files::exists(place / L"\u51FA.wav"));
    EXPECT_TRUE(files::exists(place / L"\u56F3.png"));
    EXPECT_NE(result.out.find(named(L"\u51FA.wav")), std::string::npos) << result.out;
}

TEST_F(AnyLetters, MayBeInTheNameOfTheToolsOwnFolder) {
    const files::path place = folder.path() / L"\u65E5\u672C";
    files::create_directory(place);
    const files::path library = QUILLON_LIBRARY;
    files::copy_file(QUILLON_RENDER, place / "render.exe");
    files::copy_file(library, place / library.filename());
    const std::u8string tool = (place / "render.exe").u8string();
    const ToolResult result = runTool(folder, {"--list"}, ErrorEnd::file, {tool.begin(), tool.end()});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_NE(result.out.find("Feedback"), std::string::npos) << result.out;
}

} // namespace
