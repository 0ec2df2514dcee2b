// The later half of the host interface: opcodes 25 to 79. Most have an empty default here; an effect
// overrides those that it supports.
#pragma once

#include "doors/vst2/audio_effect.h"

namespace vst2_door {

class AudioEffectX : public AudioEffect {
  public:
    using AudioEffect::AudioEffect;

    std::intptr_t dispatcher(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                             float opt) override;

    /// MIDI for the next block. Allocates nothing. On whichever thread the host chooses.
    virtual std::int32_t processEvents(vst2::VstEvents*) { return 0; }
    virtual bool canParameterBeAutomated(std::int32_t) { return true; }
    /// `category` is ignored. Writes 25 bytes.
    virtual bool getProgramNameIndexed(std::int32_t, std::int32_t, char*) { return false; }
    virtual bool getInputProperties(std::int32_t, vst2::VstPinProperties*) { return false; }
    virtual bool getOutputProperties(std::int32_t, vst2::VstPinProperties*) { return false; }
    virtual bool getSpeakerArrangement(vst2::VstSpeakerArrangement** input,
                                       vst2::VstSpeakerArrangement** output);
    virtual std::intptr_t setTotalSampleToProcess(std::intptr_t value) { return value; }
    /// Writes 33 bytes.
    virtual bool getEffectName(char*) { return false; }
    /// Writes 65 bytes.
    virtual bool getVendorString(char*) { return false; }
    /// Writes 65 bytes.
    virtual bool getProductString(char*) { return false; }
    virtual std::int32_t getVendorVersion() { return 0; }
    /// 1 for yes, -1 for no, 0 for unknown.
    virtual std::int32_t canDo(const char*) { return 0; }
    virtual std::int32_t getVstVersion() { return vst2::kVstVersion; }

    bool beginEdit(std::int32_t id) override { return callHost(vst2::audioMasterBeginEdit, id) != 0; }
    bool endEdit(std::int32_t id) override { return callHost(vst2::audioMasterEndEdit, id) != 0; }
    /// Has the host read names and values again.
    virtual bool updateDisplay() { return callHost(vst2::audioMasterUpdateDisplay) != 0; }
    bool sizeWindow(std::int32_t width, std::int32_t height) override {
        return callHost(vst2::audioMasterSizeWindow, width, height) != 0;
    }
    bool canHostDo(const char* what) override {
        return callHost(vst2::audioMasterCanDo, 0, 0, const_cast<char*>(what)) != 0;
    }

  private:
    std::intptr_t editKey(std::int32_t opcode, std::int32_t character, std::intptr_t virtualKey,
                          float modifier);
};

} // namespace vst2_door
