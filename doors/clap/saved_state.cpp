#include "doors/clap/saved_state.h"

#include <type_traits>

namespace clap_door {

static_assert(std::is_trivially_copyable_v<SavedState>);

namespace {

/// Calls `transfer` with what is left of `size` bytes, as a stream may take or give fewer at a time. False if
/// it stops before the end or claims more than there is.
template <class Byte, class Transfer>
bool transferAll(Byte* bytes, std::uint64_t size, const Transfer& transfer) {
    while (size > 0) {
        const std::int64_t count = transfer(bytes, size);
        if (count <= 0 || static_cast<std::uint64_t>(count) > size)
            return false;
        bytes += count;
        size -= static_cast<std::uint64_t>(count);
    }
    return true;
}

bool isUsable(const SavedState& state) {
    return state.magic == SavedState::kMagic && state.version == SavedState::kVersion && state.program >= 0 &&
           state.program < presets::kNumPrograms;
}

} // namespace

bool write(const clap_ostream_t& stream, const SavedState& state) {
    return transferAll(
        reinterpret_cast<const unsigned char*>(&state), sizeof state,
        [&](const unsigned char* bytes, std::uint64_t size) { return stream.write(&stream, bytes, size); });
}

bool read(const clap_istream_t& stream, SavedState& state) {
    return transferAll(
               reinterpret_cast<unsigned char*>(&state), sizeof state,
               [&](unsigned char* bytes, std::uint64_t size) { return stream.read(&stream, bytes, size); }) &&
           isUsable(state);
}

} // namespace clap_door
