// The two filters in front of the delay memory.
#pragma once

#include "dsp/shared_coefficients.h"

#include <bit>
#include <cmath>
#include <cstdint>

namespace dsp {

/// The last outputs and inputs of a second-order filter in direct form I. Audio thread.
struct BiquadState {
    float y1 = 0.0f, y2 = 0.0f, x1 = 0.0f, x2 = 0.0f;

    /// One sample through `c`.
    float process(float x, const BiquadCoefficients& c) {
        const float y = (x1 * c.b1 + x * c.b0) + x2 * c.b2 - y1 * c.a1 - y2 * c.a2;
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
        return y;
    }
};

/// A second-order filter that hears next to nothing.
///
/// A filter whose input has fallen silent does not come to zero: it stays among the smallest numbers there
/// are, where a processor takes ten times as long for everything, for as long as the silence lasts. But down
/// there a float is a whole number of steps of the smallest kind, which its bits count, and what an operation
/// gives is rounded to whole steps. Counted in steps, in double, that is plain arithmetic: the same numbers,
/// at the usual speed. Only the sign of a zero gets lost, which no later number depends on. Audio thread.
class QuietBiquad {
  public:
    /// Takes over from a state for which isQuiet().
    explicit QuietBiquad(const BiquadState& state)
        : y1_(stepsOf(state.y1)), y2_(stepsOf(state.y2)), x1_(stepsOf(state.x1)), x2_(stepsOf(state.x2)) {}

    /// Whether a sample is small enough to be taken.
    static bool isQuiet(float sample) {
        return (std::bit_cast<std::uint32_t>(sample) & kMagnitude) <= kMostSteps;
    }
    /// Whether a filter is: its past, and its coefficients, so that no product or sum leaves the range of
    /// whole steps.
    static bool isQuiet(const BiquadState& state, const BiquadCoefficients& c) {
        return isQuiet(state.y1) && isQuiet(state.y2) && isQuiet(state.x1) && isQuiet(state.x2) &&
               isModerate(c.b0) && isModerate(c.b1) && isModerate(c.b2) && isModerate(c.a1) &&
               isModerate(c.a2);
    }
    /// The same of a number of steps, such as process() gives.
    static bool isQuiet(double steps) { return std::abs(steps) <= kMostSteps; }

    /// A quiet sample as a number of steps.
    static double stepsOf(float sample) {
        const std::uint32_t bits = std::bit_cast<std::uint32_t>(sample);
        const auto steps = static_cast<double>(static_cast<std::int32_t>(bits & kMagnitude));
        return bits == (bits & kMagnitude) ? steps : -steps;
    }
    /// A number of steps as a sample.
    static float sampleOf(double steps) {
        const auto magnitude = static_cast<std::uint32_t>(std::abs(steps));
        return std::bit_cast<float>(steps < 0.0 ? magnitude | ~kMagnitude : magnitude);
    }

    /// One sample through `c`, in steps. The result is right whatever it is, but once it is not quiet,
    /// nothing may follow.
    double process(double x, const BiquadCoefficients& c) {
        const double y = (rounded(x1_, c.b1) + rounded(x, c.b0)) + rounded(x2_, c.b2) - rounded(y1_, c.a1) -
                         rounded(y2_, c.a2);
        x2_ = x1_;
        x1_ = x;
        y2_ = y1_;
        y1_ = y;
        return y;
    }

    /// Where the filter stands. While its last results are quiet.
    BiquadState state() const { return {sampleOf(y1_), sampleOf(y2_), sampleOf(x1_), sampleOf(x2_)}; }

  private:
    static constexpr std::uint32_t kMagnitude = 0x7FFFFFFF;
    /// Five products of so many steps and the greatest coefficient stay below 2^24 steps, up to where a float
    /// tells every step from the next.
    static constexpr std::uint32_t kMostSteps = 1u << 19;
    static constexpr float kGreatestCoefficient = 4.0f;

    static bool isModerate(float coefficient) { return std::abs(coefficient) <= kGreatestCoefficient; }

    /// The product in whole steps, with the halves to the even side as for any float: a double this large has
    /// room for no fractions.
    static double rounded(double steps, float coefficient) {
        constexpr double withoutFractions = 0x1.8p52;
        return (steps * static_cast<double>(coefficient) + withoutFractions) - withoutFractions;
    }

    double y1_, y2_, x1_, x2_;
};

/// A second-order filter.
struct Biquad {
    SharedCoefficients coefficients;
    BiquadState state; ///< audio thread
};

enum class BiquadType { lowPass = 0, highPass = 1 };

/// Designs by the well-known bilinear recipes, in double, and publishes the result; the state goes on.
/// `frequency` and `sampleRate` in Hz; nothing is clamped, so a frequency above half the rate gives a filter
/// that grows. Any thread.
void designBiquad(Biquad& filter, BiquadType type, double frequency, double sampleRate, double q);

} // namespace dsp
