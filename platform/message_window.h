// The system's side of the message box: one modal window. Only the platform room sees it.
#pragma once

namespace platform {

/// Shows the window and returns true when it has been acknowledged; false if the system has no place for a
/// window, with nothing shown. Both texts are UTF-8.
bool showMessageWindow(const char* text, const char* caption);

} // namespace platform
