// What the person wants of an effect, as the command line says it, found in the effect itself: a program by
// number or name, parameters by what they show.
#pragma once

#include "host/plugin.h"
#include "tools/common/wanted_value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tools {

/// A setting and the words it was given in, for messages.
struct SettingOption {
    Setting setting;
    std::string text;
};

/// Reads what was given as --bpm; nothing if that is empty. Throws ToolError.
std::optional<double> tempoFrom(const std::string& text);

/// Reads what was given as --set, one "PARAMETER=VALUE" each, with notes at the tempo `bpm`. Throws ToolError
/// naming the one at fault.
std::vector<SettingOption> settingsFrom(const std::vector<std::string>& texts,
                                        std::optional<double> bpm = std::nullopt);

struct ParameterValue {
    std::int32_t id = 0;
    float value = 0.0f; ///< normalised
};

/// The number of the program that was given as --program. The effect's program is the same afterwards, but
/// may have changed in between. Throws ToolError.
std::int32_t programFor(host::Plugin& asked, const std::string& nameOrNumber);

/// Which parameter, and the value that shows what is wanted. Parameters move in between. Throws ToolError.
ParameterValue valueFor(host::Plugin& asked, const Setting& setting);

/// Sets one after the other, since what an effect shows may depend on another setting. Gives the values.
/// Throws ToolError naming the one at fault.
std::vector<ParameterValue> applySettings(host::Plugin& asked, const std::vector<SettingOption>& settings);

} // namespace tools
