// A process cannot leave the screen here once it has seen it, but it can move to a place that nobody sees: a
// window station of its own, which its children inherit. A message box of ours looks where it stands before
// it opens; other libraries do not look, so a hook turns their windows down.

#include "desk/display.h"

#include <windows.h>

namespace desk {

namespace {

/// Refuses every window that would stand on the desktop, and so all that could stand in one. Windows that
/// only receive messages have a parent of their own, which is on no screen; the system's own libraries need
/// them.
LRESULT CALLBACK refuseWindows(int code, WPARAM window, LPARAM details) {
    if (code == HCBT_CREATEWND) {
        const HWND parent = reinterpret_cast<const CBT_CREATEWNDW*>(details)->lpcs->hwndParent;
        if (!parent || parent == GetDesktopWindow())
            return 1;
    }
    return CallNextHookEx(nullptr, code, window, details);
}

} // namespace

void leaveDisplay() {
    // Both live as long as the process.
    const HWINSTA unseen = CreateWindowStationA(nullptr, 0, GENERIC_ALL, nullptr);
    // A program that is started where there is no desktop would not get up.
    if (unseen && SetProcessWindowStation(unseen))
        CreateDesktopA("Default", nullptr, nullptr, 0, GENERIC_ALL, nullptr);
    SetWindowsHookExA(WH_CBT, refuseWindows, nullptr, GetCurrentThreadId());
}

} // namespace desk
