// Milliseconds, for the timers of windows.
#pragma once

#include <cstdint>

namespace platform {

/// Monotonic milliseconds since an arbitrary start; wraps to 0 after 2^32 of them, which is 49.7 days. Any
/// thread.
std::uint32_t milliseconds();

/// Suspends the calling thread. Never on the audio thread.
void sleepMilliseconds(std::uint32_t duration);

/// A source of time.
class Clock {
  public:
    virtual ~Clock() = default;
    virtual std::uint32_t milliseconds() = 0;
    virtual void sleepMilliseconds(std::uint32_t duration) = 0;
};

/// Sends every following question to `clock` in place of the system's, so that a test can set the time;
/// null brings the system's back. Process-wide; set it before other threads run.
void replaceClock(Clock* clock);

} // namespace platform
