// A filter over silence, counted in the smallest steps, against the same filter in floats.
#include "dsp/biquad.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <utility>

namespace {

using namespace dsp;

constexpr float kSmallest = std::numeric_limits<float>::denorm_min();
constexpr float kLargestInRange = 0x1p19f * kSmallest;

class SubnormalFilter : public testing::Test {
  protected:
    std::uint32_t below(std::uint32_t end) { return static_cast<std::uint32_t>(random_() % end); }
    float between(float first, float last) {
        return first + (last - first) * static_cast<float>(random_() >> 40) * 0x1p-24f;
    }
    /// Of any size that is in range, and of either sign.
    float smallSample() {
        const auto steps = static_cast<float>(below(2u << below(20)) % 0x80001u) * kSmallest;
        return below(2) ? steps : -steps;
    }
    BiquadState smallState() { return {smallSample(), smallSample(), smallSample(), smallSample()}; }

    BiquadCoefficients designed() {
        SharedCoefficients filter;
        const double frequency = std::exp2(static_cast<double>(between(2.0f, 14.5f)));
        designBiquad(filter, below(2) ? BiquadType::lowPass : BiquadType::highPass, frequency, 48000.0,
                     static_cast<double>(between(0.2f, 5.0f)));
        BiquadCoefficients coefficients;
        filter.load(coefficients);
        return coefficients;
    }
    BiquadCoefficients any() {
        return {between(-4.0f, 4.0f), between(-4.0f, 4.0f), between(-4.0f, 4.0f), between(-4.0f, 4.0f),
                between(-4.0f, 4.0f)};
    }

    /// Plays both on until the filter is out of range, and gives the number of samples.
    int compare(BiquadState state, const BiquadCoefficients& coefficients, bool hearsSilence) {
        EXPECT_TRUE(SubnormalBiquad::inRange(state, coefficients));
        SubnormalBiquad subnormal(state);
        for (int i = 0; i < 300; ++i) {
            const float x = hearsSilence ? 0.0f : smallSample();
            const float expected = state.process(x, coefficients);
            const double steps = subnormal.process(SubnormalBiquad::stepsOf(x), coefficients);
            EXPECT_EQ(steps * static_cast<double>(kSmallest), static_cast<double>(expected)) << i;
            if (!SubnormalBiquad::inRange(steps) || HasFailure())
                return i;
            EXPECT_TRUE(SubnormalBiquad::inRange(expected));
            const BiquadState now = subnormal.state();
            EXPECT_EQ(now.y1, state.y1);
            EXPECT_EQ(now.y2, state.y2);
            EXPECT_EQ(now.x1, state.x1);
            EXPECT_EQ(now.x2, state.x2);
        }
        return 300;
    }

  private:
    std::mt19937_64 random_{20};
};

TEST_F(SubnormalFilter, SoundsLikeTheSameFilterInFloats) {
    int samples = 0;
    for (int round = 0; round < 2000 && !HasFailure(); ++round)
        samples += compare(smallState(), designed(), round % 2 == 0);
    EXPECT_GT(samples, 100000);
}

TEST_F(SubnormalFilter, DoesSoWithAnyModerateCoefficients) {
    int samples = 0;
    for (int round = 0; round < 20000 && !HasFailure(); ++round)
        samples += compare(smallState(), any(), round % 2 == 0);
    EXPECT_GT(samples, 20000);
}

TEST_F(SubnormalFilter, RoundsHalvesToTheEvenSide) {
    constexpr float halves[] = {0.5f, -0.5f, 1.5f, -1.5f, 2.5f, -2.5f, 0.25f, -0.75f, 0.125f};
    const auto half = [&] { return halves[below(9)]; };
    int samples = 0;
    for (int round = 0; round < 2000 && !HasFailure(); ++round)
        samples += compare(smallState(), {half(), half(), half(), half(), half()}, round % 2 == 0);
    EXPECT_GT(samples, 2000);
    for (const auto& [steps, rounded] :
         {std::pair{1.0, 0.0}, {3.0, 2.0}, {5.0, 2.0}, {-3.0, -2.0}, {-5.0, -2.0}, {7.0, 4.0}})
        EXPECT_EQ(SubnormalBiquad(BiquadState{}).process(steps, {.b0 = 0.5f}), rounded);
}

TEST_F(SubnormalFilter, IsRightAtItsLoudest) {
    for (const float sign : {1.0f, -1.0f}) {
        const float loud = sign * kLargestInRange;
        const BiquadCoefficients most{4.0f, 4.0f, 4.0f, -4.0f, -4.0f};
        EXPECT_EQ(compare({loud, loud, loud, loud}, most, true), 0) << "out of range at once";
    }
}

TEST_F(SubnormalFilter, TellsSamplesApartUpToItsLimit) {
    EXPECT_TRUE(SubnormalBiquad::inRange(0.0f));
    EXPECT_TRUE(SubnormalBiquad::inRange(-0.0f));
    EXPECT_TRUE(SubnormalBiquad::inRange(-kSmallest));
    EXPECT_TRUE(SubnormalBiquad::inRange(-kLargestInRange));
    EXPECT_FALSE(SubnormalBiquad::inRange(kLargestInRange + kSmallest));
    EXPECT_FALSE(SubnormalBiquad::inRange(-1.0f));
    EXPECT_FALSE(SubnormalBiquad::inRange(std::numeric_limits<float>::infinity()));
    EXPECT_FALSE(SubnormalBiquad::inRange(-std::numeric_limits<float>::quiet_NaN()));
}

TEST_F(SubnormalFilter, IsNotForCoefficientsThatMakeItLoud) {
    const BiquadState silent;
    EXPECT_TRUE(SubnormalBiquad::inRange(silent, {4.0f, -4.0f, 4.0f, -4.0f, 4.0f}));
    for (const float wild :
         {4.001f, -5.0f, std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()})
        for (float BiquadCoefficients::* one :
             {&BiquadCoefficients::b0, &BiquadCoefficients::b1, &BiquadCoefficients::b2,
              &BiquadCoefficients::a1, &BiquadCoefficients::a2}) {
            BiquadCoefficients coefficients;
            coefficients.*one = wild;
            EXPECT_FALSE(SubnormalBiquad::inRange(silent, coefficients)) << wild;
        }
}

TEST_F(SubnormalFilter, IsWhatBecomesOfAFilterAfterSomeSilence) {
    for (int round = 0; round < 50; ++round) {
        const BiquadCoefficients coefficients = designed();
        BiquadState state{0.1f, -0.1f, 1.0f, -1.0f};
        int samples = 0;
        while (!SubnormalBiquad::inRange(state, coefficients) && samples < 2000000) {
            state.process(0.0f, coefficients);
            ++samples;
        }
        EXPECT_LT(samples, 2000000);
    }
}

} // namespace
