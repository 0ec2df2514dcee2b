// The message box as a window of the X server. It has a connection of its own, so it needs nothing of the
// host: no toolkit, no event loop, no display. The protocol is spoken through XCB and not Xlib, because Xlib
// has one error handler for the whole process and ends that process when a connection breaks; here, a server
// that dies only ends the conversation.

#include "../message_window.h"

#include "message_drawing.h"
#include "message_text.h"
#include "message_traits.h"
#include "xcb_handles.h"

#include <algorithm>
#include <cairo-xcb.h>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>
#include <xcb/xcb.h>
#include <xcb/xcb_aux.h>

namespace platform {

namespace {

struct FinishSurface {
    void operator()(cairo_surface_t* surface) const {
        // The toolkit remembers connections by their address, which the next connection may have again.
        cairo_device_t* device = cairo_device_reference(cairo_surface_get_device(surface));
        cairo_surface_finish(surface);
        cairo_surface_destroy(surface);
        cairo_device_finish(device);
        cairo_device_destroy(device);
    }
};

constexpr xcb_keysym_t kKeyReturn = 0xff0d, kKeyEscape = 0xff1b, kKeyKeypadEnter = 0xff8d;

bool isAscii(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 128; });
}

std::uint16_t asLength(double pixels) {
    return static_cast<std::uint16_t>(std::clamp(pixels, 1.0, 32767.0));
}

class MessageWindow {
  public:
    /// `owner` is a window that the box belongs to, or XCB_NONE.
    MessageWindow(xcb_connection_t* connection, int screenNumber, const std::string& text,
                  xcb_window_t owner);
    ~MessageWindow();
    MessageWindow(const MessageWindow&) = delete;
    MessageWindow& operator=(const MessageWindow&) = delete;

    /// Whether there is a window that can be shown.
    bool exists() const { return surface_ != nullptr; }
    void show(const std::string& caption);
    /// Serves the window until it is acknowledged; false if the server went away before.
    bool serve();

  private:
    double findScale() const;
    xcb_visualtype_t* rootVisual() const;
    void create(MessageSize size);
    void makeSurface(MessageSize size);

    xcb_atom_t atom(std::string_view name) const;
    void setProperty(xcb_atom_t property, xcb_atom_t type, const std::string& value) const;
    void setTitle(const std::string& caption) const;
    void setManagerHints() const;
    void setTextForPrograms() const;
    bool hasProperty(xcb_window_t window, xcb_atom_t property) const;
    xcb_window_t outermostOf(xcb_window_t window) const;

    /// Draws, resizes and the like as the event asks for; true if it closes the box.
    bool handleEvent(const xcb_generic_event_t& event);
    bool isClosingKey(const xcb_key_press_event_t& event) const;
    bool isOnButton(int x, int y) const;
    void movePointer(int x, int y);
    void resize(int width, int height);
    void draw();

    xcb_connection_t* connection_;
    xcb_screen_t* screen_; ///< null if there is none of that number
    std::string text_;
    xcb_window_t owner_;
    xcb_window_t window_ = XCB_NONE;
    xcb_atom_t protocols_ = XCB_NONE;
    xcb_atom_t deleteWindow_ = XCB_NONE;
    std::unique_ptr<MessageDrawing> drawing_;
    std::unique_ptr<cairo_surface_t, FinishSurface> surface_;
    double scale_ = 1;
    int width_ = 0;
    int height_ = 0;
    bool pointerIsOnButton_ = false;
    bool pressBeganOnButton_ = false;
};

MessageWindow::MessageWindow(xcb_connection_t* connection, int screenNumber, const std::string& text,
                             xcb_window_t owner)
    : connection_(connection), screen_(xcb_aux_get_screen(connection, screenNumber)), text_(text),
      owner_(owner) {
    if (!screen_ || !rootVisual())
        return;
    scale_ = findScale();
    const double room = 0.9 / scale_;
    drawing_ = std::make_unique<MessageDrawing>(
        text, MessageSize{screen_->width_in_pixels * room, screen_->height_in_pixels * room});
    protocols_ = atom("WM_PROTOCOLS");
    deleteWindow_ = atom("WM_DELETE_WINDOW");
    create(drawing_->size());
}

