#include "window_loop.h"

#include "living_frames.h"

#include "platform/clock.h"
#include "toolkit/toolkit.h"

#include <algorithm>
#include <limits>
#include <new>

namespace toolkit {

using VSTGUI::X11::IEventHandler;
using VSTGUI::X11::ITimerHandler;

namespace {

/// Whether `moment` has come; right across the clock's jump to 0.
bool isPast(std::uint32_t moment, std::uint32_t now) {
    return static_cast<std::int32_t>(now - moment) >= 0;
}

} // namespace

/// Being inside serve().
class WindowLoop::Pass {
  public:
    explicit Pass(WindowLoop& loop) : loop_(loop) { ++loop_.passesUnderWay_; }
    ~Pass() {
        if (--loop_.passesUnderWay_ > 0)
            return;
        loop_.forgetUnregistered();
        loop_.runJobs(loop_.jobs_);
    }
    Pass(const Pass&) = delete;
    Pass& operator=(const Pass&) = delete;

  private:
    WindowLoop& loop_;
};

WindowLoop& WindowLoop::shared() {
    static WindowLoop loop;
    return loop;
}

bool WindowLoop::registerEventHandler(int, IEventHandler* handler) {
    eventHandlers_.push_back(handler);
    return true;
}

bool WindowLoop::unregisterEventHandler(IEventHandler* handler) {
    const auto found = std::find(eventHandlers_.begin(), eventHandlers_.end(), handler);
    if (!handler || found == eventHandlers_.end())
        return false;
    *found = nullptr;
    const bool isLast = std::all_of(eventHandlers_.begin(), eventHandlers_.end(),
                                    [](IEventHandler* other) { return other == nullptr; });
    if (isLast)
        for (Timer& timer : timers_)
            timer.handler = nullptr;
    forgetUnregistered();
    return true;
}

bool WindowLoop::registerTimer(std::uint64_t interval, ITimerHandler* handler) {
    unregisterTimer(handler);
    constexpr std::uint64_t longest = std::numeric_limits<std::int32_t>::max();
    const auto time = static_cast<std::uint32_t>(std::min(interval, longest));
    timers_.push_back({handler, time, platform::milliseconds() + time, false});
    return true;
}

bool WindowLoop::unregisterTimer(ITimerHandler* handler) {
    bool found = false;
    for (Timer& timer : timers_)
        if (handler && timer.handler == handler) {
            timer.handler = nullptr;
            found = true;
        }
    forgetUnregistered();
    return found;
}

void WindowLoop::serve() {
    const bool isInside = isServing();
    const Pass pass(*this);
    // Who registers during the pass has to wait for the next one.
    const std::size_t count = isInside ? 0 : eventHandlers_.size();
    for (std::size_t i = 0; i < count; ++i)
        if (eventHandlers_[i])
            eventHandlers_[i]->onEvent();
    runDueTimers();
}

void WindowLoop::serveTimers() {
    const Pass pass(*this);
    runDueTimers();
}

void WindowLoop::runDueTimers() {
    const std::uint32_t now = platform::milliseconds();
    const std::size_t count = timers_.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (!timers_[i].handler || timers_[i].running || !isPast(timers_[i].due, now))
            continue;
        timers_[i].due = now + timers_[i].interval;
        timers_[i].running = true;
        try {
            timers_[i].handler->onTimer();
        } catch (...) {
            timers_[i].running = false;
            throw;
        }
        timers_[i].running = false;
    }
}

void WindowLoop::forgetUnregistered() {
    if (isServing())
        return;
    std::erase(eventHandlers_, nullptr);
    std::erase_if(timers_, [](const Timer& timer) { return !timer.handler; });
}

void WindowLoop::runJobs(Jobs& jobs) noexcept {
    Jobs failed;
    while (!jobs.empty()) {
        Jobs job;
        job.splice(job.end(), jobs, jobs.begin());
        try {
            job.front()();
        } catch (const std::bad_alloc&) {
            failed.splice(failed.end(), job);
        }
    }
    jobs_.splice(jobs_.end(), failed);
}

void WindowLoop::afterServing(Jobs jobs) noexcept {
    if (isServing())
        jobs_.splice(jobs_.end(), jobs);
    else
        runJobs(jobs);
}

void WindowLoop::afterServing(std::function<void()> job) {
    Jobs jobs;
    jobs.push_back(std::move(job));
    afterServing(std::move(jobs));
}

void WindowLoop::inNextPass(Jobs jobs) noexcept {
    jobs_.splice(jobs_.end(), jobs);
}

void serveToolkitWindows() {
    WindowLoop::shared().serve();
    for (const LivingFrame& living : livingFrames())
        living.keyboard->giveBack(*living.frame, living.buttons->held());
}

void paintToolkitWindows() {
    WindowLoop::shared().serveTimers();
}

} // namespace toolkit
