// Any bytes as the state of a CLAP host's project: a whole one comes back bit by bit, anything else changes
// nothing.
//
// The input is how many bytes the stream gives at a time, then the state.
#include "clap_instance.h"

#include "byte_source.h"
#include "doors/clap/saved_state.h"

#include <cstring>

using clap_door::SavedState;
using clap_test::Bytes;

namespace {

/// What is saved after `bytes` were loaded; nothing if they are to be refused.
std::optional<Bytes> outcomeOf(const Bytes& bytes) {
    SavedState state;
    if (bytes.size() < sizeof state)
        return std::nullopt;
    std::memcpy(&state, bytes.data(), sizeof state);
    if (state.magic != SavedState::kMagic || state.version != 1 || state.program < 0 || state.program > 127)
        return std::nullopt;
    std::memcpy(&state.bank[static_cast<std::size_t>(state.program) * 112], state.live.data(),
                sizeof state.live);
    Bytes saved(sizeof state);
    std::memcpy(saved.data(), &state, sizeof state);
    return saved;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ByteSource source(data, size);
    const std::size_t portion = 1 + std::size_t{source.byte()} * 64;
    const auto rest = source.rest();
    const Bytes bytes(rest.begin(), rest.end());
    ClapInstance& instance = ClapInstance::forNextInput();
    const Bytes before = instance->save().value();
    const std::optional<Bytes> expected = outcomeOf(bytes);
    promise(instance->load(bytes, portion) == expected.has_value(), "a state is taken if it is one");
    promise(instance->save(portion) == expected.value_or(before), "all of a state is taken, or none of it");
    instance.promiseToBeItself();
    clap_test::Events none;
    instance.process(64, none);
    return 0;
}
