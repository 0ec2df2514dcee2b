// quillon-window on Windows, as a skin's author runs it.

#include "support/tool_run.h"

#include "support/plain_window.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <thread>
#include <windows.h>

namespace {

namespace files = std::filesystem;

constexpr char settingsKey[] = "Software\\Quillon Software";

bool waitUntil(const std::function<bool()>& condition) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

/// The window of the tool that runs; null if it has none yet.
HWND toolWindow() {
    const HWND window = FindWindowW(L"QuillonHostWindow", nullptr);
    return window && IsWindowVisible(window) ? window : nullptr;
}

/// How wide the editor in the tool's window is; nothing if there is none.
std::optional<LONG> editorWidth() {
    const HWND window = toolWindow();
    const auto editors = window ? test::childrenOf(window) : std::vector<HWND>();
    RECT place = {};
    if (editors.empty() || !GetWindowRect(editors.front(), &place))
        return std::nullopt;
    return place.right - place.left;
}

class WindowTool : public testing::Test {
  protected:
    WindowTool() {
        RegDeleteTreeA(HKEY_CURRENT_USER, settingsKey);
        copySkin("blue");
    }

    void copySkin(const std::string& name) {
        files::create_directory(skin());
        for (const auto& file : files::directory_iterator(files::path(QUILLON_WINDOW_SKINS) / name))
            files::copy_file(file, skin() / file.path().filename(), files::copy_options::overwrite_existing);
    }

    files::path skin() const { return folder.path() / "my skin"; }
    ToolResult run(std::vector<std::string> arguments) {
        return runTool(folder, arguments, ErrorEnd::file, QUILLON_WINDOW);
    }

