// Compiled once for each instruction set, with INSTRUCTION_SET naming it. Everything here is local to this
// file and what comes from headers is local too: a function that two sets shared might be linked in the
// richer one's form and stop a plainer processor.
#include "dsp/tap_kernels.h"

namespace dsp::INSTRUCTION_SET {

namespace {

#define QUILLON_QUOTED(name) #name
#define QUILLON_TEXT(name) QUILLON_QUOTED(name)

constexpr float kMemoryLength = static_cast<float>(kMemorySlots);

/// Where the taps of a sub-block read: whole slots and what is left over. `drift` is what the slots have
/// moved beyond one a sample.
struct Positions {
    alignas(64) std::int32_t drift[kSubBlockFrames];
    alignas(64) float fraction[kSubBlockFrames];
    std::int32_t leastDrift, mostDrift;
};

std::int32_t least(std::int32_t a, std::int32_t b) {
    return b < a ? b : a;
}

std::int32_t most(std::int32_t a, std::int32_t b) {
    return b > a ? b : a;
}

/// The formula of readPosition. A position outside the memory, or none at all, gives a slot below the first
/// or behind the last, which nobody reads as a run.
template <bool moving>
void findPositions(const MemoryStretch& memory, const TapPath& path, Positions& positions) {
    std::int32_t leastDrift = INT32_MAX;
    std::int32_t mostDrift = INT32_MIN;
    for (std::int32_t i = 0; i < memory.frames; ++i) {
        float p = memory.writePositions[i] - (moving ? path.times[i] : path.time) + path.lfoOffset[i];
        p = p < 0.0f ? p + kMemoryLength : p;
        const float low = p > 0.0f ? p : 0.0f;
        const std::int32_t whole = static_cast<std::int32_t>(low < kMemoryLength ? low : kMemoryLength);
        positions.fraction[i] = p - static_cast<float>(whole);
        positions.drift[i] = whole - i;
        leastDrift = least(leastDrift, whole - i);
        mostDrift = most(mostDrift, whole - i);
    }
    positions.leastDrift = leastDrift;
    positions.mostDrift = mostDrift;
}

void findPositions(const MemoryStretch& memory, const TapPath& path, Positions& positions) {
    if (path.times)
        findPositions<true>(memory, path, positions);
    else
        findPositions<false>(memory, path, positions);
}

/// Points of the memory around a read position, oldest first.
struct Points {
    float s0, s1, s2, s3;
};

float cubic(const Points& points, float f) {
    const auto [s0, s1, s2, s3] = points;
    const float h = s3 * 0.5f;
    return (((s2 + s2 + s0 - (s1 * 2.5f + h)) + (((s1 - s2) * 3.0f - s0) * 0.5f + h) * f) * f +
            (s2 - s0) * 0.5f) *
               f +
           s1;
}

float linear(const Points& points, float f) {
    return (points.s2 - points.s1) * f + points.s1;
}

using Interpolation = float (*)(const Points&, float);

/// Slots step by one: four shifted looks at one run.
template <Interpolation interpolate>
void readSteady(const float* run, const Positions& at, std::int32_t frames, float* __restrict row) {
    for (std::int32_t i = 0; i < frames; ++i)
        row[i] = interpolate({run[i], run[i + 1], run[i + 2], run[i + 3]}, at.fraction[i]);
}

/// The sweep makes the slots wait or hurry a little: each sample takes one of two neighbouring looks.
template <Interpolation interpolate>
void readSlipping(const float* run, const Positions& at, std::int32_t frames, float* __restrict row) {
    for (std::int32_t i = 0; i < frames; ++i) {
        const bool later = at.drift[i] != at.leastDrift;
        const float m0 = run[i], m1 = run[i + 1], m2 = run[i + 2], m3 = run[i + 3], m4 = run[i + 4];
        row[i] =
            interpolate({later ? m1 : m0, later ? m2 : m1, later ? m3 : m2, later ? m4 : m3}, at.fraction[i]);
    }
}

/// Slots go anywhere, as in a fast glide.
template <Interpolation interpolate>
void readScattered(const float* samples, const Positions& at, std::int32_t frames, float* __restrict row) {
    for (std::int32_t i = 0; i < frames; ++i) {
        const std::int32_t slot = at.drift[i] + i;
        row[i] = interpolate({samples[slot - 1], samples[slot], samples[slot + 1], samples[slot + 2]},
                             at.fraction[i]);
    }
}

template <Interpolation interpolate>
TapRead read(const MemoryStretch& memory, const TapPath& path, float* row) {
    Positions at;
    findPositions(memory, path, at);
    const std::int32_t frames = memory.frames;
    const std::int32_t slips = at.mostDrift - at.leastDrift;
    const std::int32_t first = at.leastDrift - 1;
    const std::int32_t newest = at.mostDrift + 2;
    const std::int32_t last = newest + frames - 1;
    if (isSilent(memory, first, last))
        return TapRead::silence;
    const float* const run = runOf(memory, first, last, newest);
    if (!run)
        return TapRead::refused;
    if (slips == 0)
        readSteady<interpolate>(run, at, frames, row);
    else if (slips == 1)
        readSlipping<interpolate>(run, at, frames, row);
    else
        readScattered<interpolate>(run - first, at, frames, row);
    return TapRead::done;
}

TapRead readCubic(const MemoryStretch& memory, const TapPath& path, float* row) {
    return read<cubic>(memory, path, row);
}

TapRead readLinear(const MemoryStretch& memory, const TapPath& path, float* row) {
    return read<linear>(memory, path, row);
}

void addTap(float* __restrict sum, const float* __restrict tap, float gain, std::int32_t frames) {
    for (std::int32_t i = 0; i < frames; ++i)
        sum[i] += tap[i] * gain;
}

void glide(const float* step, float a, float* z, float* const* rows, std::int32_t frames) {
    float times[kSubBlockFrames][kGlideLanes];
    float now[kGlideLanes];
    for (std::int32_t lane = 0; lane < kGlideLanes; ++lane)
        now[lane] = z[lane];
    for (std::int32_t i = 0; i < frames; ++i)
        for (std::int32_t lane = 0; lane < kGlideLanes; ++lane) {
            now[lane] = step[lane] + a * now[lane];
            times[i][lane] = now[lane];
        }
    for (std::int32_t lane = 0; lane < kGlideLanes; ++lane) {
        z[lane] = now[lane];
        for (std::int32_t i = 0; i < frames; ++i)
            rows[lane][i] = times[i][lane];
    }
}

} // namespace

const TapKernels kTapKernels = {QUILLON_TEXT(INSTRUCTION_SET), readCubic, readLinear, addTap, glide};

} // namespace dsp::INSTRUCTION_SET
