// A display that nobody sees, for a program that wants a picture of a window on a machine without a screen.
#pragma once

#include <memory>

namespace desk {

/// Whether there is a display where this process would open a window.
bool hasDisplay();

/// Lives as long as this object, and not longer than the process. Windows of this process are opened on it.
class VirtualDisplay {
  public:
    /// Starts a display of this size in pixels and waits until it is ready. Throws std::runtime_error with
    /// one line for a person if none can be started. No other thread may be at the environment.
    VirtualDisplay(int width, int height);
    /// Ends the display; afterwards this process has none.
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;

  private:
    class Server;
    std::unique_ptr<Server> server_;
};

} // namespace desk
