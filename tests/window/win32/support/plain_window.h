// Windows of a host's, plain and empty.
#pragma once

#include <vector>
#include <windows.h>

namespace test {

/// Takes and dispatches what has come for the windows of this thread.
void serveMessages();

/// Visible, without a border; inside `parent` if there is one. Destroyed with the object.
class PlainWindow {
  public:
    /// Throws std::runtime_error if there is no screen to make it on.
    PlainWindow(int x, int y, int width, int height, HWND parent = nullptr,
                const wchar_t* className = L"PlainWindow");
    ~PlainWindow() { destroy(); }
    PlainWindow(const PlainWindow&) = delete;
    PlainWindow& operator=(const PlainWindow&) = delete;

    HWND handle() const { return handle_; }
    void destroy();

  private:
    HWND handle_;
};

/// The windows directly inside another one.
std::vector<HWND> childrenOf(HWND window);

} // namespace test
