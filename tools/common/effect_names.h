// Finding an effect's parameters and programs by what people call them.
#pragma once

#include "host/plugin.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tools {

/// Whether the effect is the Quillon Multitap Delay, by its id.
bool isQuillon(const host::Plugin& plugin);

/// What the Quillon Multitap Delay's window calls one of its parameters; empty for parameters that do
/// nothing, and for any other effect.
std::string windowName(const host::Plugin& plugin, std::int32_t id);

/// The id of the parameter of this name or number. Names are those that hosts get, and those of the window;
/// they are compared as sameName() does. A name longer than the interface can tell matches by its first eight
/// characters. Throws ToolError, with names that are near, if there is none, or more than one.
std::int32_t findParameter(host::Plugin& plugin, std::string_view nameOrId);

/// The same, with nothing where findParameter() throws.
std::optional<std::int32_t> parameterNamed(host::Plugin& plugin, std::string_view name);

/// Names of all programs, by number. May leave another program selected than before, so ask an instance that
/// nobody listens to.
std::vector<std::string> programNames(host::Plugin& plugin);

/// The number of the program of this number or name; a name may be cut short if only one begins that way.
/// Throws ToolError if there is none, or more than one.
std::int32_t findProgram(const std::vector<std::string>& names, std::string_view nameOrNumber);

} // namespace tools
