#include "bench/contest.h"

#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace {

/// Says that its runs took these times, in seconds, one after the other.
bench::Contestant tellingOf(std::vector<double> seconds, double units) {
    auto next = std::make_shared<std::size_t>(0);
    bench::Contestant contestant;
    contestant.run = [=] { return seconds[(*next)++ % seconds.size()]; };
    contestant.unitsOfOneRun = units;
    contestant.runsOfOneRound = 1;
    return contestant;
}

TEST(Contest, GivesTheMedianOfEachContestantInTheirOrder) {
    const std::vector<double> medians = bench::medianNanoseconds(
        {tellingOf({3e-6, 1e-6, 20e-6}, 1.0), tellingOf({9e-6, 70e-6, 1e-6}, 10.0)}, 3);
    ASSERT_EQ(medians.size(), 2u);
    EXPECT_NEAR(medians[0], 3000.0, 0.01);
    EXPECT_NEAR(medians[1], 900.0, 0.01) << "for one of ten units";
}

TEST(Contest, CanBeHeldAgain) {
    for (const double seconds : {1e-6, 2e-6})
        EXPECT_NEAR(bench::medianNanoseconds({tellingOf({seconds}, 1.0)}, 3).at(0), seconds * 1e9, 0.01);
}

} // namespace
