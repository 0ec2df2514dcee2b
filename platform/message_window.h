// The system's side of the message box: one modal window. Only the platform room sees it.
#pragma once

#include "platform/message_box.h"

namespace platform {

/// Shows the window and returns true when it has been acknowledged; false if the system has no place for a
/// window, with nothing shown.
bool showMessageWindow(const char* text, const char* caption, const MessageLook& look);

} // namespace platform
