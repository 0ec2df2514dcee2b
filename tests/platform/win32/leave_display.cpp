// Leaves the display and then tries to get back on it, in every way that a program or its libraries have.
// Gives the number of the first way that led there.

#include "desk/display.h"
#include "platform/message_box.h"

#include <string>
#include <thread>
#include <windows.h>

namespace {

/// Starts this program again, which finds itself where this one is.
int runChild() {
    char path[MAX_PATH];
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    std::string command = std::string("\"") + path + "\" child";
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION started = {};
    if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                        &started))
        return -1;
    WaitForSingleObject(started.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(started.hProcess, &code);
    CloseHandle(started.hProcess);
    CloseHandle(started.hThread);
    return static_cast<int>(code);
}

bool opensWindow() {
    return CreateWindowA("STATIC", "window", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 100, 100, nullptr,
                         nullptr, nullptr, nullptr);
}

bool opensWindowForMessages() {
    const HWND window = CreateWindowA("STATIC", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    return window && DestroyWindow(window);
}

} // namespace

int main(int count, char**) {
    if (count > 1) {
        platform::showMessage("from a program that it has started", "caption");
        return 0;
    }
    desk::leaveDisplay();
    platform::showMessage("from the program", "caption");
    std::thread([] { platform::showMessage("from a thread of it", "caption"); }).join();
    if (MessageBoxA(nullptr, "from another library", "caption", MB_OK) > 0)
        return 1;
    if (opensWindow())
        return 2;
    if (!opensWindowForMessages())
        return 3;
    return runChild() == 0 ? 0 : 4;
}
