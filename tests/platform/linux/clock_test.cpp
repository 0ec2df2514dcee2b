#include "platform/clock.h"

#include <gtest/gtest.h>

namespace {

class StandingClock final : public platform::Clock {
  public:
    std::uint32_t milliseconds() override { return now; }
    void sleepMilliseconds(std::uint32_t duration) override { now += duration; }

    std::uint32_t now = 0;
};

TEST(Clock, RunsForward) {
    const std::uint32_t before = platform::milliseconds();
    EXPECT_LT(platform::milliseconds() - before, 0x80000000U);
}

TEST(Clock, HasMovedOnByAtLeastTheTimeSlept) {
    const std::uint32_t before = platform::milliseconds();
    platform::sleepMilliseconds(4);
    EXPECT_GE(platform::milliseconds() - before, 4U);
}

TEST(Clock, CanBeReplacedAndComesBack) {
    StandingClock hands;
    hands.now = 0xFFFFFFFE;
    platform::replaceClock(&hands);
    EXPECT_EQ(platform::milliseconds(), 0xFFFFFFFEU);
    platform::sleepMilliseconds(4);
    EXPECT_EQ(platform::milliseconds(), 2U);
    platform::replaceClock(nullptr);
    const std::uint32_t own = platform::milliseconds();
    platform::sleepMilliseconds(1);
    EXPECT_NE(platform::milliseconds(), own);
    EXPECT_EQ(hands.now, 2U) << "the replaced clock is not asked any more";
}

} // namespace
