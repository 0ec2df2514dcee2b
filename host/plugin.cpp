#include "host/plugin.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace host {

using namespace vst2;

namespace {

/// The instance whose entry call runs on this thread: its record is not yet known, or not yet tied to it.
thread_local Plugin* beingMade = nullptr;

class MakingOf {
  public:
    explicit MakingOf(Plugin* plugin) : outer_(std::exchange(beingMade, plugin)) {}
    ~MakingOf() { beingMade = outer_; }
    MakingOf(const MakingOf&) = delete;
    MakingOf& operator=(const MakingOf&) = delete;

  private:
    Plugin* outer_;
};

/// Room for any text a plug-in may give; many write more than the interface allows them.
struct TextBuffer {
    char bytes[256] = {};

    std::string text() {
        bytes[sizeof bytes - 1] = 0;
        return bytes;
    }
};

desk::SharedLibrary load(const std::string& path) {
    try {
        const LibraryCall call(path, "the loading");
        return desk::SharedLibrary(path);
    } catch (const std::runtime_error& error) {
        const std::string reason = error.what();
        throw HostError(reason.find(path) == std::string::npos ? path + ": " + reason : reason);
    }
}

std::intptr_t giveText(void* destination, const std::string& text, std::size_t size) {
    if (!destination)
        return 0;
    const std::size_t length = std::min(text.size(), size - 1);
    std::memcpy(destination, text.data(), length);
    static_cast<char*>(destination)[length] = 0;
    return 1;
}

bool hostCan(const std::string& what) {
    static const char* const abilities[] = {"sendVstEvents", "sendVstMidiEvent", "sendVstTimeInfo",
                                            "sizeWindow"};
    return std::find(std::begin(abilities), std::end(abilities), what) != std::end(abilities);
}

void checkRecord(const AEffect* effect, const std::string& path) {
    if (!effect)
        throw HostError(path + ": the entry point gave no instance");
    if (effect->magic != kVstMagic)
        throw HostError(path + ": the entry point gave something that is not a plug-in's record");
    if (!effect->dispatcher || !effect->setParameter || !effect->getParameter || !effect->processReplacing)
        throw HostError(path + ": the plug-in's record lacks a function");
}

/// Far more than any plug-in has, yet few enough for a host to visit one by one.
constexpr std::int32_t kMostPrograms = 65536;
constexpr std::int32_t kMostParameters = 65536;
constexpr std::int32_t kMostChannels = 1024;
constexpr std::intptr_t kLargestChunk = 256 * 1024 * 1024;

void checkCounts(const AEffect& effect, const std::string& path) {
    const auto check = [&](std::int32_t count, std::int32_t most, const char* what) {
        if (count < 0 || count > most)
            throw HostError(path + ": the plug-in claims to have " + std::to_string(count) + ' ' + what +
                            ", which cannot be");
    };
    check(effect.numPrograms, kMostPrograms, "programs");
    check(effect.numParams, kMostParameters, "parameters");
    check(effect.numInputs, kMostChannels, "inputs");
    check(effect.numOutputs, kMostChannels, "outputs");
}

} // namespace

Library::Library(const std::string& path, const std::string& entryPoint) : path_(path), library_(load(path)) {
    void* address = nullptr;
    if (!entryPoint.empty()) {
        address = library_.symbol(entryPoint.c_str());
    } else {
        address = library_.symbol("VSTPluginMain");
        if (!address)
            address = library_.symbol("main");
    }
    if (!address)
        throw HostError(path + ": no entry point " +
                        (entryPoint.empty() ? "VSTPluginMain or main" : entryPoint) + ", not a plug-in");
    entryPoint_ = reinterpret_cast<VstEntryPoint>(address);
    LibraryCall::noteLoaded(path_);
}

Plugin::Plugin(const Library& library, HostBehaviour behaviour)
    : path_(library.path()), behaviour_(std::move(behaviour)) {
    const MakingOf making(this);
    const LibraryCall call(path_, "its entry point");
    AEffect* effect = library.entryPoint()(&Plugin::callback);
    checkRecord(effect, path_);
    checkCounts(*effect, path_);
    effect_ = effect;
    effect_->resvd1 = reinterpret_cast<std::intptr_t>(this);
}

Plugin::~Plugin() {
    close();
}

std::intptr_t Plugin::dispatch(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                               float opt) {
    if (!effect_)
        throw HostError("the instance is closed");
    const LibraryCall call(path_, opcode);
    return effect_->dispatcher(effect_, opcode, index, value, ptr, opt);
}

void Plugin::start(float sampleRate, std::int32_t blockSize) {
    open();
    setSampleRate(sampleRate);
    setBlockSize(blockSize);
    resume();
}

void Plugin::open() {
    dispatch(effOpen);
    checkCounts(*effect_, path_);
}

