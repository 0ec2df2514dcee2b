// A host's list of events ahead of a block.
#pragma once

#include "midi/event_reader.h"
#include "vst2/vst2.h"

#include <cstring>

namespace vst2_door {

/// Calls `take` with each MIDI message of the list, in order. Takes null for an empty list. The thread of the
/// host's call; allocates nothing.
template <class Take>
void forEachMessage(const vst2::VstEvents* events, const Take& take) {
    if (!events)
        return;
    const vst2::VstEvent* const* const list = events->events;
    for (std::int32_t i = 0; i < events->numEvents; ++i) {
        const vst2::VstEvent* const event = list[i];
        if (!event || event->type != vst2::kVstMidiType)
            continue;
        vst2::VstMidiEvent message;
        std::memcpy(&message, event, sizeof message);
        take(midi::Message{{static_cast<std::uint8_t>(message.midiData[0]),
                            static_cast<std::uint8_t>(message.midiData[1]),
                            static_cast<std::uint8_t>(message.midiData[2])},
                           message.deltaFrames});
    }
}

} // namespace vst2_door
