#include "parameters/pattern_laws.h"

#include "base/truncation.h"
#include "parameters/law.h"

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

float baseLengthOf(float baseLength, float perSecond) {
    constexpr auto longestGap = static_cast<float>(kLongestGap.span / 1000.0); // seconds
    return (baseLength * baseLength * perSecond) * longestGap + 1.0f;
}

double feedbackFactorOf(float feedback) {
    return static_cast<double>(feedback * 0.9f) - 0.45;
}

std::int32_t numTapsOf(float taps) {
    return std::clamp(base::trunc(kTapCount.numberFor(taps)), 1, kMaxTaps);
}

} // namespace parameters
