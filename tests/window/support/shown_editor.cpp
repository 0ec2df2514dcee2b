#include "shown_editor.h"

#include "child_process.h"

#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>

extern "C" __attribute__((weak)) void __lsan_do_leak_check();

namespace test {

using namespace vst2;

void lookForLeaks() {
    if (__lsan_do_leak_check)
        __lsan_do_leak_check();
}

ShownEditor::ShownEditor(host::Library& library, VirtualScreen& screen, int x, int y)
    : screen_(screen), x_(x), y_(y), plugin_(std::make_unique<host::Plugin>(library)) {
    plugin_->start(44100.0f, 64);
    ERect* size = nullptr;
    plugin_->dispatch(effEditGetRect, 0, 0, &size);
    width_ = std::max<int>(size->right, 1);
    height_ = std::max<int>(size->bottom, 1);
    window_ = XCreateSimpleWindow(screen.display(), screen.root(), x, y, static_cast<unsigned>(width_),
                                  static_cast<unsigned>(height_), 0, 0, 0xFF00FF);
    XMapWindow(screen.display(), window_);
    XSync(screen.display(), False);
}

ShownEditor::~ShownEditor() {
    if (plugin_)
        close();
    plugin_.reset();
    destroyWindow();
}

bool ShownEditor::open() {
    return plugin_->dispatch(effEditOpen, 0, 0, reinterpret_cast<void*>(window_)) == 1;
}

void ShownEditor::close() {
    plugin_->dispatch(effEditClose);
}

void ShownEditor::destroyWindow() {
    // Without its server it is gone already.
    if (window_ != None && screen_.display()) {
        XDestroyWindow(screen_.display(), window_);
        XSync(screen_.display(), False);
    }
    window_ = None;
}

void ShownEditor::serve() {
    plugin_->dispatch(effEditIdle);
}

bool ShownEditor::serveUntil(const std::function<bool()>& condition) {
    return waitUntil([&] {
        serve();
        return condition();
    });
}

void ShownEditor::point(int x, int y) {
    screen_.movePointer(x_ + x, y_ + y);
}

void ShownEditor::press(unsigned button) {
    XTestFakeButtonEvent(screen_.display(), button, True, CurrentTime);
    XSync(screen_.display(), False);
}

void ShownEditor::release(unsigned button) {
    XTestFakeButtonEvent(screen_.display(), button, False, CurrentTime);
    XSync(screen_.display(), False);
}

void ShownEditor::click(int x, int y, unsigned button) {
    point(x, y);
    press(button);
    release(button);
}

bool ShownEditor::drag(int fromX, int fromY, int toX, int toY, const std::function<bool()>& condition) {
    point(fromX, fromY);
    press(kLeft);
    // The display tells of a move only after the one before has been looked at, so a single one may be lost.
    int step = 0;
    const bool held = serveUntil([&] {
        point(toX + step % 2, toY + step / 2 % 2);
        step = (step + 1) % 4;
        return condition();
    });
    release(kLeft);
    return held;
}

void ShownEditor::holdKey(KeySym key, bool down) {
    XTestFakeKeyEvent(screen_.display(), XKeysymToKeycode(screen_.display(), key), down ? True : False,
                      CurrentTime);
    XSync(screen_.display(), False);
}

bool ShownEditor::showsPixel(int x, int y, Pixel colour) {
    return serveUntil([=, this] { return pixel(x, y) == colour; });
}

std::vector<Pixel> ShownEditor::part(int x, int y, int width, int height) {
    std::vector<Pixel> pixels;
    XImage* const image =
        XGetImage(screen_.display(), screen_.root(), x_ + x, y_ + y, static_cast<unsigned>(width),
                  static_cast<unsigned>(height), AllPlanes, ZPixmap);
    if (!image)
        return pixels;
    for (int row = 0; row < height; ++row)
        for (int column = 0; column < width; ++column)
            pixels.push_back(XGetPixel(image, column, row) & 0xFFFFFF);
    XDestroyImage(image);
    return pixels;
}

bool ShownEditor::changes(const std::vector<Pixel>& before, int x, int y, int width, int height) {
    return serveUntil([&] { return part(x, y, width, height) != before; });
}

bool ShownEditor::becomes(std::int32_t id, float wanted) {
    return serveUntil([&] { return std::abs(value(id) - wanted) < 1e-5f; });
}

namespace {

bool isOfAGesture(const host::HostCall& call) {
    return call.opcode == audioMasterBeginEdit || call.opcode == audioMasterAutomate ||
           call.opcode == audioMasterEndEdit;
}

} // namespace

std::vector<std::int32_t> ShownEditor::toldOf(std::int32_t id) const {
    std::vector<std::int32_t> opcodes;
    for (const host::HostCall& call : plugin_->calls())
        if (call.index == id && isOfAGesture(call))
            opcodes.push_back(call.opcode);
    return opcodes;
}

std::vector<std::int32_t> ShownEditor::idsTold() const {
    std::vector<std::int32_t> ids;
    for (const host::HostCall& call : plugin_->calls())
        if (isOfAGesture(call))
            ids.push_back(call.index);
    return ids;
}

VirtualScreen& EditorOnScreen::screen() {
    static VirtualScreen theScreen;
    return theScreen;
}

EditorOnScreen::EditorOnScreen() {
    std::filesystem::copy(QUILLON_WINDOW_SKINS, module.folder(), std::filesystem::copy_options::recursive);
    setenv("DISPLAY", screen().name().c_str(), 1);
}

EditorOnScreen::~EditorOnScreen() {
    shown_.reset();
    lookForLeaks();
}

ShownEditor& EditorOnScreen::show() {
    shown_ = std::make_unique<ShownEditor>(library(), screen());
    EXPECT_TRUE(shown_->open());
    EXPECT_TRUE(shown_->showsPixel(kSkinWidth - 2, 2, kGrey));
    return *shown_;
}

} // namespace test
