// A short conversation with the display: what the toolkit takes for granted or leaves undone. Over a
// connection of its own, since the toolkit's may be missing or dead.
#pragma once

#include "platform/linux/xcb_handles.h"

#include <cstdint>

namespace toolkit {

class DisplayConnection {
  public:
    /// Asks the display that the environment names. Without one, every question is answered with no and
    /// nothing else happens.
    DisplayConnection();
    ~DisplayConnection();

    bool hasWindow(std::uint32_t window) const;
    bool hasKeyboardExtension() const;
    void destroyWindow(std::uint32_t window) const;
    /// False if there is no such window.
    bool setVisible(std::uint32_t window, bool isVisible) const;

    /// Resizes `window` and, one after the other, the windows around it that are little more than a frame
    /// for it. The one that a window manager looks after is the last.
    void resizeWithContainers(std::uint32_t window, int width, int height) const;

    /// Says in the hints of `window` that this is its size and its greatest one. There is no least size:
    /// hosts that place the window in one of their own would not let that grow beyond it.
    void setSizeHints(std::uint32_t window, int width, int height) const;

  private:
    struct Size {
        int width = 0;
        int height = 0;
    };

    Size sizeOf(std::uint32_t window) const;
    void resize(std::uint32_t window, Size size) const;
    /// The window that holds this one; 0 if that is the screen or cannot be told.
    std::uint32_t containerOf(std::uint32_t window) const;
    bool isManaged(std::uint32_t window) const;

    platform::XcbConnection connection_;
};

} // namespace toolkit
