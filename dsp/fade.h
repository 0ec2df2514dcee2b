// The fade of the wet signal that masks jumping taps.
#pragma once

#include "base/truncation.h"

#include <algorithm>
#include <cstdint>

namespace dsp {

/// A trapezoid over one block: up in its first tenth, down in its last. Audio thread.
class Fade {
  public:
    /// For a block of `blockFrames`; level 1 throughout if not armed.
    Fade(std::int32_t blockFrames, bool armed) : blockFrames_(blockFrames), armed_(armed) {
        const float tenth = static_cast<float>(blockFrames) * 0.104f;
        length_ = base::trunc(tenth);
        step_ = 1.0f / tenth;
        level_ = armed ? 0.0f : 1.0f;
    }

    /// The level at frame `i` of the block. Call once per frame, in order.
    float next(std::int32_t i) {
        if (armed_) {
            if (i <= length_)
                level_ += step_;
            else if (i >= blockFrames_ - length_)
                level_ -= step_;
            level_ = std::clamp(level_, 0.0f, 1.0f);
        }
        return level_;
    }

  private:
    std::int32_t blockFrames_, length_;
    bool armed_;
    float step_, level_;
};

} // namespace dsp
