// What comes before a timing: sound or silence to play, and a subject with the parameters of a situation.
#pragma once

#include "bench/sound_case.h"
#include "bench/subject.h"
#include "dsp/memory_span.h"

#include <cstdint>
#include <span>
#include <vector>

namespace bench {

constexpr float kSampleRate = 48000.0f; ///< Hz
/// As many frames as fit in a batch are timed in one go, so that reading the clock costs nothing.
constexpr std::int32_t kBatchFrames = 4096;
constexpr std::int32_t kMemoryFrames = dsp::kDelaySize;

/// Fills with noise of -0.5..0.5, always the same.
void fillWithNoise(std::span<float> samples);

/// Two channels in and two out, of one batch.
class Buffers {
  public:
    /// Hold noise at first.
    Buffers() { holdNoise(); }
    void holdNoise() { fillWithNoise(samples_); }
    void holdSilence();
    void hold(Input input) { input == Input::noise ? holdNoise() : holdSilence(); }
    /// Plays a block of `frames`, at most a batch, so many times. Short blocks follow each other in the
    /// noise, within a part of it that stays in the nearest cache.
    void play(Subject& subject, std::int32_t frames, std::int64_t times);

  private:
    std::int32_t position_ = 0;
    std::vector<float> samples_ = std::vector<float>(4 * kBatchFrames);
};

/// Sets what is the same in all situations: filters, feedback, sweep, level and panning.
void setCommonValues(Subject& subject);

/// Writes the whole memory with what the buffers hold, through one tap.
void fillMemory(Subject& subject, Buffers& buffers);

/// Sets taps, how they are read and where they lie; `moved`: a tenth nearer.
void setTaps(Subject& subject, const SoundCase& situation);
void setPattern(Subject& subject, const SoundCase& situation, bool moved = false);

/// Plays until every glide has arrived and every fade is over. `glides`: whether the taps do.
void settle(Subject& subject, Buffers& buffers, bool glides);
bool glides(const SoundCase& situation);

} // namespace bench
