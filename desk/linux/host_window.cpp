#include "desk/host_window.h"

#include "platform/linux/xcb_handles.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <initializer_list>
#include <poll.h>
#include <stdexcept>
#include <xcb/xcb_aux.h>

namespace desk {

namespace {

using Time = std::chrono::steady_clock;

/// Long for a window manager to put a window on the screen, short for a person to wait.
constexpr std::chrono::seconds kPatience(3);

std::uint32_t asLength(int pixels) {
    return static_cast<std::uint32_t>(std::clamp(pixels, 1, 32767));
}

/// One colour's bits within a pixel, brought to eight.
class Channel {
  public:
    explicit Channel(std::uint32_t mask) : mask_(mask), shift_(std::countr_zero(mask)) {}

    std::uint8_t of(std::uint32_t pixel) const {
        const std::uint32_t most = mask_ >> shift_;
        return static_cast<std::uint8_t>((std::uint64_t{(pixel & mask_) >> shift_} * 255 + most / 2) / most);
    }

  private:
    std::uint32_t mask_;
    int shift_;
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
    void serve(Time::time_point until);
    std::optional<Picture> picture() const;

    xcb_window_t window() const { return window_; }
    int width() const { return static_cast<int>(width_); }
    int height() const { return static_cast<int>(height_); }
    bool isClosed() const { return isClosed_; }

  private:
    void create();
    void setText(xcb_atom_t property, xcb_atom_t type, const std::string& value);
    void fixSize();
    void takeEvents();
    void take(const xcb_generic_event_t& event);
    bool waitFor(Time::time_point until);
    xcb_visualtype_t* visual() const;
    std::optional<Picture> pictureFrom(xcb_get_image_reply_t& image) const;

    platform::XcbConnection connection_;
    xcb_screen_t* screen_ = nullptr;
    xcb_window_t window_ = XCB_NONE;
    xcb_atom_t protocols_ = XCB_NONE;
    xcb_atom_t deleteWindow_ = XCB_NONE;
    std::uint32_t width_;
    std::uint32_t height_;
    bool isShown_ = false;
    bool isClosed_ = false;
};

HostWindow::System::System(const std::string& title, int width, int height)
    : width_(asLength(width)), height_(asLength(height)) {
    int screenNumber = 0;
    connection_.reset(xcb_connect(nullptr, &screenNumber));
    if (xcb_connection_has_error(connection_.get()))
        throw std::runtime_error("there is no display to open a window on");
    screen_ = xcb_aux_get_screen(connection_.get(), screenNumber);
    if (!screen_)
        throw std::runtime_error("the display has no screen to open a window on");
    create();
    const xcb_atom_t utf8 = platform::xcbAtom(connection_.get(), "UTF8_STRING");
    setText(XCB_ATOM_WM_NAME, utf8, title);
    setText(platform::xcbAtom(connection_.get(), "_NET_WM_NAME"), utf8, title);
    // Instance and class, each with its end.
    setText(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, std::string("editor\0Quillon\0", 15));
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window_, protocols_, XCB_ATOM_ATOM, 32, 1,
                        &deleteWindow_);
    fixSize();
    xcb_flush(connection_.get());
}

void HostWindow::System::create() {
    xcb_connection_t* c = connection_.get();
    protocols_ = platform::xcbAtom(c, "WM_PROTOCOLS");
    deleteWindow_ = platform::xcbAtom(c, "WM_DELETE_WINDOW");
    window_ = xcb_generate_id(c);
    const std::uint32_t values[] = {screen_->black_pixel, XCB_EVENT_MASK_STRUCTURE_NOTIFY};
    const auto refusal = platform::ownedXcb(xcb_request_check(
        c, xcb_create_window_checked(c, XCB_COPY_FROM_PARENT, window_, screen_->root, 0, 0,
                                     static_cast<std::uint16_t>(width_), static_cast<std::uint16_t>(height_),
                                     0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen_->root_visual,
                                     XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values)));
    if (refusal || xcb_connection_has_error(c))
        throw std::runtime_error("the display refuses a window of " + std::to_string(width_) + " x " +
                                 std::to_string(height_) + " pixels");
}

HostWindow::System::~System() {
    xcb_destroy_window(connection_.get(), window_);
    xcb_flush(connection_.get());
}

void HostWindow::System::setText(xcb_atom_t property, xcb_atom_t type, const std::string& value) {
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window_, property, type, 8,
                        static_cast<std::uint32_t>(value.size()), value.data());
}

/// An editor has one size, and so has the window around it.
void HostWindow::System::fixSize() {
    struct SizeHints {                         // as the window managers' convention lays them out
        std::uint32_t flags = 1 << 4 | 1 << 5; // least and greatest size
        std::uint32_t obsolete[4] = {};
        std::uint32_t leastWidth, leastHeight, greatestWidth, greatestHeight;
        std::uint32_t rest[9] = {};
    };
    const SizeHints size = {
        .leastWidth = width_, .leastHeight = height_, .greatestWidth = width_, .greatestHeight = height_};
    static_assert(sizeof size == 18 * 4);
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, sizeof size / 4, &size);
}

