#include "tools/common/text.h"

#include "base/ascii.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace tools {

namespace {

constexpr std::string_view kBlanks = " \t\r\n\f\v";

/// Small letters, one blank between words, none at the ends.
std::string comparable(std::string_view text) {
    std::string result;
    for (char letter : trimmed(text)) {
        const bool blank = kBlanks.find(letter) != std::string_view::npos;
        if (blank && !result.empty() && result.back() == ' ')
            continue;
        result += blank ? ' ' : base::toLowerCase(letter);
    }
    return result;
}

/// from_chars knows no plus sign; people write one.
std::string_view withoutPlus(std::string_view text) {
    if (text.size() > 1 && text[0] == '+' && text[1] != '-' && text[1] != '+')
        text.remove_prefix(1);
    return text;
}

/// Length of the UTF-8 character at the front; 0 if there is none.
std::size_t characterLength(std::string_view bytes) {
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned char lead = at(0);
    const std::size_t length = lead < 0x80                   ? 1
                               : lead >= 0xC2 && lead < 0xE0 ? 2
                               : lead >= 0xE0 && lead < 0xF0 ? 3
                               : lead >= 0xF0 && lead < 0xF5 ? 4
                                                             : 0;
    if (length == 0 || length > bytes.size())
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((at(i) & 0xC0) != 0x80)
            return 0;
    const bool overlong = (lead == 0xE0 && at(1) < 0xA0) || (lead == 0xF0 && at(1) < 0x90);
    const bool noCharacter = (lead == 0xED && at(1) >= 0xA0) || (lead == 0xF4 && at(1) >= 0x90);
    return overlong || noCharacter ? 0 : length;
}

template <typename Number>
std::string shortest(Number value) {
    char buffer[32];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
    return {buffer, end};
}

} // namespace

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string lowered(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), base::toLowerCase);
    return result;
}

bool sameName(std::string_view a, std::string_view b) {
    return comparable(a) == comparable(b);
}

bool beginsLike(std::string_view name, std::string_view beginning) {
    return comparable(name).starts_with(comparable(beginning));
}

std::optional<double> numberFrom(std::string_view text) {
    const auto number = leadingNumber(text);
    return number && number->rest.empty() ? std::optional(number->value) : std::nullopt;
}

std::optional<int> countFrom(std::string_view text) {
    text = trimmed(text);
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < 0)
        return std::nullopt;
    return value;
}

std::optional<LeadingNumber> leadingNumber(std::string_view text) {
    text = withoutPlus(trimmed(text));
    LeadingNumber number;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number.value);
    if (error != std::errc() || !std::isfinite(number.value))
        return std::nullopt;
    const auto length = static_cast<std::size_t>(end - text.data());
    const std::string_view digits = text.substr(0, length);
    number.rest = trimmed(text.substr(length));
    if (const std::size_t point = digits.find('.'); point != std::string_view::npos) {
        const std::size_t behind = std::min(digits.find_first_not_of("0123456789", point + 1), length);
        number.decimals = static_cast<int>(behind - point - 1);
    }
    return number;
}

std::string fixedText(double value, int decimals) {
    char buffer[400];
    const auto end =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, decimals).ptr;
    std::string text(buffer, end);
    const bool isZero = text.find_first_not_of("-0.") == std::string::npos;
    return isZero && text.front() == '-' ? text.substr(1) : text;
}

std::string shortText(float value) {
    return shortest(value);
}

std::string shortText(double value) {
    return shortest(value);
}

std::string utf8(std::string_view bytes) {
    std::string result;
    while (!bytes.empty()) {
        const auto byte = static_cast<std::uint8_t>(bytes.front());
        const std::size_t length = characterLength(bytes);
        if (length > 0) {
            result += bytes.substr(0, length);
        } else if (byte >= 0xA0) {
            result += static_cast<char>(0xC0 | (byte >> 6));
            result += static_cast<char>(0x80 | (byte & 0x3F));
        } else {
            result += ' ';
        }
        bytes.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return result;
}

std::string printable(std::string_view bytes) {
    std::string result = utf8(bytes);
    const auto isControl = [](char byte) { return (byte >= 0 && byte < 0x20) || byte == 0x7F; };
    std::ranges::replace_if(result, isControl, ' ');
    return result;
}

std::string inQuotes(std::string_view bytes) {
    return '"' + printable(bytes) + '"';
}

} // namespace tools
