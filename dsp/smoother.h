// Takes DC out of the wet signal.
#pragma once

#include "base/recompute.h"

namespace dsp {

/// A first-order high-pass at 32 Hz: the input less its own low-passed self.
struct Smoother {
    float state = 0.0f;                   ///< the low-passed signal; audio thread
    base::Shared<float> radiansPerSample; ///< of one Hz

    /// Any thread. `sampleRate` in Hz.
    void setSampleRate(float sampleRate) { radiansPerSample.renew(6.28319f / sampleRate); }

    /// One sample of a signal whose low-passed self is `state`. `radians` is radiansPerSample as it stood at
    /// the start of the sub-block. Audio thread.
    static float process(float& state, float w, float radians) {
        state = (w - state) * radians * 32.0f + state;
        return w - state;
    }
};

} // namespace dsp
