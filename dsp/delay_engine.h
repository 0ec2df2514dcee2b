// The delay engine: a mono delay memory, a pattern of up to 128 taps on it, two input filters, a feedback
// loop and a sweep. Stereo in, stereo out.
//
// Split by thread: EngineControls is what all threads share, AudioLoop what the audio thread owns. The object
// is a little over 16 MiB and belongs on the heap.
#pragma once

#include "dsp/audio_loop.h"
#include "dsp/engine_controls.h"

namespace dsp {

class DelayEngine : public EngineControls {
  public:
    /// Back to a silent engine at 44100 Hz with every parameter at zero. Call before audio runs.
    void startUp() {
        reset();
        loop_.reset();
    }

    /// Renders one block: see AudioLoop. Audio thread.
    void processReplacing(const float* const* inputs, float* const* outputs, std::int32_t sampleFrames) {
        loop_.processReplacing(*this, inputs, outputs, sampleFrames);
    }

  private:
    AudioLoop loop_; ///< audio thread
};

} // namespace dsp
