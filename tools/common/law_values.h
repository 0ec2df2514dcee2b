// Values of the Quillon Multitap Delay's own parameters, computed by the laws that the sound follows. They
// come nearer to the wanted number than the displays can tell, as those cut off decimals.
#pragma once

#include "tools/common/wanted_value.h"

#include <cstdint>
#include <optional>

namespace tools {

/// The base length, normalised, that is nearest to `milliseconds`, 1..2001: never longer than meant by more
/// than one sample, whatever the sample rate, and never shorter. Shows the number without its decimals if
/// those are zero.
float baseLengthLasting(double milliseconds);

/// The longest and the shortest that the display of the base length goes, in ms.
constexpr double kShortestBaseLength = 1.0;
constexpr double kLongestBaseLength = 2001.0;

/// The normalised value of a live parameter for a number with a unit, or a note: ms, s and notes for the base
/// length; Hz, kHz and notes (one sweep in this time) for the sweep rate; Hz and kHz for the filters; dB for
/// the gains; % for all shares, of -100 to 100 where the middle is zero. Nothing for values without a unit.
/// Throws ToolError if the unit is of another kind, or the number out of range.
std::optional<float> valueByLaw(std::int32_t id, const WantedValue& wanted);

} // namespace tools
