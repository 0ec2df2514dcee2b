// The whole sound of the effect: a mono delay memory, a pattern of up to 128 taps on it, two input filters, a
// feedback loop and a sweep. Stereo in, stereo out.
//
// What may be called when: functions marked "any thread" may be called while the audio thread is inside
// processReplacing, and several at once. They write shared fields atomically and never touch what belongs to
// the audio thread. Those that compute something look at the parameters again afterwards, so that what stands
// in the end follows from the parameters that stand in the end; a sample rate is therefore a shared field
// too, given by reference. The object is a little over 16 MiB and belongs on the heap.
#pragma once

#include "base/shared.h"
#include "dsp/biquad.h"
#include "dsp/feedback_path.h"
#include "dsp/instruction_set.h"
#include "dsp/module_delay.h"
#include "dsp/module_fm_op.h"
#include "dsp/one_pole.h"
#include "dsp/pattern_record.h"
#include "dsp/smoother.h"
#include "dsp/tap_pattern.h"
#include "parameters/parameter_table.h"

#include <array>
#include <cstdint>
#include <span>

namespace dsp {

class DelayEngine {
  public:
    /// Back to a silent engine at 44100 Hz with every parameter at zero. Call before audio runs.
    void startUp();

    /// A parameter's live value. Any thread.
    float parameterValue(std::int32_t id) const { return params[static_cast<std::size_t>(id)].load(); }
    /// Any thread. The value is taken as it is; computeTapPattern brings it into the pattern.
    void setParameterValue(std::int32_t id, float value) {
        params[static_cast<std::size_t>(id)].storeInOrder(value);
    }

    /// Renews tap times and gains, the read mode and the sweep's rate from the parameters, as far as they are
    /// not up to date. Limits the live "Amp Decay" to just under 1. `sampleRate` in Hz. Any thread.
    void computeTapPattern(const base::Shared<float>& sampleRate);

    /// Forgets every echo. Any thread.
    void clearDelayMemory() { delay.clearDelayMemory(); }

    /// Prepares for a sample rate, in Hz, and forgets every echo. The tap times are zero afterwards: all taps
    /// sit on the write position until the next computeTapPattern. Filters, feedback, glides and the sweep's
    /// phase go on from where they were. Any thread.
    void prepare(const base::Shared<float>& sampleRate);

    /// Masks the jump of the taps that a new pattern brings in the whole-sample mode: the wet signal fades in
    /// and out for the next four blocks. Any thread.
    void armFade();

    /// Redesign one input filter from its parameter, by the law for a value that was just set. Any thread.
    void designLowPassOnChange(const base::Shared<float>& sampleRate);
    void designHighPassOnChange(const base::Shared<float>& sampleRate);

    /// Renders one block: 2 channels x `sampleFrames` in, the same out. Buffers may be the same, also
    /// crossed. Any length; below 1 only the fade's counting takes place. Audio thread. Allocates nothing,
    /// locks nothing.
    void processReplacing(const float* const* inputs, float* const* outputs, std::int32_t sampleFrames);

    /// The tap tables, for those who draw them. Shared.
    const TapPattern& tapPattern() const { return pattern; }

  private:
    /// What the loop needs to know for one sub-block, read once so that the kernels work on values that stand
    /// still.
    struct Controls {
        std::uint32_t patternGeneration = PatternRecord::kNone; ///< of the tables below
        std::int32_t numTaps;
        std::int32_t interpMode;
        float stereo, mix, pan, depth, prePan;
        float feedback; ///< the factor, -0.45..0.45
        float wetLevel; ///< 1..2, lifts thin patterns
        float lfoStep;  ///< cycles a sample
        float dcRadiansLeft, dcRadiansRight;
        BiquadCoefficients lowPass, highPass;
        alignas(64) std::array<float, kMaxTaps> gain;
        alignas(64) std::array<float, kMaxTaps> target;
    };

    /// The trapezoid over the wet signal that hides a jump of the taps.
    struct Fade {
        bool armed;
        std::int32_t blockFrames, length;
        float step, level;
        /// The level at sample `i` of the block.
        float next(std::int32_t i);
    };

