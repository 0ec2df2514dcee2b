// A small mono plug-in that doubles its input and misbehaves on request. The test that loads it reaches its
// settings and its memory of what it was told through `sampleEffect`.
#pragma once

#include "vst2/vst2.h"

#include <cstdint>
#include <string>
#include <vector>

struct SampleEffect {
    // How it comes up.
    bool comesUp = true;
    std::int32_t magic = vst2::kVstMagic;
    bool hasDispatcher = true;
    bool hasProcess = true;
    std::int32_t callsWhileMade = -1; ///< a host opcode to call with the untied record, none if negative
    bool fillsTextBuffers = false;    ///< 255 characters and no end

    // What it has seen.
    struct Asked {
        std::int32_t opcode = 0;
        std::int32_t index = 0;
        std::intptr_t value = 0;
        float opt = 0;
        std::string text;
    };
    std::vector<Asked> asked;
    std::vector<vst2::VstMidiEvent> midi;
    std::vector<std::int32_t> blocks;
    vst2::audioMasterCallback host = nullptr;
    vst2::AEffect* effect = nullptr;
    int alive = 0;
    std::vector<std::uint8_t> chunk;
};

/// Exported under this name.
using SampleEffectAccess = SampleEffect* (*)();
