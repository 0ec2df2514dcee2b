#include "doors/clap/clap_window.h"

#include "base/fixed_text.h"
#include "editor/my_editor.h"

#include <string_view>
#include <utility>

namespace clap_door {

using namespace parameters;

namespace {

/// Milliseconds. One host rounds 33 up to 60.
constexpr std::uint32_t kTimerPeriod = 30;

/// Calls of timers that have not returned, of all windows: each serves them all.
int timerCalls = 0;

class TimerCall {
  public:
    TimerCall() { ++timerCalls; }
    ~TimerCall() { --timerCalls; }
    TimerCall(const TimerCall&) = delete;
    TimerCall& operator=(const TimerCall&) = delete;
};

} // namespace

// The host's calls

bool ClapWindow::create() {
    if (isCreated_)
        return false;
    if (!startTimer()) {
        warn("the host has no timers, without which it would stand still");
        return false;
    }
    isCreated_ = true;
    try {
        window_.prepare(delay_.effect().tapGains());
        delay_.connectWindow(window_.editor());
    } catch (...) {
        destroy();
        throw;
    }
    return true;
}

void ClapWindow::destroy() {
    if (!isCreated_)
        return;
    isCreated_ = false;
    endGestures();
    window_.close();
    stopTimer();
}

bool ClapWindow::setParent(void* parent) {
    if (!isCreated_)
        return false;
    const editor::WindowSize told = window_.size();
    endGestures();
    if (!window_.open(parent)) {
        // The host may have ended it instead.
        if (isCreated_)
            warn("cannot be opened in the parent that the host offers");
        return false;
    }
    // A skin asks for room by itself.
    if (const editor::WindowSize size = window_.size(); window_.showsNotice() && size != told)
        sizeWindow(size.width, size.height);
    return isCreated_;
}

void ClapWindow::onTimer(clap_id timer) {
    if (!isCreated_ || timer != timer_)
        return;
    const TimerCall call;
    window_.idle();
}

void ClapWindow::onMainThread() {
    // In the middle of a timer's call there is nothing to be done yet, and asking again would never end with
    // hosts that answer at once. A timer that is left over serves the next window, or ends with the instance.
    if (!isCreated_ && timerCalls == 0)
        stopTimer();
}

void ClapWindow::end() {
    // There is no later: the timer stops also in the middle of a call of it, and the host is not asked to
    // fetch the end of a gesture.
    if (const auto timer = std::exchange(timer_, std::nullopt))
        delay_.host().stopTimer(*timer);
    holds_.fill(0);
    destroy();
    delay_.leaveHost();
}

// The timer

/// The one of a window before may still run.
bool ClapWindow::startTimer() {
    if (!timer_)
        timer_ = delay_.host().startTimer(kTimerPeriod);
    return timer_.has_value();
}

/// Not while a timer calls, as hosts go through their list of timers then: it runs on until the host calls
/// otherwise.
void ClapWindow::stopTimer() {
    if (!timer_)
        return;
    if (timerCalls > 0) {
        delay_.host().requestCallback();
        return;
    }
    delay_.host().stopTimer(*timer_);
    timer_.reset();
}

// The parameters

void ClapWindow::getParameterName(std::int32_t id, char* text) {
    base::copyText(text, parameter(id).name, interfaces::kParameterTextSize - 1);
}

void ClapWindow::getParameterLabel(std::int32_t, char* text) {
    *text = '\0';
}

void ClapWindow::getParameterDisplay(std::int32_t id, char* text) {
    delay_.effect().getParameterDisplay(id, text);
}

bool ClapWindow::beginEdit(std::int32_t id) {
    if (!isLive(id) || !isCreated_)
        return false;
    if (holds(id)++ == 0)
        delay_.noteGesture(id);
    return true;
}

bool ClapWindow::endEdit(std::int32_t id) {
    if (!isLive(id) || holds(id) == 0)
        return false;
    if (--holds(id) == 0)
        delay_.noteGesture(id);
    return true;
}

/// Of a window that goes while the hand holds a control of it.
void ClapWindow::endGestures() {
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
        if (std::exchange(holds(id), 0) > 0)
            delay_.noteGesture(id);
}

// The window

bool ClapWindow::canHostDo(const char* what) {
    return delay_.host().resizesWindows() && std::string_view(what) == "sizeWindow";
}

bool ClapWindow::sizeWindow(std::int32_t width, std::int32_t height) {
    return delay_.host().requestResize(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height));
}

void ClapWindow::warn(const char* text) const {
    delay_.host().warn("Window", text);
}

} // namespace clap_door
