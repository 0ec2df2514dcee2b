// The loops that cost the time: one tap over a whole sub-block at once.
//
// They are plain loops over plain arrays, compiled once for each instruction set that is worth it. Nobody
// needs to know vector instructions to read or change them: the compiler makes them, and the arithmetic is
// the same to the last bit in each set, since none of them may fuse, reorder or approximate.
#pragma once

#include <cstdint>

namespace dsp {

/// The longest stretch of samples that the loop works on at a time.
constexpr std::int32_t kSubBlockFrames = 64;

/// Slots of the delay memory.
constexpr std::int32_t kMemorySlots = 4194304;

/// So many slots from the first of a sub-block on are remembered as they were before it was written: the
/// sub-block's own and the few that a tap on the oldest sample reads beyond.
constexpr std::int32_t kOvertakenSlots = kSubBlockFrames + 16;

/// So many taps glide side by side.
constexpr std::int32_t kGlideLanes = 16;

/// One sub-block's place in the delay memory. Sample i of it is written to slot `start` + i and no sub-block
/// goes past the end of the memory.
struct MemoryStretch {
    const float* samples;
    std::int32_t written;        ///< slots below this one hold signal, those above count as zero
    std::int32_t start;          ///< the slot of its first sample
    std::int32_t frames;         ///< 1..kSubBlockFrames
    const float* writePositions; ///< where the memory is written next, after each sample; a row
    const float* overtaken;      ///< kOvertakenSlots from `start` on, as they were before
    bool ahead;                  ///< none of its samples is written yet
};

/// The slots from `first` to `last` as one array, where no sample of the sub-block may see a slot in another
/// state than it had at that moment; null where there is none.
///
/// Sample i sees what samples 0 to i have written, and the slots of the samples after it as they were before.
/// The whole sub-block may be written first, and all taps read after, when a tap's slots are all behind the
/// write position as both move on, or all outside the sub-block, or all ahead of the write position, where
/// the old samples are kept. `newest` is the last slot that the first sample reads.
/// One slot behind the last may be looked at too, as long as nothing is made of it.
static inline const float* runOf(const MemoryStretch& memory, std::int32_t first, std::int32_t last,
                                 std::int32_t newest) {
    const std::int32_t start = memory.start;
    if (first < 0 || last >= kMemorySlots - 1)
        return nullptr;
    const bool outside = last < start || first >= start + memory.frames;
    const bool behind = newest <= start && !memory.ahead;
    if (last < memory.written && (outside || behind))
        return memory.samples + first;
    if (first > start && last < start + kOvertakenSlots - 1)
        return memory.overtaken + (first - start);
    return nullptr;
}

/// Whether nothing was ever written where the tap reads.
static inline bool isSilent(const MemoryStretch& memory, std::int32_t first, std::int32_t last) {
    return first >= memory.written && first > memory.start && last < kMemorySlots;
}

/// Where the sweep moves all taps in each sample of a sub-block.
struct Sweep {
    const float* lfoOffset; ///< a row, in samples
    float least, most;      ///< of the row; no numbers if one in the row is none
};

/// Where a tap is in each sample of a sub-block.
struct TapPath {
    const float* times; ///< a row that rises or falls, or null where the tap stands still
    float time;         ///< in samples, where it does
};

/// What became of an attempt to read a tap over a whole sub-block.
enum class TapRead {
    done,    ///< the row is filled
    silence, ///< the tap is where nothing has been written yet; the row is untouched and would be all zero
    refused  ///< the tap needs care, sample by sample; the row is undefined
};

/// The loops of one instruction set. Rows are kSubBlockFrames long, 64-byte aligned and not the same.
struct TapKernels {
    const char* instructionSet;
    TapRead (*readCubic)(const MemoryStretch&, const Sweep&, const TapPath&, float* row);
    TapRead (*readLinear)(const MemoryStretch&, const Sweep&, const TapPath&, float* row);
    /// sum += tap * gain. `tap` may lie anywhere.
    void (*addTap)(float* sum, const float* tap, float gain, std::int32_t frames);
    /// kGlideLanes glides side by side: z = step + a * z for each of `frames` samples, into a row for each.
    void (*glide)(const float* step, float a, float* z, float* const* rows, std::int32_t frames);
};

namespace sse2 {
extern const TapKernels kTapKernels;
}
namespace avx2 {
extern const TapKernels kTapKernels;
}
namespace avx512 {
extern const TapKernels kTapKernels;
}

} // namespace dsp
