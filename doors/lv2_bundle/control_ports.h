// What a control port has besides its name and group: a symbol, a short name and values with texts.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace lv2_bundle {

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
