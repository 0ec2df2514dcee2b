// Text helpers: numbers that read and print the same in every locale, comparison of names regardless of case
// and blanks, and bytes of unknown encoding made printable.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tools {

/// Without the blanks at both ends.
std::string_view trimmed(std::string_view text);

/// Capital letters A to Z made small.
std::string lowered(std::string_view text);

/// Whether two names are the same to a person: letter case, blanks at the ends and the width of blanks
/// between words do not count.
bool sameName(std::string_view a, std::string_view b);

/// Whether `name` begins with `beginning`, letter case aside.
bool beginsLike(std::string_view name, std::string_view beginning);

/// The number that the whole text is; nothing if it is anything else, or not finite.
std::optional<double> numberFrom(std::string_view text);

/// The whole number, not negative, that the whole text is.
std::optional<int> countFrom(std::string_view text);

/// A number at the front of a text and what stands behind it, blanks removed.
struct LeadingNumber {
    double value = 0.0;
    int decimals = 0; ///< digits behind the point
    std::string_view rest;
};
std::optional<LeadingNumber> leadingNumber(std::string_view text);

/// With this many decimals.
std::string fixedText(double value, int decimals);

/// As short as it can be and still be read back as the same value.
std::string shortText(float value);
std::string shortText(double value);

/// Valid UTF-8: bytes that are not are taken as Latin-1, the control characters of its upper half as blanks.
std::string utf8(std::string_view bytes);

/// Readable UTF-8 on one line: utf8() with a blank for each control character.
std::string printable(std::string_view bytes);

/// printable(), between double quotes.
std::string inQuotes(std::string_view bytes);

} // namespace tools
