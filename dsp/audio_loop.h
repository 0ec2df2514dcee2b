// The audio thread's part of the engine: renders blocks of audio and owns all state that lives from one
// sample to the next.
//
// A block is cut into sub-blocks of at most 64 frames. Each stage takes rows of samples from the stages
// before it and fills rows for those after it.
#pragma once

#include "dsp/biquad.h"
#include "dsp/control_snapshot.h"
#include "dsp/engine_controls.h"
#include "dsp/fade.h"
#include "dsp/feedback_path.h"
#include "dsp/instruction_set.h"
#include "dsp/module_delay.h"
#include "dsp/module_fm_op.h"
#include "dsp/one_pole.h"
#include "dsp/single_entry.h"
#include "dsp/smoother.h"
#include "dsp/sub_block_reader.h"
#include "dsp/tap_glides.h"

#include <array>
#include <cstdint>

namespace dsp {

class AudioLoop {
  public:
    /// No feedback. Call before audio runs.
    void reset() { feedbackPath_.fbSample = 0.0f; }

    /// Renders one block: 2 channels of `sampleFrames` in, the same out. Input and output buffers may be the
    /// same, also crossed. Any length; below 1 only the fade counts the block. Allocates nothing, locks
    /// nothing. Audio thread.
    void processReplacing(EngineControls& shared, const float* const* inputs, float* const* outputs,
                          std::int32_t sampleFrames);

  private:
    struct StereoRow {
        alignas(64) Row left, right;
    };
    struct SmoothedRows {
        alignas(64) Row stereo, mix, pan, depth;
    };
    using SweepRow = std::array<float, kSubBlockFrames + 1>;
    using FilteredRow = std::array<double, kSubBlockFrames>;
    /// Samples of the first and the last tap, which feed back.
    struct FedTaps {
        const float *first, *last;
    };
    struct FedSamples {
        float first, last;
    };

    // The stages, in order. What follows `frames` is read if it is const and filled if not.
    void serveClearRequest(EngineControls& shared);
    void readControls(EngineControls& shared);
    void smoothParameters(std::int32_t frames, SmoothedRows& smoothed);
    Sweep sweepTaps(std::int32_t frames, const Row& depth, SweepRow& lfoOffset);
    void mixInput(std::int32_t frames, const StereoRow& dry, Row& mono) const;
    void runDelay(std::int32_t frames, const Row& mono, const Sweep& sweep, const TapPaths& paths,
                  StereoRow& sum);
    void shapeWet(std::int32_t frames, std::int32_t firstFrame, Fade& fade, const StereoRow& sum,
                  StereoRow& wet);
    static void mixOutput(std::int32_t frames, const StereoRow& dry, const StereoRow& wet,
                          const SmoothedRows& smoothed, float* left, float* right);

    // Parts of runDelay.
    FedTaps recirculate(const SubBlockReader& reader, const Row& mono, StereoRow& fedRows);
    template <class Reader>
    FedTaps recirculateByFrame(const SubBlockReader& reader, const Row& mono, StereoRow& fedRows);
    template <class ReadFed>
    void writeMemory(const MemorySpan& span, const Row& mono, ReadFed readFed);
    template <class ReadFiltered, class ReadFed>
    void feedBack(const MemorySpan& span, ReadFiltered readFiltered, ReadFed readFed);
    bool filterSubnormals(std::int32_t frames, const Row& mono, FilteredRow& filtered);
    void sumTaps(const SubBlockReader& reader, const FedTaps& fed, StereoRow& sum);

    SingleEntry entry_; ///< asserted in debug builds only
    const TapKernels* kernels_ = &chosenKernels();
    ControlSnapshot controls_; ///< of the present sub-block
    OnePole stereoSmoother_, mixSmoother_, panSmoother_, depthSmoother_;
    ModuleFMop lfo;
    TapGlides tapGlides_;
    BiquadState preLowPass, preHighPass;
    FeedbackPath feedbackPath_;
    Smoother dcBlockLeft, dcBlockRight;
    ModuleDelay delay_;
};

} // namespace dsp
