// The laws that the sound of the pattern and its picture share.
#include "parameters/pattern_laws.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace {

using parameters::numTapsOf;
using parameters::stretchBend;

TEST(NumTaps, GoFromOneTo128) {
    EXPECT_EQ(numTapsOf(0.0f), 1);
    EXPECT_EQ(numTapsOf(0.3f), 39);
    EXPECT_EQ(numTapsOf(0.999f), 127);
    EXPECT_EQ(numTapsOf(1.0f), 128);
}

TEST(NumTaps, StayInTheirRangeWhateverTheParameter) {
    for (const float low : {-0.01f, -1.0f, -3e38f, -std::numeric_limits<float>::infinity(), NAN})
        EXPECT_EQ(numTapsOf(low), 1) << low;
    EXPECT_EQ(numTapsOf(1.01f), 128);
    EXPECT_EQ(numTapsOf(1000.0f), 128);
}

TEST(StretchBend, IsEvenInTheMiddleAndTurnsTowardOneAndZeroAtTheEnds) {
    EXPECT_EQ(stretchBend(0.5f), 0.5f);
    // Half a bell, exp(-4) high at its foot.
    EXPECT_NEAR(stretchBend(0.0f), 0.00915782, 1e-8);
    EXPECT_NEAR(stretchBend(1.0f), 0.99084218, 1e-7);
    EXPECT_NEAR(stretchBend(0.25f), 0.18393972, 1e-7);
    EXPECT_NEAR(stretchBend(0.75f), 0.81606028, 1e-7);
}

} // namespace