    ScratchFolder folder;
};

TEST_F(WindowTool, FindsNothingWrongWithAGoodSkin) {
    const ToolResult result = run({"--skin", skin().string(), "--check"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out, "");
}

TEST_F(WindowTool, SaysWhereASkinIsWrong) {
    folder.writeText("my skin/skin.xml", "<GUI>\n<knob id=\"6\"/>\n</GUI>");
    const ToolResult result = run({"--skin", skin().string(), "--check"});
    EXPECT_EQ(result.exitCode, 1) << result.err;
    EXPECT_NE(result.out.find("skin.xml:2:"), std::string::npos) << result.out;
}

TEST_F(WindowTool, ShowsASkinUntilItsWindowIsClosedAndChoosesItForNobody) {
    RunningTool tool(folder, {"--skin", skin().string()}, ErrorEnd::file, QUILLON_WINDOW);
    ASSERT_TRUE(waitUntil([] { return editorWidth().has_value(); }));
    EXPECT_EQ(editorWidth(), 160);
    PostMessageW(toolWindow(), WM_CLOSE, 0, 0);
    const ToolResult result = tool.wait();
    EXPECT_EQ(result.exitCode, 0) << result.err;
    char text[260] = "";
    DWORD size = sizeof text;
    EXPECT_NE(RegGetValueA(HKEY_CURRENT_USER, "Software\\Quillon Software\\Quillon Multitap Delay",
                           "SkinName", RRF_RT_ANY, nullptr, text, &size),
              ERROR_SUCCESS)
        << text;
}

class SkinInAnyLetters : public WindowTool {
  protected:
    SkinInAnyLetters() {
        files::create_directory(place.parent_path());
        files::rename(skin(), place);
    }

    std::string name() const {
        const std::u8string text = place.u8string();
        return {text.begin(), text.end()};
    }

    const files::path place = folder.path() / L"\u0395\u03BB\u03BB\u03AC\u03B4\u03B1" / L"\u65E5\u672C";
};

TEST_F(SkinInAnyLetters, IsChecked) {
    const ToolResult good = run({"--skin", name(), "--check"});
    EXPECT_EQ(good.exitCode, 0) << good.err;
    EXPECT_EQ(good.out, "");
    std::ofstream(place / "skin.xml") << "<GUI>\n<knob id=\"6\"/>\n</GUI>";
    const ToolResult bad = run({"--skin", name(), "--check"});
    EXPECT_EQ(bad.exitCode, 1) << bad.err;
    EXPECT_NE(bad.out.find("\xE6\x97\xA5\xE6\x9C\xAC\\skin.xml:2:"), std::string::npos) << bad.out;
}

TEST_F(SkinInAnyLetters, IsShown) {
    RunningTool tool(folder, {"--skin", name()}, ErrorEnd::file, QUILLON_WINDOW);
    EXPECT_TRUE(waitUntil([] { return editorWidth().has_value(); }));
    EXPECT_EQ(editorWidth(), 160);
    PostMessageW(toolWindow(), WM_CLOSE, 0, 0);
    const ToolResult result = tool.wait();
    EXPECT_EQ(result.exitCode, 0) << result.err;
}

TEST_F(WindowTool, ShowsASkinWithAnAccentInItsName) {
    const files::path accent = folder.path() / L"Gr\u00FCn";
    files::rename(skin(), accent);
    const std::u8string name = accent.u8string();
    RunningTool tool(folder, {"--skin", {name.begin(), name.end()}}, ErrorEnd::file, QUILLON_WINDOW);
    EXPECT_TRUE(waitUntil([] { return editorWidth().has_value(); }));
    EXPECT_EQ(editorWidth(), 160);
    PostMessageW(toolWindow(), WM_CLOSE, 0, 0);
    EXPECT_EQ(tool.wait().exitCode, 0);
}

TEST_F(WindowTool, OpensTheEditorAnewWhenTheSkinHasChanged) {
    RunningTool tool(folder, {"--skin", skin().string(), "--watch"}, ErrorEnd::file, QUILLON_WINDOW);
    ASSERT_TRUE(waitUntil([] { return editorWidth() == 160; }));
    copySkin("Quillon Skin");
    EXPECT_TRUE(waitUntil([] { return editorWidth() == 320; }));
    PostMessageW(toolWindow(), WM_CLOSE, 0, 0);
    EXPECT_EQ(tool.wait().exitCode, 0);
}

/// A console that this program and those that it starts share, for the length of a test.
class Console {
  public:
    Console() {
        FreeConsole();
        EXPECT_TRUE(AllocConsole());
    }
    ~Console() {
        FreeConsole();
        SetConsoleCtrlHandler(nullptr, FALSE);
    }
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    /// For all programs but this one. Those that are started from here on hear it no more either.
    void pressControlC() {
        SetConsoleCtrlHandler(nullptr, TRUE);
        EXPECT_TRUE(GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0)) << GetLastError();
    }
};

TEST(RenderToolInAConsole, TakesItsUnfinishedFilesAwayOnControlC) {
    ScratchFolder folder;
    folder.writeSound("in.wav", noise(1000));
    Console console;
    RunningTool tool(folder, {"in.wav", "out.wav", "--quiet", "--pre-roll", "86400"});
    ASSERT_TRUE(waitUntil([&] { return folder.names().size() > 1; }));
    console.pressControlC();
    const ToolResult result = tool.wait();
    EXPECT_EQ(result.exitCode, 130);
    EXPECT_EQ(result.err, "quillon-render: stopped; nothing was written\n");
    EXPECT_EQ(folder.names(), std::vector<std::string>{"in.wav"});
    EXPECT_EQ(result.leftBehind, std::vector<std::string>{});
}

TEST_F(WindowTool, WritesAPictureOrSaysThatThereIsNone) {
    const std::string picture = folder.file("picture.png");
    const ToolResult result = run({"--skin", skin().string(), "--screenshot", picture});
    if (result.exitCode == 0) {
        EXPECT_TRUE(files::exists(picture));
        return;
    }
    // Under wine what the toolkit draws inside another window does not come to the screen.
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_FALSE(files::exists(picture));
    ASSERT_EQ(result.errorLines().size(), 1u);
    EXPECT_NE(result.errorLines()[0].find("cannot take a picture"), std::string::npos) << result.err;
}

} // namespace
