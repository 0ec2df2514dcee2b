#include "parameters/pattern_laws.h"

#include "base/truncation.h"

#include <algorithm>
#include <cmath>

namespace parameters {

float stretchBend(float stretch) {
    const float s = 1.0f - stretch;
    const float q = s * 4.0f;
    // A bell over the parameter, turned over in its lower half so that the bend runs smoothly from end to
    // end.
    const float e = std::exp((((q - 2.0f) + q) - 2.0f) - ((s * s * 16.0f) - (q + q)));
    return s >= 0.5f ? e * 0.5f : 1.0f - e * 0.5f;
}

std::int32_t numTapsOf(float taps) {
    return std::clamp(base::trunc(taps * 127.0f + 1.0f), 1, kMaxTaps);
}

} // namespace parameters
