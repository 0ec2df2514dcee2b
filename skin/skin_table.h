// The words of the skin language: which kinds of object there are, and which tags each of them has. The
// builder, the check of skins and the guide for skin authors go by this one table; what a control makes of
// its tags is the builder's business.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace skin {

/// What stands in a tag.
enum class TagType {
    number,  ///< an expression
    picture, ///< the name of a file
    colour,  ///< six hexadecimal digits
    flag,    ///< see isYes
    presence ///< its value is not looked at
};

struct TagRule {
    const char* name = "";
    TagType type = TagType::number;
    bool isRequired = true; ///< without it the object is not built, and a message says so
};

/// All kinds of object. The builder leaves those from viewTaps on to the effect's own editor.
enum class ObjectKind {
    constants,
    background,
    update,
    slider,
    knob,
    onOff,
    autoDisplay,
    display,
    anyDisplay,
    optionMenu,
    skinSelector,
    verticalSwitch,
    horizontalSwitch,
    kick,
    about,
    vuMeter,
    viewTaps,
    noteDisplay,
    presetsDisplay,
};

struct KindRule {
    ObjectKind kind;
    const char* name;
    std::span<const TagRule> tags; ///< in the order in which they are read
};

/// All kinds, in the order in which the plug-in tests for them.
std::span<const KindRule> skinKinds();

/// The rule of a kind or tag in any letter case; null if there is no such thing.
const KindRule* kindNamed(std::string_view name);
const TagRule* tagNamed(const KindRule& kind, std::string_view name);

/// Whether a flag says yes.
constexpr bool isYes(std::string_view value) {
    return value.starts_with('y') || value.starts_with('Y') || value.starts_with('1');
}

/// The longest constant that is defined; a longer one ends the process.
constexpr std::size_t kMostConstantBytes = 255;

/// The constants in the text of a CONSTANTS object: one a line, or several with commas between. The views are
/// into `text`; blanks behind a constant belong to it.
std::vector<std::string_view> constantsIn(std::string_view text);

} // namespace skin