MessageWindow::~MessageWindow() {
    surface_.reset();
    if (window_ != XCB_NONE)
        xcb_destroy_window(connection_, window_);
    xcb_flush(connection_);
}

xcb_visualtype_t* MessageWindow::rootVisual() const {
    return xcb_aux_find_visual_by_id(screen_, screen_->root_visual);
}

/// Desktops announce a dense screen as dots per inch, 96 being an ordinary one.
double MessageWindow::findScale() const {
    constexpr std::uint32_t enough = 16384; // in units of four bytes
    const auto reply = ownedXcb(
        xcb_get_property_reply(connection_,
                               xcb_get_property(connection_, 0, screen_->root, XCB_ATOM_RESOURCE_MANAGER,
                                                XCB_ATOM_STRING, 0, enough),
                               nullptr));
    if (!reply)
        return 1;
    const std::string resources(static_cast<const char*>(xcb_get_property_value(reply.get())),
                                static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
    constexpr std::string_view key = "Xft.dpi:";
    const std::size_t at = resources.find(key);
    if (at == std::string::npos)
        return 1;
    const long dotsPerInch = std::strtol(resources.c_str() + at + key.size(), nullptr, 10);
    return std::clamp(static_cast<double>(dotsPerInch) / 96, 1.0, 4.0);
}

void MessageWindow::create(MessageSize size) {
    width_ = asLength(std::ceil(size.width * scale_));
    height_ = asLength(std::ceil(size.height * scale_));
    const auto centred = [](int outer, int inner) { return static_cast<std::int16_t>((outer - inner) / 2); };
    const std::uint32_t events = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                                 XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_BUTTON_PRESS |
                                 XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION |
                                 XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW;
    const xcb_window_t window = xcb_generate_id(connection_);
    const auto refusal = ownedXcb(xcb_request_check(
        connection_, xcb_create_window_checked(connection_, XCB_COPY_FROM_PARENT, window, screen_->root,
                                               centred(screen_->width_in_pixels, width_),
                                               centred(screen_->height_in_pixels, height_), asLength(width_),
                                               asLength(height_), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                                               screen_->root_visual, XCB_CW_EVENT_MASK, &events)));
    if (refusal || xcb_connection_has_error(connection_))
        return;
    window_ = window;
    surface_.reset(cairo_xcb_surface_create(connection_, window_, rootVisual(), width_, height_));
    if (cairo_surface_status(surface_.get()) != CAIRO_STATUS_SUCCESS)
        surface_.reset();
}

xcb_atom_t MessageWindow::atom(std::string_view name) const {
    return xcbAtom(connection_, name);
}

void MessageWindow::setProperty(xcb_atom_t property, xcb_atom_t type, const std::string& value) const {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, property, type, 8,
                        static_cast<std::uint32_t>(value.size()), value.data());
}

void MessageWindow::setTitle(const std::string& caption) const {
    const xcb_atom_t utf8 = atom("UTF8_STRING");
    setProperty(XCB_ATOM_WM_NAME, isAscii(caption) ? static_cast<xcb_atom_t>(XCB_ATOM_STRING) : utf8,
                caption);
    setProperty(atom("_NET_WM_NAME"), utf8, caption);
    // Instance and class, each with its end.
    setProperty(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, std::string("message\0Quillon\0", 16));
}

bool MessageWindow::hasProperty(xcb_window_t window, xcb_atom_t property) const {
    const auto reply = ownedXcb(xcb_get_property_reply(
        connection_, xcb_get_property(connection_, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 0),
        nullptr));
    return reply && reply->type != XCB_ATOM_NONE;
}

