#include "parameters/unit_text.h"

#include "base/ascii.h"
#include "base/number_text.h"
#include "base/truncation.h"
#include "parameters/host_panel.h"
#include "parameters/pattern_laws.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace parameters {
namespace {

/// Beyond this a frequency is written in kHz.
constexpr double kThousand = 1000.0;

constexpr bool isGain(std::int32_t id) {
    return id == kPreGain || id == kOutGain;
}

/// Whether the window shows the number without its decimals.
constexpr bool isCutToWhole(std::int32_t id) {
    return id == kBaseLength || id == kTaps || id == kStretch || id == kPreLowPass || id == kPreHighPass;
}

constexpr int decimalsOf(std::int32_t id) {
    return isGain(id) ? 2 : id == kDryWet ? 1 : 3;
}

constexpr std::string_view unitOf(std::int32_t id) {
    switch (id) {
    case kBaseLength:
        return "ms";
    case kLfoRate:
    case kPreLowPass:
    case kPreHighPass:
        return "Hz";
    case kStretch:
    case kDryWet:
        return "%";
    case kPreGain:
    case kOutGain:
        return "dB";
    default:
        return "";
    }
}

/// In the parameter's unit. Minus infinity for a gain of 0.
double numberOf(std::int32_t id, float value) {
    if (isGain(id))
        return value > 0.0f ? 20.0 * std::log10(static_cast<double>(value))
                            : -std::numeric_limits<double>::infinity();
    const float number =
        id == kBaseLength ? baseLengthOf(value, 1000.0f) : parameter(id).law.numberFor(value);
    return static_cast<double>(isCutToWhole(id) ? static_cast<float>(base::trunc(number)) : number);
}

double normalisedOf(std::int32_t id, double number) {
    if (isGain(id))
        return std::pow(10.0, number / 20.0);
    const Law& law = parameter(id).law;
    if (id == kBaseLength)
        number -= 1.0; // see baseLengthOf
    return law.normalised(std::clamp(number, law.lowest, law.highest()));
}

/// Without zeros at the end of the decimals.
std::string shortNumber(double number, int decimals) {
    std::string text = base::fixedText(number, decimals);
    if (text.find('.') != std::string::npos)
        text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.'))
        text.pop_back();
    return text == "-0" ? "0" : text;
}

std::string withUnit(std::string number, std::string_view unit) {
    return unit.empty() ? number : number.append(" ").append(unit);
}

/// Without blanks on both sides.
std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// How many of the parameter's unit one of the written unit is; nothing for another kind of unit.
std::optional<double> factorOf(std::int32_t id, std::string_view unit) {
    if (unit.empty() || base::equalIgnoringCase(unit, unitOf(id)))
        return 1.0;
    if ((unitOf(id) == "Hz" && base::equalIgnoringCase(unit, "kHz")) ||
        (unitOf(id) == "ms" && base::equalIgnoringCase(unit, "s")))
        return kThousand;
    return std::nullopt;
}

/// The number at the front of `text`, which loses it; nothing if there is none.
std::optional<double> takeNumber(std::string_view& text) {
    if (text.starts_with('+'))
        text.remove_prefix(1);
    double number = 0.0;
    const char* const end = text.data() + text.size();
    const auto [behind, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || !std::isfinite(number))
        return std::nullopt;
    text = {behind, end};
    return number;
}

/// Rounding may lead to the whole number below: the value beside it shows the one meant.
float shownAs(std::int32_t id, double number, float value) {
    constexpr double millionth = 1e-6; // "1.017" kHz are a little less than 1017 Hz
    const double whole = std::trunc(number + std::copysign(millionth, number));
    for (const float end : {0.0f, 1.0f}) {
        const float beside = std::nextafter(value, end);
        if (numberOf(id, value) != whole && numberOf(id, beside) == whole)
            return beside;
    }
    return value;
}

std::optional<float> valueOfPlace(std::string_view name) {
    for (const SetPlace& place : kSetPlaces)
        if (base::equalIgnoringCase(name, place.name))
            return place.value;
    return std::nullopt;
}

} // namespace

std::string unitText(std::int32_t id, float value) {
    if (id == kSet)
        return kSetPlaces[setPlaceOf(value)].name;
    const double number = numberOf(id, value);
    if (isGain(id) && !std::isfinite(number))
        return "-oo dB";
    if (unitOf(id) == "Hz" && number >= kThousand)
        return shortNumber(number / kThousand, 3) + " kHz";
    return withUnit(shortNumber(number, isCutToWhole(id) ? 0 : decimalsOf(id)), unitOf(id));
}

std::optional<float> valueOfUnitText(std::int32_t id, std::string_view text) {
    text = trimmed(text);
    if (id == kSet)
        return valueOfPlace(text);
    if (isGain(id) && text.starts_with("-oo"))
        return factorOf(id, trimmed(text.substr(3))) ? std::optional(0.0f) : std::nullopt;
    const std::optional<double> written = takeNumber(text);
    const std::optional<double> factor = factorOf(id, trimmed(text));
    if (!written || !factor)
        return std::nullopt;
    const double number = *written * *factor;
    const auto value = static_cast<float>(std::clamp(normalisedOf(id, number), 0.0, 1.0));
    return isCutToWhole(id) ? shownAs(id, number, value) : value;
}

} // namespace parameters
