// The sine oscillator that sweeps the read positions of all taps. Functions are static, as all that the
// kernels include (dsp/memory_span.h).
#pragma once

#include "base/truncation.h"

namespace dsp {

/// About 100 * sin of a phase in cycles, -0.5..0.5, moved by `phaseMod`: a polynomial.
static inline float sineOf(float phase, float phaseMod) {
    float y = phaseMod * 0.15915507078170776f + phase;
    y = y - static_cast<float>(base::trunc(y + 0.5f));
    const float magnitude = __builtin_fabsf(y);
    return (magnitude - 0.5f) * (magnitude - 0.7329630255699158f) * (magnitude + 0.23296299576759338f) *
           (y * 6859.490234375f);
}

/// The read offset of all taps in samples, zero or negative, for a phase and a depth.
static inline float sweptOffset(float phase, float phaseMod, float depth) {
    return -__builtin_fabsf((sineOf(phase, phaseMod) + 100.0f) * depth);
}

/// The oscillator's phase. Audio thread.
struct ModuleFMop {
    float phase = 0.0f;                   ///< in cycles, -0.5..0.5
    float phaseMod = 0.0f;                ///< in radians; nothing writes it
    float ratio = 1.0f, ratioFine = 1.0f; ///< multiply the rate; nothing writes them

    /// Phase advance per sample, in cycles. `rate` in Hz, `sampleTime` in seconds.
    float step(float rate, float sampleTime) const { return (ratioFine * ratio) * (sampleTime * rate); }

    /// Advances by `step` cycles and gives the new phase.
    float advance(float step) {
        const float x = step + phase;
        const float cycles = x + 0.5f;
        // Most samples do not wrap, and then nothing is subtracted.
        if (cycles > -1.0f && cycles < 1.0f)
            phase = x;
        else
            phase = x - static_cast<float>(base::trunc(cycles));
        return phase;
    }
};

} // namespace dsp
