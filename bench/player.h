// Brings an effect into a situation and lets it play there. The built library and the literal reference are
// played through the same few operations, so that both do the same work on the same signal.
#pragma once

#include "bench/sound_case.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace bench {

/// What can be played. Times include nothing but processReplacing.
class Subject {
  public:
    virtual ~Subject() = default;
    virtual void setSampleRate(float rate) = 0; ///< Hz; ends in a resume
    virtual void setParameter(std::int32_t id, float value) = 0;
    virtual void process(float** inputs, float** outputs, std::int32_t frames) = 0;
};

/// An instance of the built library.
std::unique_ptr<Subject> builtEffect();
/// The literal loop of the tests, compiled with the same options.
std::unique_ptr<Subject> literalReference();

class Player {
  public:
    /// Fills the subject's whole memory with noise, then sets the pattern and waits until it rests.
    Player(std::unique_ptr<Subject> subject, const SoundCase& situation);
    /// Plays a batch of blocks and gives the seconds that they took. What a gliding pattern needs is done
    /// before the clock starts.
    double playBatch();
    /// Of one batch.
    std::int64_t frames() const { return static_cast<std::int64_t>(batchBlocks_) * situation_.blockFrames; }

  private:
    void setPattern();
    void play(std::int32_t frames, std::int64_t times);

    std::unique_ptr<Subject> subject_;
    SoundCase situation_;
    std::int32_t batchBlocks_;
    bool moved_ = false;
    std::vector<float> samples_;
};

} // namespace bench
