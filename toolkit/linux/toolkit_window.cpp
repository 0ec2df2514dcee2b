#include "toolkit/toolkit_window.h"

#include "display_connection.h"
#include "living_frames.h"
#include "menu_events.h"
#include "mouse_buttons.h"
#include "platform/linux/xcb_handles.h"
#include "window_loop.h"

#include "vstgui/lib/platform/linux/x11platform.h"
#include "vstgui/lib/platform/linux/x11utils.h"
#include "vstgui/lib/vstguiinit.h"

#include <algorithm>
#include <cairo-xcb.h>
#include <cstdlib>
#include <memory>
#include <new>
#include <utility>
#include <vector>
#include <xcb/xcb.h>

namespace toolkit {

namespace {

/// What cairo remembers of a connection.
using DrawingDevice = std::unique_ptr<cairo_device_t, decltype(&cairo_device_destroy)>;

DrawingDevice drawingDeviceOf(xcb_connection_t* connection) {
    xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    // Nothing is drawn on it: a surface is the only way to ask.
    cairo_surface_t* surface = cairo_xcb_surface_create_for_bitmap(connection, screen, screen->root, 1, 1);
    DrawingDevice device(cairo_device_reference(cairo_surface_get_device(surface)), cairo_device_destroy);
    cairo_surface_destroy(surface);
    return device;
}

/// Lets the toolkit ask again for the numbers of its atoms, which are another display's.
void forgetAtoms() {
    using VSTGUI::X11::Atom;
    namespace Atoms = VSTGUI::X11::Atoms;
    const std::pair<Atom&, const char*> names[] = {
        {Atoms::xEmbedInfo, "_XEMBED_INFO"},
        {Atoms::xEmbed, "_XEMBED"},
        {Atoms::xDndAware, "XdndAware"},
        {Atoms::xDndProxy, "XdndProxy"},
        {Atoms::xDndEnter, "XdndEnter"},
        {Atoms::xDndPosition, "XdndPosition"},
        {Atoms::xDndLeave, "XdndLeave"},
        {Atoms::xDndStatus, "XdndStatus"},
        {Atoms::xDndDrop, "XdndDrop"},
        {Atoms::xDndTypeList, "XdndTypeList"},
        {Atoms::xDndSelection, "XdndSelection"},
        {Atoms::xDndFinished, "XdndFinished"},
        {Atoms::xDndActionCopy, "XdndActionCopy"},
        {Atoms::xDndActionMove, "XdndActionMove"},
        {Atoms::xMimeTypeTextPlain, "text/plain"},
        {Atoms::xMimeTypeTextPlainUtf8, "text/plain;charset=utf-8"},
        {Atoms::xMimeTypeUriList, "text/uri-list"},
        {Atoms::xMimeTypeApplicationOctetStream, "application/octet-stream"},
        {Atoms::xVstguiSelection, "XVSTGUISelection"},
    };
    for (const auto& [atom, name] : names)
        atom = Atom(name);
}

/// Keeps the toolkit's connection to the display from the first window on, until the display is lost. Left
/// alone, the toolkit would close it with its last window, but go on using what was noted down for it:
/// cursors by itself, fonts by cairo, which knows a connection by its address, and the next one may have the
/// same. Windows opened then lose their text.
class ToolkitConnection {
  public:
    ToolkitConnection() { connect(1); }

    /// When the process ends. What stands on the connection has to go before it.
    ~ToolkitConnection() {
        if (!livingFrames().empty())
            return;
        VSTGUI::exit();
        VSTGUI::X11::RunLoop::exit();
    }

    /// Asks the display, since a connection does not notice by itself that nobody is there any more.
    bool isAlive() const {
        xcb_connection_t* const c = connection();
        return platform::ownedXcb(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr)) != nullptr;
    }

    /// How many displays have been lost before this one.
    int generation() const { return generation_; }