void HostWindow::System::show() {
    xcb_map_window(connection_.get(), window_);
    const Time::time_point until = Time::now() + kPatience;
    while (!isShown_ && waitFor(until))
        takeEvents();
}

void HostWindow::System::resize(int width, int height) {
    width_ = asLength(width);
    height_ = asLength(height);
    fixSize();
    const std::uint32_t values[] = {width_, height_};
    const auto request = xcb_configure_window_checked(
        connection_.get(), window_, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values);
    platform::ownedXcb(xcb_request_check(connection_.get(), request));
}

/// Whether there may be an event; false when the time is up.
bool HostWindow::System::waitFor(Time::time_point until) {
    if (isClosed_)
        return false;
    xcb_flush(connection_.get());
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Time::now()).count();
    pollfd descriptor = {xcb_get_file_descriptor(connection_.get()), POLLIN, 0};
    return left > 0 && poll(&descriptor, 1, static_cast<int>(left)) > 0;
}

void HostWindow::System::serve(Time::time_point until) {
    takeEvents();
    if (waitFor(until))
        takeEvents();
}

void HostWindow::System::takeEvents() {
    while (const platform::XcbEvent event{xcb_poll_for_event(connection_.get())})
        take(*event);
    if (xcb_connection_has_error(connection_.get()))
        isClosed_ = true;
}

void HostWindow::System::take(const xcb_generic_event_t& event) {
    constexpr std::uint8_t sentByProgram = 0x80;
    switch (event.response_type & ~sentByProgram) {
    case XCB_MAP_NOTIFY:
        isShown_ = true;
        break;
    case XCB_UNMAP_NOTIFY:
        isShown_ = false;
        break;
    case XCB_DESTROY_NOTIFY:
        isClosed_ = true;
        break;
    case XCB_CLIENT_MESSAGE: {
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
        if (message.type == protocols_ && message.data.data32[0] == deleteWindow_)
            isClosed_ = true;
        break;
    }
    default: // sizes among them: the window has the one that it was last given
        break;
    }
}

xcb_visualtype_t* HostWindow::System::visual() const {
    xcb_depth_iterator_t depths = xcb_screen_allowed_depths_iterator(screen_);
    for (; depths.rem; xcb_depth_next(&depths)) {
        xcb_visualtype_iterator_t visuals = xcb_depth_visuals_iterator(depths.data);
        for (; visuals.rem; xcb_visualtype_next(&visuals))
            if (visuals.data->visual_id == screen_->root_visual)
                return visuals.data;
    }
    return nullptr;
}

std::optional<Picture> HostWindow::System::picture() const {
    xcb_connection_t* c = connection_.get();
    // With everything on it: windows inside a window are part of its image.
    const auto image = platform::ownedXcb(xcb_get_image_reply(
        c,
        xcb_get_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, window_, 0, 0, static_cast<std::uint16_t>(width_),
                      static_cast<std::uint16_t>(height_), ~std::uint32_t{0}),
        nullptr));
    return image ? pictureFrom(*image) : std::nullopt;
}

std::optional<Picture> HostWindow::System::pictureFrom(xcb_get_image_reply_t& image) const {
    const xcb_visualtype_t* colours = visual();
    const auto pixels = std::size_t{width_} * height_;
    const std::uint8_t* bytes = xcb_get_image_data(&image);
    // Four bytes a pixel is what every screen of today has.
    if (!colours || !colours->red_mask || !colours->green_mask || !colours->blue_mask ||
        static_cast<std::size_t>(xcb_get_image_data_length(&image)) < pixels * 4)
        return std::nullopt;
    const Channel channels[] = {Channel(colours->red_mask), Channel(colours->green_mask),
                                Channel(colours->blue_mask)};
    const bool lowestFirst = xcb_get_setup(connection_.get())->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST;
    Picture picture = {width(), height(), {}};
    picture.rgb.reserve(pixels * 3);
    for (std::size_t i = 0; i < pixels; ++i, bytes += 4) {
        std::uint32_t pixel = 0;
        for (std::uint32_t byte = 0; byte < 4; ++byte)
            pixel |= std::uint32_t{bytes[byte]} << 8 * (lowestFirst ? byte : 3 - byte);
        for (const Channel& channel : channels)
            picture.rgb.push_back(channel.of(pixel));
    }
    return picture;
}

HostWindow::HostWindow(const std::string& title, int width, int height)
    : system_(std::make_unique<System>(title, width, height)) {}

HostWindow::~HostWindow() = default;

void* HostWindow::handle() const {
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(system_->window()));
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
    system_->serve(Time::now() + std::chrono::milliseconds(milliseconds));
}

bool HostWindow::isClosed() const {
    return system_->isClosed();
}

std::optional<Picture> HostWindow::picture() const {
    return system_->picture();
}

} // namespace desk
