// Input that arrives while the thread is kept by a message would wait in the toolkit's connection and be
// carried out behind it. So the display is told not to send it in the first place.

#include "toolkit/toolkit.h"

#include "living_frames.h"
#include "platform/linux/xcb_handles.h"

#include "vstgui/lib/platform/linux/x11platform.h"

#include <algorithm>
#include <array>
#include <optional>
#include <xcb/xcb.h>

namespace toolkit {

namespace {

using VSTGUI::MouseButton;

constexpr std::uint32_t kInputEvents =
    XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_BUTTON_PRESS |
    XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_BUTTON_1_MOTION |
    XCB_EVENT_MASK_BUTTON_2_MOTION | XCB_EVENT_MASK_BUTTON_3_MOTION | XCB_EVENT_MASK_BUTTON_4_MOTION |
    XCB_EVENT_MASK_BUTTON_5_MOTION | XCB_EVENT_MASK_BUTTON_MOTION;

/// A window's events before the pause.
struct PausedWindow {
    xcb_window_t window;
    std::uint32_t events;
    std::uint32_t keptFromParent;
};

struct Button {
    MouseButton name;
    std::uint8_t number;
    std::uint16_t mask;
};
constexpr std::array kButtons = {Button{MouseButton::Left, 1, XCB_BUTTON_MASK_1},
                                 Button{MouseButton::Middle, 2, XCB_BUTTON_MASK_2},
                                 Button{MouseButton::Right, 3, XCB_BUTTON_MASK_3}};

void setEvents(xcb_connection_t* connection, const PausedWindow& state) {
    const std::uint32_t values[] = {state.events, state.keptFromParent};
    xcb_change_window_attributes(connection, state.window, XCB_CW_EVENT_MASK | XCB_CW_DONT_PROPAGATE, values);
}

/// Nothing if the connection has no input from that window. The number may be that of a window on a display
/// that is lost, and another program's on this one.
std::optional<PausedWindow> pause(xcb_connection_t* connection, xcb_window_t window) {
    const auto now = platform::ownedXcb(
        xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, window), nullptr));
    if (!now || !(now->your_event_mask & kInputEvents))
        return std::nullopt;
    // What nobody takes from the window goes on to those around it.
    setEvents(connection,
              {window, now->your_event_mask & ~kInputEvents, now->do_not_propagate_mask | kInputEvents});
    return PausedWindow{window, now->your_event_mask, now->do_not_propagate_mask};
}

/// Tells the toolkit of buttons that it takes to be held and that have been let go during the pause.
void sendMissedReleases(xcb_connection_t* connection, xcb_window_t window, const MouseButtons& known) {
    // Not to be freed: see toolkit_answers.cpp.
    const xcb_query_pointer_reply_t* const pointer =
        xcb_query_pointer_reply(connection, xcb_query_pointer(connection, window), nullptr);
    if (!pointer)
        return;
    for (const Button& button : kButtons) {
        if (!known.held().has(button.name) || pointer->mask & button.mask)
            continue;
        xcb_button_release_event_t release = {};
        release.response_type = XCB_BUTTON_RELEASE;
        release.detail = button.number;
        release.time = XCB_CURRENT_TIME;
        release.root = pointer->root;
        release.event = window;
        release.root_x = pointer->root_x;
        release.root_y = pointer->root_y;
        release.event_x = pointer->win_x;
        release.event_y = pointer->win_y;
        release.state = static_cast<std::uint16_t>(pointer->mask | button.mask);
        release.same_screen = pointer->same_screen;
        xcb_send_event(connection, 0, window, XCB_EVENT_MASK_BUTTON_RELEASE,
                       reinterpret_cast<const char*>(&release));
    }
}

} // namespace

class InputPause::System {
  public:
    System() : connection_(VSTGUI::X11::RunLoop::instance().getXcbConnection()) {
        if (!connection_)
            return;
        windows_.reserve(livingFrames().size());
        for (const LivingFrame& living : livingFrames())
            if (const auto paused = pause(connection_, windowOf(*living.frame)))
                windows_.push_back(*paused);
        xcb_ungrab_pointer(connection_, XCB_CURRENT_TIME);
        // Others go on only when the display has done this.
        platform::ownedXcb(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    }
    ~System() {
        if (!connection_)
            return;
        for (const PausedWindow& paused : windows_) {
            setEvents(connection_, paused);
            // The frame may have ended meanwhile.
            for (const LivingFrame& living : livingFrames())
                if (windowOf(*living.frame) == paused.window)
                    sendMissedReleases(connection_, paused.window, *living.buttons);
        }
        xcb_flush(connection_);
    }
    System(const System&) = delete;
    System& operator=(const System&) = delete;

  private:
    xcb_connection_t* connection_;
    std::vector<PausedWindow> windows_;
};

InputPause::InputPause() : system_(std::make_unique<System>()) {}

InputPause::~InputPause() = default;

} // namespace toolkit
