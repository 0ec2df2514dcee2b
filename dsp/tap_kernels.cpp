// Compiled once for each instruction set, named by INSTRUCTION_SET. All functions, those from headers
// included, are local to this file: a function shared between sets could be linked in a form that a plainer
// processor cannot run.
#include "dsp/tap_kernels.h"

#include "dsp/interpolation.h"

#include <cstring>

namespace dsp::INSTRUCTION_SET {

namespace {

#define QUILLON_QUOTED(name) #name
#define QUILLON_TEXT(name) QUILLON_QUOTED(name)

/// Frames per section; largest drift range before we gather.
constexpr std::int32_t kSectionFrames = 16;
constexpr std::int32_t kMaxDriftRange = 6;

constexpr float kMemoryLength = static_cast<float>(kDelaySize);

/// Read positions of one tap. Frame i reads at slot `drift[i]` + i, plus the fraction.
struct Positions {
    alignas(64) std::int32_t drift[kSubBlockFrames];
    alignas(64) float fraction[kSubBlockFrames];
    std::int32_t minDrift, maxDrift;
};

/// Whether the tap stays within the memory for the whole sub-block without crossing its end. If so,
/// `wrapOffset` is what all its positions need: 0 or the memory's length.
bool staysInside(const MemorySpan& memory, const Sweep& sweep, const TapPath& path, float& wrapOffset) {
    const std::int32_t end = memory.frames - 1;
    const float begin = path.times ? path.times[0] : path.time;
    const float arrival = path.times ? path.times[end] : path.time;
    const float shortest = begin < arrival ? begin : arrival;
    const float longest = begin < arrival ? arrival : begin;
    // Rounding is monotonic, so these bound every rounded position.
    float earliest = memory.writePositions[0] - longest + sweep.min;
    float latest = memory.writePositions[end] - shortest + sweep.max;
    wrapOffset = latest < 0.0f ? kMemoryLength : 0.0f;
    earliest += wrapOffset;
    latest += wrapOffset;
    return memory.writePositions[end] > 0.0f && earliest >= 0.0f && latest < kMemoryLength;
}

/// The formula of readPosition, with the wrap offset from staysInside.
template <bool moving, class Length>
void findPositions(const MemorySpan& memory, const Sweep& sweep, const TapPath& path, float wrapOffset,
                   Length frames, Positions& __restrict positions) {
    const float* const writePositions = memory.writePositions;
    const float* const times = path.times;
    const float* const lfoOffset = sweep.lfoOffset;
    const float time = path.time;
    std::int32_t minDrift = INT32_MAX;
    std::int32_t maxDrift = INT32_MIN;
    for (std::int32_t i = 0; i < frames; ++i) {
        const float p = writePositions[i] - (moving ? times[i] : time) + lfoOffset[i] + wrapOffset;
        const std::int32_t whole = static_cast<std::int32_t>(p);
        const std::int32_t drift = whole - i;
        positions.fraction[i] = p - static_cast<float>(whole);
        positions.drift[i] = drift;
        minDrift = drift < minDrift ? drift : minDrift;
        maxDrift = drift > maxDrift ? drift : maxDrift;
    }
    positions.minDrift = minDrift;
    positions.maxDrift = maxDrift;
}

/// Nearly every sub-block is full; a length known at compile time leaves loops without remainders.
template <std::int32_t length>
struct Fixed {
    constexpr operator std::int32_t() const { return length; }
};

template <std::int32_t length, class Loop>
inline auto atItsLength(std::int32_t frames, Loop loop) {
    return frames == length ? loop(Fixed<length>{}) : loop(frames);
}

using Interpolation = float (*)(const Points&, float);

/// Slots step by one per frame: four shifted loads from one array.
template <Interpolation interpolate, class Length>
void readSteady(const float* slots, const Positions& at, Length frames, float* __restrict row) {
    for (std::int32_t i = 0; i < frames; ++i)
        row[i] = interpolate({slots[i], slots[i + 1], slots[i + 2], slots[i + 3]}, at.fraction[i]);
}

/// Frames whose drift is `base` or base + 1: each selects one of two neighbouring windows of `slots`, where
/// the slots of `base` begin. Not zero if a drift is another; the row is undefined then.
template <Interpolation interpolate, class Length>
std::uint32_t readDrifting(const float* slots, std::int32_t base, const std::int32_t* drift,
                           const float* fraction, Length frames, float* __restrict row) {
    std::uint32_t others = 0;
    for (std::int32_t i = 0; i < frames; ++i) {
        const std::uint32_t extra = static_cast<std::uint32_t>(drift[i] - base);
        const bool later = extra != 0;
        others |= extra & ~1u;
        const float m0 = slots[i], m1 = slots[i + 1], m2 = slots[i + 2], m3 = slots[i + 3], m4 = slots[i + 4];
        row[i] =
            interpolate({later ? m1 : m0, later ? m2 : m1, later ? m3 : m2, later ? m4 : m3}, fraction[i]);
    }
    return others;
}

/// Slots that the sweep delays or advances a little. `slots` begins where the slots of minDrift do. False,
/// with the row undefined, where two windows per section are not enough.
template <Interpolation interpolate, class Length>
bool readSwept(const float* slots, const Positions& at, Length frames, float* row) {
    if (at.maxDrift - at.minDrift == 1)
        return readDrifting<interpolate>(slots, at.minDrift, at.drift, at.fraction, frames, row) == 0;
    if (at.maxDrift - at.minDrift > kMaxDriftRange)
        return false;
    std::uint32_t others = 0;
    for (std::int32_t begin = 0; begin < frames; begin += kSectionFrames) {
        const std::int32_t left = frames - begin;
        others |=
            atItsLength<kSectionFrames>(left < kSectionFrames ? left : kSectionFrames, [&](auto length) {
                const std::int32_t* const drift = at.drift + begin;
                const std::int32_t base = drift[0] < drift[length - 1] ? drift[0] : drift[length - 1];
                return readDrifting<interpolate>(slots + begin + (base - at.minDrift), base, drift,
                                                 at.fraction + begin, length, row + begin);
            });
    }
    return others == 0;
}

/// Slots anywhere, as in a fast glide. All points are gathered before any is used, so that their cache misses
/// overlap.
template <Interpolation interpolate, class Length>
void readScattered(const float* samples, const Positions& at, Length frames, float* __restrict row) {
    alignas(64) Points points[kSubBlockFrames];
    for (std::int32_t i = 0; i < frames; ++i)
        std::memcpy(&points[i], samples + (at.drift[i] + i - 1), sizeof(Points));
    for (std::int32_t i = 0; i < frames; ++i)
        row[i] = interpolate(points[i], at.fraction[i]);
}

template <Interpolation interpolate, class Length>
TapRead read(const MemorySpan& memory, const Sweep& sweep, const TapPath& path, Length frames, float* row) {
    float wrapOffset;
    if (!staysInside(memory, sweep, path, wrapOffset))
        return TapRead::refused;
    Positions at;
    if (path.times)
        findPositions<true>(memory, sweep, path, wrapOffset, frames, at);
    else
        findPositions<false>(memory, sweep, path, wrapOffset, frames, at);
    const std::int32_t first = at.minDrift - 1;
    const std::int32_t newest = at.maxDrift + 2;
    const std::int32_t last = newest + frames - 1;
    if (isUnwritten(memory, first, last))
        return TapRead::silence;
    const float* const slots = contiguousSlots(memory, first, last, newest);
    if (!slots)
        return TapRead::refused;
    if (at.minDrift == at.maxDrift)
        readSteady<interpolate>(slots, at, frames, row);
    else if (!readSwept<interpolate>(slots, at, frames, row))
        readScattered<interpolate>(slots - first, at, frames, row);
    return TapRead::done;
}

TapRead readCubic(const MemorySpan& memory, const Sweep& sweep, const TapPath& path, float* row) {
    return atItsLength<kSubBlockFrames>(
        memory.frames, [&](auto frames) { return read<cubic>(memory, sweep, path, frames, row); });
}

TapRead readLinear(const MemorySpan& memory, const Sweep& sweep, const TapPath& path, float* row) {
    return atItsLength<kSubBlockFrames>(
        memory.frames, [&](auto frames) { return read<linear>(memory, sweep, path, frames, row); });
}

void addTap(float* __restrict sum, const float* __restrict tap, float gain, std::int32_t frames) {
    atItsLength<kSubBlockFrames>(frames, [=](auto length) {
        for (std::int32_t i = 0; i < length; ++i)
            sum[i] += tap[i] * gain;
    });
}

/// In short sections, so that the transposition from frames to rows stays in the first cache.
void glide(const float* step, float a, float* z, float* const* rows, std::int32_t frames) {
    float now[kGlideLanes];
    for (std::int32_t lane = 0; lane < kGlideLanes; ++lane)
        now[lane] = z[lane];
    for (std::int32_t begin = 0; begin < frames; begin += kSectionFrames) {
        const std::int32_t left = frames - begin;
        atItsLength<kSectionFrames>(left < kSectionFrames ? left : kSectionFrames, [&](auto length) {
            float times[kSectionFrames][kGlideLanes];
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
