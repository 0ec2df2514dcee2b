// The time as windows count it.
#pragma once

#include <cstdint>

namespace platform {

/// Milliseconds since some moment in the past; begins again at 0 after 2^32 of them, which is 49.7 days.
/// Never goes back with the clock on the wall. Any thread.
std::uint32_t milliseconds();

/// Lets the calling thread rest. Never on the audio thread.
void sleepMilliseconds(std::uint32_t duration);

/// What tells the time and lets it pass.
class Clock {
  public:
    virtual ~Clock() = default;
    virtual std::uint32_t milliseconds() = 0;
    virtual void sleepMilliseconds(std::uint32_t duration) = 0;
};

/// Sends every following question to `clock` in place of the system's, so that a test can turn its hands;
/// null brings the system's back. Process-wide; set it before other threads run.
void replaceClock(Clock* clock);

} // namespace platform
