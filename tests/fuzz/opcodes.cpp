// A host that says anything in any order: no byte is written but those that belong to an answer, the host
// hears nothing that it should not, and the effect stays what it is.
//
// The input is a row of calls, each of a kind and what it needs. There is a skin, so that a window that is
// opened without a parent has all its controls, though nobody sees them.
#include "byte_source.h"
#include "effect_instance.h"
#include "platform/module_folder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <limits>
#include <vector>

namespace {

using namespace vst2;

constexpr std::size_t kRoom = 512;
constexpr int kMostCalls = 200;
/// Taps times samples take most of the time, so one input plays no more than this, which is enough for each
/// fade and glide.
constexpr std::int32_t kMostFrames = 1000;
/// Each pass over the skin takes as long as many other calls.
constexpr int kMostOpenings = 4;

/// Kinds of calls from here on have a number of their own. Those below come in eights.
enum : std::uint8_t {
    kReloadProgram = 249,
    kReloadBank = 250,
    kLoadRepeatedBank = 251,
    kSendEventList = 252,
    kProcessOtherwise = 253,
    kNewInstance = 255
};
/// What has to follow on kNewInstance, which closes the instance for a new one. That is slow, and a fuzzer
/// likes to write 255.
constexpr std::uint8_t kReally = 'N';

/// What one input may still do.
struct Budget {
    std::int32_t frames = kMostFrames;
    int openings = kMostOpenings;
    int instances = 1;
};

/// How many bytes an answer may take in the buffer behind `ptr`.
std::size_t answerSize(std::int32_t opcode) {
    switch (opcode) {
    case effGetProgramName:
    case effGetProgramNameIndexed:
        return 25;
    case effGetParamLabel:
    case effGetParamName:
        return 9;
    case effGetParamDisplay:
        return 64;
    case effEditGetRect:
    case effGetChunk:
    case effGetSpeakerArrangement:
        return sizeof(void*);
    case effGetOutputProperties:
        return offsetof(VstPinProperties, arrangementType);
    case effGetEffectName:
        return 33;
    case effGetVendorString:
    case effGetProductString:
        return 65;
    default:
        return 0;
    }
}

/// A buffer's size and content, suited to what the opcode reads.
LentBuffer bufferFor(std::int32_t opcode, ByteSource& source) {
    if (opcode == effSetProgramName || opcode == effCanDo) {
        const auto text = source.bytes(source.byte() % 64);
        std::vector<std::uint8_t> terminated(text.begin(), text.end());
        terminated.push_back(0);
        return LentBuffer{std::span<const std::uint8_t>(terminated)};
    }
    if (opcode == effSetChunk)
        return LentBuffer{source.bytes(source.byte())};
    return LentBuffer(kRoom);
}

void sendEvent(EffectInstance& effect, ByteSource& source) {
    VstMidiEvent event = {};
    event.type = source.byte() % 8;
    event.deltaFrames = source.byte();
    for (char& byte : event.midiData)
        byte = static_cast<char>(source.byte());
    VstEvents list = {};
    list.numEvents = source.byte() % 3;
    for (VstEvent*& entry : list.events)
        entry = reinterpret_cast<VstEvent*>(&event);
    promise(effect.dispatch(effProcessEvents, 0, 0, &list) == 1, "events are answered with one");
}

/// What a host passes as `value`: a size that is true, a place that can be written, or any number.
std::intptr_t valueFor(std::int32_t opcode, ByteSource& source, std::size_t chunkSize, LentBuffer& other) {
    if (opcode == effSetChunk)
        return static_cast<std::intptr_t>(chunkSize);
    if (opcode == effGetSpeakerArrangement || opcode == effSetSpeakerArrangement)
        return reinterpret_cast<std::intptr_t>(other.data());
    const std::uint8_t kind = source.byte();
    if (kind < 200)
        return static_cast<std::int8_t>(kind);
    return static_cast<std::intptr_t>((static_cast<std::uint64_t>(source.word()) << 32) | source.word());
}

/// Up to 15 events, one and the same, with null entries among them; also no list, and a list of a negative
/// number.
void sendEventList(EffectInstance& effect, ByteSource& source) {
    VstMidiEvent event = {};
    event.type = kVstMidiType;
    const std::uint8_t form = source.byte();
    const std::uint8_t nulls = source.byte();
    for (char& byte : event.midiData)
        byte = static_cast<char>(source.byte());
    std::array<std::byte, offsetof(VstEvents, events) + 15 * sizeof(VstEvent*)> list = {};
    const std::int32_t count = form % 16;
    const std::int32_t told = form >= 240 ? -count : count;
    std::memcpy(list.data() + offsetof(VstEvents, numEvents), &told, sizeof told);
    for (std::int32_t i = 0; i < count; ++i) {
        const void* const entry = nulls & (1 << (i % 8)) ? nullptr : &event;
        std::memcpy(list.data() + offsetof(VstEvents, events) + static_cast<std::size_t>(i) * sizeof entry,
                    &entry, sizeof entry);
    }
    promise(effect.dispatch(effProcessEvents, 0, 0, form == 255 ? nullptr : list.data()) == 1,
            "events are answered with one");
}

std::vector<std::uint8_t> savedState(EffectInstance& effect, bool isPreset) {
    void* data = nullptr;
    const std::intptr_t size = effect.dispatch(effGetChunk, isPreset, 0, &data);
    promise(size == (isPreset ? 112 : 14336), "a state's size");
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    return {bytes, bytes + size};
}

/// Saves, writes some bytes over what was saved, and loads that.
void reload(EffectInstance& effect, bool isPreset, ByteSource& source) {
    std::vector<std::uint8_t> state = savedState(effect, isPreset);
    const std::size_t place = source.word() % state.size();
    const auto change = source.bytes(std::min<std::size_t>(source.byte() % 64, state.size() - place));
    std::copy(change.begin(), change.end(), state.begin() + static_cast<std::ptrdiff_t>(place));
    std::vector<std::uint8_t> lent = state;
    effect.dispatch(effSetChunk, isPreset, static_cast<std::intptr_t>(lent.size()), lent.data());
    promise(lent == state, "the host's chunk is only read");
    promise(savedState(effect, isPreset) == state, "a state comes back as it was loaded");
}

void loadRepeatedBank(EffectInstance& effect, ByteSource& source) {
    std::vector<std::uint8_t> bank(14336);
    const auto pattern = source.bytes(source.byte());
    for (std::size_t i = 0; i < bank.size() && !pattern.empty(); ++i)
        bank[i] = pattern[i % pattern.size()];
    effect.dispatch(effSetChunk, 0, static_cast<std::intptr_t>(bank.size()), bank.data());
    promise(savedState(effect, false) == bank, "a bank comes back as it was loaded");
}

/// The other two entries for audio. The effect is asked for neither by its flags and writes nothing.
void processOtherwise(EffectInstance& effect, ByteSource& source) {
    const std::int32_t frames = source.byte();
    const std::size_t size = static_cast<std::size_t>(frames) * sizeof(double);
    LentBuffer in(size), left(size), right(size);
    float* inputs[] = {in.samples(), in.samples()};
    float* outputs[] = {left.samples(), right.samples()};
    effect.record()->process(effect.record(), inputs, outputs, frames);
    double* wideInputs[] = {static_cast<double*>(in.data()), static_cast<double*>(in.data())};
    double* wideOutputs[] = {static_cast<double*>(left.data()), static_cast<double*>(right.data())};
    effect.record()->processDoubleReplacing(effect.record(), wideInputs, wideOutputs, frames);
    for (const LentBuffer* buffer : {&in, &left, &right})
        buffer->promiseUntouchedBehind(0, "audio that is not offered is not written");
}

/// What a host passes as `ptr`. A window has a parent that is none, or no parent at all.
void* pointerFor(std::int32_t opcode, std::int32_t index, LentBuffer& buffer) {
    return opcode == effEditOpen && (index & 1) != 0 ? nullptr : buffer.data();
}

void sendOpcode(EffectInstance& effect, Budget& budget, ByteSource& source) {
    const std::int32_t opcode = source.byte() % 102 - 1;
    if (opcode == effClose) // ends the instance, which is another kind of call
        return;
    if (opcode == effEditOpen && budget.openings-- <= 0)
        return;
    if (opcode == effProcessEvents) {
        sendEvent(effect, source);
        return;
    }
    std::int32_t index = static_cast<std::int8_t>(source.byte());
    if (opcode == effSetChunk)
        index = index != 0;
    LentBuffer buffer = bufferFor(opcode, source);
    LentBuffer other(kRoom);
    const std::intptr_t value = valueFor(opcode, source, buffer.size(), other);
    effect.dispatch(opcode, index, value, pointerFor(opcode, index, buffer), source.anyFloat());
    buffer.promiseUntouchedBehind(answerSize(opcode), "an answer that keeps to its room");
    other.promiseUntouchedBehind(opcode == effGetSpeakerArrangement ? sizeof(void*) : 0,
                                 "an answer that keeps to its room, behind the value");
}

/// Whether the engine keeps the parameter as it is set. The loudest ramp is cut a little below its end, and
/// the loop sets a gain of its own.
bool keepsItsValue(std::int32_t id) {
    return id >= 0 && id < 17 && id != 4 && id != 12;
}

void setParameter(EffectInstance& effect, ByteSource& source) {
    const std::int32_t id = static_cast<std::int8_t>(source.byte());
    const float value = source.anyFloat();
    AEffect* const record = effect.record();
    record->setParameter(record, id, value);
    const float found = record->getParameter(record, id);
    if (keepsItsValue(id))
        promise(std::bit_cast<std::uint32_t>(found) == std::bit_cast<std::uint32_t>(value),
                "a parameter comes back as it was set");
    if (id < 0 || id >= 17)
        promise(found == 0.0f, "an id without a parameter is zero");
}

/// A block of any length, also of none and less.
void play(EffectInstance& effect, Budget& budget, ByteSource& source) {
    constexpr std::array<std::int32_t, 5> kOdd = {-1, -64, std::numeric_limits<std::int32_t>::min(), 300,
                                                  512};
    const std::uint8_t length = source.byte();
    const std::int32_t wanted = length > 250 ? kOdd[length - 251u] : length;
    const std::int32_t frames = std::min(wanted, budget.frames);
    budget.frames -= std::max(frames, 0);
    effect.process(frames, (source.byte() & 1) != 0);
}

void makeCall(EffectInstance& effect, Budget& budget, std::uint8_t kind, ByteSource& source) {
    switch (kind) {
    case kReloadProgram:
    case kReloadBank:
        return reload(effect, kind == kReloadProgram, source);
    case kLoadRepeatedBank:
        return loadRepeatedBank(effect, source);
    case kSendEventList:
        return sendEventList(effect, source);
    case kProcessOtherwise:
        return processOtherwise(effect, source);
    default:
        break;
    }
    switch (kind % 8) {
    case 0:
        return play(effect, budget, source);
    case 1:
    case 2:
        return setParameter(effect, source);
    case 3:
        return sendEvent(effect, source);
    default:
        return sendOpcode(effect, budget, source);
    }
}

/// Puts the skin where the effect looks for skins.
void layOutSkin() {
    static const bool isLaidOut = [] {
        const std::string folder = Unattended::instance().folder() + "module/";
        std::filesystem::copy(QUILLON_FUZZ_SKINS, folder, std::filesystem::copy_options::recursive);
        platform::replaceModuleFolder(folder);
        return true;
    }();
    (void)isLaidOut;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    layOutSkin();
    ByteSource source(data, size);
    EffectInstance* effect = &EffectInstance::forNextInput();
    Budget budget;
    for (int call = 0; call < kMostCalls && !source.isEmpty(); ++call) {
        const std::uint8_t kind = source.byte();
        if (kind != kNewInstance)
            makeCall(*effect, budget, kind, source);
        else if (source.byte() == kReally && budget.instances-- > 0)
            effect = &EffectInstance::renew();
        effect->promiseToBeItself();
        effect->programName();
    }
    for (const std::string& message : Unattended::instance().messages())
        promise(message == "Error!: Can't load preset, wrong file size!" ||
                    message == "Error!: Can't load bank, wrong file size!",
                "no message but about chunks");
    return 0;
}
