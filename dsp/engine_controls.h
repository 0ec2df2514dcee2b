// Everything about the delay engine that several threads share: parameters, the tap pattern and what else is
// computed from parameters, and requests to the audio loop.
//
// Functions marked "any thread" may be called at any time and by several threads at once; they never wait.
// Those that compute something from parameters look at them again afterwards (base/recompute.h), so that the
// last result belongs to the last parameters. For that the sample rate is a shared field too, passed by
// reference.
#pragma once

#include "base/shared.h"
#include "dsp/biquad.h"
#include "dsp/control_snapshot.h"
#include "dsp/pattern_record.h"
#include "dsp/shared_coefficients.h"
#include "dsp/tap_pattern.h"
#include "parameters/law.h"
#include "parameters/parameter_table.h"

#include <array>
#include <cstdint>

namespace dsp {

class EngineControls {
  public:
    /// Parameters at zero, one silent tap, filters and sweep for 44100 Hz. Call before audio runs.
    void reset();

    /// A parameter's live value, normalised. Any thread.
    float parameterValue(std::int32_t id) const { return params[static_cast<std::size_t>(id)].load(); }
    /// Stores a live value as it is; computeTapPattern brings it into the pattern. Any thread.
    void setParameterValue(std::int32_t id, float value) {
        params[static_cast<std::size_t>(id)].storeInOrder(value);
    }

    /// Brings tap times and gains, read mode and sweep rate up to date with the parameters. Limits the live
    /// "Amp Decay" to just under 1. `sampleRate` in Hz. Any thread.
    void computeTapPattern(const base::Shared<float>& sampleRate);

    /// Requests that the audio loop clear the delay memory before its next frame. Any thread.
    void clearDelayMemory() { clearRequested_.store(true); }

    /// Prepares for a sample rate, in Hz, and requests a clear. Tap times are zero until the next
    /// computeTapPattern. Filter states, feedback, glides and the sweep's phase are kept. Any thread.
    void prepare(const base::Shared<float>& sampleRate);

    /// Fades the wet signal in and out in the next four blocks, to mask jumping taps in the whole-sample
    /// mode. Any thread.
    void armFade();

    /// Designs one input filter with the taper for a parameter that was just set. Any thread.
    void designLowPassOnChange(const base::Shared<float>& sampleRate);
    void designHighPassOnChange(const base::Shared<float>& sampleRate);

    /// The tap tables. Any thread.
    const TapPattern& tapPattern() const { return pattern_; }

    // --- For the audio loop ---

    /// Whether a clear was requested since the last call. Audio thread.
    bool takeClearRequest();

    /// Counts a block of the whole-sample mode, up to four. Gives whether this block is faded. Audio thread.
    bool beginFadeBlock();

    /// Copies all that one sub-block needs. The tap tables are copied only if they are new; true if they and
    /// the read mode are those that the snapshot had already. Audio thread.
    bool read(ControlSnapshot& snapshot) const;

    /// Audio that runs always runs at full input gain, and "Pre Gain" shows that. Audio thread.
    void showFullInputGain() { params[parameters::kPreGain].store(1.0f); }

  private:
    /// Design of an input filter from its parameter.
    struct FilterTaper {
        BiquadType type;
        std::int32_t id;
        const parameters::Law& frequency;
        double resonance;
    };

    void designFilter(SharedCoefficients& filter, const FilterTaper& taper,
                      const base::Shared<float>& sampleRate);
    PatternSettings patternSettings(const base::Shared<float>& sampleRate);
    void updatePattern(const base::Shared<float>& sampleRate);
    void collapsePattern(const base::Shared<float>& sampleRate);
    void setSampleRate(float sampleRate);
    bool readPattern(ControlSnapshot& snapshot) const;

    std::array<base::Shared<float>, parameters::kNumLiveParameters> params{}; ///< normalised, by id
    TapPattern pattern_;
    PatternRecord patternRecord_; ///< what `pattern_` was computed from
    base::Shared<std::int32_t> interpMode = std::int32_t{parameters::kLinear};
    SharedCoefficients preLowPass, preHighPass;
    base::Shared<float> lfoRate_;                         ///< Hz
    base::Shared<float> lfoSampleTime_ = 1.0f / 44100.0f; ///< seconds
    base::Shared<float> dcRadiansPerSample_;              ///< of one Hz
    base::Shared<std::int32_t> fadeBlockCount;            ///< blocks counted of it, 0..4
    base::Shared<bool> fadeArmed;
    base::Shared<bool> clearRequested_;
};

} // namespace dsp
