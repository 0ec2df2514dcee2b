// The files by which a bundle describes itself to hosts, in Turtle.
#pragma once

#include "presets/delay_program.h"

#include <span>
#include <string>

namespace lv2_bundle {

using Programs = std::span<const presets::DelayProgram>;

inline constexpr char kPluginFile[] = "QuillonMultitapDelay.ttl";
inline constexpr char kPresetsFile[] = "presets.ttl";

/// The files that hosts load.
struct Modules {
    std::string plugin;
    std::string window;
};

/// What hosts read of every bundle: that there is a plug-in with a window, where, and which presets.
std::string manifest(const Modules& modules, Programs programs);
/// The plug-in with its ports, and its window.
std::string plugin();
/// The programs as presets.
std::string presetValues(Programs programs);

} // namespace lv2_bundle
