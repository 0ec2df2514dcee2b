// The one conversion to integer that the engine uses.
#include "base/truncation.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace {

using base::trunc;
constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();

TEST(Truncation, GoesTowardZero) {
    EXPECT_EQ(trunc(2.9f), 2);
    EXPECT_EQ(trunc(-2.9f), -2);
    EXPECT_EQ(trunc(-0.99), 0);
    EXPECT_EQ(trunc(2147483647.9), 2147483647);
    EXPECT_EQ(trunc(-2147483648.9), kLowest);
}

TEST(Truncation, GivesTheLowestIntegerForWhatDoesNotFit) {
    for (const double wild :
         {2147483648.0, -2147483649.0, 1e300, -1e300, static_cast<double>(NAN),
          std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()})
        EXPECT_EQ(trunc(wild), kLowest) << wild;
    for (const float wild : {2147483648.0f, -3e9f, 3e38f, NAN, std::numeric_limits<float>::infinity(),
                             -std::numeric_limits<float>::infinity()})
        EXPECT_EQ(trunc(wild), kLowest) << wild;
}

} // namespace
