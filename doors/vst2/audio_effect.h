// The frame between a host's C interface and an effect written as a class. A host calls through the function
// pointers of its AEffect record; static stubs turn each call into a virtual operation here, and
// wrappers call the host back. Every operation has an empty default.
//
// No lock is taken anywhere in the frame, and nothing is assumed about the calling thread.
#pragma once

#include "interfaces/aeff_editor.h"
#include "vst2/vst2.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace vst2_door {

class AudioEffect : public interfaces::EditorHost {
  public:
    AudioEffect(vst2::audioMasterCallback host, std::int32_t programs, std::int32_t parameters);
    /// Deletes the editor, which the effect owns.
    ~AudioEffect() override;
    AudioEffect(const AudioEffect&) = delete;
    AudioEffect& operator=(const AudioEffect&) = delete;

    /// Carries out an opcode of AEffect::dispatcher. 0 for an unknown one.
    virtual std::intptr_t dispatcher(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                                     float opt);
    virtual void open() {}
    virtual void close() {}
    virtual void suspend() {}
    virtual void resume() {}
    virtual void setSampleRate(float) {}
    virtual void setBlockSize(std::int32_t frames) { blockSize = frames; }

    /// Audio: channels x frames. The audio thread.
    virtual void processReplacing(float** inputs, float** outputs, std::int32_t sampleFrames) = 0;
    virtual void processDoubleReplacing(double**, double**, std::int32_t) {}
    virtual void process(float**, float**, std::int32_t) {}

    /// Values are normalised. Any thread.
    void setParameter(std::int32_t, float) override {}
    float getParameter(std::int32_t) override { return 0.0f; }
    void setParameterAutomated(std::int32_t id, float value) override;

    virtual std::int32_t getProgram() { return 0; }
    virtual void setProgram(std::int32_t) {}
    virtual void setProgramName(char*) {}
    virtual void getProgramName(char* text) { *text = '\0'; }
    void getParameterLabel(std::int32_t, char* text) override { *text = '\0'; }
    void getParameterDisplay(std::int32_t, char* text) override { *text = '\0'; }
    void getParameterName(std::int32_t, char* text) override { *text = '\0'; }
    /// Gives the size in bytes and points `data` at them.
    virtual std::int32_t getChunk(void**, bool) { return 0; }
    virtual std::int32_t setChunk(void*, std::int32_t, bool) { return 0; }

    void setUniqueID(std::int32_t id) { cEffect.uniqueID = id; }
    void setNumInputs(std::int32_t inputs) { cEffect.numInputs = inputs; }
    void setNumOutputs(std::int32_t outputs) { cEffect.numOutputs = outputs; }
    void canProcessReplacing(bool state = true) { setFlag(vst2::effFlagsCanReplacing, state); }
    void programsAreChunks(bool state = true) { setFlag(vst2::effFlagsProgramChunks, state); }
    void canMono(bool state = true) { setFlag(vst2::effFlagsCanMono, state); }
    /// Takes the editor over and tells the host that there is one.
    void setEditor(interfaces::AEffEditor* newEditor);

    std::shared_ptr<void> keepAlive() override;

    interfaces::AEffEditor* getEditor() { return editor.get(); }
    vst2::AEffect* getAeffect() { return &cEffect; }
    std::int32_t getNumParameters() const override { return numParams; }
    float getSampleRate() const override { return 44100.0f; }
    bool bindsControllers() const override { return true; }
    std::int32_t getBlockSize() const { return blockSize; }

    void masterIdle() override { callHost(vst2::audioMasterIdle); }
    /// On standard output.
    void reportUnreadableSkin(const char* line) override;

    /// Numbers as hosts show them; `text` holds maxLen + 1 bytes. See base/number_text.h.
    void dB2string(float value, char* text, std::size_t maxLen) const;
    void Hz2string(float samples, char* text, std::size_t maxLen) const;
    void ms2string(float samples, char* text, std::size_t maxLen) const;
    void float2string(float value, char* text, std::size_t maxLen) const;
    void int2string(std::int32_t value, char* text, std::size_t maxLen) const;

  protected:
    /// Calls the host with our record; 0 without a host.
    std::intptr_t callHost(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0,
                           void* ptr = nullptr, float opt = 0.0f);

    vst2::audioMasterCallback audioMaster;
    std::unique_ptr<interfaces::AEffEditor> editor;
    std::int32_t blockSize = 1024;
    std::int32_t numPrograms;
    std::int32_t numParams;
    vst2::AEffect cEffect = {};

  private:
    class Hold;

    void setFlag(vst2::AEffectFlags flag, bool state);
    /// Takes `count` holders away, and deletes the object with its last one.
    void release(int count);
    void closeForHost();

    static std::intptr_t dispatchEffectClass(vst2::AEffect* effect, std::int32_t opcode, std::int32_t index,
                                             std::intptr_t value, void* ptr, float opt);
    static void processClass(vst2::AEffect* effect, float** inputs, float** outputs,
                             std::int32_t sampleFrames);
    static void processClassReplacing(vst2::AEffect* effect, float** inputs, float** outputs,
                                      std::int32_t sampleFrames);
    static void processClassDoubleReplacing(vst2::AEffect* effect, double** inputs, double** outputs,
                                            std::int32_t sampleFrames);
    static void setParameterClass(vst2::AEffect* effect, std::int32_t index, float value);
    static float getParameterClass(vst2::AEffect* effect, std::int32_t index);

    /// Counts the host until it closes the effect, its calls that have not returned, and keepAlive().
    std::atomic<int> holders_ = 1;
};

} // namespace vst2_door
