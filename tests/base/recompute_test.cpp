// A shared field that follows from another, while the other changes.
#include "base/recompute.h"
#include "base/shared.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

using namespace base;

/// A parameter that changes by itself after each of the first computations.
struct Changing {
    int changes;
    float value = 1.0f;
    std::vector<float> computed = {};

    void run() {
        computeFrom([this] { return value; },
                    [this](float seen) {
                        computed.push_back(seen);
                        if (changes-- > 0)
                            value += 1.0f;
                    });
    }
};

TEST(ComputeFrom, ComputesOnceWhereNothingChanges) {
    Changing parameter{0};
    parameter.run();
    EXPECT_EQ(parameter.computed, (std::vector<float>{1.0f}));
}

TEST(ComputeFrom, ComputesAgainWhileTheParameterChanges) {
    Changing parameter{2};
    parameter.run();
    EXPECT_EQ(parameter.computed, (std::vector<float>{1.0f, 2.0f, 3.0f}));
}

TEST(ComputeFrom, GivesUpAfterAFixedNumberOfTimes) {
    Changing parameter{1000};
    parameter.run();
    EXPECT_EQ(parameter.computed.size(), static_cast<std::size_t>(kMostComputations));
}

TEST(ComputeFrom, TakesAValueThatIsNoNumberForUnchanged) {
    Changing parameter{0, std::numeric_limits<float>::quiet_NaN()};
    parameter.run();
    EXPECT_EQ(parameter.computed.size(), 1u);
}

TEST(LimitShared, LowersWhatIsAboveTheLimitAndLeavesTheRest) {
    base::Shared<float> field = 1.0f;
    EXPECT_EQ(field.limit(0.75f), 0.75f);
    EXPECT_EQ(field.load(), 0.75f);
    field.store(0.25f);
    EXPECT_EQ(field.limit(0.75f), 0.25f);
    EXPECT_EQ(field.load(), 0.25f);
}

} // namespace
