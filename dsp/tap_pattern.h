// Computes a time and a gain for each tap from the pattern's parameters. The audio loop only reads the
// result.
#pragma once

#include "base/shared.h"
#include "dsp/memory_span.h"
#include "parameters/pattern_laws.h"

#include <array>
#include <cstdint>

namespace dsp {

using parameters::kMaxTaps;

/// A tap at this time or later does not fit into the memory and is silent; in samples.
constexpr float kLastTapTime = static_cast<float>(kDelaySize - 2);
/// The earliest time of a tap, in samples.
constexpr float kFirstTapTime = 3.0f;

/// The tap tables. Any thread rewrites them in place, entry by entry, while the audio thread reads them.
struct TapPattern {
    base::Shared<std::int32_t> numTaps = 1;                    ///< taps in use, 1..128
    std::array<base::Shared<float>, kMaxTaps> tapGain{};       ///< 0..1; zero from numTaps on
    std::array<base::Shared<float>, kMaxTaps> tapTimeTarget{}; ///< delay from the input in whole samples
};

/// The parameters that shape a pattern, normalised.
struct PatternParameters {
    float baseLength, taps, stretch, ampDecay, curve;
};

/// All inputs of a pattern; the rate in Hz.
struct PatternSettings {
    PatternParameters parameters;
    float sampleRate;
};

/// One tap, all gains and times zero. Any thread.
void clearTaps(TapPattern& pattern);

/// Computes all taps and stores them. `ampDecay` must be below 1. Any thread; audio may run.
void computeTaps(TapPattern& pattern, const PatternParameters& parameters, float sampleRate);

} // namespace dsp
