// The files by which a bundle describes itself to hosts, in Turtle.
#pragma once

#include "presets/delay_program.h"

#include <span>
#include <string>

namespace lv2_bundle {

using Programs = std::span<const presets::DelayProgram>;

inline constexpr char kPluginFile[] = "QuillonMultitapDelay.ttl";
inline constexpr char kPresetsFile[] = "presets.ttl";

/// What hosts read of every bundle: that there is a plug-in in `module`, a file beside it, and which presets.
std::string manifest(const std::string& module, Programs programs);
/// The plug-in with its ports.
std::string plugin();
/// The programs as presets.
std::string presetValues(Programs programs);

} // namespace lv2_bundle
