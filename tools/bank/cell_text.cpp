#include "tools/bank/cell_text.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

namespace bank {

using namespace parameters;

namespace {

double square(double p) {
    return p * p;
}

/// What a column's numbers mean. Both laws are in double, so that the normalised float is the one nearest to
/// what the text says.
struct Unit {
    const char* heading; ///< behind the parameter's name
    double lowest;
    double highest;
    double (*shown)(double p);
    double (*normalised)(double number);
};

double bipolar(double p) {
    return 2.0 * p - 1.0;
}
double fromBipolar(double number) {
    return (number + 1.0) / 2.0;
}
double plain(double p) {
    return p;
}

constexpr Unit kBipolar = {"[-1..1]", -1.0, 1.0, bipolar, fromBipolar};
constexpr Unit kPlain = {"[0..1]", 0.0, 1.0, plain, plain};

// The length is what one gap can reach; even gaps are half of it.
constexpr Unit kLength = {"[ms]", 0.0, 2000.0, [](double p) { return square(p) * 2000.0; },
                          [](double number) { return std::sqrt(number / 2000.0); }};

// A count stands for the middle of the range of values that give it, where neither a host's rounding nor the
// engine's can tip it over to the next.
constexpr Unit kCount = {"", 1.0, 128.0, [](double p) { return std::floor(p * 127.0 + 1.0); },
                         [](double number) { return std::min((number - 0.5) / 127.0, 1.0); }};

constexpr Unit kRate = {"[Hz]", 0.0, 14.0, [](double p) { return square(p) * 14.0; },
                        [](double number) { return std::sqrt(number / 14.0); }};

constexpr Unit kBend = {"[%]", -30.0, 30.0, [](double p) { return p * 60.0 - 30.0; },
                        [](double number) { return (number + 30.0) / 60.0; }};

constexpr Unit kLowPass = {"[Hz]", 500.0, 20590.0, [](double p) { return square(p) * 20090.0 + 500.0; },
                           [](double number) { return std::sqrt((number - 500.0) / 20090.0); }};

constexpr Unit kHighPass = {"[Hz]", 102.0, 2502.0, [](double p) { return square(p) * 2400.0 + 102.0; },
                            [](double number) { return std::sqrt((number - 102.0) / 2400.0); }};

constexpr Unit kShare = {"[% wet]", 0.0, 100.0, [](double p) { return p * 100.0; },
                         [](double number) { return number / 100.0; }};

/// The three ways of reading have words instead of numbers.
struct Word {
    const char* text;
    float value;
};
constexpr Word kWords[] = {{"jump", 0.0f}, {"linear", 0.5f}, {"cubic", 1.0f}};

const Unit& unitOf(ParameterId id) {
    switch (id) {
    case kBaseLength:
        return kLength;
    case kTaps:
        return kCount;
    case kLfoRate:
        return kRate;
    case kStretch:
        return kBend;
    case kPreLowPass:
        return kLowPass;
    case kPreHighPass:
        return kHighPass;
    case kDryWet:
        return kShare;
    case kAmpDecay:
    case kCurve:
    case kFeedback:
    case kPrePan:
    case kStereo:
    case kOutPan:
        return kBipolar;
    default:
        return kPlain;
    }
}

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

std::optional<float> unitValue(const Unit& unit, std::string_view text) {
    const auto number = parsed<double>(text);
    if (!number || !(*number >= unit.lowest && *number <= unit.highest))
        return std::nullopt;
    if (&unit == &kCount && *number != std::floor(*number))
        return std::nullopt;
    return static_cast<float>(unit.normalised(*number));
}

/// The text with the fewest decimals that stands for `value`; nothing if none does.
std::optional<std::string> unitText(const Unit& unit, float value) {
    const double shown = unit.shown(static_cast<double>(value));
    if (!(shown >= unit.lowest && shown <= unit.highest))
        return std::nullopt;
    constexpr int kMostDecimals = 4;
    for (int decimals = 0; decimals <= kMostDecimals; ++decimals) {
        char text[32];
        const auto end =
            std::to_chars(text, text + sizeof text, shown, std::chars_format::fixed, decimals).ptr;
        std::string_view number(text, static_cast<std::size_t>(end - text));
        if (number.find_first_not_of("-0.") == std::string_view::npos)
            number = "0";
        const auto back = unitValue(unit, number);
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

} // namespace

std::string columnHeading(ParameterId id) {
    std::string heading = parameter(id).name;
    while (heading.ends_with(' '))
        heading.pop_back();
    const std::string unit = id == kSet ? "" : unitOf(id).heading;
    return unit.empty() ? heading : heading + " " + unit;
}

std::string cellText(ParameterId id, float value) {
    if (id == kSet) {
        for (const Word& word : kWords)
            if (sameBits(word.value, value))
                return word.text;
        return normalisedText(value);
    }
    return unitText(unitOf(id), value).value_or(normalisedText(value));
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
    return unitValue(unitOf(id), text);
}

std::string cellRule(ParameterId id) {
    if (id == kSet)
        return "jump, linear or cubic";
    const Unit& unit = unitOf(id);
    char lowest[16];
    char highest[16];
    const auto lowestEnd = std::to_chars(lowest, lowest + sizeof lowest, unit.lowest).ptr;
    const auto highestEnd = std::to_chars(highest, highest + sizeof highest, unit.highest).ptr;
    return std::string(id == kTaps ? "a whole number" : "a number") + " from " +
           std::string(lowest, lowestEnd) + " to " + std::string(highest, highestEnd);
}

} // namespace bank
