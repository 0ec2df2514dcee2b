// Any bytes as a saved state: they are taken as they stand or refused with one message, and whatever they
// hold, the effect shows it and plays on.
//
// The first byte says whether it is a program or a bank, and how its size is told; the second which program
// is the current one. What follows is the chunk.
#include "byte_source.h"
#include "effect_instance.h"

#include <array>
#include <cstring>
#include <vector>

namespace {

using namespace vst2;

constexpr std::size_t kProgramSize = 112;
constexpr std::size_t kBankSize = 14336;

using Bank = std::vector<std::uint8_t>;

struct Chunk {
    bool isPreset;
    std::int32_t size; ///< as told
    std::vector<std::uint8_t> bytes;

    bool fits() const {
        if (!isPreset)
            return size == static_cast<std::int32_t>(kBankSize);
        return size >= 0 && size <= static_cast<std::int32_t>(kProgramSize);
    }
};

/// Sizes that are not true are such as have to be refused unread.
Chunk chunkFrom(ByteSource& source, std::uint8_t kind) {
    Chunk chunk{(kind & 1) != 0, 0, {}};
    constexpr std::array<std::int32_t, 4> kUntrue = {-1, 113, 14337, static_cast<std::int32_t>(0x80000070)};
    const bool repeats = (kind & 2) != 0;
    const bool isUntrue = (kind & 4) != 0;
    const auto bytes = source.rest();
    chunk.bytes.assign(bytes.begin(), bytes.end());
    if (repeats && !bytes.empty()) // a whole bank from a few bytes
        for (std::size_t i = bytes.size(); i < kBankSize; ++i)
            chunk.bytes.push_back(bytes[i % bytes.size()]);
    chunk.size = isUntrue ? kUntrue[kind >> 6] : static_cast<std::int32_t>(chunk.bytes.size());
    return chunk;
}

Bank stateOf(EffectInstance& effect) {
    void* data = nullptr;
    promise(effect.dispatch(effGetChunk, 0, 0, &data) == static_cast<std::intptr_t>(kBankSize),
            "a bank of 14336 bytes");
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    return {bytes, bytes + kBankSize};
}

Bank expectedAfter(const Bank& before, const Chunk& chunk, std::int32_t program) {
    Bank expected = before;
    const std::size_t front = chunk.isPreset ? kProgramSize * static_cast<std::size_t>(program) : 0;
    if (chunk.fits())
        std::copy(chunk.bytes.begin(), chunk.bytes.end(),
                  expected.begin() + static_cast<std::ptrdiff_t>(front));
    return expected;
}

void promiseMessage(const Chunk& chunk) {
    const auto& messages = Unattended::instance().messages();
    if (chunk.fits()) {
        promise(messages.empty(), "no word about a chunk that fits");
        return;
    }
    promise(messages.size() == 1, "one message about a chunk that does not fit");
    promise(messages[0] == (chunk.isPreset ? "Error!: Can't load preset, wrong file size!"
                                           : "Error!: Can't load bank, wrong file size!"),
            "the message of the kind");
}

void promiseText(EffectInstance& effect, std::int32_t opcode, std::int32_t id, std::size_t room) {
    LentBuffer buffer(room);
    effect.dispatch(opcode, id, 0, buffer.data());
    buffer.promiseUntouchedBehind(room, "a text that fits");
    promise(std::memchr(buffer.data(), '\0', room) != nullptr, "a text with an end");
}

void useProgram(EffectInstance& effect, std::int32_t program) {
    effect.dispatch(effSetProgram, 0, program);
    promise(effect.program() == program, "the program is selected");
    promise(effect.programName().size() <= 24, "a name of 24 bytes at most");
    for (std::int32_t id = 0; id < 21; ++id) {
        promiseText(effect, effGetParamDisplay, id, 64);
        promiseText(effect, effGetParamName, id, 9);
    }
    for (const std::int32_t frames : {64, 1, 200})
        effect.process(frames, frames == 64);
    effect.promiseToBeItself();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ByteSource source(data, size);
    const std::uint8_t kind = source.byte();
    const std::int32_t program = source.byte() % 128;
    const Chunk chunk = chunkFrom(source, kind);

    Unattended::instance();
    EffectInstance& effect = EffectInstance::forNextInput();
    effect.dispatch(effSetProgram, 0, program);
    const Bank before = stateOf(effect);
    // A block of exactly the chunk's size, so that a step too far is noticed.
    std::vector<std::uint8_t> lent(chunk.bytes.begin(), chunk.bytes.end());
    promise(effect.dispatch(effSetChunk, chunk.isPreset, chunk.size, lent.data()) == 1,
            "a chunk is answered with one");
    promise(lent == chunk.bytes, "the host's chunk is only read");
    promiseMessage(chunk);
    promise(effect.program() == program, "the selection is where it was");
    promise(stateOf(effect) == expectedAfter(before, chunk, program), "the state that the chunk says");
    for (const std::int32_t other : {0, 127, program})
        useProgram(effect, other);
    return 0;
}
