// Turns MIDI messages into program and controller changes. Channel and time within the block are ignored:
// each message takes effect at once, whatever its channel.
#pragma once

#include <array>
#include <cstdint>

namespace midi {

/// A message with its place in the block.
struct Message {
    std::array<std::uint8_t, 3> data;
    std::int32_t deltaFrames; ///< samples into the block
};

/// The last note received. The effect makes no sound from notes.
struct NoteState {
    std::int32_t currentNote = 0;     ///< 0..127
    std::int32_t currentVelocity = 0; ///< 0..127, 0 for a note-off
    std::int32_t currentDelta = 0;    ///< samples into the block
    std::uint8_t noteIsOn = 0;
};

/// Who acts on the messages.
class EventReceiver {
  public:
    /// `program` is the data byte with its sign: 0x80 and above is negative.
    virtual void programChange(std::int32_t program) = 0;
    /// `controller` is the data byte with its sign; `value` normalised, 127 is exactly 1.
    virtual void controlChange(std::int32_t controller, float value) = 0;

  protected:
    ~EventReceiver() = default;
};

/// Reads one message. The thread of the host's call; allocates nothing.
void readMessage(const Message& message, NoteState& notes, EventReceiver& receiver);

} // namespace midi
