#include "support/plain_window.h"

#include <stdexcept>

namespace test {

void serveMessages() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

PlainWindow::PlainWindow(int x, int y, int width, int height, HWND parent, const wchar_t* className) {
    WNDCLASSW description = {};
    description.lpfnWndProc = DefWindowProcW;
    description.hInstance = GetModuleHandleW(nullptr);
    description.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    description.lpszClassName = className;
    RegisterClassW(&description);
    handle_ = CreateWindowExW(0, className, L"host", WS_VISIBLE | (parent ? WS_CHILD : WS_POPUP), x, y, width,
                              height, parent, nullptr, description.hInstance, nullptr);
    if (!handle_)
        throw std::runtime_error("no window can be had");
    serveMessages();
}

void PlainWindow::destroy() {
    if (handle_)
        DestroyWindow(handle_);
    handle_ = nullptr;
    serveMessages();
}

std::vector<HWND> childrenOf(HWND window) {
    std::vector<HWND> found;
    for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
        found.push_back(child);
    return found;
}

} // namespace test
