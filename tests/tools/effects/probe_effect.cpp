// An effect for the tests of the tools, as plain as one can be in the VST 2.4 interface: a gain and one echo,
// with parameters that show numbers with a unit, words, and steps, programs whose names are alike, and MIDI
// that can be heard. What kind of library becomes of it is said by the macros that the build defines:
//
//     PROBE_INPUTS, PROBE_OUTPUTS  channels
//     PROBE_FLAGS                  flags beside "can replace" and "keeps chunks"
//     PROBE_MAGIC                  the record's mark, a four-character code
//     PROBE_GIVES_NULL             the entry point refuses
//     PROBE_PRINTS                 prints to standard output whenever it is called
//     PROBE_SHOWS_BLOCKS           puts out the length of each block, divided by 65536, in place of sound
//     PROBE_BREAKS                 puts out what is not a number from its 200000th frame on
//     PROBE_CLAIMS                 the member of the record that is 2000000000
//     PROBE_AT, PROBE_DOES         the opcode, or -1 for processReplacing, where it calls this function below

#include "vst2/vst2.h"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <thread>
#include <vector>

namespace {

using namespace vst2;

enum ParameterId { kGain, kDelay, kEcho, kWave, kTwinA, kTwinB, kSteps, kLongName, kNumParameters };
constexpr int kNumPrograms = 5;

struct Program {
    float values[kNumParameters];
};

struct Probe {
    AEffect record = {};
    Program programs[kNumPrograms] = {};
    Program loaded[kNumPrograms] = {};
    int current = 0;
    float sampleRate = 44100.0f;
    std::vector<float> memory[2];
    std::size_t position = 0;
    long long frames = 0;
    std::vector<VstMidiEvent> events;

