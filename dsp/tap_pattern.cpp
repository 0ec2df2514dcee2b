#include "dsp/tap_pattern.h"

#include "base/truncation.h"
#include "parameters/pattern_laws.h"

#include <algorithm>
#include <cmath>

namespace dsp {

using base::trunc;
using parameters::baseLengthOf;
using parameters::numTapsOf;
using parameters::stretchBend;

namespace {

/// The linear ramp of the gains minus 1: zero at the loud end of the pattern.
float ramp(float ampDecay, float inverseCount, std::int32_t numTaps, std::int32_t tap) {
    if (ampDecay >= 0.5f) {
        const float slope = (1.0f - ampDecay) * (inverseCount + inverseCount) - inverseCount;
        return slope * static_cast<float>(numTaps - tap);
    }
    return ((inverseCount + inverseCount) * ampDecay - inverseCount) * static_cast<float>(tap);
}

/// The position in whole samples, limited so that it cannot overflow; beyond the memory a tap is silent
/// anyway.
std::int32_t accumulated(double position) {
    return trunc(std::min(position, 4.0 * kDelaySize));
}

float limitedGain(float gain, float time) {
    if (time >= kLastTapTime || gain < 0.0f)
        return 0.0f;
    return gain >= 1.0f ? 1.0f : gain;
}

float limitedTime(float time) {
    if (time >= kLastTapTime)
        return kLastTapTime;
    return time <= kFirstTapTime ? kFirstTapTime : time;
}

} // namespace

void clearTaps(TapPattern& pattern) {
    pattern.numTaps.store(1);
    for (std::size_t entry = 0; entry < kMaxTaps; ++entry) {
        pattern.tapGain[entry].store(0.0f);
        pattern.tapTimeTarget[entry].store(0.0f);
    }
}

void computeTaps(TapPattern& pattern, const PatternParameters& parameters, float sampleRate) {
    const double bend = static_cast<double>(stretchBend(parameters.stretch));
    const double length = trunc(baseLengthOf(parameters.baseLength, sampleRate));
    const std::int32_t numTaps = numTapsOf(parameters.taps);
    const float inverseCount = 1.0f / static_cast<float>(numTaps);
    const float exponent = parameters.curve * 1.5f + 0.5f;

    pattern.numTaps.store(numTaps);
    std::int32_t position = 0;
    for (std::int32_t tap = 0; tap < numTaps; ++tap) {
        const auto entry = static_cast<std::size_t>(tap);
        const double x = static_cast<double>(static_cast<float>(tap) * inverseCount);
        const double w = 1.0 / (std::exp(4.0 - x * 8.0) + 1.0);
        const float gain = std::pow(ramp(parameters.ampDecay, inverseCount, numTaps, tap) + 1.0f, exponent);
        position = accumulated(((1.0 - (w + w)) * bend + w) * length + static_cast<double>(position));
        const float time = limitedTime(static_cast<float>(position));
        pattern.tapTimeTarget[entry].store(time);
        pattern.tapGain[entry].store(limitedGain(gain, time));
    }
    // Unused taps keep their times, at gain zero.
    for (auto entry = static_cast<std::size_t>(numTaps); entry < kMaxTaps; ++entry) {
        pattern.tapTimeTarget[entry].store(limitedTime(pattern.tapTimeTarget[entry].load()));
        pattern.tapGain[entry].store(0.0f);
    }
}

} // namespace dsp
