// What the tool says about an effect and about a finished rendering, for people and for scripts.
#pragma once

#include "host/plugin.h"
#include "tools/render/file_render.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace tools::render {

struct ParameterState {
    std::int32_t id = 0;
    std::string name;
    std::string windowName; ///< in the Quillon Multitap Delay's window; empty for other effects
    float value = 0.0f;     ///< normalised
    std::string display;
    std::string label;
};

/// An instance's program and parameters at one moment.
struct EffectState {
    std::string effectName;
    std::string vendor;
    std::int32_t program = 0;
    std::string programName;
    std::vector<ParameterState> parameters;
};

EffectState stateOf(host::Plugin& plugin);

/// The programs and parameters as a table, or as JSON.
std::string listText(const EffectState& state, const std::vector<std::string>& programs);
std::string listJson(const EffectState& state, const std::vector<std::string>& programs,
                     const std::filesystem::path& library);

struct RenderReport {
    std::filesystem::path input;
    std::filesystem::path output;
    std::filesystem::path library;
    std::filesystem::path plot; ///< empty if there is none
    std::string kind;           ///< of the output file, "WAV, 24 bit"
    bool keepsOverloads = false;
    int sampleRate = 0;
    int inputChannels = 0;
    int outputChannels = 0;
    std::int32_t blockSize = 0;
    std::int64_t preRollFrames = 0;
    bool isTailAutomatic = true;
    RenderResult result;
    EffectState state; ///< as the first sample came
    std::vector<std::string> warnings;
};

/// Samples beyond full scale that the file could not keep.
std::int64_t clippedSamples(const RenderReport& report);

/// The warnings that follow from the result itself, ready to be added.
std::vector<std::string> warningsFrom(const RenderReport& report);

std::string reportText(const RenderReport& report);
std::string reportJson(const RenderReport& report);

/// "-3.2 dBFS"; "silence" for 0.
std::string levelText(double level);

} // namespace tools::render
