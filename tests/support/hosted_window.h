// A host's window on a test's screen, with a plug-in's window in it and the hand of a person on that. Places
// are those of the host's window.
#pragma once

#include "virtual_screen.h"

#include <functional>
#include <vector>

namespace test {

class HostedWindow {
  public:
    /// Makes the host's window at (`x`, `y`) of the screen; nothing lies in it yet.
    HostedWindow(VirtualScreen& screen, int x, int y);
    virtual ~HostedWindow();
    HostedWindow(const HostedWindow&) = delete;
    HostedWindow& operator=(const HostedWindow&) = delete;

    /// Also once it is destroyed.
    Window container() const { return container_; }
    void destroyContainer();
    std::vector<Window> childrenOf(Window window);
    std::vector<Window> children() { return childrenOf(container_); }

    /// Gives the plug-in's window its time, once.
    virtual void serve() = 0;
    /// Serves until something holds; false if it never does.
    bool serveUntil(const std::function<bool()>& condition);

    void point(int x, int y);
    void press(unsigned button = Button1);
    void release(unsigned button = Button1);
    /// Moves to the place and a pixel about it until something holds.
    bool moveUntil(int x, int y, const std::function<bool()>& condition);

    Pixel pixel(int x, int y) { return screen_.pixel(x_ + x, y_ + y); }
    bool showsPixel(int x, int y, Pixel colour);
    std::vector<Pixel> part(int x, int y, int width, int height);
    /// Serves until that part looks otherwise than `before`.
    bool changes(const std::vector<Pixel>& before, int x, int y, int width, int height);

  private:
    VirtualScreen& screen_;
    int x_, y_;
    Window container_;
    bool hasContainer_ = true;
};

} // namespace test
