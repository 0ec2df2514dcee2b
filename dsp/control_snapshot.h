// The shared controls as the audio loop sees them during one sub-block.
#pragma once

#include "dsp/pattern_record.h"
#include "dsp/shared_coefficients.h"
#include "dsp/tap_pattern.h"
#include "parameters/parameter_table.h"

#include <array>
#include <cstdint>

namespace dsp {

/// Plain copies, so that all stages of a sub-block work with the same values. Audio thread.
struct ControlSnapshot {
    std::uint32_t patternGeneration = PatternRecord::kNone; ///< of the tables below
    std::int32_t numTaps = 1;
    std::int32_t interpMode = parameters::kLinear;
    float stereo, mix, pan, depth, prePan; ///< normalised
    float feedback;                        ///< factor, -0.45..0.45
    float wetLevel;                        ///< 1..2, more for sparse patterns
    float lfoRate;                         ///< Hz
    float lfoSampleTime;                   ///< seconds
    float dcRadiansPerSample;              ///< of one Hz
    BiquadCoefficients lowPass, highPass;
    alignas(64) std::array<float, kMaxTaps> tapGain;
    alignas(64) std::array<float, kMaxTaps> tapTimeTarget; ///< in samples
};

} // namespace dsp
