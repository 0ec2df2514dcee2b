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

Clock& ownClock() {
    static SystemClock clock;
    return clock;
}

} // namespace platform
