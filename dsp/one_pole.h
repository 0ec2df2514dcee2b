// The smoother that lets parameters and tap times glide instead of click.
#pragma once

#include <bit>
#include <cstdint>

namespace dsp {

/// A one-pole low-pass with a time constant of about 8334 samples, whatever the sample rate. Audio thread.
struct OnePole {
    float a = std::bit_cast<float>(std::uint32_t{0x3F7FF823}); ///< 0.99988
    float b = std::bit_cast<float>(std::uint32_t{0x38FBA000}); ///< 0.00012, so that a + b is 1
    float z = 0.0f;

    /// One sample of the glide toward `v`. A target at or under 1e-5 closes the gate: the answer is 0 at once
    /// and the glide waits where it stood.
    float gated(float v) {
        if (!(v > 9.999999747378752e-06f))
            return 0.0f;
        z = v * b + a * z;
        return z;
    }
};

} // namespace dsp
