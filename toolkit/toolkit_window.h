// The place of a VSTGUI frame in the host's window: opened in it, told which buttons are held, sized with it
// and taken out of it again, at whatever moment the host asks.
#pragma once

#include <memory>
#include <vector>

namespace VSTGUI {
class CFrame;
}

namespace toolkit {

enum class WindowSystem { x11, win32 };

/// Whose windows those of the toolkit and of its hosts are here.
WindowSystem windowSystem();

/// An editor holds one; it is empty while its window is closed. On the window thread.
class ToolkitWindow {
  public:
    ToolkitWindow();
    /// Closes.
    ~ToolkitWindow();
    ToolkitWindow(const ToolkitWindow&) = delete;
    ToolkitWindow& operator=(const ToolkitWindow&) = delete;

    /// Opens `frame` in the host's window `parent` and takes the frame over, with the one reference that its
    /// maker had, also where it throws std::bad_alloc. False if there is no display or no such window; the
    /// frame then exists unseen, and views may be added to it as to any other. A second frame may be opened
    /// beside the first one. When the display is gone and another one is there, the next window opens on
    /// that. `owner` is what the views call: it is let go when they have ended, and may end with that.
    bool open(VSTGUI::CFrame* frame, void* parent, std::shared_ptr<void> owner = nullptr);

    /// Closes and releases what open() was given: menus and other modal views end, the system's window goes.
    /// May be called from inside an event of the frame itself, as hosts do; then the frame and its views live
    /// on, unseen, until that event is over. Do not use the frame afterwards. Does its work also without
    /// memory.
    void close() noexcept;

    /// Takes the window from the screen and brings it back; what is in it stays. False if there is no window.
    bool setVisible(bool isVisible);

    /// Whether the left button is held in a gesture that began in this window.
    bool leftButtonDown() const;

    /// Makes the windows around the frame fit a new size in pixels: the frame's own, and those of the host
    /// that hold nothing else.
    void fitContainers(int width, int height);

    /// Tells a host that looks for it how large the frame is, in pixels, and that it cannot become larger: on
    /// X11 by the hints that window managers go by. The host may make it smaller. On Windows, where hosts ask
    /// in other ways, it does nothing.
    void announceSize(int width, int height);

  private:
    class OpenFrame;
    std::vector<std::shared_ptr<OpenFrame>> frames_;
};

} // namespace toolkit
