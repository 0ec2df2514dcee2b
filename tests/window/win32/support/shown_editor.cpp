#include "support/shown_editor.h"

#include "support/program_bank.h"

#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>

namespace test {

using namespace vst2;
namespace files = std::filesystem;

namespace {

constexpr std::chrono::seconds patience(60);

constexpr char settingsKey[] = "Software\\Quillon Software\\Quillon Multitap Delay";

/// Looks again and again, with `serve` in between.
bool waitUntil(const std::function<bool()>& condition, const std::function<void()>& serve) {
    const auto limit = std::chrono::steady_clock::now() + patience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit)
            return false;
        serve();
        MsgWaitForMultipleObjectsEx(0, nullptr, 5, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    }
    return true;
}

void sendMouse(DWORD flags, LONG x = 0, LONG y = 0) {
    INPUT input = {};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = flags;
    input.mi.dx = x;
    input.mi.dy = y;
    SendInput(1, &input, sizeof input);
}

/// A place on the screen in the units of the mouse, of which there are 65536 across.
LONG inMouseUnits(int place, int metric) {
    return static_cast<LONG>((place * 65536 + 32768) / GetSystemMetrics(metric));
}

/// With the folder that they lie in.
void copySkins() {
    for (const auto& skin : files::directory_iterator(QUILLON_WINDOW_SKINS)) {
        const files::path to = "module" / skin.path().filename();
        files::create_directory(to);
        for (const auto& file : files::directory_iterator(skin))
            files::copy_file(file, to / file.path().filename());
    }
}

} // namespace

ShownEditor::ShownEditor(host::Library& library, int x, int y)
    : x_(x), y_(y), plugin_(std::make_unique<host::Plugin>(library)), window_(x, y, kSkinWidth, kSkinHeight) {
    plugin_->start(44100.0f, 512);
    ERect* size = nullptr;
    plugin_->dispatch(effEditGetRect, 0, 0, &size);
    width_ = size->right - size->left;
    height_ = size->bottom - size->top;
}

ShownEditor::~ShownEditor() {
    if (plugin_)
        close();
    plugin_.reset();
}

bool ShownEditor::open() {
    return plugin_->dispatch(effEditOpen, 0, 0, window()) == 1;
}

void ShownEditor::close() {
    plugin_->dispatch(effEditClose);
    lifted_ = nullptr;
}

HWND ShownEditor::inside() const {
    const auto children = childrenOf(window());
    return children.empty() ? nullptr : children.front();
}

void ShownEditor::liftOut() {
    const HWND editor = inside();
    ASSERT_NE(editor, nullptr);
    SetParent(editor, nullptr);
    SetWindowLongPtrW(editor, GWL_STYLE, WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS);
    SetWindowPos(editor, HWND_TOP, x_, y_, width_, height_, SWP_FRAMECHANGED | SWP_SHOWWINDOW);
    lifted_ = editor;
}

void ShownEditor::serve() {
    if (plugin_)
        plugin_->dispatch(effEditIdle);
    serveMessages();
}

bool ShownEditor::serveUntil(const std::function<bool()>& condition) {
    return waitUntil(condition, [this] { serve(); });
}

void ShownEditor::serveAll() {
    constexpr std::int32_t lamp = 16;
    const float next = value(lamp) >= 0.5f ? 0.0f : 1.0f;
    postClick(218, 18);
    ASSERT_TRUE(becomes(lamp, next));
}

void ShownEditor::post(UINT message, int x, int y, WPARAM held) {
    PostMessageW(own(), message, held, MAKELPARAM(x, y));
}

void ShownEditor::postClick(int x, int y, Button button) {
    const bool isLeft = button == Button::left;
    post(isLeft ? WM_LBUTTONDOWN : WM_RBUTTONDOWN, x, y, isLeft ? MK_LBUTTON : MK_RBUTTON);
    post(isLeft ? WM_LBUTTONUP : WM_RBUTTONUP, x, y, 0);
}

void ShownEditor::postDrag(int fromX, int fromY, int toX, int toY) {
    constexpr int steps = 10;
    post(WM_LBUTTONDOWN, fromX, fromY, MK_LBUTTON);
    for (int step = 1; step <= steps; ++step)
        post(WM_MOUSEMOVE, fromX + (toX - fromX) * step / steps, fromY + (toY - fromY) * step / steps,
             MK_LBUTTON);
    post(WM_LBUTTONUP, toX, toY, 0);
}

void ShownEditor::point(int x, int y) {
    sendMouse(MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE, inMouseUnits(x_ + x, SM_CXSCREEN),
              inMouseUnits(y_ + y, SM_CYSCREEN));
}

void ShownEditor::press(Button button) {
    sendMouse(button == Button::left ? MOUSEEVENTF_LEFTDOWN : MOUSEEVENTF_RIGHTDOWN);
}

void ShownEditor::release(Button button) {
    sendMouse(button == Button::left ? MOUSEEVENTF_LEFTUP : MOUSEEVENTF_RIGHTUP);
}

