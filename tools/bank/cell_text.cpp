#include "tools/bank/cell_text.h"

#include "parameters/host_panel.h"
#include "parameters/law.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

namespace bank {

using namespace parameters;

namespace {

/// The three ways of reading have words instead of numbers.
struct Word {
    const char* text;
    float value;
};
constexpr Word kWords[] = {{"jump", 0.0f}, {"linear", 0.5f}, {"cubic", 1.0f}};

bool sameBits(float a, float b) {
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
}

template <class Number>
std::optional<Number> parsed(std::string_view text) {
    Number number{};
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc{} || result.ptr != end)
        return std::nullopt;
    return number;
}

const Law& lawOf(ParameterId id) {
    return parameter(id).law;
}

double shownNumber(ParameterId id, double p) {
    const double number = lawOf(id).numberFor(p);
    return id == kTaps ? std::floor(number) : number;
}

/// A count stands for the middle of the range of values that give it, where neither a host's rounding nor the
/// engine's can tip it over to the next.
double normalisedNumber(ParameterId id, double number) {
    return id == kTaps ? std::min(lawOf(id).normalised(number + 0.5), 1.0) : lawOf(id).normalised(number);
}

bool isInRange(ParameterId id, double number) {
    return number >= lawOf(id).lowest && number <= lawOf(id).highest();
}

std::optional<float> unitValue(ParameterId id, std::string_view text) {
    const auto number = parsed<double>(text);
    if (!number || !isInRange(id, *number) || (id == kTaps && *number != std::floor(*number)))
        return std::nullopt;
    return static_cast<float>(normalisedNumber(id, *number));
}

/// The text with the fewest decimals that stands for `value`; nothing if none does.
std::optional<std::string> unitText(ParameterId id, float value) {
    const double shown = shownNumber(id, static_cast<double>(value));
    if (!isInRange(id, shown))
        return std::nullopt;
    constexpr int kMostDecimals = 4;
    for (int decimals = 0; decimals <= kMostDecimals; ++decimals) {
        char text[32];
        const auto end =
            std::to_chars(text, text + sizeof text, shown, std::chars_format::fixed, decimals).ptr;
        std::string_view number(text, static_cast<std::size_t>(end - text));
        if (number.find_first_not_of("-0.") == std::string_view::npos)
            number = "0";
        const auto back = unitValue(id, number);
        if (back && sameBits(*back, value))
            return std::string(number);
    }
    return std::nullopt;
}

constexpr std::string_view kNormalisedMark = "p=";
constexpr std::string_view kBitsMark = "p=0x";

std::string normalisedText(float value) {
    char text[48];
    if (std::isfinite(value)) {
        const auto end = std::to_chars(text, text + sizeof text, value).ptr;
        return std::string(kNormalisedMark) + std::string(text, end);
    }
    const auto end = std::to_chars(text, text + sizeof text, std::bit_cast<std::uint32_t>(value), 16).ptr;
    return std::string(kBitsMark) + std::string(text, end);
}

std::optional<float> normalisedValue(std::string_view text) {
    if (text.starts_with(kBitsMark)) {
        std::uint32_t bits = 0;
        const char* end = text.data() + text.size();
        const auto result = std::from_chars(text.data() + kBitsMark.size(), end, bits, 16);
        if (result.ec != std::errc{} || result.ptr != end)
            return std::nullopt;
        return std::bit_cast<float>(bits);
    }
    const auto number = parsed<float>(text.substr(kNormalisedMark.size()));
    return number && std::isfinite(*number) ? number : std::nullopt;
}

std::string headingOf(ParameterId id, std::string_view name) {
    while (name.ends_with(' '))
        name.remove_suffix(1);
    const std::string unit = id == kSet ? "" : lawOf(id).unit;
    return std::string(name) + (unit.empty() ? "" : " [" + unit + "]");
}

} // namespace

std::string columnHeading(ParameterId id) {
    return headingOf(id, parameter(id).name);
}

std::string windowHeading(ParameterId id) {
    return headingOf(id, panelEntry(id).name);
}

std::string cellText(ParameterId id, float value) {
    if (id == kSet) {
        for (const Word& word : kWords)
            if (sameBits(word.value, value))
                return word.text;
        return normalisedText(value);
    }
    return unitText(id, value).value_or(normalisedText(value));
}

std::optional<float> cellValue(ParameterId id, std::string_view text) {
    if (text.starts_with(kNormalisedMark))
        return normalisedValue(text);
    if (id == kSet) {
        for (const Word& word : kWords)
            if (text == word.text)
                return word.value;
        return std::nullopt;
    }
    return unitValue(id, text);
}

std::string cellRule(ParameterId id) {
    if (id == kSet)
        return "jump, linear or cubic";
    const Law& law = lawOf(id);
    char lowest[16];
    char highest[16];
    const auto lowestEnd = std::to_chars(lowest, lowest + sizeof lowest, law.lowest).ptr;
    const auto highestEnd = std::to_chars(highest, highest + sizeof highest, law.highest()).ptr;
    return std::string(id == kTaps ? "a whole number" : "a number") + " from " +
           std::string(lowest, lowestEnd) + " to " + std::string(highest, highestEnd);
}

} // namespace bank
