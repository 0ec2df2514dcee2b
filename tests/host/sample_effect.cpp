#include "sample_effect.h"

#include <cstring>

#define EXPORTED extern "C" __attribute__((visibility("default")))

namespace {

using namespace vst2;

SampleEffect sample;

void takeEvents(const VstEvents* events) {
    VstEvent* const* entry = events->events;
    for (std::int32_t i = 0; i < events->numEvents; ++i) {
        VstMidiEvent event;
        std::memcpy(&event, entry[i], sizeof event);
        sample.midi.push_back(event);
    }
}

std::intptr_t giveText(void* buffer) {
    if (sample.fillsTextBuffers)
        std::memset(buffer, 'x', 256);
    else
        std::strcpy(static_cast<char*>(buffer), "sample");
    return 1;
}

std::intptr_t setChunk(const void* data, std::intptr_t size) {
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    sample.chunk.assign(bytes, bytes + size);
    return 1;
}

std::intptr_t dispatcher(AEffect* effect, std::int32_t opcode, std::int32_t index, std::intptr_t value,
                         void* ptr, float opt) {
    SampleEffect::Asked asked = {opcode, index, value, opt, {}};
    if (opcode == effSetProgramName || opcode == effCanDo)
        asked.text = static_cast<const char*>(ptr);
    sample.asked.push_back(asked);
    switch (opcode) {
    case effClose:
        --sample.alive;
        delete effect;
        return 1;
    case effGetProgram:
        return 7;
    case effGetProgramNameIndexed:
        return index < 2 ? giveText(ptr) : 0;
    case effGetParamName:
    case effGetEffectName:
        return giveText(ptr);
    case effGetChunk:
        *static_cast<void**>(ptr) = sample.chunk.data();
        return static_cast<std::intptr_t>(sample.chunk.size());
    case effSetChunk:
        return setChunk(ptr, value);
    case effProcessEvents:
        takeEvents(static_cast<const VstEvents*>(ptr));
        return 1;
    case effCanDo:
        return -1;
    default:
        return 0;
    }
}

void doubleInput(AEffect*, float** inputs, float** outputs, std::int32_t frames) {
    sample.blocks.push_back(frames);
    for (std::int32_t i = 0; i < frames; ++i)
        outputs[0][i] = 2 * inputs[0][i];
}

void setParameter(AEffect*, std::int32_t, float) {}

float getParameter(AEffect*, std::int32_t id) {
    return static_cast<float>(id) / 4;
}

} // namespace

EXPORTED SampleEffect* sampleEffect() {
    return &sample;
}

EXPORTED AEffect* VSTPluginMain(audioMasterCallback host) {
    sample.host = host;
    if (!host(nullptr, audioMasterVersion, 0, 0, nullptr, 0) || !sample.comesUp)
        return nullptr;
    // No host ever closes a record that it refuses, so that one is not allocated.
    static AEffect refused;
    const bool isSound = sample.magic == kVstMagic && sample.hasDispatcher && sample.hasProcess;
    AEffect* effect = isSound ? new AEffect : &refused;
    *effect = {};
    effect->magic = sample.magic;
    effect->dispatcher = sample.hasDispatcher ? dispatcher : nullptr;
    effect->setParameter = setParameter;
    effect->getParameter = getParameter;
    effect->processReplacing = sample.hasProcess ? doubleInput : nullptr;
    effect->numInputs = 1;
    effect->numOutputs = 1;
    effect->uniqueID = fourCharacterCode("smpl");
    sample.effect = effect;
    if (sample.callsWhileMade >= 0)
        host(effect, sample.callsWhileMade, 0, 0, nullptr, 0);
    ++sample.alive;
    return effect;
}

/// A second entry point: one library may carry several effects.
EXPORTED AEffect* anotherEffect(audioMasterCallback host) {
    AEffect* effect = VSTPluginMain(host);
    if (effect)
        effect->uniqueID = fourCharacterCode("othr");
    return effect;
}
