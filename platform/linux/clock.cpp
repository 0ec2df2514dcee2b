#include "../own_clock.h"

#include <cerrno>
#include <ctime>

namespace platform {

namespace {

class MonotonicClock final : public Clock {
  public:
    std::uint32_t milliseconds() override {
        timespec now = {};
        clock_gettime(CLOCK_MONOTONIC, &now);
        return static_cast<std::uint32_t>(static_cast<std::uint64_t>(now.tv_sec) * 1000 +
                                          static_cast<std::uint64_t>(now.tv_nsec) / 1000000);
    }

    void sleepMilliseconds(std::uint32_t duration) override {
        timespec rest = {};
        rest.tv_sec = duration / 1000;
        rest.tv_nsec = static_cast<long>(duration % 1000) * 1000000;
        while (nanosleep(&rest, &rest) != 0 && errno == EINTR)
            continue;
    }
};

} // namespace

Clock& ownClock() {
    static MonotonicClock clock;
    return clock;
}

} // namespace platform
