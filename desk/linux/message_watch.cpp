#include "desk/message_watch.h"

#include "platform/linux/message_traits.h"
#include "platform/linux/xcb_handles.h"

#include <atomic>
#include <map>
#include <optional>
#include <poll.h>
#include <thread>
#include <unistd.h>
#include <xcb/xcb_aux.h>

namespace desk {

namespace {

/// Often enough for a hand, seldom enough for a machine.
constexpr int kQuestionMilliseconds = 40;

} // namespace

class MessageWatch::Watcher {
  public:
    Watcher(std::function<void(const ShownMessage&)> onMessage, std::function<bool()> acknowledges);
    ~Watcher() {
        isEnding_ = true;
        thread_.join();
    }
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;

  private:
    void watch();
    void take(const xcb_generic_event_t& event);
    void lookAt(xcb_window_t window);
    void acknowledgeAll();
    bool isOurs(xcb_window_t window) const;
    std::optional<std::string> text(xcb_window_t window, xcb_atom_t property) const;

    std::function<void(const ShownMessage&)> onMessage_;
    std::function<bool()> acknowledges_;
    platform::XcbConnection connection_;
    xcb_atom_t textProperty_ = XCB_ATOM_NONE;
    xcb_atom_t captionProperty_ = XCB_ATOM_NONE;
    xcb_atom_t processProperty_ = XCB_ATOM_NONE;
    xcb_atom_t protocols_ = XCB_ATOM_NONE;
    xcb_atom_t deleteWindow_ = XCB_ATOM_NONE;
    /// The boxes that stand there, and whether they have been acknowledged.
    std::map<xcb_window_t, bool> boxes_;
    std::atomic<bool> isEnding_ = false;
    std::thread thread_;
};

MessageWatch::Watcher::Watcher(std::function<void(const ShownMessage&)> onMessage,
                               std::function<bool()> acknowledges)
    : onMessage_(std::move(onMessage)), acknowledges_(std::move(acknowledges)),
      connection_(xcb_connect(nullptr, nullptr)) {
    xcb_connection_t* c = connection_.get();
    if (!xcb_connection_has_error(c)) {
        textProperty_ = platform::xcbAtom(c, platform::kMessageTextProperty);
        captionProperty_ = platform::xcbAtom(c, "_NET_WM_NAME");
        processProperty_ = platform::xcbAtom(c, "_NET_WM_PID");
        protocols_ = platform::xcbAtom(c, "WM_PROTOCOLS");
        deleteWindow_ = platform::xcbAtom(c, "WM_DELETE_WINDOW");
        const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        for (int number = 0; xcb_screen_t* screen = xcb_aux_get_screen(c, number); ++number)
            platform::ownedXcb(xcb_request_check(
                c, xcb_change_window_attributes_checked(c, screen->root, XCB_CW_EVENT_MASK, &events)));
    }
    thread_ = std::thread([this] { watch(); });
}

void MessageWatch::Watcher::watch() {
    pollfd descriptor = {xcb_get_file_descriptor(connection_.get()), POLLIN, 0};
    while (!isEnding_ && !xcb_connection_has_error(connection_.get())) {
        poll(&descriptor, 1, kQuestionMilliseconds);
        while (const platform::XcbEvent event{xcb_poll_for_event(connection_.get())})
            take(*event);
        if (acknowledges_())
            acknowledgeAll();
    }
}

void MessageWatch::Watcher::take(const xcb_generic_event_t& event) {
    constexpr std::uint8_t sentByProgram = 0x80;
    switch (event.response_type & ~sentByProgram) {
    case XCB_CREATE_NOTIFY: {
        // What it is will be written on it a moment later.
        const xcb_window_t window = reinterpret_cast<const xcb_create_notify_event_t&>(event).window;
        const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(connection_.get(), window, XCB_CW_EVENT_MASK, &events);
        lookAt(window);
        break;
    }
    case XCB_PROPERTY_NOTIFY: {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (change.atom == textProperty_)
            lookAt(change.window);
        break;
    }
    case XCB_DESTROY_NOTIFY:
        boxes_.erase(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
        break;
    default: // errors among them: windows come and go
        break;
    }
}

void MessageWatch::Watcher::lookAt(xcb_window_t window) {
    const auto words = text(window, textProperty_);
    if (!words || !isOurs(window) || boxes_.contains(window))
        return;
    boxes_[window] = false;
    onMessage_({text(window, captionProperty_).value_or(""), *words});
}

std::optional<std::string> MessageWatch::Watcher::text(xcb_window_t window, xcb_atom_t property) const {
    constexpr std::uint32_t enough = 16384; // in units of four bytes
    xcb_connection_t* c = connection_.get();
    const auto reply = platform::ownedXcb(xcb_get_property_reply(
        c, xcb_get_property(c, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, enough), nullptr));
    if (!reply || reply->type == XCB_ATOM_NONE)
        return std::nullopt;
    return std::string(static_cast<const char*>(xcb_get_property_value(reply.get())),
                       static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
}

bool MessageWatch::Watcher::isOurs(xcb_window_t window) const {
    xcb_connection_t* c = connection_.get();
    const auto reply = platform::ownedXcb(xcb_get_property_reply(
        c, xcb_get_property(c, 0, window, processProperty_, XCB_ATOM_CARDINAL, 0, 1), nullptr));
    return reply && reply->format == 32 && xcb_get_property_value_length(reply.get()) == 4 &&
           *static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get())) ==
               static_cast<std::uint32_t>(getpid());
}

void MessageWatch::Watcher::acknowledgeAll() {
    for (auto& [window, isAcknowledged] : boxes_) {
        if (isAcknowledged)
            continue;
        xcb_client_message_event_t request = {};
        request.response_type = XCB_CLIENT_MESSAGE;
        request.format = 32;
        request.window = window;
        request.type = protocols_;
        request.data.data32[0] = deleteWindow_;
        xcb_send_event(connection_.get(), 0, window, XCB_EVENT_MASK_NO_EVENT,
                       reinterpret_cast<const char*>(&request));
        isAcknowledged = true;
    }
    xcb_flush(connection_.get());
}

MessageWatch::MessageWatch(std::function<void(const ShownMessage&)> onMessage,
                           std::function<bool()> acknowledges)
    : watcher_(std::make_unique<Watcher>(std::move(onMessage), std::move(acknowledges))) {}

MessageWatch::~MessageWatch() = default;

} // namespace desk
