#include "tools/common/note_length.h"

#include "tools/common/text.h"
#include "tools/common/tool_error.h"

#include <algorithm>
#include <bit>
#include <charconv>

namespace tools {

namespace {

constexpr int kMostNotes = 64;
constexpr int kShortestUnit = 64;
constexpr double kMillisecondsPerMinute = 60000.0;
constexpr double kQuartersPerWhole = 4.0;

bool isDigit(char letter) {
    return letter >= '0' && letter <= '9';
}

/// The digits at the front of `text`, which loses them, as a number; nothing if there are none or too many.
std::optional<int> takeDigits(std::string_view& text) {
    int number = 0;
    const auto length =
        static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isDigit) - text.begin());
    const auto [end, error] = std::from_chars(text.data(), text.data() + length, number);
    if (error != std::errc())
        return std::nullopt;
    text.remove_prefix(length);
    return number;
}

std::optional<NoteValue::Kind> kindFrom(std::string_view mark) {
    if (mark.empty())
        return NoteValue::Kind::plain;
    if (mark == ".")
        return NoteValue::Kind::dotted;
    if (mark == "t" || mark == "T")
        return NoteValue::Kind::triplet;
    return std::nullopt;
}

double shareOf(NoteValue::Kind kind) {
    return kind == NoteValue::Kind::dotted ? 1.5 : kind == NoteValue::Kind::triplet ? 2.0 / 3.0 : 1.0;
}

} // namespace

std::optional<NoteValue> noteFrom(std::string_view text) {
    text = trimmed(text);
    const auto count = takeDigits(text);
    if (!count || !text.starts_with('/'))
        return std::nullopt;
    text.remove_prefix(1);
    const auto unit = takeDigits(text);
    const auto kind = kindFrom(text);
    if (!unit || !kind || *count < 1 || *count > kMostNotes || *unit < 1 || *unit > kShortestUnit ||
        !std::has_single_bit(static_cast<unsigned>(*unit)))
        return std::nullopt;
    return NoteValue{*count, *unit, *kind};
}

std::string noteText(const NoteValue& note) {
    const char* const mark = note.kind == NoteValue::Kind::dotted    ? "."
                             : note.kind == NoteValue::Kind::triplet ? "t"
                                                                     : "";
    return std::to_string(note.count) + '/' + std::to_string(note.unit) + mark;
}

double milliseconds(const NoteValue& note, double bpm) {
    const double quarters = kQuartersPerWhole * note.count / note.unit * shareOf(note.kind);
    return kMillisecondsPerMinute / bpm * quarters;
}

std::optional<NoteValue> halved(const NoteValue& note) {
    NoteValue half = note;
    if (note.unit < kShortestUnit)
        half.unit *= 2;
    else if (note.count % 2 == 0)
        half.count /= 2;
    else
        return std::nullopt;
    return half;
}

double bpmFrom(std::string_view text) {
    const auto bpm = numberFrom(text);
    if (!bpm || *bpm < kSlowestBpm || *bpm > kFastestBpm)
        throw ToolError(inQuotes(text) + " is not a tempo; give the beats per minute, from " +
                        shortText(kSlowestBpm) + " to " + shortText(kFastestBpm));
    return *bpm;
}

} // namespace tools
