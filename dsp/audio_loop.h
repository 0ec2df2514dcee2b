// The audio thread's part of the engine: renders blocks of audio and owns all state that lives from one
// sample to the next.
//
// A block is cut into sub-blocks of at most 64 frames. Each stage takes rows of samples from the stages
// before it and fills rows for those after it. Sub-blocks of a few frames, for which rows do not pay, are
// rendered frame by frame.
#pragma once

#include "dsp/biquad.h"
#include "dsp/control_snapshot.h"
#include "dsp/dc_remover.h"
#include "dsp/engine_controls.h"
#include "dsp/fade.h"
#include "dsp/feedback_path.h"
#include "dsp/instruction_set.h"
#include "dsp/module_delay.h"
#include "dsp/module_fm_op.h"
#include "dsp/one_pole.h"
#include "dsp/single_entry.h"
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
    using SweepRow = std::array<float, kSubBlockFrames + 1>;
    using FilteredRow = std::array<double, kSubBlockFrames>;
    /// What the stages fill for each other. It lies here and not on the stack, whose pages a host's audio
    /// thread may touch for the first time.
    struct Rows {
        StereoRow dry{}, fed{}, sum{}, leveled{}, wet{};
        SmoothedRows smoothed{};
        alignas(64) Row mono{}, phases{}, norm{};
        alignas(64) SweepRow lfoOffset{};
        alignas(64) FilteredRow filtered{};
        alignas(64) SubBlockReader::TapRows taps{};
        SubBlockReader::TapSamples tapSamples{};
        TapPlan plan{};
    };
    /// Part of a block: where its frames come from and go to.
    struct Buffers {
        const float *inLeft, *inRight;
        float *outLeft, *outRight;
        std::int32_t first, frames; ///< in the block
    };
    /// Samples of the first and the last tap, which feed back.
    struct FedTaps {
        const float *first, *last;
    };
    struct FedSamples {
        float first, last;
    };

    void serveClearRequest(EngineControls& shared);
    void readControls(EngineControls& shared);
    void playByRow(const Buffers& buffers, Fade& fade);
    void playByFrame(const Buffers& buffers, Fade& fade);

    // The stages of playByRow, in order. What follows `frames` is read if it is const and filled if not.
    void smoothParameters(std::int32_t frames, SmoothedRows& smoothed);
    Sweep sweepTaps(std::int32_t frames, const Row& depth, Row& phases, SweepRow& lfoOffset);
    void runDelay(std::int32_t frames, const Row& mono, const Sweep& sweep, const TapPaths& paths,
                  const Row& norm, StereoRow& wet);

    // Parts of runDelay.
    void planTaps(const SubBlockReader& reader);
    FedTaps recirculate(const SubBlockReader& reader, const Row& mono, StereoRow& fedRows);
    template <class Reader>
    FedTaps recirculateByFrame(const SubBlockReader& reader, const Row& mono, StereoRow& fedRows);
    template <class ReadFed, class Run>
    void writeMemory(const MemorySpan& span, const Row& mono, ReadFed readFed, Run run);
    template <class ReadFiltered, class ReadFed, class Run>
    void feedBack(const MemorySpan& span, ReadFiltered readFiltered, ReadFed readFed, Run run);
    bool filterSubnormals(std::int32_t frames, const float* mono, double* filtered);
    void sumTaps(const SubBlockReader& reader, const FedTaps& fed, StereoRow& sum);
    static void applyLevel(std::int32_t frames, const StereoRow& sum, const Row& norm, StereoRow& leveled);

    // Parts of playByFrame.
    double filterFrame(float mono);
    StereoSample sumTaps(const TapPaths& paths);
    template <class Reader>
    StereoSample sumTapsOneByOne(const TapPaths& paths);
    StereoSample sumTapsAtOnce(const TapPaths& paths);

    SingleEntry entry_; ///< asserted in debug builds only
    const Kernels* kernels_ = &chosenKernels();
    ControlSnapshot controls_; ///< of the present sub-block
    OnePole stereoSmoother_, mixSmoother_, panSmoother_, depthSmoother_;
    ModuleFMop lfo;
    TapGlides tapGlides_;
    BiquadState preLowPass, preHighPass;
    FeedbackPath feedbackPath_;
    DcRemover dcRemover_;
    Rows rows_;
    ModuleDelay delay_;
};

} // namespace dsp
