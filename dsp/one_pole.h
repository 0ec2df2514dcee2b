// The smoother of parameters and tap times.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

namespace dsp {

/// A one-pole low-pass with a time constant of about 8334 samples, whatever the sample rate. Audio thread.
struct OnePole {
    float a = std::bit_cast<float>(std::uint32_t{0x3F7FF823}); ///< 0.99988
    float b = std::bit_cast<float>(std::uint32_t{0x38FBA000}); ///< 0.00012, so that a + b is 1
    float z = 0.0f;

    /// Whether a target opens the gate. At or below 1e-5 the gate is closed: the result is 0 at once, and `z`
    /// is kept.
    static bool opens(float v) { return v > 9.999999747378752e-06f; }

    /// One sample of the glide to `v`.
    float gated(float v) {
        if (!opens(v))
            return 0.0f;
        z = v * b + a * z;
        return z;
    }

    /// Whether a glide to `v` has ended: one more sample would not change `z`.
    bool rests(float v) const { return v * b + a * z == z; }

    /// `frames` samples of the glide to `v`.
    template <class Row>
    void gated(float v, Row& row, std::int32_t frames) {
        const auto end = row.begin() + frames;
        if (!opens(v) || rests(v))
            std::fill(row.begin(), end, opens(v) ? z : 0.0f);
        else
            std::generate(row.begin(), end, [&] { return gated(v); });
    }
};

} // namespace dsp