    float value(int id) const { return programs[current].values[id]; }
};

constexpr const char* programNames[kNumPrograms] = {"First", "Second", "Second Helping", "Twice", "twice "};
constexpr const char* parameterNames[kNumParameters] = {"Gain ", "Delay", "Echo",  "Wave",
                                                        "Twin",  "Twin",  "Steps", "LongName"};
constexpr const char* labels[kNumParameters] = {"%", "s", "dB", "", "", "", "", ""};

Probe& probeOf(AEffect* effect) {
    return *static_cast<Probe*>(effect->object);
}

void say(const char* what) {
    if (PROBE_PRINTS) {
        std::printf("the library says: %s\n", what);
        std::fflush(stdout);
    }
}

// Ways to misbehave, one of which may be PROBE_DOES.

[[maybe_unused]] void behaveWell() {}

[[maybe_unused]] void writeToNowhere() {
    volatile int* volatile nowhere = nullptr;
    *nowhere = 1;
}

[[maybe_unused]] __attribute__((no_sanitize("undefined"))) void divideByNothing() {
    volatile int nothing = 0;
    nothing = 12345 / nothing;
}

[[maybe_unused]] void giveUp() {
    std::abort();
}

template <int signal>
[[maybe_unused]] void raise() {
    std::raise(signal);
}

/// Comes to an end only where the stack does.
[[maybe_unused]] int nestDeeper(const volatile char* above) {
    volatile char block[4096];
    block[0] = above ? above[0] : '\1';
    return block[0] ? nestDeeper(block) + block[0] : 0;
}

/// With folders as deep as calls, as many as a tool takes away from its own one.
[[maybe_unused]] void nestFoldersAndCallsTooDeep() {
    std::filesystem::path folder = std::filesystem::current_path();
    for (int depth = 1; depth <= 16; ++depth) {
        folder /= "deeper";
        std::filesystem::create_directory(folder);
        std::ofstream(folder / "left");
    }
    [[maybe_unused]] volatile int depth = nestDeeper(nullptr);
}

[[maybe_unused]] void nestTooDeep() {
    [[maybe_unused]] volatile int depth = nestDeeper(nullptr);
}

[[maybe_unused]] void nestTooDeepElsewhere() {
    std::thread(nestTooDeep).join();
}

[[maybe_unused]] void leave() {
    std::exit(0);
}

[[maybe_unused]] void hang() {
    std::ofstream("hanging");
    for (volatile bool isHanging = true; isHanging;) {
    }
}

void misbehave(std::int32_t opcode) {
    if (opcode == PROBE_AT)
        PROBE_DOES();
}

void showParameter(const Probe& probe, int id, char* text) {
    const double value = probe.value(id);
    static const char* const waves[] = {"Sine", "Triangle wave", "Square", "Noise"};
    switch (id) {
    case kGain:
        std::snprintf(text, 24, "%.1f", value * 100.0);
        break;
    case kDelay:
        std::snprintf(text, 24, "%.2f", value * 100.0);
        break;
    case kEcho:
        value > 0.0 ? std::snprintf(text, 24, "%.2f", 20.0 * std::log10(value))
                    : std::snprintf(text, 24, "-oo");
        break;
    case kWave:
        std::snprintf(text, 24, "%s", waves[std::clamp(static_cast<int>(value * 4.0), 0, 3)]);
        break;
    case kSteps:
        std::snprintf(text, 24, "%d", static_cast<int>(value * 10.0));
        break;
    default:
        text[0] = 0;
    }
}

void allocateMemory(Probe& probe) {
    for (auto& channel : probe.memory)
        channel.assign(static_cast<std::size_t>(probe.sampleRate * 100.0f) + 2, 0.0f);
    probe.position = 0;
}

std::intptr_t takeEvents(Probe& probe, const VstEvents& events) {
    // Declared with room for two, sent with as many as there are.
    VstEvent* const* const list = events.events;
    for (std::int32_t i = 0; i < events.numEvents; ++i)
        if (list[i]->type == kVstMidiType)
            probe.events.push_back(*reinterpret_cast<const VstMidiEvent*>(list[i]));
    return 1;
}

std::intptr_t giveChunk(Probe& probe, bool isPreset, void** data) {
    *data = isPreset ? &probe.programs[probe.current] : probe.programs;
    return isPreset ? sizeof(Program) : sizeof probe.programs;
}

std::intptr_t takeChunk(Probe& probe, bool isPreset, std::intptr_t size, const void* data) {
    std::memcpy(isPreset ? &probe.programs[probe.current] : probe.programs, data,
                static_cast<std::size_t>(size));
    return 1;
}

std::intptr_t dispatch(AEffect* effect, std::int32_t opcode, std::int32_t index, std::intptr_t value,
                       void* ptr, float opt) {
    Probe& probe = probeOf(effect);
    misbehave(opcode);
    const auto put = [&](const char* text) {
        std::strcpy(static_cast<char*>(ptr), text);
        return std::intptr_t{1};
    };
    switch (opcode) {
    case effClose:
        say("goodbye");
        // Where a library leaves things lying about.
        std::ofstream("left_behind.bin") << "something";
        delete &probe;
        return 1;
    case effSetProgram:
        probe.current = static_cast<int>(value);
        return 0;
    case effGetProgram:
        return probe.current;
    case effGetProgramName:
        return put(programNames[probe.current]);
    case effGetParamLabel:
        return put(labels[index]);
    case effGetParamDisplay:
        showParameter(probe, index, static_cast<char*>(ptr));
        return 1;
    case effGetParamName:
        return put(parameterNames[index]);
    case effSetSampleRate:
        probe.sampleRate = opt;
        allocateMemory(probe);
        return 0;
    case effGetChunk:
        return giveChunk(probe, index != 0, static_cast<void**>(ptr));
    case effSetChunk:
        return takeChunk(probe, index != 0, value, ptr);
    case effProcessEvents:
        return takeEvents(probe, *static_cast<const VstEvents*>(ptr));
    case effGetEffectName:
        return put("probe \"effect\"");
    default:
        return 0;
    }
}

float sampleAt(Probe& probe, int channel, float in, std::int32_t frames) {
    if (PROBE_SHOWS_BLOCKS)
        return static_cast<float>(frames) / 65536.0f;
    if (PROBE_BREAKS && probe.frames >= 200000)
        return std::numeric_limits<float>::quiet_NaN();
    auto& memory = probe.memory[channel];
    memory[probe.position % memory.size()] = in;
    const auto delay = static_cast<std::size_t>(std::lround(probe.value(kDelay) * 100.0f * probe.sampleRate));
    const float echo = memory[(probe.position + memory.size() - delay) % memory.size()];
    return in * probe.value(kGain) + echo * probe.value(kEcho);
}

/// Notes are heard as a single sample on the first output, controllers on the last, program changes as a
/// negative one on the first.
void addEvents(Probe& probe, float** outputs, std::int32_t frames) {
    for (const VstMidiEvent& event : probe.events) {
        if (event.deltaFrames < 0 || event.deltaFrames >= frames)
            continue;
        const int status = event.midiData[0] & 0xF0;
        float& first = outputs[0][event.deltaFrames];
        float& last = outputs[PROBE_OUTPUTS - 1][event.deltaFrames];
        if (status == 0x90)
            first += static_cast<float>(event.midiData[2]) / 127.0f;
        else if (status == 0xB0)
            last += static_cast<float>(event.midiData[2]) / 127.0f;
        else if (status == 0xC0)
            first -= static_cast<float>(event.midiData[1]) / 127.0f;
    }
    probe.events.clear();
}

void process(AEffect* effect, float** inputs, float** outputs, std::int32_t frames) {
    Probe& probe = probeOf(effect);
    say("process");
    misbehave(-1);
    for (std::int32_t i = 0; i < frames; ++i, ++probe.frames, ++probe.position) {
        float in[2] = {};
        for (int channel = 0; channel < PROBE_INPUTS && channel < 2; ++channel)
            in[channel] = inputs[channel][i];
        for (int channel = 0; channel < PROBE_OUTPUTS; ++channel)
            outputs[channel][i] =
                sampleAt(probe, channel & 1, in[PROBE_INPUTS == 1 ? 0 : channel & 1], frames);
    }
    addEvents(probe, outputs, frames);
}

void setParameter(AEffect* effect, std::int32_t id, float value) {
    Probe& probe = probeOf(effect);
    probe.programs[probe.current].values[id] = value;
}

float getParameter(AEffect* effect, std::int32_t id) {
    return probeOf(effect).value(id);
}

void fillRecord(Probe& probe) {
    AEffect& record = probe.record;
    record.magic = fourCharacterCode(PROBE_MAGIC);
    record.dispatcher = dispatch;
    record.setParameter = setParameter;
    record.getParameter = getParameter;
    record.processReplacing = process;
    record.numPrograms = kNumPrograms;
    record.numParams = kNumParameters;
    record.numInputs = PROBE_INPUTS;
    record.numOutputs = PROBE_OUTPUTS;
    record.flags = effFlagsCanReplacing | effFlagsProgramChunks | PROBE_FLAGS;
    record.uniqueID = fourCharacterCode("Prob");
    record.PROBE_CLAIMS = 2000000000;
    record.object = &probe;
}

} // namespace

extern "C" __attribute__((visibility("default"))) AEffect* VSTPluginMain(audioMasterCallback host) {
    say("hello");
    if (PROBE_GIVES_NULL || host(nullptr, audioMasterVersion, 0, 0, nullptr, 0.0f) == 0)
        return nullptr;
    // Nobody will close an instance whose record is refused.
    static Probe refused;
    const bool isTaken = fourCharacterCode(PROBE_MAGIC) == kVstMagic &&
                         offsetof(AEffect, PROBE_CLAIMS) == offsetof(AEffect, version);
    Probe* const probe = isTaken ? new Probe : &refused;
    for (int i = 0; i < kNumPrograms; ++i)
        probe->programs[i].values[kGain] = 1.0f - 0.1f * static_cast<float>(i);
    fillRecord(*probe);
    allocateMemory(*probe);
    return &probe->record;
}