/// The window around this one that a window manager has marked as one it looks after or, where there is no
/// manager, that lies on the screen itself; XCB_NONE if `window` is none.
xcb_window_t MessageWindow::outermostOf(xcb_window_t window) const {
    const xcb_atom_t managed = atom("WM_STATE");
    while (window != XCB_NONE && !hasProperty(window, managed)) {
        const auto tree =
            ownedXcb(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, window), nullptr));
        if (!tree)
            return XCB_NONE;
        if (tree->parent == tree->root || tree->parent == XCB_NONE)
            return window;
        window = tree->parent;
    }
    return window;
}

/// What a window manager goes by. None may be running; then the window is where create() put it.
void MessageWindow::setManagerHints() const {
    const auto set = [this](xcb_atom_t property, xcb_atom_t type, const auto& values) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, property, type, 32,
                            static_cast<std::uint32_t>(std::size(values)), std::data(values));
    };
    set(protocols_, XCB_ATOM_ATOM, std::initializer_list<xcb_atom_t>{deleteWindow_});
    set(atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM,
        std::initializer_list<xcb_atom_t>{atom("_NET_WM_WINDOW_TYPE_DIALOG")});
    // The host waits for this box: it must not hide behind the host.
    set(atom("_NET_WM_STATE"), XCB_ATOM_ATOM, std::initializer_list<xcb_atom_t>{atom("_NET_WM_STATE_ABOVE")});

    if (const xcb_window_t host = outermostOf(owner_))
        set(XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, std::initializer_list<xcb_window_t>{host});

    struct SizeHints {                         // as the window managers' convention lays them out
        std::uint32_t flags = 1 << 4 | 1 << 5; // least and greatest size
        std::uint32_t obsolete[4] = {};
        std::uint32_t leastWidth, leastHeight, greatestWidth, greatestHeight;
        std::uint32_t rest[9] = {};
    };
    const auto width = static_cast<std::uint32_t>(width_), height = static_cast<std::uint32_t>(height_);
    const SizeHints size = {
        .leastWidth = width, .leastHeight = height, .greatestWidth = width, .greatestHeight = height};
    static_assert(sizeof size == 18 * 4);
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, sizeof size / 4, &size);
    const std::uint32_t takesKeyboard[9] = {1, 1};
    set(XCB_ATOM_WM_HINTS, XCB_ATOM_WM_HINTS, takesKeyboard);
}

/// A host that nobody watches reads what is said, and by whom.
void MessageWindow::setTextForPrograms() const {
    const auto process = static_cast<std::uint32_t>(getpid());
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, atom("_NET_WM_PID"), XCB_ATOM_CARDINAL,
                        32, 1, &process);
    setProperty(atom(kMessageTextProperty), atom("UTF8_STRING"), text_);
}

void MessageWindow::show(const std::string& caption) {
    setTitle(caption);
    setManagerHints();
    setTextForPrograms();
    xcb_map_window(connection_, window_);
    xcb_flush(connection_);
}

bool MessageWindow::serve() {
    while (const XcbEvent event{xcb_wait_for_event(connection_)})
        if (handleEvent(*event))
            return true;
    return false;
}

