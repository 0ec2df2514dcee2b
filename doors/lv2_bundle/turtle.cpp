#include "doors/lv2_bundle/turtle.h"

#include <algorithm>
#include <charconv>
#include <cstddef>

namespace lv2_bundle {

std::string decimalText(float value) {
    // "-d.dddddddde-XX", whatever the locale.
    char buffer[32];
    const char* const end =
        std::to_chars(std::begin(buffer), std::end(buffer), value, std::chars_format::scientific, 8).ptr;
    const std::string_view text(buffer, static_cast<std::size_t>(end - buffer));
    const std::size_t sign = text.front() == '-' ? 1 : 0;
    const std::size_t mark = text.find('e');
    std::string digits = text[sign] + std::string(text.substr(sign + 2, mark - sign - 2));
    const int exponent = std::stoi(std::string(text.substr(mark + 1)));

    // The digits stand behind "0." or are cut by the point; zeros fill up what is missing on either side.
    if (exponent < 0)
        digits.insert(0, static_cast<std::size_t>(-exponent), '0');
    const auto whole = static_cast<std::size_t>(std::max(exponent, 0)) + 1;
    digits.resize(std::max(digits.size(), whole + 1), '0');
    digits.resize(std::max(digits.find_last_not_of('0') + 1, whole + 1));
    return std::string(text.substr(0, sign)) + digits.substr(0, whole) + "." + digits.substr(whole);
}

std::string quoted(std::string_view text) {
    std::string literal = "\"";
    for (const char letter : text) {
        if (letter == '"' || letter == '\\')
            literal += '\\';
        literal += letter;
    }
    return literal + "\"";
}

} // namespace lv2_bundle
