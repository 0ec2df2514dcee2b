// The sine that sweeps the read positions of all taps.
#pragma once

#include "base/recompute.h"
#include "base/shared.h"
#include "base/truncation.h"

#include <cmath>

namespace dsp {

/// An oscillator without tables or sine calls: a phase in cycles and a polynomial in place of the sine.
struct ModuleFMop {
    float phase = 0.0f;                               ///< in cycles, -0.5..0.5; audio thread
    base::Shared<float> rate;                         ///< Hz
    float phaseMod = 0.0f;                            ///< in radians; an input that nothing drives
    base::Shared<float> sampleTime = 1.0f / 44100.0f; ///< seconds
    float ratio = 1.0f, ratioFine = 1.0f;             ///< multiply the rate; nothing drives them

    /// Any thread. `sampleRate` in Hz.
    void setSampleRate(float sampleRate) { sampleTime.renew(1.0f / sampleRate); }

    /// Phase advance of one sample, in cycles. Any thread.
    float step() const { return (ratioFine * ratio) * (sampleTime.load() * rate.load()); }

    /// Moves on by `step` cycles and gives the new phase. Audio thread.
    float advance(float step) {
        const float x = step + phase;
        const float turns = x + 0.5f;
        // Most samples stay within the turn, where there is nothing to take off.
        if (turns > -1.0f && turns < 1.0f)
            phase = x;
        else
            phase = x - static_cast<float>(base::trunc(turns));
        return phase;
    }

    /// About 100 * sin of a phase in cycles, -0.5..0.5, moved by phaseMod. Any thread.
    float sine(float at) const {
        float y = phaseMod * 0.15915507078170776f + at;
        y = y - static_cast<float>(base::trunc(y + 0.5f));
        const float magnitude = std::fabs(y);
        return (magnitude - 0.5f) * (magnitude - 0.7329630255699158f) * (magnitude + 0.23296299576759338f) *
               (y * 6859.490234375f);
    }
};

} // namespace dsp
