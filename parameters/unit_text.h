// Values of parameters as text with a unit, for hosts that show and read such: "400 ms", "8 kHz", "Glide".
// Numbers are those that the effect's window displays.
#pragma once

#include "parameters/parameter_table.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace parameters {

/// The text for a normalised value of a live parameter.
std::string unitText(std::int32_t id, float value);

/// The normalised value whose text is nearest to what a person has written: a number with or without its
/// unit, or a name where the values have names. Numbers beyond the range give its end. Nothing if `text` is
/// neither. A decimal point is a point, letters may be of any case.
std::optional<float> valueOfUnitText(std::int32_t id, std::string_view text);

} // namespace parameters
