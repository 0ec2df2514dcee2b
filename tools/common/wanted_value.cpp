#include "tools/common/wanted_value.h"

#include "tools/common/text.h"
#include "tools/common/tool_error.h"

namespace tools {

namespace {

constexpr std::string_view kDisplayPrefix = "display:";

WantedValue shownValue(std::string_view text) {
    WantedValue wanted;
    wanted.text = trimmed(text);
    if (wanted.text.empty())
        throw ToolError("write the displayed value after \"display:\"");
    const auto number = leadingNumber(text);
    const bool isNumber =
        number && (number->rest.empty() || unitNamed(number->rest).kind != Unit::Kind::none);
    wanted.kind = isNumber ? WantedValue::Kind::shownNumber : WantedValue::Kind::shownText;
    if (isNumber) {
        wanted.number = number->value;
        wanted.unit = number->rest;
    }
    return wanted;
}

WantedValue normalisedValue(std::string_view text, double number) {
    if (number < 0.0 || number > 1.0)
        throw ToolError(
            "a value without a unit must be from 0 to 1; for the displayed value, write display:" +
            printable(text) + ", or add a unit such as ms or %");
    WantedValue wanted;
    wanted.number = number;
    wanted.text = text;
    return wanted;
}

WantedValue noteAt(const NoteValue& note, std::optional<double> bpm) {
    if (!bpm)
        throw ToolError(inQuotes(noteText(note)) + " is a note length and needs a tempo; add --bpm");
    WantedValue wanted;
    wanted.kind = WantedValue::Kind::shownNumber;
    wanted.number = milliseconds(note, *bpm);
    wanted.unit = "ms";
    wanted.text = noteText(note) + " at " + shortText(*bpm) + " bpm";
    wanted.note = note;
    return wanted;
}

} // namespace

Unit unitNamed(std::string_view name) {
    struct Entry {
        std::string_view name;
        Unit unit;
    };
    static constexpr Entry units[] = {
        {"ms", {Unit::Kind::time, 1.0}},      {"s", {Unit::Kind::time, 1000.0}},
        {"Hz", {Unit::Kind::frequency, 1.0}}, {"kHz", {Unit::Kind::frequency, 1000.0}},
        {"dB", {Unit::Kind::level, 1.0}},     {"%", {Unit::Kind::share, 1.0}},
    };
    for (const Entry& entry : units)
        if (sameName(entry.name, name))
            return entry.unit;
    return {};
}

WantedValue wantedValue(std::string_view text, std::optional<double> bpm) {
    text = trimmed(text);
    if (beginsLike(text, kDisplayPrefix))
        return shownValue(text.substr(kDisplayPrefix.size()));
    if (const auto note = noteFrom(text))
        return noteAt(*note, bpm);
    const auto number = leadingNumber(text);
    if (number && number->rest.empty())
        return normalisedValue(text, number->value);
    if (number && unitNamed(number->rest).kind != Unit::Kind::none)
        return shownValue(text);
    throw ToolError(inQuotes(text) +
                    " is not a value: write 0 to 1, a number with a unit (ms, s, Hz, kHz, dB, %), a "
                    "note length with --bpm (1/4, 1/8., 1/8t), or display: and the displayed text");
}

Setting settingFrom(std::string_view text, std::optional<double> bpm) {
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos || trimmed(text.substr(0, equals)).empty())
        throw ToolError("write it as PARAMETER=VALUE, for example \"Feedback=0.8\"");
    return {std::string(trimmed(text.substr(0, equals))), wantedValue(text.substr(equals + 1), bpm)};
}

} // namespace tools
