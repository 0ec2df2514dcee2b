// Takes DC out of the wet signal.
#pragma once

namespace dsp {

/// A first-order high-pass at 32 Hz: the input minus its low-passed self. Audio thread.
struct Smoother {
    float state = 0.0f; ///< the low-passed signal

    /// One sample. `radiansPerSample` is that of one Hz.
    float process(float w, float radiansPerSample) {
        state = (w - state) * radiansPerSample * 32.0f + state;
        return w - state;
    }
};

} // namespace dsp
