#include "desk/host_window.h"

#include "platform/win32/module_handle.h"
#include "platform/win32/wide_text.h"

#include <algorithm>
#include <stdexcept>

namespace desk {

namespace {

constexpr wchar_t kClassName[] = L"QuillonHostWindow";

/// Nobody makes an editor's window larger or smaller by hand: an editor has one size.
constexpr DWORD kStyle = WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX | WS_CLIPCHILDREN;

int asLength(int pixels) {
    return std::clamp(pixels, 1, 32767);
}

/// A picture in memory that can be drawn into; null if there is no room for it.
class Canvas {
  public:
    Canvas(int width, int height) : context_(CreateCompatibleDC(nullptr)) {
        BITMAPINFO info = {};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = width;
        info.bmiHeader.biHeight = -height; // from the top
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        info.bmiHeader.biCompression = BI_RGB;
        bitmap_ = CreateDIBSection(context_, &info, DIB_RGB_COLORS, &pixels_, nullptr, 0);
        before_ = SelectObject(context_, bitmap_);
    }
    ~Canvas() {
        SelectObject(context_, before_);
        DeleteObject(bitmap_);
        DeleteDC(context_);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    HDC context() const { return context_; }
    /// Blue, green, red and nothing, pixel by pixel; null if there are none.
    const std::uint8_t* pixels() const {
        GdiFlush();
        return static_cast<const std::uint8_t*>(pixels_);
    }

  private:
    HDC context_;
    HBITMAP bitmap_ = nullptr;
    HGDIOBJ before_ = nullptr;
    void* pixels_ = nullptr;
};

} // namespace

class HostWindow::System {
  public:
    System(const std::string& title, int width, int height);
    ~System();
    System(const System&) = delete;
    System& operator=(const System&) = delete;

    void show();
    void resize(int width, int height);
    void serve(int milliseconds);
    std::optional<Picture> picture() const;

    HWND window() const { return window_; }
    int width() const { return width_; }
    int height() const { return height_; }
    bool isClosed() const { return isClosed_; }

  private:
    static LRESULT CALLBACK receive(HWND window, UINT message, WPARAM wide, LPARAM lengthy);
    static void registerClass();
    static SIZE outerSize(int width, int height);
    void takeMessages();
    RECT place() const;

    HWND window_ = nullptr;
    int width_;
    int height_;
    bool isClosed_ = false;
};

HostWindow::System::System(const std::string& title, int width, int height)
    : width_(asLength(width)), height_(asLength(height)) {
    registerClass();
    const SIZE outer = outerSize(width_, height_);
    window_ =
        CreateWindowExW(0, kClassName, platform::wide(title).c_str(), kStyle, CW_USEDEFAULT, CW_USEDEFAULT,
                        outer.cx, outer.cy, nullptr, nullptr, platform::moduleHandle(), nullptr);
    if (!window_)
        throw std::runtime_error("there is no display to open a window on");
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

HostWindow::System::~System() {
    if (!window_)
        return;
    SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
    DestroyWindow(window_);
}

void HostWindow::System::registerClass() {
    WNDCLASSEXW description = {};
    description.cbSize = sizeof description;
    description.lpfnWndProc = receive;
    description.hInstance = platform::moduleHandle();
    description.hCursor = LoadCursor(nullptr, IDC_ARROW);
    description.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    description.lpszClassName = kClassName;
    RegisterClassExW(&description); // which says no from the second time on
}

LRESULT CALLBACK HostWindow::System::receive(HWND window, UINT message, WPARAM wide, LPARAM lengthy) {
    auto* const self = reinterpret_cast<System*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self && message == WM_CLOSE) {
        self->isClosed_ = true; // and whoever made it takes it away
        return 0;
    }
    if (self && message == WM_DESTROY) {
        self->isClosed_ = true;
        self->window_ = nullptr;
    }
    return DefWindowProcW(window, message, wide, lengthy);
}

SIZE HostWindow::System::outerSize(int width, int height) {
    RECT area = {0, 0, width, height};
    AdjustWindowRectEx(&area, kStyle, FALSE, 0);
    return {area.right - area.left, area.bottom - area.top};
}

void HostWindow::System::show() {
    ShowWindow(window_, SW_SHOWNORMAL);
    UpdateWindow(window_);
    takeMessages();
}

void HostWindow::System::resize(int width, int height) {
    width_ = asLength(width);
    height_ = asLength(height);
    const SIZE outer = outerSize(width_, height_);
    SetWindowPos(window_, nullptr, 0, 0, outer.cx, outer.cy, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    takeMessages();
}

void HostWindow::System::serve(int milliseconds) {
    takeMessages();
    MsgWaitForMultipleObjectsEx(0, nullptr, static_cast<DWORD>(std::max(milliseconds, 0)), QS_ALLINPUT,
                                MWMO_INPUTAVAILABLE);
    takeMessages();
}

/// Those of the editor among them: it lives on the messages of this thread.
void HostWindow::System::takeMessages() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

/// Of the inner area, on the screen.
RECT HostWindow::System::place() const {
    POINT corner = {};
    ClientToScreen(window_, &corner);
    return {corner.x, corner.y, corner.x + width_, corner.y + height_};
}

std::optional<Picture> HostWindow::System::picture() const {
    const RECT inside = place();
    const LONG left = GetSystemMetrics(SM_XVIRTUALSCREEN), top = GetSystemMetrics(SM_YVIRTUALSCREEN);
    const bool isWhollyOnScreen = inside.left >= left && inside.top >= top &&
                                  inside.right <= left + GetSystemMetrics(SM_CXVIRTUALSCREEN) &&
                                  inside.bottom <= top + GetSystemMetrics(SM_CYVIRTUALSCREEN);
    if (!IsWindowVisible(window_) || IsIconic(window_) || !isWhollyOnScreen)
        return std::nullopt;
    // From the screen, where everything has come together: an editor may draw past the window's own memory.
    const Canvas canvas(width_, height_);
    const HDC screen = GetDC(nullptr);
    const bool isCopied =
        BitBlt(canvas.context(), 0, 0, width_, height_, screen, inside.left, inside.top, SRCCOPY);
    ReleaseDC(nullptr, screen);
    const std::uint8_t* from = canvas.pixels();
    if (!isCopied || !from)
        return std::nullopt;
    Picture picture = {width_, height_, {}};
    const std::size_t pixels = static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
    picture.rgb.reserve(pixels * 3);
    for (std::size_t i = 0; i < pixels; ++i, from += 4)
        picture.rgb.insert(picture.rgb.end(), {from[2], from[1], from[0]});
    // The window's own black and nothing else: what the editor drew has not come to the screen.
    const bool isBlack = std::ranges::all_of(picture.rgb, [](std::uint8_t value) { return value == 0; });
    return isBlack ? std::nullopt : std::optional(std::move(picture));
}

HostWindow::HostWindow(const std::string& title, int width, int height)
    : system_(std::make_unique<System>(title, width, height)) {}

HostWindow::~HostWindow() = default;

void* HostWindow::handle() const {
    return system_->window();
}

void HostWindow::show() {
    system_->show();
}

void HostWindow::resize(int width, int height) {
    system_->resize(width, height);
}

int HostWindow::width() const {
    return system_->width();
}

int HostWindow::height() const {
    return system_->height();
}

void HostWindow::serve(int milliseconds) {
    system_->serve(milliseconds);
}

bool HostWindow::isClosed() const {
    return system_->isClosed();
}

std::optional<Picture> HostWindow::picture() const {
    return system_->picture();
}

} // namespace desk
