// A process cannot leave the screen here once it has seen it, but it can move to a place that nobody sees: a
// window station of its own, which its children inherit. A message box of ours looks where it stands before
// it opens; other libraries do not look, so a hook turns their windows down.

#include "platform/display.h"

#include <windows.h>

namespace platform {

namespace {

/// Windows that only ever receive messages are not seen on any screen, and the system's own libraries need
/// them.
LRESULT CALLBACK refuseWindows(int code, WPARAM window, LPARAM details) {
    if (code == HCBT_CREATEWND) {
        const auto* creation = reinterpret_cast<const CBT_CREATEWNDW*>(details)->lpcs;
        if (creation->hwndParent != HWND_MESSAGE)
            return 1;
    }
    return CallNextHookEx(nullptr, code, window, details);
}

} // namespace

void leaveDisplay() {
    const HWINSTA unseen = CreateWindowStationA(nullptr, 0, GENERIC_READ | WINSTA_CREATEDESKTOP, nullptr);
    if (unseen)
        SetProcessWindowStation(unseen);
    SetWindowsHookExA(WH_CBT, refuseWindows, nullptr, GetCurrentThreadId());
}

} // namespace platform
