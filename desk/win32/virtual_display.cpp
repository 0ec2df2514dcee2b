#include "desk/virtual_display.h"

#include <stdexcept>
#include <windows.h>

namespace desk {

/// There is no such thing on this system.
class VirtualDisplay::Server {};

bool hasDisplay() {
    USEROBJECTFLAGS flags = {};
    const bool isKnown =
        GetUserObjectInformationA(GetProcessWindowStation(), UOI_FLAGS, &flags, sizeof flags, nullptr);
    if (isKnown && !(flags.dwFlags & WSF_VISIBLE))
        return false;
    const HWND window =
        CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    return window && DestroyWindow(window);
}

VirtualDisplay::VirtualDisplay(int, int) {
    throw std::runtime_error("there is no display, and on this system none can be made");
}

VirtualDisplay::~VirtualDisplay() = default;

} // namespace desk
