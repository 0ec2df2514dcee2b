// The one table of the effect's controls. The host, the editor, MIDI and the programs all speak of a
// parameter by its id and of its value as a normalised float, nominally 0..1; what an id is called, where it
// starts and how its value reads to a person stands here and nowhere else.
#pragma once

#include "parameters/law.h"

#include <array>
#include <cstdint>

namespace parameters {

/// Every id that does something. The order is that of saved programs and must never change.
enum ParameterId : std::int32_t {
    kBaseLength = 0, ///< length of the unit that the pattern is made of
    kTaps = 1,       ///< number of taps
    kLfoRate = 2,    ///< speed of the sweep
    kStretch = 3,    ///< even, accelerating or spreading echoes
    kAmpDecay = 4,   ///< ramp of the tap levels, falling or rising
    kCurve = 5,      ///< bend of that ramp
    kFeedback = 6,
    kLfoDepth = 7,
    kSet = 8, ///< how taps are read: whole samples, linear or cubic
    kPreLowPass = 9,
    kPreHighPass = 10,
    kPrePan = 11,
    kPreGain = 12, ///< a gain by name and display only
    kStereo = 13,
    kDryWet = 14,
    kOutPan = 15,
    kOutGain = 16, ///< a gain by name and display only
};

/// Ids below this one are live.
constexpr std::int32_t kNumLiveParameters = 17;
/// What the host is told. The ids above the live ones are held free; saved programs keep a slot for each.
constexpr std::int32_t kNumParameters = 21;
/// Room for a display text with its NUL. The interface promises the plug-in less, hosts give it more.
constexpr std::int32_t kDisplayTextSize = 64;

constexpr bool isLive(std::int32_t id) {
    return static_cast<std::uint32_t>(id) < kNumLiveParameters;
}

/// Whether a change of this parameter makes the taps jump, which a fade has to mask.
constexpr bool movesTaps(std::int32_t id) {
    return id == kBaseLength || id == kTaps || id == kStretch;
}

/// Whether the picture of the echoes depends on this parameter.
constexpr bool shapesPattern(std::int32_t id) {
    return movesTaps(id) || id == kAmpDecay || id == kCurve;
}

struct Parameter {
    const char* name;   ///< as stored; two of the names end in a blank that belongs to them
    float defaultValue; ///< normalised
    const Law& law;     ///< of the number in the table of factory programs; a few displays show another
    /// Writes the value as a person reads it, at most kDisplayTextSize - 1 characters and a NUL. Any thread.
    void (*display)(float value, char* text);
};

/// The entry of any id; ids that are not live, negative ones too, share the one of "not used".
const Parameter& parameter(std::int32_t id);

/// The normalised start values by id, those of the free ids included.
std::array<float, kNumParameters> defaultValues();

/// How the taps are read. The engine has three ways; see interpolationModeOf.
enum InterpolationMode : std::int32_t { kCubic = 0, kLinear = 1, kWholeSamples = 2 };

/// The law of "Set", without a limit: values outside 0..1 may give other numbers than the three modes.
std::int32_t interpolationModeOf(float set);

} // namespace parameters