bool MessageWindow::handleEvent(const xcb_generic_event_t& event) {
    constexpr std::uint8_t sentByProgram = 0x80;
    constexpr xcb_button_t leftButton = 1;
    switch (event.response_type & ~sentByProgram) {
    case XCB_EXPOSE:
        draw();
        break;
    case XCB_MAP_NOTIFY:
        // Where no window manager hands out the keyboard, nobody else would give it to the box.
        xcb_set_input_focus(connection_, XCB_INPUT_FOCUS_PARENT, window_, XCB_CURRENT_TIME);
        xcb_flush(connection_);
        break;
    case XCB_CONFIGURE_NOTIFY: {
        const auto& configured = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        resize(configured.width, configured.height);
        break;
    }
    case XCB_MOTION_NOTIFY:
    case XCB_ENTER_NOTIFY:
    case XCB_LEAVE_NOTIFY: { // the three begin alike
        const auto& motion = reinterpret_cast<const xcb_motion_notify_event_t&>(event);
        movePointer(motion.event_x, motion.event_y);
        break;
    }
    case XCB_BUTTON_PRESS: {
        const auto& press = reinterpret_cast<const xcb_button_press_event_t&>(event);
        movePointer(press.event_x, press.event_y);
        if (press.detail == leftButton) {
            pressBeganOnButton_ = pointerIsOnButton_;
            draw();
        }
        break;
    }
    case XCB_BUTTON_RELEASE: {
        const auto& release = reinterpret_cast<const xcb_button_release_event_t&>(event);
        movePointer(release.event_x, release.event_y);
        if (release.detail == leftButton) {
            if (pressBeganOnButton_ && pointerIsOnButton_)
                return true;
            pressBeganOnButton_ = false;
            draw();
        }
        break;
    }
    case XCB_KEY_PRESS:
        return isClosingKey(reinterpret_cast<const xcb_key_press_event_t&>(event));
    case XCB_CLIENT_MESSAGE: {
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
        return message.type == protocols_ && message.data.data32[0] == deleteWindow_;
    }
    case XCB_DESTROY_NOTIFY: // somebody killed the window: that is a way of closing it, too
        window_ = XCB_NONE;
        return true;
    default: // errors among them: none of what was asked for is worth more than the box
        break;
    }
    return false;
}

bool MessageWindow::isClosingKey(const xcb_key_press_event_t& event) const {
    // Asked anew for each key, so a keyboard that was just switched over is understood.
    const auto mapping = ownedXcb(xcb_get_keyboard_mapping_reply(
        connection_, xcb_get_keyboard_mapping(connection_, event.detail, 1), nullptr));
    if (!mapping || xcb_get_keyboard_mapping_keysyms_length(mapping.get()) < 1)
        return false;
    const xcb_keysym_t key = *xcb_get_keyboard_mapping_keysyms(mapping.get());
    return key == kKeyReturn || key == kKeyKeypadEnter || key == kKeyEscape;
}

bool MessageWindow::isOnButton(int x, int y) const {
    return MessageDrawing::button({width_ / scale_, height_ / scale_}).contains(x / scale_, y / scale_);
}

void MessageWindow::movePointer(int x, int y) {
    const bool isOn = isOnButton(x, y);
    if (isOn == pointerIsOnButton_)
        return;
    pointerIsOnButton_ = isOn;
    draw();
}

void MessageWindow::resize(int width, int height) {
    if (width == width_ && height == height_)
        return;
    width_ = width;
    height_ = height;
    cairo_xcb_surface_set_size(surface_.get(), width_, height_);
    draw();
}

void MessageWindow::draw() {
    ButtonLook look = ButtonLook::resting;
    if (pointerIsOnButton_)
        look = pressBeganOnButton_ ? ButtonLook::pressed : ButtonLook::underPointer;
    cairo_t* cairo = cairo_create(surface_.get());
    cairo_push_group_with_content(cairo, CAIRO_CONTENT_COLOR);
    cairo_scale(cairo, scale_, scale_);
    drawing_->draw(cairo, {width_ / scale_, height_ / scale_}, look);
    cairo_pop_group_to_source(cairo);
    cairo_paint(cairo);
    cairo_destroy(cairo);
    cairo_surface_flush(surface_.get());
    xcb_flush(connection_);
}

} // namespace

bool showMessageWindow(const char* text, const char* caption, const MessageLook& look) {
    int screenNumber = 0;
    const XcbConnection connection(xcb_connect(nullptr, &screenNumber));
    if (xcb_connection_has_error(connection.get()))
        return false;
    const auto owner = static_cast<xcb_window_t>(reinterpret_cast<std::uintptr_t>(look.owner));
    MessageWindow window(connection.get(), screenNumber, validUtf8(text), owner);
    if (!window.exists())
        return false;
    window.show(validUtf8(caption));
    return window.serve();
}

} // namespace platform
