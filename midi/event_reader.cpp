#include "midi/event_reader.h"

namespace midi {
namespace {

enum Status : int { kNoteOff = 0x80, kNoteOn = 0x90, kControlChange = 0xB0, kProgramChange = 0xC0 };

/// One step of a controller: 127 steps make exactly 1 in single precision.
constexpr float kControllerStep = 0.007874015718698502f;

void readNote(const Message& message, bool isOff, NoteState& notes) {
    const std::int32_t note = message.data[1] & 0x7F;
    const std::int32_t velocity = isOff ? 0 : message.data[2] & 0x7F;
    if (velocity == 0 && note == notes.currentNote) {
        notes.noteIsOn = 0;
        return;
    }
    notes = {note, velocity, message.deltaFrames, 1};
}

} // namespace

void readMessage(const Message& message, NoteState& notes, EventReceiver& receiver) {
    const int status = message.data[0] & 0xF0;
    const auto second = static_cast<signed char>(message.data[1]);
    switch (status) {
    case kNoteOff:
    case kNoteOn:
        readNote(message, status == kNoteOff, notes);
        break;
    case kProgramChange:
        receiver.programChange(second);
        break;
    case kControlChange:
        receiver.controlChange(second, static_cast<float>(message.data[2] & 0x7F) * kControllerStep);
        break;
    default:
        break;
    }
}

} // namespace midi
