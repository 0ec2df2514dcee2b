#include "base/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace base {

std::string fixedText(double value, int decimals) {
    char digits[512];
    const auto end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, decimals);
    return std::string(digits, end.ptr);
}

void float2string(float value, char* text, std::size_t maxLen) {
    constexpr std::size_t width = 8;
    const auto wide = static_cast<double>(value);
    if (wide > 99999999.0 || wide < -9999999.0) {
        text[maxLen] = '\0';
        return;
    }
    // More decimals than a float of this size has digits: cutting them is exact.
    std::string number = fixedText(wide, 60);
    if (value == 0.0f)
        number.erase(0, number.find('0'));
    const std::size_t withPoint = number.find('.') + 1;
    number.resize(std::max(std::min(width, number.size()), withPoint));
    copyText(text, number.c_str(), maxLen);
}

void int2string(std::int32_t value, char* text, std::size_t maxLen) {
    if (value >= 100000000) {
        copyText(text, "Huge!", maxLen);
        return;
    }
    std::string number = value == 0 ? std::string() : std::to_string(value);
    const std::size_t sign = value < 0 ? 1 : 0;
    number.resize(std::min(number.size(), sign + 9));
    copyText(text, number.c_str(), maxLen);
}

void dB2string(float value, char* text, std::size_t maxLen) {
    if (value <= 0.0f)
        copyText(text, "-oo", maxLen);
    else
        float2string(static_cast<float>(20.0 * std::log10(static_cast<double>(value))), text, maxLen);
}

} // namespace base
