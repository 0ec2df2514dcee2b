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

/// A second-order filter evaluated exactly in units of the smallest subnormal.
///
/// After the input falls silent, a filter's state stays subnormal, where float arithmetic is about ten times
/// as slow. A subnormal is a whole number of steps of the smallest one, and each operation rounds to whole
/// steps. The same arithmetic on step counts in double gives the same bits at normal speed; only the sign of
/// a zero is lost, which no later result depends on. Audio thread.
class SubnormalBiquad {
  public:
    /// Starts from `state`, which must be inRange().
    explicit SubnormalBiquad(const BiquadState& state)
        : y1_(stepsOf(state.y1)), y2_(stepsOf(state.y2)), x1_(stepsOf(state.x1)), x2_(stepsOf(state.x2)) {}

    /// Whether a sample is small enough.
    static bool inRange(float sample) {
        return (std::bit_cast<std::uint32_t>(sample) & kMagnitude) <= kMaxSteps;
    }
    /// Whether a filter's state and coefficients are: no product or sum then leaves the range of exact steps.
    static bool inRange(const BiquadState& state, const BiquadCoefficients& c) {
        return inRange(state.y1) && inRange(state.y2) && inRange(state.x1) && inRange(state.x2) &&
               isSmallEnough(c.b0) && isSmallEnough(c.b1) && isSmallEnough(c.b2) && isSmallEnough(c.a1) &&
               isSmallEnough(c.a2);
    }
    /// Whether a number of steps, such as process() returns, is.
    static bool inRange(double steps) { return std::abs(steps) <= kMaxSteps; }

    /// A sample that is inRange() as a number of steps.
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

    /// One sample through `c`, in steps. A result that is not inRange() is exact, but must be the last.
    double process(double x, const BiquadCoefficients& c) {
        const double y = (rounded(x1_, c.b1) + rounded(x, c.b0)) + rounded(x2_, c.b2) - rounded(y1_, c.a1) -
                         rounded(y2_, c.a2);
        x2_ = x1_;
        x1_ = x;
        y2_ = y1_;
        y1_ = y;
        return y;
    }

    /// The state in floats. The last two results must be inRange().
    BiquadState state() const { return {sampleOf(y1_), sampleOf(y2_), sampleOf(x1_), sampleOf(x2_)}; }

  private:
    static constexpr std::uint32_t kMagnitude = 0x7FFFFFFF;
    /// Five products with kMaxCoefficient stay below 2^24 steps, where a float still represents every step.
    static constexpr std::uint32_t kMaxSteps = 1u << 19;
    static constexpr float kMaxCoefficient = 4.0f;

    static bool isSmallEnough(float coefficient) { return std::abs(coefficient) <= kMaxCoefficient; }

    /// The product rounded to whole steps, ties to even as for any float: a double this large has no fraction
    /// bits.
    static double rounded(double steps, float coefficient) {
        constexpr double withoutFractions = 0x1.8p52;
        return (steps * static_cast<double>(coefficient) + withoutFractions) - withoutFractions;
    }

    double y1_, y2_, x1_, x2_;
};

enum class BiquadType { lowPass = 0, highPass = 1 };

/// Designs a filter with the common bilinear formulas, in double, and publishes its coefficients. `frequency`
/// and `sampleRate` in Hz. Nothing is clamped: above half the rate the filter is unstable. Any thread.
void designBiquad(SharedCoefficients& filter, BiquadType type, double frequency, double sampleRate, double q);

} // namespace dsp
