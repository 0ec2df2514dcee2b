// Finding and loading the effect's library.
#pragma once

#include "host/plugin.h"

#include <filesystem>

namespace tools {

/// `asked` if that is given; else the plug-in, beside the tool, in the stage folder of the build that the
/// tool comes from, or where it is installed. Throws ToolError if there is no such file.
std::filesystem::path libraryPath(const std::filesystem::path& asked);

/// Loads a library for the life of the process: not every library survives being unloaded, and none needs to
/// be by a tool that is about to end. Throws host::HostError.
const host::Library& loadForGood(std::filesystem::path path);

} // namespace tools
