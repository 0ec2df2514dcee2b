// Keeps a program that nobody watches away from the person's screen.
#pragma once

namespace desk {

/// Makes this process, and all that it starts, one without a display. No library that it loads afterwards can
/// open a window and wait there for a click that never comes; what a library of ours has to say goes to
/// standard error. Call it first of all, before any library is loaded and any thread runs.
void leaveDisplay();

} // namespace desk
