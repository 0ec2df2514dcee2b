#include "hosted_window.h"

#include "child_process.h"

#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <utility>

namespace test {

HostedWindow::HostedWindow(VirtualScreen& screen, int x, int y) : screen_(screen), x_(x), y_(y) {
    container_ = XCreateSimpleWindow(screen.display(), screen.root(), x, y, 400, 300, 0, 0, 0xFF00FF);
    XMapWindow(screen.display(), container_);
    XSync(screen.display(), False);
}

HostedWindow::~HostedWindow() {
    destroyContainer();
}

void HostedWindow::destroyContainer() {
    if (!std::exchange(hasContainer_, false))
        return;
    XDestroyWindow(screen_.display(), container_);
    XSync(screen_.display(), False);
}

std::vector<Window> HostedWindow::childrenOf(Window window) {
    Window ignored = None, *children = nullptr;
    unsigned count = 0;
    std::vector<Window> found;
    if (XQueryTree(screen_.display(), window, &ignored, &ignored, &children, &count) && children) {
        found.assign(children, children + count);
        XFree(children);
    }
    return found;
}

bool HostedWindow::serveUntil(const std::function<bool()>& condition) {
    return waitUntil([&] {
        serve();
        return condition();
    });
}

void HostedWindow::point(int x, int y) {
    screen_.movePointer(x_ + x, y_ + y);
}

void HostedWindow::press(unsigned button) {
    XTestFakeButtonEvent(screen_.display(), button, True, CurrentTime);
    XSync(screen_.display(), False);
}

void HostedWindow::release(unsigned button) {
    XTestFakeButtonEvent(screen_.display(), button, False, CurrentTime);
    XSync(screen_.display(), False);
}

bool HostedWindow::moveUntil(int x, int y, const std::function<bool()>& condition) {
    // The display tells of a move only after the one before has been looked at, so a single one may be lost.
    int step = 0;
    return serveUntil([&] {
        point(x + step % 2, y + step / 2 % 2);
        step = (step + 1) % 4;
        return condition();
    });
}

bool HostedWindow::showsPixel(int x, int y, Pixel colour) {
    return serveUntil([=, this] { return pixel(x, y) == colour; });
}

std::vector<Pixel> HostedWindow::part(int x, int y, int width, int height) {
    std::vector<Pixel> pixels;
    XImage* const image =
        XGetImage(screen_.display(), screen_.root(), x_ + x, y_ + y, static_cast<unsigned>(width),
                  static_cast<unsigned>(height), AllPlanes, ZPixmap);
    if (!image)
        return pixels;
    for (int row = 0; row < height; ++row)
        for (int column = 0; column < width; ++column)
            pixels.push_back(XGetPixel(image, column, row) & 0xFFFFFF);
    XDestroyImage(image);
    return pixels;
}

bool HostedWindow::changes(const std::vector<Pixel>& before, int x, int y, int width, int height) {
    return serveUntil([&] { return part(x, y, width, height) != before; });
}

} // namespace test
