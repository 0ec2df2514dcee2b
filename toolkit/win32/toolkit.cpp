#include "toolkit/toolkit.h"

#include "platform/win32/module_handle.h"
#include "toolkit_use.h"

#include "vstgui/lib/vstguiinit.h"

#include <atomic>
#include <ole2.h>

namespace toolkit {

namespace {

/// How many use the toolkit. Hosts may make and close instances on several threads at once: while one of them
/// makes the toolkit ready or gives it back, the count stands at `changing`, and the others wait for it.
std::atomic<int> uses = 0;
constexpr int kChanging = -1;

/// Replaces the count by what `next` gives for it, and gives the count before.
template <class Next>
int changeUses(const Next& next) {
    int before = uses.load();
    while (before == kChanging || !uses.compare_exchange_weak(before, next(before))) {
        uses.wait(kChanging);
        before = uses.load();
    }
    return before;
}

void setUses(int count) {
    uses = count;
    uses.notify_all();
}

/// Once it has used the toolkit the library stays loaded to the end of the process, whatever the host does:
/// the system calls the toolkit's windows, nothing of the toolkit may be given back while the loader holds
/// its lock, and the last close of a host that has unloaded the library returns through the library's code.
void pinLibrary() {
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<const char*>(&uses), &module);
}

} // namespace

ToolkitUse::ToolkitUse() {
    if (changeUses([](int count) { return count == 0 ? kChanging : count + 1; }) > 0)
        return;
    pinLibrary();
    try {
        // With the library's own handle: windows are made of a class that is found under it, and the host's
        // program may bring a toolkit of its own.
        VSTGUI::init(platform::moduleHandle());
    } catch (...) {
        VSTGUI::exit();
        setUses(0);
        throw;
    }
    setUses(1);
}

ToolkitUse::~ToolkitUse() {
    if (changeUses([](int count) { return count == 1 ? kChanging : count - 1; }) > 1)
        return;
    VSTGUI::exit();
    setUses(0);
}

namespace {

/// COM, made ready for the thread and given back.
class Com {
  public:
    Com() : isInitialised_(SUCCEEDED(OleInitialize(nullptr))), thread_(GetCurrentThreadId()) {}
    ~Com() {
        // A thread that had other plans with COM has refused, and nothing is to be taken back. Neither is it
        // on another thread, where it would be somebody else's.
        if (isInitialised_ && GetCurrentThreadId() == thread_)
            OleUninitialize();
    }
    Com(const Com&) = delete;
    Com& operator=(const Com&) = delete;

  private:
    bool isInitialised_;
    DWORD thread_;
};

} // namespace

/// What one editor has asked of the system, and gives back, the last first.
class Toolkit::System {
    Com com_;
    ToolkitUse use_;
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

class InputPause::System {};

InputPause::InputPause() = default;

InputPause::~InputPause() = default;

} // namespace toolkit
