// Numbers and texts as Turtle has them, the language that LV2 bundles describe themselves in.
#pragma once

#include <string>
#include <string_view>

namespace lv2_bundle {

/// A finite number with nine significant digits, without an exponent and always with a point: a reader takes
/// it for a decimal and gets the same bits back.
std::string decimalText(float value);

/// The text as a string literal.
std::string quoted(std::string_view text);

} // namespace lv2_bundle
