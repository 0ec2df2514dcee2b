#include "platform/toolkit.h"

#include "module_handle.h"
#include "toolkit_use.h"

#include "vstgui/lib/vstguiinit.h"

#include <atomic>
#include <ole2.h>
#include <optional>

namespace platform {

namespace {

/// Exact when hosts make and close instances on several threads at once; which of them is done with init and
/// exit first is up to the host.
std::atomic<int> uses = 0;

} // namespace

ToolkitUse::ToolkitUse() {
    // With the library's own handle: windows are made of a class that is found under it, and the host's
    // program may bring a toolkit of its own.
    if (uses++ == 0)
        VSTGUI::init(moduleHandle());
}

ToolkitUse::~ToolkitUse() {
    if (--uses == 0)
        VSTGUI::exit();
}

/// What one editor has asked of the system, and gives back.
class Toolkit::System {
  public:
    System()
        : isInitialised_(SUCCEEDED(OleInitialize(nullptr))), thread_(GetCurrentThreadId()),
          use_(std::in_place) {}
    ~System() {
        use_.reset();
        // A thread that had other plans with COM has refused, and nothing is to be taken back. Neither is it
        // on another thread, where it would be somebody else's.
        if (isInitialised_ && GetCurrentThreadId() == thread_)
            OleUninitialize();
    }
    System(const System&) = delete;
    System& operator=(const System&) = delete;

  private:
    bool isInitialised_;
    DWORD thread_;
    std::optional<ToolkitUse> use_;
};

Toolkit::Toolkit() : system_(std::make_unique<System>()) {}

Toolkit::~Toolkit() = default;

void serveToolkitWindows() {
    // Windows of this system have all their time from the host's message loop.
}

void paintToolkitWindows() {
    MSG message;
    if (PeekMessageW(&message, nullptr, WM_PAINT, WM_PAINT, PM_REMOVE))
        DispatchMessageW(&message);
}

void letPointerGo() {}

} // namespace platform