void ShownEditor::click(int x, int y, Button button) {
    point(x, y);
    press(button);
    release(button);
}

std::vector<Pixel> ShownEditor::part(int x, int y, int width, int height) {
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    const HDC screen = GetDC(nullptr), memory = CreateCompatibleDC(screen);
    void* bits = nullptr;
    const HBITMAP bitmap = CreateDIBSection(memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ before = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, width, height, screen, x_ + x, y_ + y, SRCCOPY);
    GdiFlush();
    const auto* const from = static_cast<const Pixel*>(bits);
    std::vector<Pixel> pixels(from, from + width * height);
    for (Pixel& pixel : pixels)
        pixel &= 0xFFFFFF;
    SelectObject(memory, before);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return pixels;
}

Pixel ShownEditor::pixel(int x, int y) {
    return part(x, y, 1, 1).front();
}

bool ShownEditor::showsPixel(int x, int y, Pixel colour) {
    return serveUntil([=, this] { return pixel(x, y) == colour; });
}

bool ShownEditor::changes(const std::vector<Pixel>& before, int x, int y, int width, int height) {
    return serveUntil([&] { return part(x, y, width, height) != before; });
}

bool ShownEditor::becomes(std::int32_t id, float wanted) {
    return serveUntil([&] { return std::abs(value(id) - wanted) < 1e-5f; });
}

std::vector<std::int32_t> ShownEditor::toldOf(std::int32_t id) const {
    std::vector<std::int32_t> opcodes;
    for (const host::HostCall& call : plugin_->calls())
        if (call.index == id && (call.opcode == audioMasterBeginEdit || call.opcode == audioMasterAutomate ||
                                 call.opcode == audioMasterEndEdit))
            opcodes.push_back(call.opcode);
    return opcodes;
}

MenuHand::MenuHand(HWND owner, std::vector<WPARAM> keys)
    : owner_(owner), keys_(std::move(keys)), thread_([this] { work(); }) {}

MenuHand::~MenuHand() {
    isGivenUp_ = true;
    thread_.join();
}

void MenuHand::work() {
    constexpr UINT getMenu = 0x01E1; // what a menu's window answers with its menu
    HWND window = nullptr;
    const bool isOpen = waitUntil(
        [&] {
            window = FindWindowW(L"#32768", nullptr);
            return isGivenUp_ || (window && IsWindowVisible(window));
        },
        [] {});
    if (!isOpen || isGivenUp_)
        return;
    DWORD_PTR menu = 0;
    SendMessageTimeoutW(window, getMenu, 0, 0, SMTO_NORMAL, 10000, &menu);
    for (UINT i = 0, count = static_cast<UINT>(GetMenuItemCount(reinterpret_cast<HMENU>(menu))); i < count;
         ++i) {
        char text[128] = "";
        GetMenuStringA(reinterpret_cast<HMENU>(menu), i, text, sizeof text, MF_BYPOSITION);
        entries_.emplace_back(text);
    }
    for (const WPARAM key : keys_) {
        PostMessageW(owner_, WM_KEYDOWN, key, 0);
        PostMessageW(owner_, WM_KEYUP, key, 0);
    }
    const bool isOver = waitUntil([&] { return !IsWindow(window) || !IsWindowVisible(window); }, [] {});
    if (!isOver)
        PostMessageW(owner_, WM_CANCELMODE, 0, 0);
    isDone_ = isOver;
}

EditorOnScreen::EditorOnScreen() {
    RegDeleteTreeA(HKEY_CURRENT_USER, settingsKey);
    files::create_directory("module");
    files::copy_file(QUILLON_LIBRARY, beside(files::path(QUILLON_LIBRARY).filename().string()));
    copySkins();
    const auto bank = conversation::chunkBank(conversation::defaultPrograms());
    std::ofstream(beside("default.fxb"), std::ios::binary)
        .write(reinterpret_cast<const char*>(bank.data()), static_cast<std::streamsize>(bank.size()));
}

EditorOnScreen::~EditorOnScreen() {
    shown_.reset();
    RegDeleteTreeA(HKEY_CURRENT_USER, settingsKey);
}

host::Library& EditorOnScreen::library() {
    if (!library_)
        library_ = std::make_unique<host::Library>(beside(files::path(QUILLON_LIBRARY).filename().string()));
    return *library_;
}

ShownEditor& EditorOnScreen::show() {
    shown_ = std::make_unique<ShownEditor>(library());
    EXPECT_TRUE(shown_->open());
    return *shown_;
}

ShownEditor& EditorOnScreen::showLifted() {
    auto& editor = show();
    editor.liftOut();
    EXPECT_TRUE(editor.showsPixel(kSkinWidth - 2, 2, kGrey));
    return editor;
}

std::string chosenSkin() {
    char text[260] = "";
    DWORD size = sizeof text;
    RegGetValueA(HKEY_CURRENT_USER, settingsKey, "SkinName", RRF_RT_ANY, nullptr, text, &size);
    return text;
}

} // namespace test
