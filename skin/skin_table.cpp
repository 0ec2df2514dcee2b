#include "skin/skin_table.h"

#include "base/ascii.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace skin {
namespace {

using enum TagType;

template <class... Names>
constexpr auto required(TagType type, Names... names) {
    return std::array{TagRule{names, type, true}...};
}

template <class... Names>
constexpr auto optional(TagType type, Names... names) {
    return std::array{TagRule{names, type, false}...};
}

/// The tags of all groups, one group behind the other.
template <std::size_t... sizes>
constexpr auto tags(const std::array<TagRule, sizes>&... groups) {
    std::array<TagRule, (sizes + ...)> all;
    auto end = all.begin();
    ((end = std::ranges::copy(groups, end).out), ...);
    return all;
}

constexpr auto kCorner = required(number, "x", "y");
constexpr auto kBox = required(number, "x", "y", "w", "h");
constexpr auto kId = required(number, "id");
constexpr auto kStyle = optional(number, "style");
constexpr auto kOffset = optional(number, "xoff", "yoff");
constexpr auto kGround = optional(picture, "bitmap_bk");
constexpr auto kGrounds = optional(picture, "bitmap_bk", "bitmap_bk_active");
constexpr auto kHandle = required(picture, "bitmap_handle");
constexpr auto kTransparent = optional(flag, "transparent");
constexpr auto kDefault = optional(number, "default");
constexpr auto kFont = tags(optional(number, "font", "halign", "txtface"), optional(presence, "transparent"),
                            optional(colour, "fontcolor", "backcolor", "framecolor", "shadowcolor"));

constexpr auto kBackground = optional(picture, "filename");
constexpr auto kUpdate = required(number, "src", "dst");
constexpr auto kSlider =
    tags(kCorner, required(number, "len", "id", "style"), kOffset, kGround, kHandle, kDefault);
constexpr auto kKnob = tags(kBox, kId, optional(flag, "stackbmp"), kOffset, kGround,
                            optional(picture, "bitmap_handle"), kTransparent, kDefault);
constexpr auto kOnOff = tags(kCorner, kId, kHandle, kDefault);
constexpr auto kAutoDisplay = tags(kBox, kId, kStyle, required(number, "link"), kGround, kFont);
constexpr auto kDisplay = tags(kBox, kId, kStyle, kGround, kFont);
constexpr auto kAnyDisplay = tags(kBox, kStyle, kGround, kFont);
constexpr auto kOptionMenu = tags(kBox, kId, kStyle, kGrounds, kFont);
constexpr auto kSkinSelector = tags(kBox, kStyle, kGrounds, kFont);
constexpr auto kSwitch = tags(kCorner, kId, required(number, "entries"), kHandle, kDefault);
constexpr auto kKick = tags(kCorner, kId, kHandle, kTransparent);
constexpr auto kAbout = tags(kBox, required(picture, "bitmap_pop"));
constexpr auto kVuMeter =
    tags(kCorner, kId, required(number, "leds", "style"), required(picture, "bitmap_off", "bitmap_on"));
constexpr auto kNoteDisplay = tags(kBox, kId, required(colour, "fontcolor", "backcolor"));
constexpr auto kPresetsDisplay = tags(kBox, required(colour, "fontcolor"));

constexpr KindRule kKinds[] = {
    {ObjectKind::constants, "CONSTANTS", {}},
    {ObjectKind::background, "background", kBackground},
    {ObjectKind::update, "update", kUpdate},
    {ObjectKind::slider, "slider", kSlider},
    {ObjectKind::knob, "knob", kKnob},
    {ObjectKind::onOff, "onoff", kOnOff},
    {ObjectKind::autoDisplay, "autodisp", kAutoDisplay},
    {ObjectKind::display, "display", kDisplay},
    {ObjectKind::anyDisplay, "anydisp", kAnyDisplay},
    {ObjectKind::optionMenu, "optionmenu", kOptionMenu},
    {ObjectKind::skinSelector, "skinselector", kSkinSelector},
    {ObjectKind::verticalSwitch, "vswitch", kSwitch},
    {ObjectKind::horizontalSwitch, "hswitch", kSwitch},
    {ObjectKind::kick, "kick", kKick},
    {ObjectKind::about, "about", kAbout},
    {ObjectKind::vuMeter, "vumeter", kVuMeter},
    {ObjectKind::viewTaps, "ViewTaps", kBox},
    {ObjectKind::noteDisplay, "NoteDisplay", kNoteDisplay},
    {ObjectKind::presetsDisplay, "PresetsDisplay", kPresetsDisplay},
};

/// The entry of this name in any letter case; null if there is none.
template <class Rule>
const Rule* ruleNamed(std::span<const Rule> rules, std::string_view name) {
    const auto found = std::ranges::find_if(
        rules, [&](const Rule& rule) { return base::equalIgnoringCase(rule.name, name); });
    return found == rules.end() ? nullptr : &*found;
}

} // namespace

std::span<const KindRule> skinKinds() {
    return kKinds;
}

const KindRule* kindNamed(std::string_view name) {
    return ruleNamed(skinKinds(), name);
}

const TagRule* tagNamed(const KindRule& kind, std::string_view name) {
    return ruleNamed(kind.tags, name);
}

std::vector<std::string_view> constantsIn(std::string_view text) {
    constexpr std::string_view separators = "\n\r,", separatorsAndBlanks = "\n\r, \t";
    std::vector<std::string_view> constants;
    while (!text.empty()) {
        const std::string_view constant = text.substr(0, text.find_first_of(separators));
        if (!constant.empty())
            constants.push_back(constant);
        text.remove_prefix(constant.size());
        text.remove_prefix(std::min(text.find_first_not_of(separatorsAndBlanks), text.size()));
    }
    return constants;
}

} // namespace skin
