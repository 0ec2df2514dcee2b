// The loops that take most of the time: one tap over a whole sub-block.
//
// They are plain loops over plain arrays, compiled once for each instruction set and vectorised by the
// compiler. Results are the same to the last bit in each: none of them may fuse, reorder or approximate.
#pragma once

#include "dsp/memory_span.h"

#include <cstdint>

namespace dsp {

/// Glides computed side by side.
constexpr std::int32_t kGlideLanes = 16;

/// The sweep's read offset in each frame of a sub-block.
struct Sweep {
    const float* lfoOffset; ///< in samples
    float min, max;         ///< of lfoOffset; NaN if an offset is above zero or NaN
};

/// A tap's time in each frame of a sub-block.
struct TapPath {
    const float* times; ///< monotonic, or null where the tap stands still
    float time;         ///< in samples, where it stands still
};

/// Outcome of reading a tap over a whole sub-block.
enum class TapRead {
    done,    ///< the row is filled
    silence, ///< nothing has been written there: the row is untouched and counts as zero
    refused  ///< has to be read frame by frame; the row is undefined
};

/// The loops of one instruction set. Rows are kSubBlockFrames long, 64-byte aligned and distinct.
struct TapKernels {
    const char* instructionSet;
    TapRead (*readCubic)(const MemorySpan&, const Sweep&, const TapPath&, float* row);
    TapRead (*readLinear)(const MemorySpan&, const Sweep&, const TapPath&, float* row);
    /// sum += tap * gain. `tap` may be any address.
    void (*addTap)(float* sum, const float* tap, float gain, std::int32_t frames);
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
