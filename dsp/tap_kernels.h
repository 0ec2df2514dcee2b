// The loops that take most of the time: taps over a whole sub-block, or all taps in one frame.
//
// They are plain loops over plain arrays, compiled once for each instruction set and vectorised by the
// compiler. Results are the same to the last bit in each: none of them may fuse, reorder or approximate.
#pragma once

#include "dsp/memory_span.h"
#include "dsp/row_kernels.h"
#include "parameters/pattern_laws.h"

#include <cstdint>

namespace dsp {

using parameters::kMaxTaps;

/// Glides computed side by side.
constexpr std::int32_t kGlideLanes = 16;
/// Taps read together: enough for their loads to overlap, few enough for their rows to stay in the first
/// cache.
constexpr std::int32_t kTapsAtOnce = 16;

/// Each tap's time in each frame of a sub-block, in samples. Audio thread.
struct TapPaths {
    alignas(64) float firstTimes[kMaxTaps]; ///< in the first frame
    alignas(64) float lastTimes[kMaxTaps];  ///< in the last frame
    const float* times[kMaxTaps];           ///< monotonic, or null where a tap stands still
};

/// What a tap reads during a sub-block, from what takes most care to what takes least.
enum class TapPlace : std::int32_t {
    unclear,  ///< has to be looked at for itself
    behind,   ///< slots that were written before, or in the sub-block before they are read
    apart,    ///< slots that the sub-block does not write
    unwritten ///< slots that nothing has been written to: silence
};

/// Where the taps read during a sub-block. The slots and the wrap offset of an unclear tap mean nothing.
struct TapPlan {
    TapPlace first; ///< the first in the list of places that a tap has
    alignas(64) TapPlace places[kMaxTaps];
    alignas(64) float wrapOffsets[kMaxTaps];       ///< what its positions need to be slots
    alignas(64) std::int32_t firstSlots[kMaxTaps]; ///< no slot before it is read
    alignas(64) std::int32_t lastSlots[kMaxTaps];  ///< no slot after it is read
};

/// Outcome of reading a tap over a whole sub-block.
enum class TapRead {
    done,    ///< the row is filled
    silence, ///< nothing has been written there: the row is untouched and counts as zero
    refused  ///< has to be read frame by frame; the row is undefined
};

/// All taps as they read in one frame.
struct TapFrame {
    const float* samples;    ///< the whole memory
    std::int32_t written;    ///< slots below this one hold signal, the others count as zero
    std::int32_t writeIndex; ///< slot of the next frame
    float lfoOffset;         ///< in samples; not above zero and not below minus the memory's length
    const float* times;      ///< a time per tap, in samples
    std::int32_t taps;
};

/// The loops of one instruction set. Rows are kSubBlockFrames long, 64-byte aligned and distinct.
struct TapKernels {
    struct Interpolation {
        /// Reads up to kTapsAtOnce taps of a sub-block that is written, all apart or behind, each into the
        /// row of its number modulo kTapsAtOnce. Prefetches those of `taps` that follow them by kTapsAtOnce.
        void (*readTaps)(const MemorySpan&, const Sweep&, const TapPaths&, const TapPlan&,
                         const std::int32_t* tapNumbers, std::int32_t count, std::int32_t taps, Row* rows);
        /// Reads any tap.
        TapRead (*readTap)(const MemorySpan&, const Sweep&, const TapPaths&, std::int32_t tap, float* row);
        /// Reads all taps in one frame, but for those that wrap or meet an unwritten slot: their numbers go
        /// to `left`. Gives how many there are.
        std::int32_t (*readFrame)(const TapFrame&, float* samples, std::int32_t* left);
    };
    Interpolation cubic, linear;

    /// Plans a sub-block whose taps are read between slots, or in whole slots.
    void (*planSwept)(const MemorySpan&, const Sweep&, const TapPaths&, std::int32_t taps, TapPlan&);
    void (*planWhole)(const MemorySpan&, const TapPaths&, std::int32_t taps, TapPlan&);
    /// Prefetches what the first kTapsAtOnce taps read.
    void (*prefetchFirst)(const MemorySpan&, const TapPlan&, std::int32_t taps);
    /// Adds taps in order, each times its gain, even ones to the left and odd ones to the right. The row of
    /// a tap may be any address. With `prefetches` the rows lie in the delay memory.
    void (*addTaps)(const float* const* rows, const float* gains, std::int32_t taps, bool prefetches,
                    StereoRow& sum, std::int32_t frames);
    /// kGlideLanes glides: z = step + a * z for each of `frames` frames, stored to one row per lane.
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
