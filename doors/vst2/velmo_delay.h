// The effect as VST 2.4 hosts know it. A host holds one AEffect record per instance and reaches everything
// through it: each opcode becomes an operation of the effect, which knows nothing of the format.
#pragma once

#include "doors/vst2/audio_effect_x.h"
#include "effect/large_object.h"
#include "effect/multitap_delay.h"

namespace vst2_door {

class velmo_delay final : public AudioEffectX, public effect::LargeObject, private interfaces::EffectHost {
  public:
    /// A complete effect at 44100 Hz, with the controller map of its file, on program 0 of the factory bank
    /// or, without one, on the default program. A bank that cannot be used is reported in a message box.
    /// `host` may be null.
    explicit velmo_delay(vst2::audioMasterCallback host);
    /// Writes the controller map to the current directory.
    ~velmo_delay() override;

    void resume() override { effect_.resume(); }
    void setSampleRate(float rate) override { effect_.setSampleRate(rate); }
    float getSampleRate() const override { return effect_.getSampleRate(); }
    void processReplacing(float** inputs, float** outputs, std::int32_t sampleFrames) override {
        effect_.processReplacing(inputs, outputs, sampleFrames);
    }

    void setParameter(std::int32_t id, float value) override { effect_.setParameter(id, value); }
    float getParameter(std::int32_t id) override { return effect_.getParameter(id); }
    /// Writes an empty text: there are no unit labels.
    void getParameterLabel(std::int32_t id, char* text) override;
    void getParameterDisplay(std::int32_t id, char* text) override { effect_.getParameterDisplay(id, text); }
    void getParameterName(std::int32_t id, char* text) override;

    void setProgram(std::int32_t program) override { effect_.setProgram(program); }
    std::int32_t getProgram() override { return effect_.getProgram(); }
    void setProgramName(char* name) override { effect_.setProgramName(name); }
    void getProgramName(char* text) override { effect_.getProgramName(getProgram(), text); }
    bool getProgramNameIndexed(std::int32_t category, std::int32_t index, char* text) override;
    std::int32_t getChunk(void** data, bool isPreset) override { return effect_.getChunk(data, isPreset); }
    std::int32_t setChunk(void* data, std::int32_t byteSize, bool isPreset) override {
        return effect_.setChunk(data, byteSize, isPreset);
    }

    std::int32_t processEvents(vst2::VstEvents* events) override;
    bool getOutputProperties(std::int32_t index, vst2::VstPinProperties* properties) override;
    bool getEffectName(char* name) override;
    bool getVendorString(char* text) override;
    bool getProductString(char* text) override;
    std::int32_t getVendorVersion() override { return 1000; }
    std::int32_t canDo(const char* what) override;
    bool updateDisplay() override { return AudioEffectX::updateDisplay(); }

  private:
    std::int32_t uniqueID() const override { return cEffect.uniqueID; }
    /// In a message box.
    void reportProblem(const char* text, const char* caption) override;

    effect::MultitapDelay effect_{*this};
};

} // namespace vst2_door
