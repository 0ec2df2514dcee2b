#include "../own_clock.h"

#include <windows.h>

namespace platform {

namespace {

class SystemClock final : public Clock {
  public:
    std::uint32_t milliseconds() override { return GetTickCount(); }
    void sleepMilliseconds(std::uint32_t duration) override { Sleep(duration); }
};

} // namespace

std::uint64_t currentThread() {
    // What the language offers makes a record of each thread that it meets, with handles and under a lock.
    return GetCurrentThreadId();
}

Clock& ownClock() {
    static SystemClock clock;
    return clock;
}

} // namespace platform
