// What an effect must be like for audio to be played through it, and what the renderer is like as its host.
#pragma once

#include "host/plugin.h"

#include <cstdint>
#include <filesystem>

namespace tools::render {

/// Throws ToolError unless the effect has one or two inputs and one or two outputs and takes audio the usual
/// way.
void checkEffect(const host::Plugin& plugin, const std::filesystem::path& library);

/// How the tool behaves as a host: nothing recorded, and the rate and block size told to whoever asks.
host::HostBehaviour hostBehaviour(double sampleRate, std::int32_t blockSize);

} // namespace tools::render
