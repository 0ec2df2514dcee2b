// Finding and loading the effect's library, and making sure that it is one the tool can drive.
#pragma once

#include "host/plugin.h"

#include <filesystem>

namespace render {

/// `asked` if that is given; else the plug-in, beside the tool or in the stage folder of the build that the
/// tool comes from. Throws ToolError if there is no such file.
std::filesystem::path libraryPath(const std::filesystem::path& asked);

/// Loads a library for the life of the process: not every library survives being unloaded, and none needs to
/// be by a tool that is about to end. Throws host::HostError.
const host::Library& loadForGood(const std::filesystem::path& path);

/// Throws ToolError unless the effect has one or two inputs and one or two outputs and takes audio the usual
/// way.
void checkEffect(const host::Plugin& plugin, const std::filesystem::path& library);

/// How the tool behaves as a host: nothing recorded, and the rate and block size told to whoever asks.
host::HostBehaviour hostBehaviour(double sampleRate, std::int32_t blockSize);

} // namespace render
