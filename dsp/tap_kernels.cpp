// Compiled once for each instruction set, with INSTRUCTION_SET naming it. Everything here is local to this
// file and what comes from headers is local too: a function that two sets shared might be linked in the
// richer one's form and stop a plainer processor.
#include "dsp/tap_kernels.h"

#include <cstring>

namespace dsp::INSTRUCTION_SET {

namespace {

#define QUILLON_QUOTED(name) #name
#define QUILLON_TEXT(name) QUILLON_QUOTED(name)

/// The samples that share two looks where the slots slip, and the slips from where on that is not tried.
constexpr std::int32_t kSection = 16;
constexpr std::int32_t kMostSlips = 6;

constexpr float kMemoryLength = static_cast<float>(kMemorySlots);

/// Where the taps of a sub-block read: whole slots and what is left over. `drift` is what the slots have
/// moved beyond one a sample.
struct Positions {
    alignas(64) std::int32_t drift[kSubBlockFrames];
    alignas(64) float fraction[kSubBlockFrames];
    std::int32_t leastDrift, mostDrift;
};

/// Whether the tap stays within the memory for the whole sub-block. If so, `turn` is what brings its
/// positions there: nothing, or once around.
bool staysInside(const MemoryStretch& memory, const Sweep& sweep, const TapPath& path, float& turn) {
    const std::int32_t end = memory.frames - 1;
    const float begin = path.times ? path.times[0] : path.time;
    const float arrival = path.times ? path.times[end] : path.time;
    const float shortest = begin < arrival ? begin : arrival;
    const float longest = begin < arrival ? arrival : begin;
    // Rounding keeps the order, so these bound each position however it is rounded.
    float earliest = memory.writePositions[0] - longest + sweep.least;
    float latest = memory.writePositions[end] - shortest + sweep.most;
    turn = latest < 0.0f ? kMemoryLength : 0.0f;
    earliest += turn;
    latest += turn;
    return memory.writePositions[end] > 0.0f && earliest >= 0.0f && latest < kMemoryLength;
}

/// The formula of readPosition, where staysInside has found the turn.
template <bool moving, class Length>
void findPositions(const MemoryStretch& memory, const Sweep& sweep, const TapPath& path, float turn,
                   Length frames, Positions& __restrict positions) {
    const float* const writePositions = memory.writePositions;
    const float* const times = path.times;
    const float* const lfoOffset = sweep.lfoOffset;
    const float time = path.time;
    std::int32_t leastDrift = INT32_MAX;
    std::int32_t mostDrift = INT32_MIN;
    for (std::int32_t i = 0; i < frames; ++i) {
        const float p = writePositions[i] - (moving ? times[i] : time) + lfoOffset[i] + turn;
        const std::int32_t whole = static_cast<std::int32_t>(p);
        const std::int32_t drift = whole - i;
        positions.fraction[i] = p - static_cast<float>(whole);
        positions.drift[i] = drift;
        leastDrift = drift < leastDrift ? drift : leastDrift;
        mostDrift = drift > mostDrift ? drift : mostDrift;
    }
    positions.leastDrift = leastDrift;
    positions.mostDrift = mostDrift;
}

/// Nearly every sub-block is a full one: with its length known beforehand, loops have no ends to look after.
template <std::int32_t length>
struct Fixed {
    constexpr operator std::int32_t() const { return length; }
};

template <std::int32_t length, class Loop>
inline auto atItsLength(std::int32_t frames, Loop loop) {
    return frames == length ? loop(Fixed<length>{}) : loop(frames);
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
template <Interpolation interpolate, class Length>
void readSteady(const float* run, const Positions& at, Length frames, float* __restrict row) {
    for (std::int32_t i = 0; i < frames; ++i)
        row[i] = interpolate({run[i], run[i + 1], run[i + 2], run[i + 3]}, at.fraction[i]);
}

/// Samples whose slots have drifted by `base` or by one more: each takes one of two neighbouring looks at
/// `run`, where the slots of base begin. Zero, or the row is undefined because some have drifted elsewhere.
template <Interpolation interpolate, class Length>
std::uint32_t readDrifting(const float* run, std::int32_t base, const std::int32_t* drift,
                           const float* fraction, Length frames, float* __restrict row) {
    std::uint32_t strays = 0;
    for (std::int32_t i = 0; i < frames; ++i) {
        const std::uint32_t slip = static_cast<std::uint32_t>(drift[i] - base);
        const bool later = slip != 0;
        strays |= slip & ~1u;
        const float m0 = run[i], m1 = run[i + 1], m2 = run[i + 2], m3 = run[i + 3], m4 = run[i + 4];
        row[i] =
            interpolate({later ? m1 : m0, later ? m2 : m1, later ? m3 : m2, later ? m4 : m3}, fraction[i]);
    }
    return strays;
}

/// The sweep makes the slots wait or hurry a little. `run` begins where the slots of the least drift do.
/// False where that is too much for two looks a section.
template <Interpolation interpolate, class Length>
bool readSlipping(const float* run, const Positions& at, Length frames, float* row) {
    if (at.mostDrift - at.leastDrift == 1)
        return readDrifting<interpolate>(run, at.leastDrift, at.drift, at.fraction, frames, row) == 0;
    if (at.mostDrift - at.leastDrift > kMostSlips)
        return false;
    std::uint32_t strays = 0;
    for (std::int32_t begin = 0; begin < frames; begin += kSection) {
        const std::int32_t left = frames - begin;
        strays |= atItsLength<kSection>(left < kSection ? left : kSection, [&](auto length) {
            const std::int32_t* const drift = at.drift + begin;
            const std::int32_t base = drift[0] < drift[length - 1] ? drift[0] : drift[length - 1];
            return readDrifting<interpolate>(run + begin + (base - at.leastDrift), base, drift,
                                             at.fraction + begin, length, row + begin);
        });
    }
    return strays == 0;
}

/// Slots go anywhere, as in a fast glide. What is around each is brought together first: that waits for many
/// far parts of the memory at a time.
template <Interpolation interpolate, class Length>
void readScattered(const float* samples, const Positions& at, Length frames, float* __restrict row) {
    alignas(64) Points points[kSubBlockFrames];
    for (std::int32_t i = 0; i < frames; ++i)
        std::memcpy(&points[i], samples + (at.drift[i] + i - 1), sizeof(Points));
    for (std::int32_t i = 0; i < frames; ++i)
        row[i] = interpolate(points[i], at.fraction[i]);
}

template <Interpolation interpolate, class Length>
TapRead read(const MemoryStretch& memory, const Sweep& sweep, const TapPath& path, Length frames,
             float* row) {
    float turn;
    if (!staysInside(memory, sweep, path, turn))
        return TapRead::refused;
    Positions at;
    if (path.times)
        findPositions<true>(memory, sweep, path, turn, frames, at);
    else
        findPositions<false>(memory, sweep, path, turn, frames, at);
    const std::int32_t first = at.leastDrift - 1;
    const std::int32_t newest = at.mostDrift + 2;
    const std::int32_t last = newest + frames - 1;
    if (isSilent(memory, first, last))
        return TapRead::silence;
    const float* const run = runOf(memory, first, last, newest);
    if (!run)
        return TapRead::refused;
    if (at.leastDrift == at.mostDrift)
        readSteady<interpolate>(run, at, frames, row);
    else if (!readSlipping<interpolate>(run, at, frames, row))
        readScattered<interpolate>(run - first, at, frames, row);
    return TapRead::done;
}

TapRead readCubic(const MemoryStretch& memory, const Sweep& sweep, const TapPath& path, float* row) {
    return atItsLength<kSubBlockFrames>(
        memory.frames, [&](auto frames) { return read<cubic>(memory, sweep, path, frames, row); });
}

TapRead readLinear(const MemoryStretch& memory, const Sweep& sweep, const TapPath& path, float* row) {
    return atItsLength<kSubBlockFrames>(
        memory.frames, [&](auto frames) { return read<linear>(memory, sweep, path, frames, row); });
}

void addTap(float* __restrict sum, const float* __restrict tap, float gain, std::int32_t frames) {
    atItsLength<kSubBlockFrames>(frames, [=](auto length) {
        for (std::int32_t i = 0; i < length; ++i)
            sum[i] += tap[i] * gain;
    });
}

/// In short sections, so that what turns from a sample of each tap into a row of each stays at hand.
void glide(const float* step, float a, float* z, float* const* rows, std::int32_t frames) {
    float now[kGlideLanes];
    for (std::int32_t lane = 0; lane < kGlideLanes; ++lane)
        now[lane] = z[lane];
    for (std::int32_t begin = 0; begin < frames; begin += kSection) {
        const std::int32_t left = frames - begin;
        atItsLength<kSection>(left < kSection ? left : kSection, [&](auto length) {
            float times[kSection][kGlideLanes];
            for (std::int32_t i = 0; i < length; ++i)
                for (std::int32_t lane = 0; lane < kGlideLanes; ++lane) {
                    now[lane] = step[lane] + a * now[lane];
                    times[i][lane] = now[lane];
                }
            for (std::int32_t lane = 0; lane < kGlideLanes; ++lane)
                for (std::int32_t i = 0; i < length; ++i)
                    rows[lane][begin + i] = times[i][lane];
        });
    }
    for (std::int32_t lane = 0; lane < kGlideLanes; ++lane)
        z[lane] = now[lane];
}

} // namespace

const TapKernels kTapKernels = {QUILLON_TEXT(INSTRUCTION_SET), readCubic, readLinear, addTap, glide};

} // namespace dsp::INSTRUCTION_SET
