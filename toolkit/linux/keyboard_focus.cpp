#include "keyboard_focus.h"

#include "living_frames.h"
#include "platform/linux/xcb_handles.h"

#include "vstgui/lib/platform/linux/x11platform.h"

#include <xcb/xcb.h>

namespace toolkit {

namespace {

/// The window around `window` that the window manager, or nobody, holds.
xcb_window_t outermost(xcb_connection_t* connection, xcb_window_t window) {
    for (;;) {
        const auto tree =
            platform::ownedXcb(xcb_query_tree_reply(connection, xcb_query_tree(connection, window), nullptr));
        if (!tree || tree->parent == tree->root || tree->parent == XCB_NONE)
            return tree ? window : XCB_NONE;
        window = tree->parent;
    }
}

auto focusOf(xcb_connection_t* connection) {
    using Reply = xcb_get_input_focus_reply_t;
    return platform::ownedXcb<Reply>(
        connection ? xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr)
                   : nullptr);
}

} // namespace

void KeyboardFocus::onMouseEvent(VSTGUI::MouseEvent& event, VSTGUI::CFrame* frame) {
    if (event.type != VSTGUI::EventType::MouseDown)
        return;
    xcb_connection_t* const connection = VSTGUI::X11::RunLoop::instance().getXcbConnection();
    const auto now = focusOf(connection);
    const std::uint32_t own = windowOf(*frame);
    if (!now || now->focus == own)
        return;
    for (const LivingFrame& living : livingFrames())
        if (windowOf(*living.frame) == now->focus) {
            // Another window of ours, which will have it back from whoever had it before.
            *this = *living.keyboard;
            return;
        }
    // A press may come before the host has the keyboard from another program, which is not to get it back.
    const bool isAWindow = now->focus != XCB_NONE && now->focus != XCB_INPUT_FOCUS_POINTER_ROOT;
    if (isAWindow && outermost(connection, now->focus) != outermost(connection, own))
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
        platform::ownedXcb(xcb_request_check(
            connection, xcb_set_input_focus_checked(connection, revert_, owner_, XCB_CURRENT_TIME)));
}

} // namespace toolkit
