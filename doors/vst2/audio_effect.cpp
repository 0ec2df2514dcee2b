#include "doors/vst2/audio_effect.h"

#include "base/number_text.h"

#include <cstdio>

namespace vst2_door {

using interfaces::AEffEditor;
using interfaces::EditorRect;
using namespace vst2;

namespace {

AudioEffect* effectOf(AEffect* record) {
    return static_cast<AudioEffect*>(record->object);
}

// A host reads the editor's own record of its place, as it is at any time.
static_assert(sizeof(EditorRect) == sizeof(ERect) && offsetof(EditorRect, top) == offsetof(ERect, top) &&
              offsetof(EditorRect, left) == offsetof(ERect, left) &&
              offsetof(EditorRect, bottom) == offsetof(ERect, bottom) &&
              offsetof(EditorRect, right) == offsetof(ERect, right));

/// The result of `call`, or `otherwise` if it throws, as when memory runs out: no exception may reach a host.
/// The audio path does not use it, since it throws nothing.
template <class Answer, class Call>
Answer orElse(Answer otherwise, const Call& call) noexcept {
    try {
        return call();
    } catch (...) {
        return otherwise;
    }
}

} // namespace

AudioEffect::AudioEffect(audioMasterCallback host, std::int32_t programs, std::int32_t parameters)
    : audioMaster(host), numPrograms(programs), numParams(parameters) {
    cEffect.magic = kVstMagic;
    cEffect.dispatcher = &dispatchEffectClass;
    cEffect.process = &processClass;
    cEffect.setParameter = &setParameterClass;
    cEffect.getParameter = &getParameterClass;
    cEffect.numPrograms = numPrograms;
    cEffect.numParams = numParams;
    cEffect.numInputs = 1;
    cEffect.numOutputs = 2;
    cEffect.ioRatio = 1.0f;
    cEffect.object = this;
    cEffect.uniqueID = fourCharacterCode("NoEf");
    cEffect.version = 1;
    cEffect.processReplacing = &processClassReplacing;
    cEffect.processDoubleReplacing = &processClassDoubleReplacing;
    canProcessReplacing();
}

AudioEffect::~AudioEffect() = default;

std::intptr_t AudioEffect::dispatcher(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                                      float opt) {
    char* const text = static_cast<char*>(ptr);
    switch (opcode) {
    case effOpen:
        open();
        break;
    case effClose:
        close();
        break;
    case effSetProgram:
        // Compared at full width: a number that only looks small once narrowed must not select anything.
        if (value < numPrograms)
            setProgram(static_cast<std::int32_t>(value < 0 ? -1 : value));
        break;
    case effGetProgram:
        return getProgram();
    case effSetProgramName:
        setProgramName(text);
        break;
    case effGetProgramName:
        getProgramName(text);
        break;
    case effGetParamLabel:
        getParameterLabel(index, text);
        break;
    case effGetParamDisplay:
        getParameterDisplay(index, text);
        break;
    case effGetParamName:
        getParameterName(index, text);
        break;
    case effSetSampleRate:
        setSampleRate(opt);
        break;
    case effSetBlockSize:
        setBlockSize(static_cast<std::int32_t>(value));
        break;
    case effMainsChanged:
        value == 0 ? suspend() : resume();
        break;
    case effEditGetRect:
        return editor && editor->getRect(static_cast<EditorRect**>(ptr));
    case effEditOpen:
        return editor && editor->open(ptr);
    case effEditClose:
        if (editor)
            editor->close();
        break;
    case effEditIdle:
        if (editor)
            editor->idle();
        break;
    case effIdentify:
        return fourCharacterCode("NvEf");
    case effGetChunk:
        return getChunk(static_cast<void**>(ptr), index != 0);
    case effSetChunk:
        return setChunk(ptr, static_cast<std::int32_t>(value), index != 0);
    default:
        break;
    }
    return 0;
}

void AudioEffect::setParameterAutomated(std::int32_t id, float value) {
    setParameter(id, value);
    callHost(audioMasterAutomate, id, 0, nullptr, value);
}

void AudioEffect::reportUnreadableSkin(const char* line) {
    std::printf("%s\n", line);
}

void AudioEffect::setEditor(AEffEditor* newEditor) {
    editor.reset(newEditor);
    setFlag(effFlagsHasEditor, newEditor != nullptr);
}

void AudioEffect::dB2string(float value, char* text, std::size_t maxLen) const {
    base::dB2string(value, text, maxLen);
}

void AudioEffect::Hz2string(float samples, char* text, std::size_t maxLen) const {
    base::float2string(samples == 0.0f ? 0.0f : getSampleRate() / samples, text, maxLen);
}

void AudioEffect::ms2string(float samples, char* text, std::size_t maxLen) const {
    base::float2string(samples * 1000.0f / getSampleRate(), text, maxLen);
}

void AudioEffect::float2string(float value, char* text, std::size_t maxLen) const {
    base::float2string(value, text, maxLen);
}

void AudioEffect::int2string(std::int32_t value, char* text, std::size_t maxLen) const {
    base::int2string(value, text, maxLen);
}

std::intptr_t AudioEffect::callHost(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                                    float opt) {
    return audioMaster ? audioMaster(&cEffect, opcode, index, value, ptr, opt) : 0;
}

void AudioEffect::setFlag(AEffectFlags flag, bool state) {
    cEffect.flags = state ? cEffect.flags | flag : cEffect.flags & ~flag;
}

/// Keeps the object until the host's call has returned. A message box, or a question to the host, may let the
/// host close the effect in the middle of another call.
class AudioEffect::Hold {
  public:
    explicit Hold(AudioEffect& effect) : effect_(effect) {
        effect_.holders_.fetch_add(1, std::memory_order_relaxed);
    }
    ~Hold() { effect_.release(count_); }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

