// Turns a host's list of MIDI events into what they mean to the effect. Channels and timing inside the block
// play no part: every event acts at once, on all sixteen channels alike.
#pragma once

#include "vst2/vst2.h"

#include <cstdint>

namespace midi {

/// The last note that came by. The effect makes no sound from notes.
struct NoteState {
    std::int32_t currentNote = 0;     ///< 0..127
    std::int32_t currentVelocity = 0; ///< 0..127, 0 for a note-off
    std::int32_t currentDelta = 0;    ///< samples into the block
    std::uint8_t noteIsOn = 0;
};

/// Who acts on the events.
class EventReceiver {
  public:
    /// `program` is the data byte with its sign: 0x80 and above is negative.
    virtual void programChange(std::int32_t program) = 0;
    /// `controller` is the data byte with its sign; `value` normalised, 127 is exactly 1.
    virtual void controlChange(std::int32_t controller, float value) = 0;

  protected:
    ~EventReceiver() = default;
};

/// Reads the events in their order. Takes null for an empty list. The thread of the host's call; allocates
/// nothing.
void readEvents(const vst2::VstEvents* events, NoteState& notes, EventReceiver& receiver);

} // namespace midi
