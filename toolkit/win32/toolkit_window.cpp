#include "toolkit/toolkit_window.h"

#include "toolkit_use.h"

#include "vstgui/lib/cframe.h"
#include "vstgui/lib/platform/iplatformframe.h"

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <new>
#include <utility>
#include <windows.h>

namespace toolkit {

namespace {

/// A container this much larger than what it holds has something else to show.
constexpr int kWidestFrame = 80;

struct Size {
    int width = 0;
    int height = 0;
};

Size sizeOf(HWND window) {
    RECT place = {};
    GetWindowRect(window, &place);
    return {place.right - place.left, place.bottom - place.top};
}

void resize(HWND window, Size size) {
    SetWindowPos(window, HWND_TOP, 0, 0, size.width, size.height, SWP_NOMOVE);
}

/// The window around this one; null if it is on the screen itself, or in a host whose windows lie in a larger
/// one and have no say about its size.
HWND containerOf(HWND window) {
    const HWND container = GetParent(window);
    wchar_t name[16] = {}; // a name that is longer is another one in any case
    GetClassNameW(container, name, static_cast<int>(std::size(name)));
    return container && std::wcscmp(name, L"MDIClient") != 0 ? container : nullptr;
}

/// What a window of the toolkit does with a message, as the window's property.
constexpr wchar_t kOwnProcedure[] = L"QuillonWindowProcedure";

/// A message that a window of the toolkit is at work on.
struct Message {
    HWND window;
    UINT id;
    WPARAM wide;
    LPARAM longer;

    /// Whether that window has passed it on to another one. The toolkit does so with a key, but not to a
    /// window of its own, and it knows those by their procedure.
    bool isPassedOnTo(HWND other, UINT message, WPARAM w, LPARAM l) const {
        return window != other && id >= WM_KEYFIRST && id <= WM_KEYLAST && id == message && wide == w &&
               longer == l;
    }
};

thread_local const Message* underWay = nullptr;

/// The message comes out of the host's loop, through functions of the system that no exception may cross. One
/// that memory is too short for is as if it had not come. The toolkit's own procedure is called directly: by
/// CallWindowProcW, the system would stand in between.
LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM wide, LPARAM longer) noexcept {
    if (underWay && underWay->isPassedOnTo(window, message, wide, longer))
        return DefWindowProcW(underWay->window, message, wide, longer);
    const auto own = reinterpret_cast<WNDPROC>(GetPropW(window, kOwnProcedure));
    if (!own)
        return DefWindowProcW(window, message, wide, longer);
    if (message == WM_NCDESTROY)
        RemovePropW(window, kOwnProcedure);
    const Message handled = {window, message, wide, longer};
    const Message* const outer = std::exchange(underWay, &handled);
    LRESULT answer = 0;
    try {
        answer = own(window, message, wide, longer);
    } catch (const std::bad_alloc&) {
    }
    underWay = outer;
    return answer;
}

void keepExceptionsIn(HWND window) {
    const auto own = GetWindowLongPtrW(window, GWLP_WNDPROC);
    if (SetPropW(window, kOwnProcedure, reinterpret_cast<HANDLE>(own)))
        SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&windowProcedure));
}

/// Resizes a window and, one after the other, the windows around it that are little more than a frame for it.
void resizeWithContainers(HWND window, Size size) {
    const int widestSum = 2 * GetSystemMetrics(SM_CYDLGFRAME);
    Size extra;
    while (extra.width < widestSum) {
        const HWND container = containerOf(window);
        if (!container)
            break;
        const Size around = sizeOf(container), inside = sizeOf(window);
        resize(window, {size.width + extra.width, size.height + extra.height});
        extra.width += around.width - inside.width;
        extra.height += around.height - inside.height;
        if (extra.width > kWidestFrame || extra.height > kWidestFrame)
            return;
        extra.width = std::max(extra.width, 0);
        extra.height = std::max(extra.height, 0);
        window = container;
    }
    resize(window, {size.width + extra.width, size.height + extra.height});
}

} // namespace

WindowSystem windowSystem() {
    return WindowSystem::win32;
}

