// Sound to send through an instance, and what comes back.
#pragma once

#include "clap_host.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

namespace clap_test {

using Row = std::vector<float>;

/// -1 to just under 1.
inline Row noise(std::size_t frames, unsigned seed = 1) {
    std::mt19937 random(seed);
    Row row(frames);
    for (float& sample : row)
        sample = static_cast<float>(random() >> 8) * 0x1p-23f - 1.0f;
    return row;
}

struct Stereo {
    Row left, right;
    bool operator==(const Stereo&) const = default;
};

/// What comes out for noise in blocks of `blockLength`; `events` take effect in the first of them.
inline Stereo played(Instance& instance, std::size_t frames = 20000, std::size_t blockLength = 512,
                     Events* events = nullptr) {
    Row left = noise(frames, 1), right = noise(frames, 2);
    Stereo out = {Row(frames), Row(frames)};
    for (std::size_t first = 0; first < frames; first += blockLength) {
        float* const inputs[] = {&left[first], &right[first]};
        float* const outputs[] = {&out.left[first], &out.right[first]};
        instance.process(inputs, outputs, static_cast<std::uint32_t>(std::min(blockLength, frames - first)),
                         first == 0 ? events : nullptr);
    }
    return out;
}

/// The loudest sample of what follows a click, with `between` called behind the click.
template <class Between>
float loudestAfterClick(Instance& instance, Between between) {
    constexpr std::size_t kClickFrames = 4000; // with what the filters make of it
    constexpr std::size_t frames = 40000;
    Row click(kClickFrames), silence(frames), left(frames), right(frames);
    click[0] = 1.0f;
    float* const clicks[] = {click.data(), click.data()};
    float* const silences[] = {silence.data(), silence.data()};
    float* const outputs[] = {left.data(), right.data()};
    instance.process(clicks, outputs, kClickFrames);
    between();
    instance.process(silences, outputs, frames);
    float loudest = 0.0f;
    for (std::size_t i = 0; i < frames; ++i)
        loudest = std::max({loudest, std::abs(left[i]), std::abs(right[i])});
    return loudest;
}

} // namespace clap_test
