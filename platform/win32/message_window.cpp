#include "../message_window.h"

#include <windows.h>

namespace platform {

namespace {

/// Whether a person could see a window of this process at all. In a service's window station a box would wait
/// for ever for a click.
bool isSeenByAnybody() {
    USEROBJECTFLAGS flags = {};
    if (!GetUserObjectInformationA(GetProcessWindowStation(), UOI_FLAGS, &flags, sizeof flags, nullptr))
        return true;
    return flags.dwFlags & WSF_VISIBLE;
}

} // namespace

bool showMessageWindow(const char* text, const char* caption, const MessageLook& look) {
    if (!isSeenByAnybody())
        return false;
    const UINT icon = look.icon == MessageIcon::error ? MB_ICONHAND : 0;
    return MessageBoxA(static_cast<HWND>(look.owner), text, caption, MB_OK | icon) > 0;
}

} // namespace platform
