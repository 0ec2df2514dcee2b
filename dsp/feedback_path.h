// The way back from the taps into the delay memory.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

namespace dsp {

/// Added to everything that enters the memory: keeps decaying echoes out of the range where arithmetic gets
/// slow.
constexpr float kAntiDenormal = 1e-11f;

/// The sum of the first and the last tap on its way back into the memory, less its low end. Audio thread.
struct FeedbackPath {
    double fbLowpass = 0.0; ///< low end of the feedback signal
    float fbSample = 0.0f;  ///< what feeds back into the next sample

    /// What goes into the memory: the filtered input, a sample widened, and the feedback times `factor` less
    /// its low end.
    float memoryInput(double filtered, float factor) {
        const double fed = static_cast<double>(factor * fbSample);
        fbLowpass = fbLowpass * 0.997 + fed * 0.003;
        // Flushed by a look at the lower half of the number: the state drops to zero now and then even under
        // a live signal, and every project that feeds back has that in its sound.
        if ((std::bit_cast<std::uint64_t>(fbLowpass) & 0x7F800000u) == 0)
            fbLowpass = 0.0;
        return static_cast<float>((fed - fbLowpass) + filtered + static_cast<double>(kAntiDenormal));
    }

    /// The first and the last tap feed back, as they were read. While the first is silent, the last value is
    /// held.
    void capture(float first, float last) {
        if (std::fabs(first) > kAntiDenormal)
            fbSample = first + last - kAntiDenormal;
        if ((std::bit_cast<std::uint32_t>(fbSample) & 0x7F800000u) == 0)
            fbSample = 0.0f;
    }
};

} // namespace dsp
