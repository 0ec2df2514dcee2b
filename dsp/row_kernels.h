// Loops over the rows of a sub-block that need no memory of earlier samples, compiled once for each
// instruction set, as dsp/tap_kernels.h.
#pragma once

#include "dsp/mixing.h"

#include <cstdint>

namespace dsp {

/// The sweep's read offset in each frame of a sub-block.
struct Sweep {
    const float* lfoOffset; ///< in samples
    float min, max;         ///< of lfoOffset; NaN if an offset is above zero or NaN
};

/// Levels that glide, a value per frame.
struct SmoothedRows {
    alignas(64) Row stereo, mix, pan, depth;
};

/// The loops of one instruction set. Rows are kSubBlockFrames long, 64-byte aligned and distinct.
struct RowKernels {
    /// Fills the offsets behind `lfoOffset[0]`, each from the phase (in cycles) and the depth of the frame
    /// before it, and gives the sweep of `frames` frames.
    Sweep (*sweep)(const float* phases, float phaseMod, const float* depths, float* lfoOffset,
                   std::int32_t frames);
    void (*mixInput)(const StereoRow& dry, float pan, float* mono, std::int32_t frames);
    /// `left` and `right` may be any addresses.
    void (*mixOutput)(const StereoRow& dry, const StereoRow& wet, const SmoothedRows& levels, float* left,
                      float* right, std::int32_t frames);
};

namespace sse2 {
extern const RowKernels kRowKernels;
}
namespace avx2 {
extern const RowKernels kRowKernels;
}
namespace avx512 {
extern const RowKernels kRowKernels;
}

} // namespace dsp
