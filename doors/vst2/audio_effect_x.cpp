#include "doors/vst2/audio_effect_x.h"

#include "base/truncation.h"

namespace vst2_door {

using namespace vst2;

std::intptr_t AudioEffectX::dispatcher(std::int32_t opcode, std::int32_t index, std::intptr_t value,
                                       void* ptr, float opt) {
    char* const text = static_cast<char*>(ptr);
    switch (opcode) {
    case effProcessEvents:
        return processEvents(static_cast<VstEvents*>(ptr));
    case effCanBeAutomated:
        return canParameterBeAutomated(index);
    case effGetProgramNameIndexed:
        return getProgramNameIndexed(static_cast<std::int32_t>(value), index, text);
    case effGetInputProperties:
        return getInputProperties(index, static_cast<VstPinProperties*>(ptr));
    case effGetOutputProperties:
        return getOutputProperties(index, static_cast<VstPinProperties*>(ptr));
    case effGetPlugCategory:
        return kPlugCategUnknown;
    case effGetEffectName:
        return getEffectName(text);
    case effGetVendorString:
        return getVendorString(text);
    case effGetProductString:
        return getProductString(text);
    case effGetVendorVersion:
        return getVendorVersion();
    case effCanDo:
        return canDo(text);
    case effGetVstVersion:
        return getVstVersion();
    case effEditKeyDown:
    case effEditKeyUp:
        return editKey(opcode, index, value, opt);
    case effSetEditKnobMode:
        return editor && editor->setKnobMode(static_cast<std::int32_t>(value));
    case effGetCurrentMidiProgram:
        // No MIDI program has a name of its own here, so none is current.
        return -1;
    case effGetSpeakerArrangement:
        return getSpeakerArrangement(reinterpret_cast<VstSpeakerArrangement**>(value),
                                     static_cast<VstSpeakerArrangement**>(ptr));
    case effSetTotalSampleToProcess:
        return setTotalSampleToProcess(value);
    default:
        return AudioEffect::dispatcher(opcode, index, value, ptr, opt);
    }
}

bool AudioEffectX::getSpeakerArrangement(VstSpeakerArrangement** input, VstSpeakerArrangement** output) {
    if (input)
        *input = nullptr;
    if (output)
        *output = nullptr;
    return false;
}

std::intptr_t AudioEffectX::editKey(std::int32_t opcode, std::int32_t character, std::intptr_t virtualKey,
                                    float modifier) {
    if (!editor)
        return 0;
    interfaces::KeyCode key = {character, static_cast<std::uint8_t>(virtualKey),
                               static_cast<std::uint8_t>(base::trunc(modifier))};
    return opcode == effEditKeyDown ? editor->onKeyDown(key) : editor->onKeyUp(key);
}

} // namespace vst2_door
