// An X server of a test's own, with a pointer and a keyboard that a test moves like a hand does. Nothing of
// it is to be seen, and no other program is on it, not even a window manager.
#pragma once

#include <X11/Xlib.h>
#include <memory>
#include <string>
#include <sys/types.h>

namespace test {

/// A colour as 0xRRGGBB.
using Pixel = unsigned long;

class VirtualScreen {
  public:
    /// Starts the server on a free display number and waits until it answers. Throws std::runtime_error with
    /// a clear line if there is none. `format` is width x height x depth, of each of its screens.
    explicit VirtualScreen(const std::string& format = "1000x800x24", int screens = 1);
    ~VirtualScreen();
    VirtualScreen(const VirtualScreen&) = delete;
    VirtualScreen& operator=(const VirtualScreen&) = delete;

    /// What a program takes as DISPLAY.
    const std::string& name() const { return name_; }
    Display* display() { return display_; }
    Window root() { return DefaultRootWindow(display_); }
    /// The server's process.
    pid_t server() const { return server_; }

    /// Ends the server under everybody's feet, this object's own connection having been closed in time.
    void stopServer();

    /// The one window that is shown; none (0) if nobody shows one in a long time.
    Window waitForWindow();
    bool isShown(Window window);
    /// A property's bytes; empty if there is none.
    std::string property(Window window, const char* name);
    bool hasKeyboard(Window window);

    void movePointer(int x, int y);
    void pressButton();
    void releaseButton();
    void click();
    /// Presses and lets go the key that carries `symbol`.
    void typeKey(KeySym symbol);

    Pixel pixel(int x, int y);
    bool waitForPixel(int x, int y, Pixel colour);

  private:
    void startServer(const std::string& format, int screens);

    pid_t server_ = -1;
    std::string name_;
    Display* display_ = nullptr;
};

/// Where a window lies on the screen.
struct Place {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

Place placeOf(VirtualScreen& screen, Window window);

} // namespace test
