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
constexpr float kLargestQuiet = 0x1p19f * kSmallest;

class QuietFilter : public testing::Test {
  protected:
    std::uint32_t below(std::uint32_t end) { return static_cast<std::uint32_t>(random_() % end); }
    float between(float first, float last) {
        return first + (last - first) * static_cast<float>(random_() >> 40) * 0x1p-24f;
    }
    /// Of any size that is still quiet, and of either sign.
    float quietSample() {
        const auto steps = static_cast<float>(below(2u << below(20)) % 0x80001u) * kSmallest;
        return below(2) ? steps : -steps;
    }
    BiquadState quietState() { return {quietSample(), quietSample(), quietSample(), quietSample()}; }

    BiquadCoefficients designed() {
        Biquad filter;
        const double frequency = std::exp2(static_cast<double>(between(2.0f, 14.5f)));
        designBiquad(filter, below(2) ? BiquadType::lowPass : BiquadType::highPass, frequency, 48000.0,
                     static_cast<double>(between(0.2f, 5.0f)));
        BiquadCoefficients coefficients;
        filter.coefficients.load(coefficients);
        return coefficients;
    }
    BiquadCoefficients any() {
        return {between(-4.0f, 4.0f), between(-4.0f, 4.0f), between(-4.0f, 4.0f), between(-4.0f, 4.0f),
                between(-4.0f, 4.0f)};
    }

    /// Plays both on until the filter is no longer quiet, and gives the number of samples.
    int compare(BiquadState state, const BiquadCoefficients& coefficients, bool hearsSilence) {
        EXPECT_TRUE(QuietBiquad::isQuiet(state, coefficients));
        QuietBiquad quiet(state);
        for (int i = 0; i < 300; ++i) {
            const float x = hearsSilence ? 0.0f : quietSample();
            const float expected = state.process(x, coefficients);
            const double steps = quiet.process(QuietBiquad::stepsOf(x), coefficients);
            EXPECT_EQ(steps * static_cast<double>(kSmallest), static_cast<double>(expected)) << i;
            if (!QuietBiquad::isQuiet(steps) || HasFailure())
                return i;
            EXPECT_TRUE(QuietBiquad::isQuiet(expected));
            const BiquadState now = quiet.state();
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

TEST_F(QuietFilter, SoundsLikeTheSameFilterInFloats) {
    int samples = 0;
    for (int round = 0; round < 2000 && !HasFailure(); ++round)
        samples += compare(quietState(), designed(), round % 2 == 0);
    EXPECT_GT(samples, 100000);
}

TEST_F(QuietFilter, DoesSoWithAnyModerateCoefficients) {
    int samples = 0;
    for (int round = 0; round < 20000 && !HasFailure(); ++round)
        samples += compare(quietState(), any(), round % 2 == 0);
    EXPECT_GT(samples, 20000);
}

TEST_F(QuietFilter, RoundsHalvesToTheEvenSide) {
    constexpr float halves[] = {0.5f, -0.5f, 1.5f, -1.5f, 2.5f, -2.5f, 0.25f, -0.75f, 0.125f};
    const auto half = [&] { return halves[below(9)]; };
    int samples = 0;
    for (int round = 0; round < 2000 && !HasFailure(); ++round)
        samples += compare(quietState(), {half(), half(), half(), half(), half()}, round % 2 == 0);
    EXPECT_GT(samples, 2000);
    for (const auto& [steps, rounded] :
         {std::pair{1.0, 0.0}, {3.0, 2.0}, {5.0, 2.0}, {-3.0, -2.0}, {-5.0, -2.0}, {7.0, 4.0}})
        EXPECT_EQ(QuietBiquad(BiquadState{}).process(steps, {.b0 = 0.5f}), rounded);
}

TEST_F(QuietFilter, IsRightAtItsLoudest) {
    for (const float sign : {1.0f, -1.0f}) {
        const float loud = sign * kLargestQuiet;
        const BiquadCoefficients most{4.0f, 4.0f, 4.0f, -4.0f, -4.0f};
        EXPECT_EQ(compare({loud, loud, loud, loud}, most, true), 0) << "no longer quiet at once";
    }
}

TEST_F(QuietFilter, TellsSamplesApartUpToItsLimit) {
    EXPECT_TRUE(QuietBiquad::isQuiet(0.0f));
    EXPECT_TRUE(QuietBiquad::isQuiet(-0.0f));
    EXPECT_TRUE(QuietBiquad::isQuiet(-kSmallest));
    EXPECT_TRUE(QuietBiquad::isQuiet(-kLargestQuiet));
    EXPECT_FALSE(QuietBiquad::isQuiet(kLargestQuiet + kSmallest));
    EXPECT_FALSE(QuietBiquad::isQuiet(-1.0f));
    EXPECT_FALSE(QuietBiquad::isQuiet(std::numeric_limits<float>::infinity()));
    EXPECT_FALSE(QuietBiquad::isQuiet(-std::numeric_limits<float>::quiet_NaN()));
}

TEST_F(QuietFilter, IsNotForCoefficientsThatMakeItLoud) {
    const BiquadState silent;
    EXPECT_TRUE(QuietBiquad::isQuiet(silent, {4.0f, -4.0f, 4.0f, -4.0f, 4.0f}));
    for (const float wild :
         {4.001f, -5.0f, std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()})
        for (float BiquadCoefficients::* one :
             {&BiquadCoefficients::b0, &BiquadCoefficients::b1, &BiquadCoefficients::b2,
              &BiquadCoefficients::a1, &BiquadCoefficients::a2}) {
            BiquadCoefficients coefficients;
            coefficients.*one = wild;
            EXPECT_FALSE(QuietBiquad::isQuiet(silent, coefficients)) << wild;
        }
}

TEST_F(QuietFilter, IsWhatBecomesOfAFilterAfterSomeSilence) {
    for (int round = 0; round < 50; ++round) {
        const BiquadCoefficients coefficients = designed();
        BiquadState state{0.1f, -0.1f, 1.0f, -1.0f};
        int samples = 0;
        while (!QuietBiquad::isQuiet(state, coefficients) && samples < 2000000) {
            state.process(0.0f, coefficients);
            ++samples;
        }
        EXPECT_LT(samples, 2000000);
    }
}

} // namespace
