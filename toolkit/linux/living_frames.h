// The frames of this process that are open, or wait for the end of an event to be released.
#pragma once

#include "keyboard_focus.h"
#include "mouse_buttons.h"

#include <cstdint>
#include <vector>

namespace toolkit {

struct LivingFrame {
    VSTGUI::CFrame* frame;
    const MouseButtons* buttons;
    KeyboardFocus* keyboard;
};

/// Never destroyed: a frame may end later than that would be. On the window thread.
std::vector<LivingFrame>& livingFrames();

/// The window that the toolkit has made for the frame, or 0.
std::uint32_t windowOf(const VSTGUI::CFrame& frame);

} // namespace toolkit