std::intptr_t Plugin::close() {
    if (!effect_)
        return 0;
    const std::intptr_t answer = dispatch(effClose);
    effect_ = nullptr;
    return answer;
}

void Plugin::setSampleRate(float sampleRate) {
    behaviour_.sampleRate = sampleRate;
    dispatch(effSetSampleRate, 0, 0, nullptr, sampleRate);
}

void Plugin::setBlockSize(std::int32_t blockSize) {
    behaviour_.blockSize = blockSize;
    dispatch(effSetBlockSize, 0, blockSize);
}

void Plugin::resume() {
    dispatch(effMainsChanged, 0, 1);
}

void Plugin::suspend() {
    dispatch(effMainsChanged, 0, 0);
}

std::string Plugin::text(std::int32_t opcode, std::int32_t index) {
    TextBuffer buffer;
    dispatch(opcode, index, 0, buffer.bytes);
    return buffer.text();
}

std::string Plugin::parameterName(std::int32_t id) {
    return text(effGetParamName, id);
}

std::string Plugin::parameterDisplay(std::int32_t id) {
    return text(effGetParamDisplay, id);
}

std::string Plugin::parameterLabel(std::int32_t id) {
    return text(effGetParamLabel, id);
}

void Plugin::setProgram(std::int32_t program) {
    dispatch(effSetProgram, 0, program);
}

std::int32_t Plugin::getProgram() {
    return static_cast<std::int32_t>(dispatch(effGetProgram));
}

void Plugin::setProgramName(const std::string& name) {
    std::string copy = name;
    dispatch(effSetProgramName, 0, 0, copy.data());
}

std::string Plugin::programName() {
    return text(effGetProgramName);
}

std::optional<std::string> Plugin::programName(std::int32_t program) {
    constexpr std::intptr_t anyCategory = -1;
    TextBuffer buffer;
    if (!dispatch(effGetProgramNameIndexed, program, anyCategory, buffer.bytes))
        return std::nullopt;
    return buffer.text();
}

std::string Plugin::effectName() {
    return text(effGetEffectName);
}

std::string Plugin::vendor() {
    return text(effGetVendorString);
}

std::string Plugin::product() {
    return text(effGetProductString);
}

std::int32_t Plugin::canDo(const std::string& what) {
    std::string copy = what;
    return static_cast<std::int32_t>(dispatch(effCanDo, 0, 0, copy.data()));
}

std::vector<std::uint8_t> Plugin::getChunk(bool isPreset) {
    void* data = nullptr;
    const std::intptr_t size = dispatch(effGetChunk, isPreset, 0, static_cast<void*>(&data));
    if (!data || size <= 0)
        return {};
    if (size > kLargestChunk)
        throw HostError(path_ + ": the plug-in claims to have a chunk of " + std::to_string(size) +
                        " bytes, which cannot be");
    // What it points at may not be there.
    const LibraryCall call(path_, effGetChunk);
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    return {bytes, bytes + size};
}

std::intptr_t Plugin::setChunk(std::span<const std::uint8_t> data, bool isPreset) {
    // The plug-in gets bytes of its own, as from a host's project file, and never a null.
    std::vector<std::uint8_t> copy(std::max<std::size_t>(data.size(), 1));
    std::copy(data.begin(), data.end(), copy.begin());
    return dispatch(effSetChunk, isPreset, static_cast<std::intptr_t>(data.size()), copy.data());
}

std::intptr_t Plugin::sendMidi(std::span<const MidiMessage> messages) {
    midiEvents_.clear();
    for (const MidiMessage& message : messages) {
        VstMidiEvent event = {};
        event.type = kVstMidiType;
        event.byteSize = static_cast<std::int32_t>(sizeof event - offsetof(VstMidiEvent, deltaFrames));
        event.deltaFrames = message.deltaFrames;
        std::memcpy(event.midiData, message.bytes, sizeof message.bytes);
        midiEvents_.push_back(event);
    }
    // The list is as long as it has events, never shorter than the structure that is its head.
    eventList_.assign(
        std::max(sizeof(VstEvents), offsetof(VstEvents, events) + messages.size() * sizeof(VstEvent*)),
        std::byte{});
    auto* list = new (eventList_.data()) VstEvents{};
    list->numEvents = static_cast<std::int32_t>(messages.size());
    VstEvent** entry = list->events;
    for (VstMidiEvent& event : midiEvents_)
        *entry++ = reinterpret_cast<VstEvent*>(&event);
    return dispatch(effProcessEvents, 0, 0, list);
}

