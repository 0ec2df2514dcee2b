// One situation in which the effect is timed: how many taps, read how, lying where, moving or not, in blocks
// of which length, with warm caches or cold ones, hearing something or nothing.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace bench {

enum class Read { cubic, linear, whole };

/// Where the taps lie.
enum class Place {
    spread, ///< as far over the memory as two seconds of base length at 48 kHz go
    close,  ///< 100 samples from tap to tap
    minimum ///< all on the shortest time, three samples
};

enum class Motion {
    rest,   ///< every glide has arrived
    gliding ///< the pattern moves all the time
};

enum class Caches {
    warm,
    cold ///< other data has gone through them before each block, as between the calls of a busy host
};

enum class Input {
    noise,
    silence, ///< after noise; echoes may go on
    nothing  ///< silence from the beginning, so that there is no echo either
};

/// After so many samples of silence the filters are as near to zero as they come.
constexpr std::int32_t kSilentFrames = 131072;

struct SoundCase {
    std::int32_t taps = 128;
    Read read = Read::cubic;
    Place place = Place::spread;
    Motion motion = Motion::rest;
    std::int32_t blockFrames = 512;
    Caches caches = Caches::warm;
    Input input = Input::noise;
    /// How long it has been silent, where it is. Not a part of the name.
    std::int32_t silentFrames = kSilentFrames;

    /// In words, unique: "128 taps, cubic, spread, at rest, blocks of 512".
    std::string name() const;
    /// The same as far as the block's length: "128 taps, cubic, spread, at rest".
    std::string nameWithoutBlocks() const;
};

/// All that are timed.
std::vector<SoundCase> soundCases();
/// The few that stand for all: few taps and many, at rest and gliding, long blocks and short, cold, in
/// silence.
std::vector<SoundCase> chosenCases();
/// The lengths of the blocks in the table of short blocks, in frames.
constexpr std::array<std::int32_t, 6> kShortBlocks = {1, 2, 4, 8, 16, 65};
/// The situations of that table without their blocks.
std::vector<SoundCase> shortBlockRows();
/// Each row in blocks of each length.
std::vector<SoundCase> shortBlockCases();
/// Where the time goes follows from these three: one tap near, 128 taps near, 128 taps all over the memory.
std::array<SoundCase, 3> costCases(Read read);

} // namespace bench
