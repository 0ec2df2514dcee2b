#include "tools/common/law_values.h"

#include "parameters/host_panel.h"
#include "parameters/pattern_laws.h"
#include "parameters/unit_text.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tools {

using namespace parameters;

namespace {

constexpr double kMillisecondsPerSecond = 1000.0;
constexpr double kPercent = 100.0;

bool hasLaw(std::int32_t id, const Law& law) {
    return &parameter(id).law == &law;
}

/// The kind of unit that values of a parameter have.
Unit::Kind kindOf(std::int32_t id) {
    switch (id) {
    case kTaps:
    case kSet:
        return Unit::Kind::none;
    case kBaseLength:
        return Unit::Kind::time;
    case kLfoRate:
    case kPreLowPass:
    case kPreHighPass:
        return Unit::Kind::frequency;
    case kPreGain:
    case kOutGain:
        return Unit::Kind::level;
    default:
        return Unit::Kind::share;
    }
}

/// The unit that messages about a parameter use.
std::string unitOf(Unit::Kind kind) {
    switch (kind) {
    case Unit::Kind::time:
        return "ms";
    case Unit::Kind::frequency:
        return "Hz";
    case Unit::Kind::level:
        return "dB";
    case Unit::Kind::share:
        return "%";
    case Unit::Kind::none:
        break;
    }
    return "";
}

struct Range {
    double lowest;
    double highest;
};

/// In the unit of messages.
Range rangeOf(std::int32_t id) {
    if (id == kBaseLength)
        return {kShortestBaseLength, kLongestBaseLength};
    if (kindOf(id) == Unit::Kind::level)
        return {-std::numeric_limits<double>::infinity(), 0.0};
    const Law& law = parameter(id).law;
    if (hasLaw(id, kBipolar) || hasLaw(id, kPlain))
        return {kPercent * law.lowest, kPercent * law.highest()};
    return {law.lowest, law.highest()};
}

std::string rangeText(std::int32_t id) {
    const Range range = rangeOf(id);
    const std::string lowest = std::isfinite(range.lowest) ? shortText(range.lowest) : "-oo";
    return lowest + " to " + shortText(range.highest) + ' ' + unitOf(kindOf(id));
}

/// At most three decimals, and none that are zero.
std::string roundedText(double number) {
    std::string text = fixedText(number, 3);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.'))
        text.pop_back();
    return text;
}

[[noreturn]] void refuseUnit(std::int32_t id, const WantedValue& wanted) {
    const std::string name = panelEntry(id).name;
    if (id == kTaps)
        throw ToolError(name + " has no unit; for 16 echoes, write display:16");
    if (id == kSet)
        throw ToolError(name + " has no unit; write display:Jump, display:Glide or display:Fine");
    throw ToolError(name + " takes no " + (wanted.note ? "note length" : inQuotes(wanted.unit)) +
                    "; it goes from " + rangeText(id));
}

[[noreturn]] void refuseNumber(std::int32_t id, double number, const WantedValue& wanted) {
    const std::string unit = unitOf(kindOf(id));
    const std::string meant = wanted.note ? " is " + roundedText(number) + ' ' + unit : " is out of range";
    throw ToolError((wanted.note ? wanted.text : inQuotes(wanted.text)) + meant + "; " + panelEntry(id).name +
                    " goes from " + rangeText(id));
}

/// What is wanted in the unit of messages.
double numberIn(std::int32_t id, const WantedValue& wanted) {
    if (wanted.note && id == kLfoRate)
        return kMillisecondsPerSecond / wanted.number;
    const Unit given = unitNamed(wanted.unit);
    const bool isNoteForFilter = wanted.note && id != kBaseLength;
    if (given.kind != kindOf(id) || isNoteForFilter)
        refuseUnit(id, wanted);
    return wanted.number * given.factor;
}

} // namespace

float baseLengthLasting(double milliseconds) {
    // The law adds one to the number; the engine, which counts samples, cuts off what is less than one.
    const auto isTooLong = [&](float value) {
        constexpr auto perSecond = static_cast<float>(kMillisecondsPerSecond);
        return static_cast<double>(baseLengthOf(value, perSecond)) >= milliseconds + 1.0;
    };
    auto value = static_cast<float>(std::min(kLongestGap.normalised(milliseconds), 1.0));
    while (value > 0.0f && isTooLong(value))
        value = std::nextafter(value, 0.0f);
    while (value < 1.0f && !isTooLong(std::nextafter(value, 1.0f)))
        value = std::nextafter(value, 1.0f);
    return value;
}

std::optional<float> valueByLaw(std::int32_t id, const WantedValue& wanted) {
    if (wanted.kind != WantedValue::Kind::shownNumber || wanted.unit.empty())
        return std::nullopt;
    const double number = numberIn(id, wanted);
    const Range range = rangeOf(id);
    if (number < range.lowest || number > range.highest)
        refuseNumber(id, number, wanted);
    if (id == kBaseLength)
        return baseLengthLasting(number);
    const bool isShown = !hasLaw(id, kBipolar) && !hasLaw(id, kPlain);
    const bool isLevel = kindOf(id) == Unit::Kind::level;
    return valueOfUnitText(id, shortText(isShown || isLevel ? number : number / kPercent));
}

} // namespace tools
