// What a control port is called, and where a person finds it in a host's own panel: as in the effect's
// window.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace lv2_bundle {

/// A field of the window with the controls in it.
struct Group {
    const char* name;
    const char* symbol;
};

inline constexpr std::array<Group, 4> kGroups = {
    {{"Pattern", "pattern"}, {"Motion", "motion"}, {"Input", "input"}, {"Output", "output"}}};

struct ControlPort {
    const char* name; ///< hosts keep values by it: must stay
    const Group& group;
};

/// Of a live parameter.
const ControlPort& controlPortOf(std::int32_t id);

/// A port's name in the letters that a symbol may have: "Fade / Swell" is fade_swell. Presets and projects
/// keep values by it.
std::string symbolOf(const char* name);

/// What VST hosts call the parameter, without blanks at its end.
std::string shortNameOf(std::int32_t id);

/// A value that hosts show by its text.
struct ScalePoint {
    float value; ///< normalised
    std::string label;
};

/// Of "Set" the three places that it has, in the window's words; of any other parameter five along its way,
/// with what the window displays there.
std::vector<ScalePoint> scalePointsOf(std::int32_t id);

} // namespace lv2_bundle
