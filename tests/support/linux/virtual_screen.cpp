#include "virtual_screen.h"

#include "child_process.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace test {

namespace {

// A window may vanish between two questions about it; that is an answer and no reason to end the test.
int ignoreError(Display*, XErrorEvent*) {
    return 0;
}

/// The display number, which the server writes when it is ready; empty if it never does.
std::string readLine(int from) {
    std::string line;
    char c = 0;
    while (read(from, &c, 1) == 1 && c != '\n')
        line += c;
    return c == '\n' ? line : std::string();
}

} // namespace

VirtualScreen::VirtualScreen(const std::string& format, int screens) {
    startServer(format, screens);
    XSetErrorHandler(ignoreError);
    display_ = XOpenDisplay(name_.c_str());
    if (!display_)
        throw std::runtime_error("the virtual screen " + name_ + " does not answer");
    int ignored = 0;
    if (!XTestQueryExtension(display_, &ignored, &ignored, &ignored, &ignored))
        throw std::runtime_error("the virtual screen has no XTEST: nobody can move its pointer");
}

void VirtualScreen::startServer(const std::string& format, int screens) {
    std::vector<std::string> arguments = {"Xvfb", "-nolisten", "tcp", "-noreset"};
    for (int i = 0; i < screens; ++i)
        arguments.insert(arguments.end(), {"-screen", std::to_string(i), format});
    int report[2];
    if (pipe2(report, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe for the virtual screen");
    server_ = fork();
    if (server_ == 0) {
        const int inherited = dup(report[1]);
        const int silence = open("/dev/null", O_WRONLY);
        dup2(silence, STDERR_FILENO);
        arguments.insert(arguments.end(), {"-displayfd", std::to_string(inherited)});
        std::vector<char*> pointers;
        for (std::string& argument : arguments)
            pointers.push_back(argument.data());
        pointers.push_back(nullptr);
        execvp("Xvfb", pointers.data());
        _exit(127);
    }
    close(report[1]);
    const std::string number = readLine(report[0]);
    close(report[0]);
    if (number.empty()) {
        stopServer();
        throw std::runtime_error("Xvfb does not start: install the package xvfb to test windows");
    }
    name_ = ":" + number;
}

void VirtualScreen::stopServer() {
    if (display_)
        XCloseDisplay(display_);
    display_ = nullptr;
    if (server_ > 0) {
        kill(server_, SIGKILL);
        waitpid(server_, nullptr, 0);
    }
    server_ = -1;
}

VirtualScreen::~VirtualScreen() {
    if (display_)
        XCloseDisplay(display_);
    display_ = nullptr;
    // It takes its lock file away. A request that comes just before it begins to wait for its clients is not
    // seen until it has waited for minutes, so it is repeated.
    const bool hasEnded = server_ <= 0 || waitUntil([this] {
                              kill(server_, SIGTERM);
                              return waitpid(server_, nullptr, WNOHANG) != 0;
                          });
    if (!hasEnded)
        stopServer();
}

bool VirtualScreen::isShown(Window window) {
    XWindowAttributes attributes = {};
    return XGetWindowAttributes(display_, window, &attributes) && attributes.map_state == IsViewable;
}

Window VirtualScreen::waitForWindow() {
    Window found = None;
    waitUntil([&] {
        Window ignored = None, *children = nullptr;
        unsigned count = 0;
        if (!XQueryTree(display_, root(), &ignored, &ignored, &children, &count))
            return false;
        for (unsigned i = 0; i < count; ++i)
            if (isShown(children[i]))
                found = children[i];
        if (children)
            XFree(children);
        return found != None;
    });
    return found;
}

std::string VirtualScreen::property(Window window, const char* name) {
    Atom type = None;
    int format = 0;
    unsigned long count = 0, left = 0;
    unsigned char* data = nullptr;
    XGetWindowProperty(display_, window, XInternAtom(display_, name, False), 0, 1024, False, AnyPropertyType,
                       &type, &format, &count, &left, &data);
    std::string value;
    if (data) {
        // Xlib hands out 32-bit items as longs.
        const std::size_t itemSize = format == 32 ? sizeof(long) : static_cast<std::size_t>(format) / 8;
        value.assign(reinterpret_cast<const char*>(data), count * itemSize);
        XFree(data);
    }
    return value;
}

bool VirtualScreen::hasKeyboard(Window window) {
    Window focus = None;
    int revertTo = 0;
    XGetInputFocus(display_, &focus, &revertTo);
    return focus == window;
}

void VirtualScreen::movePointer(int x, int y) {
    XTestFakeMotionEvent(display_, -1, x, y, CurrentTime);
    XSync(display_, False);
}

void VirtualScreen::pressButton() {
    XTestFakeButtonEvent(display_, 1, True, CurrentTime);
    XSync(display_, False);
}

void VirtualScreen::releaseButton() {
    XTestFakeButtonEvent(display_, 1, False, CurrentTime);
    XSync(display_, False);
}

void VirtualScreen::click() {
    pressButton();
    releaseButton();
}

void VirtualScreen::typeKey(KeySym symbol) {
    const KeyCode key = XKeysymToKeycode(display_, symbol);
    XTestFakeKeyEvent(display_, key, True, CurrentTime);
    XTestFakeKeyEvent(display_, key, False, CurrentTime);
    XSync(display_, False);
}

Pixel VirtualScreen::pixel(int x, int y) {
    XImage* image = XGetImage(display_, root(), x, y, 1, 1, AllPlanes, ZPixmap);
    if (!image)
        return 0;
    const Pixel colour = XGetPixel(image, 0, 0) & 0xFFFFFF;
    XDestroyImage(image);
    return colour;
}

bool VirtualScreen::waitForPixel(int x, int y, Pixel colour) {
    return waitUntil([=, this] { return pixel(x, y) == colour; });
}

Place placeOf(VirtualScreen& screen, Window window) {
    XWindowAttributes attributes = {};
    XGetWindowAttributes(screen.display(), window, &attributes);
    return {attributes.x, attributes.y, attributes.width, attributes.height};
}

} // namespace test
