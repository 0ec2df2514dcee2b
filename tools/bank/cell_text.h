// How a parameter's value is written in the table: in the unit that the plug-in displays, as short as it
// goes. Each text stands for exactly one float and each float has exactly one text, so a bank can go to the
// table and back and come out with the same bytes.
//
// A value that no short number in the unit hits, or that lies outside the parameter's range, is written as
// the normalised number itself: "p=0.123456789", or "p=0x7fc00000" for the bits of what is no number.
#pragma once

#include "parameters/parameter_table.h"

#include <optional>
#include <string>
#include <string_view>

namespace bank {

/// The column's heading: the parameter's name and the unit of its cells.
std::string columnHeading(parameters::ParameterId id);

/// The same with the name that the window shows; a table may have either.
std::string windowHeading(parameters::ParameterId id);

/// The one text of `value`, which is normalised and may be anything.
std::string cellText(parameters::ParameterId id, float value);

/// The normalised value of a cell; nothing if the text is not a number of the column's unit within its range.
std::optional<float> cellValue(parameters::ParameterId id, std::string_view text);

/// What a cell of this column may hold, for a person.
std::string cellRule(parameters::ParameterId id);

} // namespace bank
