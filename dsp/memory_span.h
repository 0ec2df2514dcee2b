// The part of the delay memory that one sub-block writes, and how other code may read around it.
//
// The tap kernels include this header, so all its functions are static: a function shared between instruction
// sets could be linked in a form that a plainer processor cannot run.
#pragma once

#include <array>
#include <cstdint>

namespace dsp {

/// Slots of the delay memory.
constexpr std::int32_t kDelaySize = 4194304;

/// The audio loop works on at most this many frames at a time.
constexpr std::int32_t kSubBlockFrames = 64;

/// One signal of a sub-block, a sample per frame.
using Row = std::array<float, kSubBlockFrames>;

/// Slots from the start of a sub-block whose old samples are kept: its own, and those behind them that a tap
/// on the oldest sample reads.
constexpr std::int32_t kEvictedSlots = kSubBlockFrames + 16;

/// One sub-block's place in the delay memory. Frame i is written to slot `start` + i; a span never wraps.
struct MemorySpan {
    const float* samples;        ///< the whole memory
    std::int32_t written;        ///< slots below this one hold signal, the others count as zero
    std::int32_t start;          ///< slot of the first frame
    std::int32_t frames;         ///< 1..kSubBlockFrames
    const float* writePositions; ///< the write position after each frame
    const float* evicted;        ///< kEvictedSlots from `start`, as they were before the sub-block
    bool ahead;                  ///< no frame is written yet
};

/// The slots `first` to `last` as one array, or null where a frame could see a slot in the wrong state.
///
/// Frame i must see what frames 0 to i have written, and the slots of later frames as they were before.
/// Reading a tap for the whole sub-block at once is right when its slots are all behind the write position,
/// all outside the sub-block, or all ahead of the write position, where the evicted samples are used.
/// `newest` is the last slot that the first frame reads. One slot past `last` may be loaded as long as its
/// value is not used.
static inline const float* contiguousSlots(const MemorySpan& memory, std::int32_t first, std::int32_t last,
                                           std::int32_t newest) {
    const std::int32_t start = memory.start;
    if (first < 0 || last >= kDelaySize - 1)
        return nullptr;
    const bool outside = last < start || first >= start + memory.frames;
    const bool behind = newest <= start && !memory.ahead;
    if (last < memory.written && (outside || behind))
        return memory.samples + first;
    if (first > start && last < start + kEvictedSlots - 1)
        return memory.evicted + (first - start);
    return nullptr;
}

/// Whether none of the slots `first` to `last` has been written.
static inline bool isUnwritten(const MemorySpan& memory, std::int32_t first, std::int32_t last) {
    return first >= memory.written && first > memory.start && last < kDelaySize;
}

} // namespace dsp
