// The laws of the parameters: what a normalised value is worth, and back. The formulas stand here once more,
// as they were first written down: every display and every bank depends on their last bit.
#include "base/number_text.h"
#include "base/truncation.h"
#include "parameters/law.h"
#include "parameters/parameter_table.h"
#include "parameters/pattern_laws.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace parameters;

/// Values in and around the range, and all the odd ones that a chunk may hold.
std::vector<float> values() {
    using Limits = std::numeric_limits<float>;
    std::vector<float> all = {0.0f,
                              -0.0f,
                              0.25f,
                              0.5f,
                              1.0f,
                              -1.0f,
                              Limits::max(),
                              Limits::lowest(),
                              Limits::min(),
                              1.0000001f,
                              Limits::denorm_min(),
                              Limits::infinity(),
                              -Limits::infinity(),
                              Limits::quiet_NaN()};
    std::mt19937 random(15);
    std::uniform_real_distribution<float> inRange(0.0f, 1.0f);
    for (int i = 0; i < 20000; ++i) {
        all.push_back(inRange(random));
        all.push_back(std::bit_cast<float>(static_cast<std::uint32_t>(random())));
    }
    return all;
}

std::string displayOf(std::int32_t id, float value) {
    char text[kDisplayTextSize];
    parameter(id).display(value, text);
    return text;
}

std::string whole(float number) {
    return std::to_string(base::trunc(number));
}
std::string threeDecimals(float number) {
    return base::fixedText(static_cast<double>(number), 3);
}

TEST(Displays, ShowTheirFormulasToTheLastBit) {
    const auto bipolar = [](float p) { return threeDecimals(2.0f * p - 1.0f); };
    struct Row {
        ParameterId id;
        std::function<std::string(float)> display;
    };
    const Row rows[] = {
        {kBaseLength, [](float p) { return whole(p * p * 1000.0f * 2.0f + 1.0f); }},
        {kTaps, [](float p) { return whole(p * 127.0f + 1.0f); }},
        {kLfoRate, [](float p) { return threeDecimals(p * 14.0f * p); }},
        {kStretch, [](float p) { return whole(p * 60.0f - 30.0f) + " %"; }},
        {kAmpDecay, bipolar},
        {kCurve, bipolar},
        {kFeedback, bipolar},
        {kLfoDepth, threeDecimals},
        {kPreLowPass, [](float p) { return whole(p * 20090.0f * p + 500.0f); }},
        {kPreHighPass, [](float p) { return whole(p * 2400.0f * p + 102.0f); }},
        {kPrePan, bipolar},
        {kStereo, bipolar},
        {kOutPan, bipolar},
    };
    for (const float p : values())
        for (const Row& row : rows)
            ASSERT_EQ(displayOf(row.id, p), row.display(p).substr(0, kDisplayTextSize - 1))
                << row.id << " at " << std::bit_cast<std::uint32_t>(p);
}

/// Bit by bit; every NaN is like every other.
void expectSame(double number, double expected, float p) {
    if (!std::isnan(expected)) {
        ASSERT_EQ(std::bit_cast<std::uint64_t>(number), std::bit_cast<std::uint64_t>(expected)) << p;
    } else {
        ASSERT_TRUE(std::isnan(number)) << p;
    }
}

TEST(Laws, AreWorthInDoubleWhatTheSquareOfTheValueIsWorth) {
    for (const float value : values()) {
        const double p = static_cast<double>(value);
        const double square = p * p;
        expectSame(kLongestGap.numberFor(p), square * 2000.0, value);
        expectSame(kSweepRate.numberFor(p), square * 14.0, value);
        expectSame(kLowPassFrequency.numberFor(p), square * 20090.0 + 500.0, value);
        expectSame(kHighPassFrequency.numberFor(p), square * 2400.0 + 102.0, value);
    }
}

TEST(Laws, GoBackFromTheNumberToTheValue) {
    for (const Law* law : {&kLongestGap, &kTapCount, &kSweepRate, &kStretchPercent, &kLowPassFrequency,
                           &kHighPassFrequency, &kWetPercent, &kBipolar, &kPlain}) {
        EXPECT_EQ(law->normalised(law->lowest), 0.0) << law->unit << law->span;
        EXPECT_EQ(law->normalised(law->highest()), 1.0) << law->unit << law->span;
        for (const float p : {0.1f, 0.25f, 0.3f, 0.9f}) {
            const double back = law->normalised(law->numberFor(static_cast<double>(p)));
            EXPECT_EQ(static_cast<float>(back), p) << law->unit << law->span;
        }
    }
}

TEST(BaseLength, IsTheSameLawInSamplesAndInMilliseconds) {
    EXPECT_EQ(baseLengthOf(0.0f, 44100.0f), 1.0f);
    EXPECT_EQ(baseLengthOf(1.0f, 1000.0f), 2001.0f);
    for (const float p : values())
        expectSame(static_cast<double>(baseLengthOf(p, 44100.0f)),
                   static_cast<double>((p * p * 44100.0f) * 2.0f + 1.0f), p);
}

TEST(FeedbackFactor, IsNothingInTheMiddleAndNeverReachesAHalf) {
    EXPECT_EQ(feedbackFactorOf(0.0f), -0.45);
    EXPECT_NEAR(feedbackFactorOf(0.5f), 0.0, 1e-7);
    EXPECT_EQ(static_cast<float>(feedbackFactorOf(1.0f)), static_cast<float>(double{0.9f} - 0.45));
}

} // namespace
