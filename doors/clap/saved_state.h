// What a host keeps of an instance in a project.
#pragma once

#include "presets/program_store.h"

#include <clap/stream.h>

#include <array>
#include <cstdint>

namespace clap_door {

/// A persisted format, little-endian: the layout must never change. What has another one gets another
/// version.
struct SavedState {
    static constexpr std::array<char, 4> kMagic = {'Q', 'l', 'v', 'd'};
    static constexpr std::uint32_t kVersion = 1;

    std::array<char, 4> magic = kMagic;
    std::uint32_t version = kVersion;
    std::int32_t program = 0;                                ///< the current one
    std::array<float, parameters::kNumLiveParameters> live;  ///< normalised, by id, as they were set
    std::array<unsigned char, presets::kBankChunkSize> bank; ///< all programs, as in a chunk
};
static_assert(sizeof(SavedState) == 12 + 4 * 17 + 14336);

/// False if the host does not take all of it.
bool write(const clap_ostream_t& stream, const SavedState& state);
/// False if the stream ends or fails before the end of the state, or holds something else or a later version.
bool read(const clap_istream_t& stream, SavedState& state);

} // namespace clap_door
