#include "bench/preparation.h"

#include "reference/reference_engine.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace bench {

namespace {

/// After so many frames every glide has arrived.
constexpr std::int32_t kSettlingFrames = 250000;
/// So many blocks hide the jump of a pattern that does not glide.
constexpr std::int32_t kFadingBlocks = 5;
constexpr std::int32_t kFirstCountWithoutGlide = 102;
/// Blocks shorter than this follow each other: a block of one frame again and again would be DC, which the
/// filters turn into subnormal numbers.
constexpr std::int32_t kCycleFrames = 500;

/// "Taps #" for so many taps.
float tapsValue(std::int32_t taps) {
    return taps == 128 ? 1.0f : (static_cast<float>(taps) - 0.5f) / 127.0f;
}

/// "Bs Lgh 1" for an even pattern with so many samples from tap to tap.
float lengthValue(double gap) {
    return static_cast<float>(std::sqrt(gap / static_cast<double>(kSampleRate)));
}

float setValue(Read read) {
    return read == Read::cubic ? 1.0f : read == Read::linear ? 0.5f : 0.0f;
}

} // namespace

void fillWithNoise(std::span<float> samples) {
    std::uint32_t noise = 1;
    for (float& sample : samples) {
        noise = noise * 1664525u + 1013904223u;
        sample = static_cast<float>(static_cast<std::int32_t>(noise)) * 0x1p-32f;
    }
}

void Buffers::holdSilence() {
    std::fill(samples_.begin(), samples_.end(), 0.0f);
}

void Buffers::play(Subject& subject, std::int32_t frames, std::int64_t times) {
    for (std::int64_t block = 0; block < times; ++block) {
        if (position_ + frames > kCycleFrames)
            position_ = 0;
        float* const first = samples_.data() + position_;
        float* inputs[] = {first, first + kBatchFrames};
        float* outputs[] = {first + 2 * kBatchFrames, first + 3 * kBatchFrames};
        subject.process(inputs, outputs, frames);
        position_ += frames;
    }
}

void setCommonValues(Subject& subject) {
    using namespace reference;
    constexpr std::array<std::array<float, 2>, 12> values = {{{kLfoRate, 0.5f},
                                                              {kStretch, 0.5f},
                                                              {kAmpDecay, 0.3f},
                                                              {kCurve, 0.5f},
                                                              {kFeedback, 0.7f},
                                                              {kLfoDepth, 0.5f},
                                                              {kPreLowPass, 0.8f},
                                                              {kPreHighPass, 0.2f},
                                                              {kPrePan, 0.5f},
                                                              {kStereo, 0.3f},
                                                              {kDryWet, 0.5f},
                                                              {kOutPan, 0.5f}}};
    for (const auto& [id, value] : values)
        subject.setParameter(static_cast<std::int32_t>(id), value);
}

void fillMemory(Subject& subject, Buffers& buffers) {
    subject.setParameter(reference::kTaps, tapsValue(1));
    subject.setParameter(reference::kSet, setValue(Read::whole));
    buffers.play(subject, kBatchFrames, kMemoryFrames / kBatchFrames);
}

void setTaps(Subject& subject, const SoundCase& situation) {
    subject.setParameter(reference::kTaps, tapsValue(situation.taps));
    subject.setParameter(reference::kSet, setValue(situation.read));
    setPattern(subject, situation);
}

void setPattern(Subject& subject, const SoundCase& situation, bool moved) {
    double gap = 100.0;
    if (situation.place == Place::spread)
        gap = std::min(47900.0, 4190000.0 / situation.taps);
    if (situation.place == Place::minimum)
        gap = 0.0;
    subject.setParameter(reference::kBaseLength, lengthValue(moved ? gap * 0.9 + 1.0 : gap));
}

void settle(Subject& subject, Buffers& buffers, bool glides) {
    buffers.play(subject, kBatchFrames, glides ? kSettlingFrames / kBatchFrames : kFadingBlocks);
}

bool glides(const SoundCase& situation) {
    return situation.read != Read::whole && situation.taps < kFirstCountWithoutGlide;
}

} // namespace bench
