// Drives one instance block by block and lets parameter changes and MIDI messages reach it at their places.
#pragma once

#include "host/plugin.h"
#include "tools/render/starting_point.h"

#include <cstdint>
#include <span>
#include <vector>

namespace tools::render {

/// A MIDI message, `frame` samples into the file.
struct MidiEvent {
    std::int64_t frame = 0;
    unsigned char bytes[3] = {};
};

/// What happens while the file plays; both lists in order of time.
struct Events {
    std::vector<ParameterEvent> parameters;
    std::vector<MidiEvent> midi;
};

class BlockPlayer {
  public:
    /// Both must outlive the player. `blockSize` in frames is the most that the effect gets at a time.
    BlockPlayer(host::Plugin& plugin, const Events& events, std::int32_t blockSize);

    /// Plays silence ahead of the file's beginning; no event falls there. Throws Interrupted.
    void preRoll(std::int64_t frames);

    /// Plays the next frames of the file, at most `blockSize`. A parameter change falls on a block's first
    /// sample: where one lies within, the block is split. MIDI messages go ahead of the block that they fall
    /// into, with their distance from its beginning. `in` and `out`: channels of the effect x frames.
    void play(std::span<std::vector<float>> in, std::span<std::vector<float>> out, std::int32_t frames);

    std::int64_t position() const { return position_; }
    /// Events that the file has not come to; a ramp that it has not come to the end of is one.
    std::size_t eventsAhead() const;

  private:
    void changeParameters();
    void sendMidi(std::int32_t frames);

    host::Plugin& plugin_;
    const Events& events_;
    std::int32_t blockSize_;
    std::int64_t position_ = 0;
    std::size_t nextParameter_ = 0;
    std::size_t nextMidi_ = 0;
    std::vector<host::MidiMessage> messages_;
};

} // namespace tools::render