    /// Connects to the display of now in place of one that is lost. Frames of the lost one may still be
    /// there: they are drawn nowhere, and end as any other. The shapes of the pointer that were in use are
    /// lost.
    void renew() {
        // The toolkit counts one use for each of them, and disconnects at 0.
        int uses = 1;
        std::uint32_t lastWindow = 0;
        for (const LivingFrame& living : livingFrames())
            if (const std::uint32_t window = windowOf(*living.frame)) {
                ++uses;
                lastWindow = std::max(lastWindow, window & idMask());
            }
        for (int i = 0; i < uses; ++i)
            VSTGUI::X11::RunLoop::exit();
        forgetAtoms();
        connect(uses);
        ++generation_;
        // The toolkit knows a window by its number, so a new one must not get that of a lost one.
        while ((xcb_generate_id(connection()) & idMask()) < lastWindow) {
        }
    }

  private:
    static xcb_connection_t* connection() { return VSTGUI::X11::RunLoop::instance().getXcbConnection(); }
    static std::uint32_t idMask() { return xcb_get_setup(connection())->resource_id_mask; }

    static void connect(int uses) {
        for (int i = 0; i < uses; ++i)
            VSTGUI::X11::RunLoop::init(VSTGUI::SharedPointer<VSTGUI::X11::IRunLoop>(&WindowLoop::shared()));
        // To be ended right before the connection is.
        VSTGUI::X11::RunLoop::instance().setDevice(drawingDeviceOf(connection()).get());
    }

    int generation_ = 0;
};

/// Connects at its first call. Only with a display at hand: the toolkit does not look whether it has
/// connected.
ToolkitConnection& toolkitConnection() {
    // Used before the connection is, so that it is still there when the connection ends.
    WindowLoop::shared();
    VSTGUI::X11::RunLoop::instance();
    static ToolkitConnection connection;
    return connection;
}

/// Whether there is a connection to a living display now. Only with a display at hand.
bool connectToolkit() {
    ToolkitConnection& connection = toolkitConnection();
    // The toolkit keeps the state of a keyboard that it does not find again, and would use it.
    if (!connection.isAlive() && DisplayConnection().hasKeyboardExtension())
        connection.renew();
    return connection.isAlive();
}

/// Returns when the display has done all that the toolkit has asked for. Its window is there then, and can be
/// destroyed over another connection.
void waitForDisplay() {
    xcb_connection_t* connection = VSTGUI::X11::RunLoop::instance().getXcbConnection();
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

/// What has been given back to the display, as the pictures of a closed window are, is gone there at once and
/// not with the next window.
void tellDisplay() {
    if (xcb_connection_t* connection = VSTGUI::X11::RunLoop::instance().getXcbConnection())
        xcb_flush(connection);
}

/// Ends every modal view. A menu goes by a press beside it, which chooses nothing, and the end of its fade,
/// which is one even where it takes no time.
void endModalViews(VSTGUI::CFrame& frame) {
    while (const auto view = VSTGUI::shared(frame.getModalView())) {
        VSTGUI::MouseDownEvent press(VSTGUI::CPoint(-1, -1), VSTGUI::MouseButton::Left);
        view->dispatchEvent(press);
        view->removeAllAnimations();
        if (frame.getModalView() == view)
            break;
    }
}

} // namespace

WindowSystem windowSystem() {
    return WindowSystem::x11;
}

/// One frame between open() and the end of its closing.
class ToolkitWindow::OpenFrame {
  public:
    OpenFrame(VSTGUI::CFrame* frame, std::shared_ptr<void> owner) : owner_(std::move(owner)), frame_(frame) {
        livingFrames().push_back({frame_, &buttons_, &keyboard_});
    }
    ~OpenFrame() { leaveLivingFrames(); }
    OpenFrame(const OpenFrame&) = delete;
    OpenFrame& operator=(const OpenFrame&) = delete;

    bool open(void* parent) {
        frame_->registerMouseObserver(&buttons_);
        frame_->registerMouseObserver(&keyboard_);
        menuEvents_.watch(*frame_);
        const auto window = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(parent));
        if (!DisplayConnection().hasWindow(window) || !connectToolkit())
            return false;
        generation_ = toolkitConnection().generation();
        VSTGUI::X11::FrameConfig configuration;
        configuration.runLoop = &WindowLoop::shared();
        const bool opened = frame_->open(parent, VSTGUI::PlatformType::kX11EmbedWindowID, &configuration);
        if (opened)
            MenuEvents::switchFadingOff(*frame_);
        waitForDisplay();
        return opened;
    }

