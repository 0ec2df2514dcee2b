// The two filters in front of the delay memory.
#pragma once

namespace dsp {

/// Five coefficients of a second-order filter, as the loop uses them.
struct BiquadCoefficients {
    float b0 = 0.0f, b1 = 0.0f, b2 = 0.0f, a1 = 0.0f, a2 = 0.0f;
};

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

/// A second-order filter.
struct Biquad {
    BiquadCoefficients coefficients; ///< shared
    BiquadState state;               ///< audio thread

    /// Puts new coefficients in place while audio may run. The state goes on. Any thread.
    void setCoefficients(const BiquadCoefficients& designed);
    /// The coefficients at this moment. Any thread.
    BiquadCoefficients loadCoefficients() const;
};

enum class BiquadType { lowPass = 0, highPass = 1 };

/// Designs by the well-known bilinear recipes, in double, and stores the result in the filter. `frequency`
/// and `sampleRate` in Hz; nothing is clamped, so a frequency above half the rate gives a filter that grows.
/// Any thread.
void designBiquad(Biquad& filter, BiquadType type, double frequency, double sampleRate, double q);

} // namespace dsp