    /// The signals of one sub-block, a row for each, in the order in which the loop makes them.
    struct SubBlock {
        alignas(64) Row dryLeft, dryRight;
        alignas(64) Row stereo, mix, pan, depth;
        alignas(64) std::array<float, kSubBlockFrames + 1> lfoOffset; ///< one more, for the sub-block after
        Sweep sweep;                                                  ///< these
        alignas(64) Row mono;
        alignas(
            64) std::array<double, kSubBlockFrames> filteredInput; ///< filtered, where it is next to silence
        std::array<TapPath, kMaxTaps> tapPath;
        alignas(64) std::array<Row, kMaxTaps> tapTimeNow; ///< of the taps that glide
        const float *firstTap, *lastTap; ///< the two that feed back, wherever their samples stand
        alignas(64) Row firstRow, lastRow;
        alignas(64) Row sumLeft, sumRight;
        alignas(64) Row wetLeft, wetRight;
    };

    /// What the first and the last tap read in one sample.
    struct FedTaps {
        float first, last;
    };

    /// How an input filter follows from its parameter p: frequency p * span * p + lowest, in Hz.
    struct FilterLaw {
        BiquadType type;
        std::int32_t id;
        float span, lowest;
        double resonance;
    };

    void designFilter(Biquad& filter, const FilterLaw& law, const base::Shared<float>& sampleRate);
    PatternSettings patternSettings(const base::Shared<float>& sampleRate);
    void renewPattern(const base::Shared<float>& sampleRate);
    void collapsePattern(const base::Shared<float>& sampleRate);
    Fade beginBlock(std::int32_t sampleFrames);
    void readControls();
    void readPattern();
    void smoothParameters(std::int32_t frames);
    void sweep(std::int32_t frames);
    void mixInput(std::int32_t frames);
    void moveTaps(std::int32_t frames);
    void glideTaps(std::span<const std::size_t> gliding, std::int32_t frames);
    void runDelay(std::int32_t frames);
    void recirculate(const MemorySpan& span);
    bool readAhead(const MemorySpan& span);
    template <class Reader>
    void recirculateWith(const MemorySpan& span);
    template <class ReadFedTaps>
    void writeMemory(const MemorySpan& span, ReadFedTaps readFedTaps);
    template <class ReadFiltered, class ReadFedTaps>
    void feedBack(const MemorySpan& span, ReadFiltered readFiltered, ReadFedTaps readFedTaps);
    bool filterSubnormals(std::int32_t frames);
    void sumTaps(const MemorySpan& span);
    void fetchTap(const MemorySpan& span, std::size_t tap) const;
    const float* readTap(const MemorySpan& span, std::size_t tap, Row& row) const;
    const float* readTapAtOnce(const MemorySpan& span, std::size_t tap, Row& row) const;
    void readTapCarefully(const MemorySpan& span, std::size_t tap, Row& row) const;
    void shapeWet(std::int32_t frames, std::int32_t firstFrame, Fade& fade);
    void mixOutput(std::int32_t frames, float* left, float* right) const;

    const TapKernels* kernels = &chosenKernels(); ///< the loops for this processor
    std::array<base::Shared<float>, parameters::kNumLiveParameters> params{}; ///< normalised, by id
    TapPattern pattern;                                                       ///< shared
    PatternRecord patternRecord; ///< what it was computed from; shared
    ModuleDelay delay;
    FeedbackPath feedbackPath; ///< audio thread
    ModuleFMop lfo;
    Biquad preLowPass, preHighPass;
    Smoother dcBlockLeft, dcBlockRight;
    OnePole stereoSmoother, mixSmoother, panSmoother, depthSmoother; ///< audio thread
    std::array<OnePole, kMaxTaps> tapSmoother;                       ///< audio thread
    bool tapsRest = false; ///< no tap moves until the pattern or the mode changes; audio thread
    base::Shared<std::int32_t> fadeBlockCount; ///< blocks since the fade was armed
    base::Shared<bool> fadeArmed;              ///< a jump waits to be masked
    Controls controls;                         ///< audio thread
    SubBlock block;                            ///< audio thread
};

} // namespace dsp