    /// Takes the window away at once. The host may destroy its own as soon as we return, and the toolkit
    /// would leave ours on the screen until the connection ends.
    void destroyWindow() const {
        if (const std::uint32_t onScreen = window())
            DisplayConnection().destroyWindow(onScreen);
    }

    /// Makes what finish() needs, while the opening may still fail for want of memory. From here on the
    /// object lives until finish() has done its work.
    static void prepareToFinish(const std::shared_ptr<OpenFrame>& self) {
        self->closing_.emplace_back([self] { self->close(); });
    }

    /// Releases the frame, now or when its last event is over. An event comes out of a pass of the loop,
    /// which then has to be over too, or out of a key that the host has passed on, and may come inside
    /// another one.
    void finish() noexcept {
        WindowLoop& loop = WindowLoop::shared();
        if (!frame_->inEventProcessing()) {
            loop.afterServing(std::move(closing_));
            return;
        }
        try {
            frame_->doAfterEventProcessing([this] { finish(); });
        } catch (const std::bad_alloc&) {
            loop.inNextPass(std::move(closing_));
        }
    }

    const MouseButtons& buttons() const { return buttons_; }

    /// The window on the screen, or 0. Also 0 if its display is lost: on another one the number may be that
    /// of somebody else's window.
    std::uint32_t window() const {
        const std::uint32_t window = windowOf(*frame_);
        const bool isThere =
            window && generation_ == toolkitConnection().generation() && toolkitConnection().isAlive();
        return isThere ? window : 0;
    }

  private:
    /// May be tried again where it throws.
    void close() {
        if (frame_) {
            // There was no memory to wait for the end of its event. Tried again after the next pass.
            if (frame_->inEventProcessing())
                throw std::bad_alloc();
            endModalViews(*frame_);
            frame_->unregisterMouseObserver(&buttons_);
            frame_->unregisterMouseObserver(&keyboard_);
            menuEvents_.leave(*frame_);
            frame_->close();
            leaveLivingFrames();
            frame_ = nullptr;
        }
        tellDisplay();
    }

    void leaveLivingFrames() const {
        std::erase_if(livingFrames(), [this](const LivingFrame& living) { return living.frame == frame_; });
    }

    std::shared_ptr<void> owner_;
    VSTGUI::CFrame* frame_; ///< null once it is closed
    MouseButtons buttons_;
    KeyboardFocus keyboard_;
    MenuEvents menuEvents_;
    WindowLoop::Jobs closing_; ///< keeps this object until it has been run
    int generation_ = 0;       ///< of the connection that it was opened over
};

ToolkitWindow::ToolkitWindow() = default;

ToolkitWindow::~ToolkitWindow() {
    close();
}

bool ToolkitWindow::open(VSTGUI::CFrame* frame, void* parent, std::shared_ptr<void> owner) {
    const auto held = VSTGUI::owned(frame);
    const auto opened = std::make_shared<OpenFrame>(frame, std::move(owner));
    frames_.reserve(frames_.size() + 1);
    OpenFrame::prepareToFinish(opened);
    frames_.push_back(opened);
    frame->remember();
    return opened->open(parent);
}

void ToolkitWindow::close() noexcept {
    for (const auto& opened : std::exchange(frames_, {})) {
        opened->destroyWindow();
        opened->finish();
    }
}

bool ToolkitWindow::setVisible(bool isVisible) {
    bool isThere = false;
    for (const auto& opened : frames_)
        if (const std::uint32_t window = opened->window())
            isThere = DisplayConnection().setVisible(window, isVisible) || isThere;
    return isThere;
}

bool ToolkitWindow::leftButtonDown() const {
    for (const auto& opened : frames_)
        if (opened->buttons().held().has(VSTGUI::MouseButton::Left))
            return true;
    return false;
}

void ToolkitWindow::fitContainers(int width, int height) {
    for (const auto& opened : frames_)
        if (const std::uint32_t window = opened->window())
            DisplayConnection().resizeWithContainers(window, width, height);
}

void ToolkitWindow::announceSize(int width, int height) {
    for (const auto& opened : frames_)
        if (const std::uint32_t window = opened->window())
            DisplayConnection().setSizeHints(window, width, height);
}

} // namespace toolkit
