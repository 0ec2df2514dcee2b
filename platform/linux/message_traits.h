// What a message box is known by to other programs on its display.
#pragma once

namespace platform {

/// The property of the window that holds the message's text as it is, for those who cannot read a picture.
/// Written last of all, behind the title and the number of the process.
inline constexpr char kMessageTextProperty[] = "_QUILLON_MESSAGE";

} // namespace platform
