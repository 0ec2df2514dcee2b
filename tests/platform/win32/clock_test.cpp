#include "platform/clock.h"

#include "child_process.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <chrono>

namespace {

class StandingClock final : public platform::Clock {
  public:
    std::uint32_t milliseconds() override { return now; }
    void sleepMilliseconds(std::uint32_t duration) override { now += duration; }

    std::uint32_t now = 0;
};

TEST(Clock, CountsWithTheSystemsTicks) {
    const DWORD before = GetTickCount();
    const std::uint32_t now = platform::milliseconds();
    const DWORD after = GetTickCount();
    EXPECT_LE(now - before, after - before);
}

TEST(Clock, GoesOn) {
    const std::uint32_t before = platform::milliseconds();
    EXPECT_TRUE(test::waitUntil([before] { return platform::milliseconds() != before; }));
    EXPECT_LT(platform::milliseconds() - before, 0x80000000U);
}

TEST(Clock, SleepsForSeveralTicksAndMovesOn) {
    const std::uint32_t before = platform::milliseconds();
    // The ticks of a busy system may stand for longer than the sleep; this counter never stands.
    const auto asleep = std::chrono::steady_clock::now();
    platform::sleepMilliseconds(100);
    EXPECT_GE(std::chrono::steady_clock::now() - asleep, std::chrono::milliseconds(50))
        << "ticks may be as long as 16 ms";
    EXPECT_TRUE(test::waitUntil([before] { return platform::milliseconds() - before > 50; }));
}

TEST(Clock, CanBeReplacedAndComesBack) {
    StandingClock hands;
    hands.now = 0xFFFFFFFE;
    platform::replaceClock(&hands);
    platform::sleepMilliseconds(4);
    EXPECT_EQ(platform::milliseconds(), 2U);
    platform::replaceClock(nullptr);
    const std::uint32_t own = platform::milliseconds();
    EXPECT_TRUE(test::waitUntil([own] { return platform::milliseconds() != own; }));
    EXPECT_EQ(hands.now, 2U) << "the replaced clock is not asked any more";
}

} // namespace
