// MIDI learn: a control of the editor is armed, and the next controller received is bound to its parameter.
// The machine is complete, but no control of the editor reports to it today, so it stays idle; bindings come
// from the map's file.
#pragma once

#include "base/shared.h"

#include <cstdint>

namespace midi {

/// The tag of a learn overlay is this plus the id of its parameter.
constexpr std::int32_t kLearnTagBase = 0x100000;

/// Idle, or armed with the one overlay that waits for a controller. Armed on the window's thread, read and
/// disarmed on whichever thread delivers MIDI.
class LearnMachine {
  public:
    /// A control has reported a value, normalised: exactly 1 from the overlay of a parameter arms it, in
    /// place of another one that may be waiting. Everything else changes nothing.
    void controlChanged(std::int32_t tag, float value);

    /// Idle again: the controls were made anew.
    void disarm();

    /// Binds `controller` to the parameter that waits, if any, and is idle again. Allocates nothing.
    void bind(std::int32_t controller);

    /// The same for the three bytes of a MIDI message, of which only a Control Change means anything.
    void learnFromMidi(const std::uint8_t* midiData);

    bool isArmed() const;

  private:
    static constexpr std::int32_t kNobody = -1;
    base::Shared<std::int32_t> learnTarget = kNobody; ///< the tag of the overlay that waits
};

} // namespace midi
