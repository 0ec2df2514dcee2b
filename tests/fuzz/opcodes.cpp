// A host that says anything in any order: no byte is written but those that belong to an answer, the host
// hears nothing that it should not, and the effect stays what it is.
//
// The input is a row of calls, each of a kind and what it needs.
#include "byte_source.h"
#include "effect_instance.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

namespace {

using namespace vst2;

constexpr std::size_t kRoom = 512;
constexpr int kMostCalls = 200;
/// The kind of call that closes the instance for a new one, which is slow and so done once for an input.
constexpr std::uint8_t kNewInstance = 255;

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

void sendOpcode(EffectInstance& effect, ByteSource& source) {
    const std::int32_t opcode = source.byte() % 102 - 1;
    if (opcode == effClose) // ends the instance, which is another kind of call
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
    effect.dispatch(opcode, index, value, buffer.data(), source.anyFloat());
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

void makeCall(EffectInstance& effect, std::uint8_t kind, ByteSource& source) {
    switch (kind % 8) {
    case 0: {
        const std::uint8_t frames = source.byte();
        effect.process(frames, (source.byte() & 1) != 0);
        break;
    }
    case 1:
    case 2:
        setParameter(effect, source);
        break;
    case 3:
        sendEvent(effect, source);
        break;
    default:
        sendOpcode(effect, source);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Unattended::instance();
    ByteSource source(data, size);
    static auto effect = std::make_unique<EffectInstance>();
    effect->startAfresh();
    bool isReplaced = false;
    for (int call = 0; call < kMostCalls && !source.isEmpty(); ++call) {
        const std::uint8_t kind = source.byte();
        if (kind == kNewInstance && !std::exchange(isReplaced, true)) {
            effect = std::make_unique<EffectInstance>();
            effect->startAfresh();
        } else {
            makeCall(*effect, kind, source);
        }
        effect->promiseToBeItself();
        effect->programName();
    }
    for (const std::string& message : Unattended::instance().messages())
        promise(message == "Error!: Can't load preset, wrong file size!" ||
                    message == "Error!: Can't load bank, wrong file size!",
                "no message but about chunks");
    return 0;
}
