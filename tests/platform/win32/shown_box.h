// A message box on the screen, looked at and pressed from another thread, since it keeps the one that shows
// it.
#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>
#include <windows.h>

namespace test {

/// The title of a window, or the text of a control.
std::string textOf(HWND window);

/// A box that is shown by some work on a thread of its own. It is acknowledged at the latest with the end.
class ShownBox {
  public:
    /// Starts the work and waits until a box with this title is on the screen, ready to be pressed.
    ShownBox(std::function<void()> work, const std::string& caption);
    ~ShownBox();
    ShownBox(const ShownBox&) = delete;
    ShownBox& operator=(const ShownBox&) = delete;

    HWND window() const { return box_; }
    /// Its buttons.
    std::vector<HWND> buttons() const;
    /// What is written in it, apart from its title and its buttons.
    std::vector<std::string> texts() const;
    /// The icon that it shows; null for none.
    HICON icon() const;
    /// The window that rests meanwhile; null for none.
    HWND owner() const { return GetWindow(box_, GW_OWNER); }

    void press() const;
    /// Whether the work has come to its end.
    bool isOver() const { return isOver_; }
    /// Presses the button and waits for the work's end; false if that does not come.
    bool acknowledge() const;

  private:
    std::vector<HWND> children(const std::string& className) const;

    HWND box_ = nullptr;
    std::atomic<bool> isOver_ = false;
    std::thread worker_;
};

} // namespace test
