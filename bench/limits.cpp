#include "bench/limits.h"

#include "dsp/memory_span.h"
#include "platform/large_pages.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstddef>
#include <new>

namespace bench {

namespace {

constexpr std::size_t kBatchFrames = 4096;
constexpr std::uint32_t kMemorySlots = dsp::kDelaySize;
constexpr std::uint32_t kTaps = 128;
constexpr std::uint32_t kGap = 32734; ///< samples from tap to tap
constexpr std::uint32_t kSubBlock = 64;
constexpr std::uint32_t kSamplesOfLine = 16;

// 3.5 Hz and 32 Hz at 48 kHz.
constexpr float kSweepStep = 3.5f / 48000.0f;
constexpr float kDcStep = 6.28319f / 48000.0f * 32.0f;

} // namespace

SerialWork::SerialWork()
    // A low-pass at 13 kHz and a high-pass at 200 Hz, at 48 kHz.
    : lowPass_{0.302f, 0.604f, 0.302f, -0.029f, 0.237f}, highPass_{0.987f, -1.974f, 0.987f, -1.973f, 0.974f},
      samples_(kBatchFrames) {
    std::uint32_t noise = 1;
    for (float& sample : samples_) {
        noise = noise * 1664525u + 1013904223u;
        sample = static_cast<float>(static_cast<std::int32_t>(noise)) * 0x1p-32f;
    }
}

float SerialWork::Filter::process(float x) {
    const float y = (x1 * b1 + x * b0) + x2 * b2 - y1 * a1 - y2 * a2;
    x2 = x1;
    x1 = x;
    y2 = y1;
    y1 = y;
    return y;
}

float SerialWork::step(float input) {
    const float filtered = highPass_.process(lowPass_.process(input));
    feedbackLow_ = feedbackLow_ * 0.997 + static_cast<double>(filtered) * 0.003;
    const float x = phase_ + kSweepStep;
    phase_ = x - static_cast<float>(static_cast<std::int32_t>(x + 0.5f));
    dcLeft_ = (filtered - dcLeft_) * kDcStep + dcLeft_;
    dcRight_ = (input - dcRight_) * kDcStep + dcRight_;
    return phase_ + dcLeft_ + dcRight_ + static_cast<float>(feedbackLow_);
}

double SerialWork::playBatch() {
    const double start = processorSeconds();
    float sum = 0.0f;
    for (const float sample : samples_)
        sum += step(sample);
    benchmark::DoNotOptimize(sum);
    return processorSeconds() - start;
}

Contestant SerialWork::contestant() {
    return {[this] { return playBatch(); }, static_cast<double>(kBatchFrames)};
}

LineFetching::LineFetching()
    : memory_(static_cast<float*>(
          ::operator new(kMemorySlots * sizeof(float), std::align_val_t{platform::kLargePage}))) {
    platform::preferLargePages(memory_, kMemorySlots * sizeof(float));
    std::fill_n(memory_, kMemorySlots, 0.25f);
}

LineFetching::~LineFetching() {
    ::operator delete(memory_, std::align_val_t{platform::kLargePage});
}

/// The lines of a sub-block, tap by tap; a sub-block that begins within a line shares it with the one before.
double LineFetching::playBatch() {
    const double start = processorSeconds();
    for (std::size_t frame = 0; frame < kBatchFrames; frame += kSubBlock) {
        for (std::uint32_t tap = 1; tap <= kTaps; ++tap) {
            const std::uint32_t first = writeIndex_ - tap * kGap;
            for (std::uint32_t line = 0; line < kSubBlock / kSamplesOfLine; ++line)
                sums_[line] += memory_[(first + line * kSamplesOfLine) % kMemorySlots];
        }
        writeIndex_ += kSubBlock;
    }
    benchmark::DoNotOptimize(sums_);
    return processorSeconds() - start;
}

Contestant LineFetching::contestant() {
    return {[this] { return playBatch(); }, static_cast<double>(kBatchFrames)};
}

} // namespace bench
