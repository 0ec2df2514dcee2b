// Turns the pattern's parameters into a time and a gain for each tap. Everything that a tap is in the ear
// follows from here: the audio loop only reads the result.
#pragma once

#include "base/shared.h"
#include "dsp/module_delay.h"
#include "parameters/parameter_table.h"

#include <array>
#include <cstdint>

namespace dsp {

/// A tap at this time or beyond has run out of memory and is silent; in samples.
constexpr float kLastTapTime = static_cast<float>(kDelaySize - 2);
/// The earliest time of a tap, in samples.
constexpr float kFirstTapTime = 3.0f;

/// The tap tables. Any thread rewrites them in place, entry by entry, while the audio thread reads.
struct TapPattern {
    base::Shared<std::int32_t> numTaps = 1;                    ///< taps in use, 1..128
    std::array<base::Shared<float>, kMaxTaps> tapGain{};       ///< 0..1; zero from numTaps on
    std::array<base::Shared<float>, kMaxTaps> tapTimeTarget{}; ///< delay from the input in whole samples
};

/// The base length in samples, from "Bs Lgh 1", normalised, at `sampleRate` Hz.
std::int32_t baseLengthOf(float baseLength, float sampleRate);

/// The part of a pattern's parameters that shapes it, all normalised.
struct PatternParameters {
    float baseLength, taps, stretch, ampDecay, curve;
};

/// All that a pattern follows from; the rate in Hz.
struct PatternSettings {
    PatternParameters parameters;
    float sampleRate;
};

/// One tap, and everything at zero. Any thread.
void clearTaps(TapPattern& pattern);

/// Computes all taps and stores them. `ampDecay` must be below 1. Any thread; audio may run.
void computeTaps(TapPattern& pattern, const PatternParameters& parameters, float sampleRate);

} // namespace dsp
