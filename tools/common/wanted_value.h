// Values for parameters, as people write them: "Feedback=0.8", "Bs Lgh 1=250ms", "Base length=1/8.",
// "Set=display:LFO Off,Use Pitch Off". What is written is only read here; which normalised value it stands
// for is found by valueByLaw() or DisplaySearch.
#pragma once

#include "tools/common/note_length.h"

#include <optional>
#include <string>
#include <string_view>

namespace tools {

/// One value as it was written.
struct WantedValue {
    enum class Kind {
        normalised,  ///< `number`, 0..1, is the value itself
        shownNumber, ///< the display's number is to be `number`
        shownText,   ///< the display is to be `text`
    };
    Kind kind = Kind::normalised;
    double number = 0.0;
    std::string unit; ///< as written behind a shown number; may be empty
    std::string text; ///< the value as written, without "display:"; a note with its tempo
    /// What was written if that is a note; the number is then its length in ms.
    std::optional<NoteValue> note;
};

/// Reads a value: 0..1 alone is normalised; a number with a unit, a note value and all behind "display:" is
/// what the effect is to show. `bpm` is the tempo that notes are read at. Throws ToolError for anything else.
WantedValue wantedValue(std::string_view text, std::optional<double> bpm = std::nullopt);

/// A parameter by id or name, and its value.
struct Setting {
    std::string parameter;
    WantedValue value;
};

/// Reads "PARAMETER=VALUE". Throws ToolError.
Setting settingFrom(std::string_view text, std::optional<double> bpm = std::nullopt);

/// A unit the tool knows. Units of one kind turn into each other.
struct Unit {
    enum class Kind { none, time, frequency, level, share };
    Kind kind = Kind::none;
    double factor = 1.0; ///< how many of the kind's base unit (ms, Hz, dB, %) it is
};

/// The unit of this name, letter case aside; Kind::none if the tool knows none.
Unit unitNamed(std::string_view name);

} // namespace tools
