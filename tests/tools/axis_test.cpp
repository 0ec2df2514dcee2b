#include "tools/render/axis.h"

#include <gtest/gtest.h>

namespace {

using namespace tools;
using namespace tools::render;

TEST(Axis, RoundsUpToOneTwoOrFive) {
    EXPECT_DOUBLE_EQ(roundUp(0.3), 0.5);
    EXPECT_DOUBLE_EQ(roundUp(1.0), 1.0);
    EXPECT_DOUBLE_EQ(roundUp(1.01), 2.0);
    EXPECT_DOUBLE_EQ(roundUp(730.0), 1000.0);
    EXPECT_DOUBLE_EQ(roundUp(0.001), 0.001);
}

TEST(Axis, MarksARoundStepApartAndNeverTooMany) {
    for (double span : {0.003, 0.7, 1.0, 4.55, 12.0, 96.0, 4000.0}) {
        const Marks marks = marksFor(span, 12);
        EXPECT_LE(marks.places.size(), 13u) << span;
        EXPECT_GE(marks.places.size(), 4u) << span;
        EXPECT_DOUBLE_EQ(marks.places.front(), 0.0);
        EXPECT_LE(marks.places.back(), span * 1.0001);
    }
}

TEST(Axis, WritesAsManyDecimalsAsTheStepNeeds) {
    EXPECT_EQ(marksFor(0.5, 10).decimals, 2);
    EXPECT_EQ(marksFor(5.0, 10).decimals, 1);
    EXPECT_EQ(marksFor(50.0, 10).decimals, 0);
}

TEST(Axis, WritesAProperMinusSign) {
    EXPECT_EQ(axisText(-0.5, 1), "\u22120.5");
    EXPECT_EQ(axisText(0.0, 1), "0.0");
}

} // namespace
