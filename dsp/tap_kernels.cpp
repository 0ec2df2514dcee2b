// Compiled once for each instruction set, named by INSTRUCTION_SET. All functions, those from headers
// included, are local to this file: a function shared between sets could be linked in a form that a plainer
// processor cannot run.
#include "dsp/tap_kernels.h"

#include "dsp/fixed_length.h"
#include "dsp/interpolation.h"

#include <cstring>

namespace dsp::INSTRUCTION_SET {

namespace {

/// Frames of a section, and the widest range of drifts that is still read in sections.
constexpr std::int32_t kSectionFrames = 16;
constexpr std::int32_t kMaxDriftRange = 6;

constexpr float kMemoryLength = static_cast<float>(kDelaySize);

/// Read positions of one tap. Frame i reads at slot `drift[i]` + i, plus the fraction.
struct TapPositions {
    alignas(64) std::int32_t drift[kSubBlockFrames];
    alignas(64) float fraction[kSubBlockFrames];
    std::int32_t minDrift, maxDrift;
};

/// Bounds of a tap's positions in a sub-block, in slots.
struct Reach {
    float earliest, latest;
    float wrapOffset; ///< what all positions need to lie in the memory: 0 or the memory's length
    bool isInside;    ///< with it, none lies outside
};

/// `begin` and `end` are the first and the last write position.
///
/// Positions are rounded at each operation, yet the bounds hold for all of them. Rounding keeps the order of
/// two numbers: the sums of the extreme terms, rounded in the same way, enclose every other sum. The extreme
/// times are the first and the last because a glide never turns, in floats either. It goes from z to
/// f(z) = step + a * z, where a is positive; f keeps the order too. Where f(z) >= z, f(f(z)) >= f(z), and so
/// on, and the same downward.
inline Reach findReach(float begin, float end, const Sweep& sweep, float firstTime, float lastTime) {
    const float shortest = firstTime < lastTime ? firstTime : lastTime;
    const float longest = firstTime < lastTime ? lastTime : firstTime;
    const float earliest = begin - longest + sweep.min;
    const float latest = end - shortest + sweep.max;
    const float wrapOffset = latest < 0.0f ? kMemoryLength : 0.0f;
    const float first = earliest + wrapOffset;
    const float last = latest + wrapOffset;
    return {first, last, wrapOffset, ((end > 0.0f) & (first >= 0.0f) & (last < kMemoryLength)) != 0};
}

/// The formula of readPosition, with the wrap offset from findReach. `times` is one per frame or, for a tap
/// that stands still, the same for all.
template <bool moving, class Length>
void findPositions(const MemorySpan& memory, const Sweep& sweep, const float* times, float wrapOffset,
                   Length frames, TapPositions& __restrict positions) {
    const float* const writePositions = memory.writePositions;
    const float* const lfoOffset = sweep.lfoOffset;
    const float time = times[0];
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

/// The same for a tap at rest under a sweep that moves it by less than one slot: its drift is `base` or the
/// next one, which is found sooner than the extremes. False, with the positions undefined, if a drift is
/// another.
template <class Length>
bool findPositionsAtRest(const MemorySpan& memory, const Sweep& sweep, float time, float wrapOffset,
                         std::int32_t base, Length frames, TapPositions& __restrict positions) {
    const float* const writePositions = memory.writePositions;
    const float* const lfoOffset = sweep.lfoOffset;
    std::uint32_t extra = 0;
    for (std::int32_t i = 0; i < frames; ++i) {
        const float p = writePositions[i] - time + lfoOffset[i] + wrapOffset;
        const std::int32_t whole = static_cast<std::int32_t>(p);
        positions.fraction[i] = p - static_cast<float>(whole);
        positions.drift[i] = whole - i;
        extra |= static_cast<std::uint32_t>(whole - i - base);
    }
    positions.minDrift = base;
    positions.maxDrift = base + static_cast<std::int32_t>(extra);
    return extra <= 1;
}

template <class Length>
void findPositions(const MemorySpan& memory, const Sweep& sweep, const TapPaths& paths, std::int32_t tap,
                   float wrapOffset, Length frames, TapPositions& positions) {
    if (paths.times[tap])
        findPositions<true>(memory, sweep, paths.times[tap], wrapOffset, frames, positions);
    else
        findPositions<false>(memory, sweep, &paths.firstTimes[tap], wrapOffset, frames, positions);
}

using Interpolate = float (*)(const Points&, float);

/// Slots step by one per frame: four shifted loads from one array.
template <Interpolate interpolate, class Length>
void readSteady(const float* slots, const TapPositions& at, Length frames, float* __restrict row) {
    for (std::int32_t i = 0; i < frames; ++i)
        row[i] = interpolate({slots[i], slots[i + 1], slots[i + 2], slots[i + 3]}, at.fraction[i]);
}

/// Frames whose drift is `base` or base + 1: each selects one of two neighbouring windows of `slots`, where
/// the slots of `base` begin. Not zero if a drift is another; the row is undefined then.
template <Interpolate interpolate, class Length>
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
template <Interpolate interpolate, class Length>
bool readSwept(const float* slots, const TapPositions& at, Length frames, float* row) {
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
template <Interpolate interpolate, class Length>
void readScattered(const float* samples, const TapPositions& at, Length frames, float* __restrict row) {
    alignas(64) Points points[kSubBlockFrames];
    for (std::int32_t i = 0; i < frames; ++i)
        std::memcpy(&points[i], samples + (at.drift[i] + i - 1), sizeof(Points));
    for (std::int32_t i = 0; i < frames; ++i)
        row[i] = interpolate(points[i], at.fraction[i]);
}

/// `slots` begins where the slots of minDrift do.
template <Interpolate interpolate, class Length>
void readRow(const float* slots, const TapPositions& at, Length frames, float* row) {
    if (at.minDrift == at.maxDrift)
        readSteady<interpolate>(slots, at, frames, row);
    else if (!readSwept<interpolate>(slots, at, frames, row))
        readScattered<interpolate>(slots - (at.minDrift - 1), at, frames, row);
}

template <Interpolate interpolate>
TapRead readTap(const MemorySpan& memory, const Sweep& sweep, const TapPaths& paths, std::int32_t tap,
                float* row) {
    const float* const writePositions = memory.writePositions;
    const Reach reach = findReach(writePositions[0], writePositions[memory.frames - 1], sweep,
                                  paths.firstTimes[tap], paths.lastTimes[tap]);
    if (!reach.isInside)
        return TapRead::refused;
    return atItsLength<kSubBlockFrames>(memory.frames, [&](auto frames) {
        TapPositions at;
        findPositions(memory, sweep, paths, tap, reach.wrapOffset, frames, at);
        const std::int32_t first = at.minDrift - 1;
        const std::int32_t newest = at.maxDrift + 2;
        const std::int32_t last = newest + frames - 1;
        if (isUnwritten(memory, first, last))
            return TapRead::silence;
        const float* const slots = contiguousSlots(memory, first, last, newest);
        if (!slots)
            return TapRead::refused;
        readRow<interpolate>(slots, at, frames, row);
        return TapRead::done;
    });
}

constexpr std::int32_t kSamplesPerCacheLine = 16;
constexpr int kSecondCacheLocality = 2; ///< the second cache has room for all taps

/// A hundred taps are more streams than processors detect. Always inlined, since compilers see no effect in a
/// function that only prefetches, and drop its calls.
[[gnu::always_inline]] inline void prefetch(const MemorySpan& memory, const TapPlan& plan, std::int32_t tap) {
    if (plan.places[tap] != TapPlace::apart && plan.places[tap] != TapPlace::behind)
        return;
    const float* slots = memory.samples + plan.firstSlots[tap];
    const std::int32_t distance = plan.lastSlots[tap] - plan.firstSlots[tap];
    // A fast glide passes more lines than it reads. It is close to a straight line within a sub-block.
    std::int32_t lines = distance / kSamplesPerCacheLine + 1;
    std::int32_t step = kSamplesPerCacheLine;
    if (lines > memory.frames) {
        lines = memory.frames;
        step = distance / lines;
    }
    for (std::int32_t line = 0; line < lines; ++line, slots += step)
        __builtin_prefetch(slots, 0, kSecondCacheLocality);
}

void prefetchFirst(const MemorySpan& memory, const TapPlan& plan, std::int32_t taps) {
    for (std::int32_t tap = 0; tap < (taps < kTapsAtOnce ? taps : kTapsAtOnce); ++tap)
        prefetch(memory, plan, tap);
}

/// Taps whose positions are found before any of them is read. With fewer, the processor learns too late which
/// way a tap is read; with more, it fetches less of the memory while it computes.
constexpr std::int32_t kTapsPositioned = 4;

template <Interpolate interpolate>
void readTaps(const MemorySpan& memory, const Sweep& sweep, const TapPaths& paths, const TapPlan& plan,
              const std::int32_t* tapNumbers, std::int32_t count, std::int32_t taps, Row* rows) {
    const bool isSlow = sweep.max - sweep.min < 1.0f;
    TapPositions positions[kTapsPositioned];
    atItsLength<kSubBlockFrames>(memory.frames, [&](auto frames) {
        for (std::int32_t first = 0; first < count; first += kTapsPositioned) {
            const std::int32_t left = count - first;
            const std::int32_t together = left < kTapsPositioned ? left : kTapsPositioned;
            for (std::int32_t k = 0; k < together; ++k) {
                const std::int32_t tap = tapNumbers[first + k];
                const float wrapOffset = plan.wrapOffsets[tap];
                if (!isSlow || paths.times[tap] ||
                    !findPositionsAtRest(memory, sweep, paths.firstTimes[tap], wrapOffset,
                                         plan.firstSlots[tap] + 1, frames, positions[k]))
                    findPositions(memory, sweep, paths, tap, wrapOffset, frames, positions[k]);
            }
            for (std::int32_t k = 0; k < together; ++k) {
                const std::int32_t tap = tapNumbers[first + k];
                readRow<interpolate>(memory.samples + (positions[k].minDrift - 1), positions[k], frames,
                                     rows[tap % kTapsAtOnce].data());
                if (tap + kTapsAtOnce < taps)
                    prefetch(memory, plan, tap + kTapsAtOnce);
            }
        }
    });
}

/// The place of a tap whose slots stay inside the memory.
inline TapPlace placeOf(const MemorySpan& memory, std::int32_t first, std::int32_t last, bool neverAhead) {
    const std::int32_t stop = memory.start + memory.frames;
    const std::int32_t writtenAfter = memory.written < stop ? stop : memory.written;
    const bool apart = ((last < memory.start) | ((first >= stop) & (last < memory.written))) != 0;
    const TapPlace touched = neverAhead ? TapPlace::behind : TapPlace::unclear;
    const TapPlace written = apart ? TapPlace::apart : touched;
    return first >= writtenAfter ? TapPlace::unwritten : written;
}

TapPlace firstPlace(const TapPlace* places, std::int32_t taps) {
    std::int32_t first = static_cast<std::int32_t>(TapPlace::unwritten);
    for (std::int32_t tap = 0; tap < taps; ++tap) {
        const auto place = static_cast<std::int32_t>(places[tap]);
        first = place < first ? place : first;
    }
    return static_cast<TapPlace>(first);
}

void planSwept(const MemorySpan& span, const Sweep& sweep, const TapPaths& paths, std::int32_t taps,
               TapPlan& __restrict plan) {
    const MemorySpan memory = span;
    const Sweep range = sweep;
    const float* const firstTimes = paths.firstTimes;
    const float* const lastTimes = paths.lastTimes;
    TapPlace* const places = plan.places;
    float* const wrapOffsets = plan.wrapOffsets;
    std::int32_t* const firstSlots = plan.firstSlots;
    std::int32_t* const lastSlots = plan.lastSlots;
    const float begin = memory.writePositions[0];
    const float end = memory.writePositions[memory.frames - 1];
    for (std::int32_t tap = 0; tap < taps; ++tap) {
        const Reach reach = findReach(begin, end, range, firstTimes[tap], lastTimes[tap]);
        const bool inside =
            (reach.isInside & (reach.earliest >= 1.0f) & (reach.latest < kMemoryLength - 4.0f)) != 0;
        const std::int32_t first = static_cast<std::int32_t>(inside ? reach.earliest : 0.0f) - 1;
        const std::int32_t last = static_cast<std::int32_t>(inside ? reach.latest : 0.0f) + 2;
        // From three samples on, the newest of four slots is at most the one that was just written.
        const bool neverAhead =
            ((reach.wrapOffset == 0.0f) & (firstTimes[tap] >= 3.0f) & (lastTimes[tap] >= 3.0f)) != 0;
        const TapPlace insidePlace = placeOf(memory, first, last, neverAhead);
        places[tap] = inside ? insidePlace : TapPlace::unclear;
        wrapOffsets[tap] = reach.wrapOffset;
        firstSlots[tap] = first;
        lastSlots[tap] = last;
    }
    plan.first = firstPlace(places, taps);
}

void planWhole(const MemorySpan& span, const TapPaths& paths, std::int32_t taps, TapPlan& __restrict plan) {
    const MemorySpan memory = span;
    const float* const times = paths.firstTimes;
    TapPlace* const places = plan.places;
    std::int32_t* const firstSlots = plan.firstSlots;
    std::int32_t* const lastSlots = plan.lastSlots;
    for (std::int32_t tap = 0; tap < taps; ++tap) {
        const std::int32_t slot = memory.start + 1 - static_cast<std::int32_t>(times[tap]);
        const std::int32_t first = slot < 0 ? slot + kDelaySize : slot;
        const std::int32_t last = first + memory.frames - 1;
        const TapPlace insidePlace = placeOf(memory, first, last, first <= memory.start);
        places[tap] = last < kDelaySize - 1 ? insidePlace : TapPlace::unclear;
        firstSlots[tap] = first;
        lastSlots[tap] = last;
    }
    plan.first = firstPlace(places, taps);
}

/// The formula of readPosition for all taps, then the samples, then what lies between them.
template <Interpolate interpolate>
std::int32_t readFrame(const TapFrame& frame, float* __restrict samples, std::int32_t* __restrict left) {
    alignas(64) std::int32_t slots[kMaxTaps];
    alignas(64) float fractions[kMaxTaps];
    alignas(64) Points points[kMaxTaps];
    const float writePosition = static_cast<float>(frame.writeIndex);
    for (std::int32_t tap = 0; tap < frame.taps; ++tap) {
        const float unwrapped = writePosition - frame.times[tap] + frame.lfoOffset;
        const float p = unwrapped < 0.0f ? unwrapped + kMemoryLength : unwrapped;
        const std::int32_t whole = static_cast<std::int32_t>(p);
        fractions[tap] = p - static_cast<float>(whole);
        slots[tap] = whole - 1;
    }
    const std::uint32_t end = frame.written > 3 ? static_cast<std::uint32_t>(frame.written - 3) : 0;
    std::int32_t count = 0;
    for (std::int32_t tap = 0; tap < frame.taps; ++tap) {
        const auto slot = static_cast<std::uint32_t>(slots[tap]);
        if (slot < end) {
            std::memcpy(&points[tap], frame.samples + slot, sizeof(Points));
        } else {
            points[tap] = {};
            left[count++] = tap;
        }
    }
    for (std::int32_t tap = 0; tap < frame.taps; ++tap)
        samples[tap] = interpolate(points[tap], fractions[tap]);
    return count;
}

/// Floats of a register, and registers for the sums of one side.
constexpr std::int32_t kLanes = REGISTER_FLOATS;
constexpr std::int32_t kSums = 4;
constexpr std::int32_t kSummedFrames = kLanes * kSums;
typedef float Lanes [[gnu::vector_size(4 * kLanes)]];

inline Lanes load(const float* from) {
    Lanes lanes;
    std::memcpy(&lanes, from, sizeof lanes);
    return lanes;
}

inline void addTap(Lanes (&sums)[kSums], const float* row, float gain) {
    for (std::int32_t k = 0; k < kSums; ++k)
        sums[k] += load(row + k * kLanes) * gain;
}

/// Prefetches a row of the delay memory.
[[gnu::always_inline]] inline void prefetchRow(const float* row) {
    for (std::int32_t i = 0; i <= kSubBlockFrames; i += kSamplesPerCacheLine)
        __builtin_prefetch(row + i, 0, kSecondCacheLocality);
}

/// Adds kSummedFrames frames, with the sums in registers. Of the rows behind those of `taps`, the first
/// `prefetched` are prefetched.
void addTapsInRegisters(const float* const* rows, const float* gains, std::int32_t taps,
                        std::int32_t prefetched, std::int32_t begin, StereoRow& sum) {
    Lanes left[kSums], right[kSums];
    std::memcpy(left, sum.left.data() + begin, sizeof left);
    std::memcpy(right, sum.right.data() + begin, sizeof right);
    for (std::int32_t tap = 0; tap < taps; tap += 2) {
        addTap(left, rows[tap] + begin, gains[tap]);
        if (tap < prefetched)
            prefetchRow(rows[taps + tap]);
        if (tap + 1 == taps)
            break;
        addTap(right, rows[tap + 1] + begin, gains[tap + 1]);
        if (tap + 1 < prefetched)
            prefetchRow(rows[taps + tap + 1]);
    }
    std::memcpy(sum.left.data() + begin, left, sizeof left);
    std::memcpy(sum.right.data() + begin, right, sizeof right);
}

/// As many taps at a time as stay in the first cache from one part of the row to the next.
void addTaps(const float* const* rows, const float* gains, std::int32_t taps, bool prefetches, StereoRow& sum,
             std::int32_t frames) {
    for (std::int32_t first = 0; first < taps; first += kTapsAtOnce) {
        const std::int32_t left = taps - first;
        const std::int32_t count = left < kTapsAtOnce ? left : kTapsAtOnce;
        const std::int32_t following = left - count < kTapsAtOnce ? left - count : kTapsAtOnce;
        std::int32_t prefetched = prefetches ? following : 0;
        std::int32_t begin = 0;
        for (; begin + kSummedFrames <= frames; begin += kSummedFrames) {
            addTapsInRegisters(rows + first, gains + first, count, prefetched, begin, sum);
            prefetched = 0;
        }
        for (std::int32_t tap = first; tap < first + count; ++tap) {
            float* const side = tap % 2 == 0 ? sum.left.data() : sum.right.data();
            if (tap - first < prefetched)
                prefetchRow(rows[tap + count]);
            for (std::int32_t i = begin; i < frames; ++i)
                side[i] += rows[tap][i] * gains[tap];
        }
    }
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

const TapKernels kTapKernels = {{readTaps<cubic>, readTap<cubic>, readFrame<cubic>},
                                {readTaps<linear>, readTap<linear>, readFrame<linear>},
                                planSwept,
                                planWhole,
                                prefetchFirst,
                                addTaps,
                                glide};

} // namespace dsp::INSTRUCTION_SET
