#include "platform/toolkit_window.h"

#include "toolkit_use.h"

#include "vstgui/lib/cframe.h"
#include "vstgui/lib/platform/iplatformframe.h"

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <utility>
#include <windows.h>

namespace platform {

namespace {

/// A container this much larger than what it holds has something else to show.
constexpr int widestFrame = 80;

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
        if (extra.width > widestFrame || extra.height > widestFrame)
            return;
        extra.width = std::max(extra.width, 0);
        extra.height = std::max(extra.height, 0);
        window = container;
    }
    resize(window, {size.width + extra.width, size.height + extra.height});
}

} // namespace

/// One frame between open() and the end of its closing.
class ToolkitWindow::OpenFrame {
  public:
    explicit OpenFrame(VSTGUI::CFrame* frame) : frame_(frame), use_(std::make_shared<ToolkitUse>()) {
        lateUse().reset();
    }
    OpenFrame(const OpenFrame&) = delete;
    OpenFrame& operator=(const OpenFrame&) = delete;

    bool open(void* parent) {
        if (!IsWindow(static_cast<HWND>(parent)))
            return false;
        return frame_->open(parent, VSTGUI::PlatformType::kHWND) && window();
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

    /// An event may have come while another one was under way, in the loop of a menu.
    static void releaseAfterEvents(const std::shared_ptr<OpenFrame>& opened) {
        if (!opened->frame_->doAfterEventProcessing([opened] { releaseAfterEvents(opened); }))
            opened->release();
    }

    void release() {
        const VSTGUI::PlatformFramePtr own = frame_->getPlatformFrame();
        frame_->close();
        if (own && own->getNbReference() > 1)
            lateUse() = std::move(use_);
    }

    VSTGUI::CFrame* frame_;
    std::shared_ptr<ToolkitUse> use_;
};

ToolkitWindow::ToolkitWindow() = default;

ToolkitWindow::~ToolkitWindow() {
    close();
}

bool ToolkitWindow::open(VSTGUI::CFrame* frame, void* parent) {
    frames_.push_back(std::make_shared<OpenFrame>(frame));
    return frames_.back()->open(parent);
}

void ToolkitWindow::close() {
    for (const auto& opened : std::exchange(frames_, {}))
        OpenFrame::close(opened);
}

bool ToolkitWindow::leftButtonDown() const {
    return !frames_.empty() && GetKeyState(VK_LBUTTON) < 0;
}

void ToolkitWindow::fitContainers(int width, int height) {
    for (const auto& opened : frames_)
        if (const HWND window = opened->window())
            resizeWithContainers(window, {width, height});
}

} // namespace platform
