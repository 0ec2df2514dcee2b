#include "platform/clock.h"

#include "own_clock.h"

namespace platform {

namespace {

Clock* replacement = nullptr;

Clock& currentClock() {
    return replacement ? *replacement : ownClock();
}

} // namespace

std::uint32_t milliseconds() {
    return currentClock().milliseconds();
}

void sleepMilliseconds(std::uint32_t duration) {
    currentClock().sleepMilliseconds(duration);
}

void replaceClock(Clock* clock) {
    replacement = clock;
}

} // namespace platform
