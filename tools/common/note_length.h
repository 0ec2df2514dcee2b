// Note values such as "1/8." and how long they last at a tempo.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tools {

/// Tempos that are accepted, in quarter notes per minute.
constexpr double kSlowestBpm = 20.0;
constexpr double kFastestBpm = 400.0;

/// A note value: `count` notes of one `unit`-th of a whole note, plain, dotted or as triplets.
struct NoteValue {
    enum class Kind {
        plain,
        dotted,  ///< one and a half times as long
        triplet, ///< two thirds as long
    };
    int count = 1; ///< 1..64
    int unit = 4;  ///< 1, 2, 4, ... 64
    Kind kind = Kind::plain;

    bool operator==(const NoteValue&) const = default;
};

/// Reads "1/4", "3/16", "1/8." for dotted and "1/8t" for triplet notes; nothing for any other text.
std::optional<NoteValue> noteFrom(std::string_view text);

/// The text that noteFrom() reads.
std::string noteText(const NoteValue& note);

/// How long the note lasts at `bpm` quarter notes per minute.
double milliseconds(const NoteValue& note, double bpm);

/// The note of half the length; nothing below sixty-fourths.
std::optional<NoteValue> halved(const NoteValue& note);

/// Reads a tempo from kSlowestBpm to kFastestBpm. Throws ToolError.
double bpmFrom(std::string_view text);

} // namespace tools
