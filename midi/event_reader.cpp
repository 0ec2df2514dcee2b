#include "midi/event_reader.h"

#include <cstring>

namespace midi {
namespace {

enum Status : int { kNoteOff = 0x80, kNoteOn = 0x90, kControlChange = 0xB0, kProgramChange = 0xC0 };

/// One step of a controller: 127 steps make exactly 1 in single precision.
constexpr float kControllerStep = 0.007874015718698502f;

void readNote(const vst2::VstMidiEvent& event, bool isOff, NoteState& notes) {
    const std::int32_t note = event.midiData[1] & 0x7F;
    const std::int32_t velocity = isOff ? 0 : event.midiData[2] & 0x7F;
    if (velocity == 0 && note == notes.currentNote) {
        notes.noteIsOn = 0;
        return;
    }
    notes = {note, velocity, event.deltaFrames, 1};
}

void readMidi(const vst2::VstMidiEvent& event, NoteState& notes, EventReceiver& receiver) {
    const int status = event.midiData[0] & 0xF0;
    const auto second = static_cast<signed char>(event.midiData[1]);
    switch (status) {
    case kNoteOff:
    case kNoteOn:
        readNote(event, status == kNoteOff, notes);
        break;
    case kProgramChange:
        receiver.programChange(second);
        break;
    case kControlChange:
        receiver.controlChange(second, static_cast<float>(event.midiData[2] & 0x7F) * kControllerStep);
        break;
    default:
        break;
    }
}

} // namespace

void readEvents(const vst2::VstEvents* events, NoteState& notes, EventReceiver& receiver) {
    if (!events)
        return;
    const vst2::VstEvent* const* const list = events->events;
    for (std::int32_t i = 0; i < events->numEvents; ++i) {
        const vst2::VstEvent* const event = list[i];
        if (!event || event->type != vst2::kVstMidiType)
            continue;
        vst2::VstMidiEvent message;
        std::memcpy(&message, event, sizeof message);
        readMidi(message, notes, receiver);
    }
}

} // namespace midi
