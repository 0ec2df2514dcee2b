// Where each tap is in each frame of a sub-block: at its target, or on a glide to it.
#pragma once

#include "dsp/control_snapshot.h"
#include "dsp/module_delay.h"
#include "dsp/one_pole.h"
#include "dsp/tap_kernels.h"

#include <array>
#include <cstdint>
#include <span>

namespace dsp {

/// Audio thread.
class TapGlides {
  public:
    /// The next sub-block has another pattern or read mode than the last one.
    void restart() { atRest_ = false; }

    /// The paths of all taps in use for the next `frames` frames. They are valid until the next call.
    const TapPaths& advance(const ControlSnapshot& controls, const TapKernels& kernels, std::int32_t frames);

  private:
    void glide(std::span<const std::size_t> taps, const ControlSnapshot& controls, const TapKernels& kernels,
               std::int32_t frames);

    std::array<OnePole, kMaxTaps> tapSmoother_;
    TapPaths paths_{};
    bool atRest_ = false;                                ///< all taps stand still, and paths_ says where
    alignas(64) std::array<Row, kMaxTaps> tapTimeNow_{}; ///< of the taps that glide
};

} // namespace dsp