/// One frame between open() and the end of its closing.
class ToolkitWindow::OpenFrame {
  public:
    OpenFrame(VSTGUI::CFrame* frame, std::shared_ptr<void> owner)
        : owner_(std::move(owner)), frame_(frame), use_(std::make_shared<ToolkitUse>()) {
        lateUse().reset();
    }
    OpenFrame(const OpenFrame&) = delete;
    OpenFrame& operator=(const OpenFrame&) = delete;

    bool open(void* parent) {
        if (!IsWindow(static_cast<HWND>(parent)))
            return false;
        if (!frame_->open(parent, VSTGUI::PlatformType::kHWND) || !window())
            return false;
        keepExceptionsIn(window());
        return true;
    }

    /// Takes the window away, from the screen at once: the host may destroy its own as soon as we return. The
    /// frame follows when no event of it is under way. A menu that is open keeps its event from ending.
    static void close(const std::shared_ptr<OpenFrame>& opened) {
        if (const HWND window = opened->window()) {
            SendMessageW(window, WM_CANCELMODE, 0, 0);
            ShowWindow(window, SW_HIDE);
        }
        releaseAfterEvents(opened);
    }

    /// The window on the screen; null if there is none.
    HWND window() const {
        const auto* onScreen = frame_->getPlatformFrame();
        return onScreen ? static_cast<HWND>(onScreen->getPlatformRepresentation()) : nullptr;
    }

  private:
    /// After an event the toolkit's window is still at work on the message that brought it, and needs the
    /// toolkit once more when it is done. If nobody else is left by then, the use stays for the next to come.
    static std::shared_ptr<ToolkitUse>& lateUse() {
        static std::shared_ptr<ToolkitUse> use;
        return use;
    }

    /// An event may have come while another one was under way, in the loop of a menu. Without memory to wait
    /// for its end, the hidden frame stays for good, and so does its use of the toolkit.
    static void releaseAfterEvents(const std::shared_ptr<OpenFrame>& opened) noexcept {
        try {
            // Asked first, as most frames close outside of events, and handing a job over takes memory.
            if (opened->frame_->inEventProcessing())
                opened->frame_->doAfterEventProcessing([opened] { releaseAfterEvents(opened); });
            else
                opened->release();
        } catch (const std::bad_alloc&) {
            opened->self_ = opened;
        }
    }

    void release() {
        const VSTGUI::PlatformFramePtr own = frame_->getPlatformFrame();
        frame_->close();
        if (own && own->getNbReference() > 1)
            lateUse() = std::move(use_);
    }

    std::shared_ptr<void> owner_;
    VSTGUI::CFrame* frame_;
    std::shared_ptr<ToolkitUse> use_;
    std::shared_ptr<OpenFrame> self_; ///< keeps one that cannot be released
};

ToolkitWindow::ToolkitWindow() = default;

ToolkitWindow::~ToolkitWindow() {
    close();
}

bool ToolkitWindow::open(VSTGUI::CFrame* frame, void* parent, std::shared_ptr<void> owner) {
    const auto held = VSTGUI::owned(frame);
    frames_.push_back(std::make_shared<OpenFrame>(frame, std::move(owner)));
    frame->remember();
    return frames_.back()->open(parent);
}

void ToolkitWindow::close() noexcept {
    for (const auto& opened : std::exchange(frames_, {}))
        OpenFrame::close(opened);
}

bool ToolkitWindow::setVisible(bool isVisible) {
    bool isThere = false;
    for (const auto& opened : frames_)
        if (const HWND window = opened->window(); IsWindow(window)) {
            ShowWindow(window, isVisible ? SW_SHOWNA : SW_HIDE);
            isThere = true;
        }
    return isThere;
}

bool ToolkitWindow::leftButtonDown() const {
    return !frames_.empty() && GetKeyState(VK_LBUTTON) < 0;
}

void ToolkitWindow::fitContainers(int width, int height) {
    for (const auto& opened : frames_)
        if (const HWND window = opened->window())
            resizeWithContainers(window, {width, height});
}

void ToolkitWindow::announceSize(int, int) {}

} // namespace toolkit
