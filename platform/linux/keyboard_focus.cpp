#include "keyboard_focus.h"

#include "living_frames.h"
#include "xcb_handles.h"

#include "vstgui/lib/platform/linux/x11platform.h"

#include <xcb/xcb.h>

namespace platform {

namespace {

auto focusOf(xcb_connection_t* connection) {
    using Reply = xcb_get_input_focus_reply_t;
    return ownedXcb<Reply>(
        connection ? xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr)
                   : nullptr);
}

} // namespace

void KeyboardFocus::onMouseEvent(VSTGUI::MouseEvent& event, VSTGUI::CFrame* frame) {
    if (event.type != VSTGUI::EventType::MouseDown)
        return;
    const auto now = focusOf(VSTGUI::X11::RunLoop::instance().getXcbConnection());
    if (!now || now->focus == windowOf(*frame))
        return;
    isTaken_ = true;
    owner_ = now->focus;
    revert_ = now->revert_to;
}

void KeyboardFocus::giveBack(const VSTGUI::CFrame& frame, const VSTGUI::MouseEventButtonState& held) {
    if (!isTaken_ || !held.empty() || frame.getModalView())
        return;
    isTaken_ = false;
    xcb_connection_t* const connection = VSTGUI::X11::RunLoop::instance().getXcbConnection();
    const auto now = focusOf(connection);
    // Somebody else may have taken it meanwhile, and the window before may be gone.
    if (now && now->focus == windowOf(frame))
        ownedXcb(xcb_request_check(
            connection, xcb_set_input_focus_checked(connection, revert_, owner_, XCB_CURRENT_TIME)));
}

} // namespace platform