    /// Releases the host's own hold with this one.
    void endWithHost() { ++count_; }

  private:
    AudioEffect& effect_;
    int count_ = 1;
};

void AudioEffect::release(int count) {
    if (holders_.fetch_sub(count, std::memory_order_acq_rel) == count)
        delete this;
}

std::shared_ptr<void> AudioEffect::keepAlive() {
    return std::make_shared<Hold>(*this);
}

/// The host has ended the effect. If another call of it has not returned, only the window goes now, and the
/// host, which has thrown the record away, is told nothing more. An event of the window is such a call, also
/// where another effect serves it.
void AudioEffect::closeForHost() {
    constexpr int hostAndThisCall = 2;
    if (holders_.load(std::memory_order_relaxed) > hostAndThisCall) {
        orElse(false, [this] {
            if (editor)
                editor->close();
            return true;
        });
        audioMaster = nullptr;
    }
}

std::intptr_t AudioEffect::dispatchEffectClass(AEffect* effect, std::int32_t opcode, std::int32_t index,
                                               std::intptr_t value, void* ptr, float opt) {
    AudioEffect* const object = effectOf(effect);
    Hold hold(*object);
    const std::intptr_t answer =
        orElse(std::intptr_t{0}, [&] { return object->dispatcher(opcode, index, value, ptr, opt); });
    if (opcode != effClose)
        return answer;
    object->closeForHost();
    hold.endWithHost();
    return 1;
}

void AudioEffect::processClass(AEffect* effect, float** inputs, float** outputs, std::int32_t sampleFrames) {
    effectOf(effect)->process(inputs, outputs, sampleFrames);
}

void AudioEffect::processClassReplacing(AEffect* effect, float** inputs, float** outputs,
                                        std::int32_t sampleFrames) {
    effectOf(effect)->processReplacing(inputs, outputs, sampleFrames);
}

void AudioEffect::processClassDoubleReplacing(AEffect* effect, double** inputs, double** outputs,
                                              std::int32_t sampleFrames) {
    effectOf(effect)->processDoubleReplacing(inputs, outputs, sampleFrames);
}

void AudioEffect::setParameterClass(AEffect* effect, std::int32_t index, float value) {
    orElse(false, [&] {
        effectOf(effect)->setParameter(index, value);
        return true;
    });
}

float AudioEffect::getParameterClass(AEffect* effect, std::int32_t index) {
    return orElse(0.0f, [&] { return effectOf(effect)->getParameter(index); });
}

} // namespace vst2_door
