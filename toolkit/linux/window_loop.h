// What the toolkit takes for the program's event loop. On X11 it asks whoever opens a window for one, keeps
// the first it gets for the whole process, and registers its connection and its timers there. A plug-in has
// no loop: this one stands still until the host calls idle, and then calls everybody.
#pragma once

#include "vstgui/lib/platform/platform_x11.h"
#include "vstgui/lib/vstguibase.h"

#include <cstdint>
#include <functional>
#include <list>
#include <vector>

namespace toolkit {

/// Handlers may unregister themselves and each other, and register new ones, while they are served. On the
/// window thread.
class WindowLoop final : public VSTGUI::X11::IRunLoop {
  public:
    /// The one for this process.
    static WindowLoop& shared();

    // The toolkit counts references; the loop outlives them all.
    void remember() override {}
    void forget() override {}

    bool registerEventHandler(int descriptor, VSTGUI::X11::IEventHandler* handler) override;
    /// The last one takes the timers with it: without a connection the toolkit forgets to.
    bool unregisterEventHandler(VSTGUI::X11::IEventHandler* handler) override;
    /// `interval` in milliseconds. A handler that is known gets the new interval.
    bool registerTimer(std::uint64_t interval, VSTGUI::X11::ITimerHandler* handler) override;
    bool unregisterTimer(VSTGUI::X11::ITimerHandler* handler) override;

    /// Calls every event handler, readable or not, since a connection may hold events that it has read
    /// already; then every timer that is due, once. Inside a pass, the timers only.
    void serve();
    /// Calls every timer that is due and not just running.
    void serveTimers();

    bool isServing() const { return passesUnderWay_ > 0; }
    /// Each a list of its own until it is handed over, so that handing over needs no memory.
    using Jobs = std::list<std::function<void()>>;

    /// Runs the jobs now or, inside a pass, as soon as the outermost pass is over: the place for what
    /// handlers do not survive. A job that throws std::bad_alloc is tried again after the next pass.
    void afterServing(Jobs jobs) noexcept;
    void afterServing(std::function<void()> job);
    /// Runs them as soon as the next pass is over, or this one.
    void inNextPass(Jobs jobs) noexcept;

  private:
    struct Timer {
        VSTGUI::X11::ITimerHandler* handler;
        std::uint32_t interval;
        std::uint32_t due;
        bool running;
    };
    class Pass;

    void runDueTimers();
    void forgetUnregistered();
    void runJobs(Jobs& jobs) noexcept;

    // Who unregisters during a pass leaves a null behind, so that a walk keeps its place.
    std::vector<VSTGUI::X11::IEventHandler*> eventHandlers_;
    std::vector<Timer> timers_;
    Jobs jobs_;
    int passesUnderWay_ = 0;
};

} // namespace toolkit