void Plugin::processChannels(std::span<const float* const> inputs, std::span<float* const> outputs,
                             std::int64_t frames, std::int32_t blockSize) {
    if (blockSize < 1)
        throw HostError("a block has at least one frame");
    const auto numInputs = static_cast<std::size_t>(std::max(effect_->numInputs, 0));
    const auto numOutputs = static_cast<std::size_t>(std::max(effect_->numOutputs, 0));
    const auto block = static_cast<std::size_t>(blockSize);
    // One block of each channel lies here: the plug-in never sees the caller's buffers.
    std::vector<float> samples((numInputs + numOutputs) * block);
    std::vector<float*> in(numInputs), out(numOutputs);
    for (std::size_t i = 0; i < numInputs; ++i)
        in[i] = samples.data() + i * block;
    for (std::size_t i = 0; i < numOutputs; ++i)
        out[i] = samples.data() + (numInputs + i) * block;

    for (std::int64_t done = 0; done < frames;) {
        const auto length = static_cast<std::int32_t>(std::min<std::int64_t>(blockSize, frames - done));
        for (std::size_t i = 0; i < std::min(inputs.size(), numInputs); ++i)
            std::copy_n(inputs[i] + done, length, in[i]);
        process(in.data(), out.data(), length);
        for (std::size_t i = 0; i < outputs.size(); ++i) {
            if (i < numOutputs)
                std::copy_n(out[i], length, outputs[i] + done);
            else
                std::fill_n(outputs[i] + done, length, 0.0f);
        }
        done += length;
    }
}

void Plugin::processStereo(const float* inLeft, const float* inRight, float* outLeft, float* outRight,
                           std::int64_t frames, std::int32_t blockSize) {
    const float* const inputs[] = {inLeft, inRight};
    float* const outputs[] = {outLeft, outRight};
    processChannels(inputs, outputs, frames, blockSize);
}

std::int64_t Plugin::callsOf(std::int32_t opcode) const {
    return std::count_if(calls_.begin(), calls_.end(),
                         [opcode](const HostCall& call) { return call.opcode == opcode; });
}

std::intptr_t Plugin::callback(AEffect* effect, std::int32_t opcode, std::int32_t index, std::intptr_t value,
                               void* ptr, float opt) {
    Plugin* plugin = beingMade;
    if (!plugin && effect)
        plugin = reinterpret_cast<Plugin*>(effect->resvd1);
    if (!plugin) // a thread that the plug-in started in its constructor, or a call on nobody's behalf
        return opcode == audioMasterVersion ? kVstVersion : 0;

    HostCall call;
    call.opcode = opcode;
    call.index = index;
    call.value = value;
    call.opt = opt;
    call.hadRecord = effect != nullptr;
    if (effect) {
        call.uniqueID = effect->uniqueID;
        call.numInputs = effect->numInputs;
    }
    if (opcode == audioMasterCanDo && ptr)
        call.text = static_cast<const char*>(ptr);
    return plugin->handle(std::move(call), ptr);
}

std::intptr_t Plugin::handle(HostCall call, void* ptr) {
    const std::optional<std::intptr_t> answer =
        behaviour_.answer ? behaviour_.answer(call, ptr) : std::nullopt;
    call.answer = answer ? *answer : defaultAnswer(call, ptr);
    const std::intptr_t result = call.answer;
    if (behaviour_.record) {
        const std::lock_guard guard(callsGuard_);
        calls_.push_back(std::move(call));
    }
    return result;
}

std::intptr_t Plugin::defaultAnswer(const HostCall& call, void* ptr) {
    switch (call.opcode) {
    case audioMasterVersion:
        return behaviour_.version;
    case audioMasterCurrentId:
        return call.uniqueID;
    case audioMasterGetTime:
        return reinterpret_cast<std::intptr_t>(timeInfo());
    case audioMasterGetSampleRate:
        return static_cast<std::intptr_t>(behaviour_.sampleRate);
    case audioMasterGetBlockSize:
        return behaviour_.blockSize;
    case audioMasterGetVendorString:
        return giveText(ptr, behaviour_.vendor, kVstMaxVendorStrLen);
    case audioMasterGetProductString:
        return giveText(ptr, behaviour_.product, kVstMaxProductStrLen);
    case audioMasterGetVendorVersion:
        return 1000;
    case audioMasterCanDo:
        return hostCan(call.text);
    case audioMasterSizeWindow:
    case audioMasterUpdateDisplay:
    case audioMasterBeginEdit:
    case audioMasterEndEdit:
        return 1;
    default:
        return 0;
    }
}

VstTimeInfo* Plugin::timeInfo() {
    time_ = {};
    time_.samplePos = static_cast<double>(position_);
    time_.sampleRate = behaviour_.sampleRate;
    time_.tempo = behaviour_.tempo;
    time_.ppqPos = time_.samplePos / time_.sampleRate * time_.tempo / 60.0;
    time_.timeSigNumerator = 4;
    time_.timeSigDenominator = 4;
    time_.flags = kVstTransportPlaying | kVstPpqPosValid | kVstTempoValid | kVstTimeSigValid;
    return &time_;
}

} // namespace host
