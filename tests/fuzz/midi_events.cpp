// Any list of events: what the effect makes of it is what the bytes say, in their order, and no event is read
// beyond its end.
//
// The input is a row of events, each of a kind, a place in the block and bytes.
#include "doors/vst2/event_list.h"

#include "byte_source.h"
#include "promise.h"

#include <cstring>
#include <memory>
#include <vector>

namespace {

using namespace vst2;

/// What came of one event.
struct Act {
    bool isProgramChange;
    std::int32_t number;
    float value;
    bool operator==(const Act&) const = default;
};

class Listener final : public midi::EventReceiver {
  public:
    void programChange(std::int32_t program) override { acts.push_back({true, program, 0.0f}); }
    void controlChange(std::int32_t controller, float value) override {
        acts.push_back({false, controller, value});
    }
    std::vector<Act> acts;
};

/// Events in blocks of exactly their size, so that a step too far is noticed.
class EventList {
  public:
    void add(const void* event, std::size_t size) {
        blocks_.push_back(std::make_unique<std::uint8_t[]>(size));
        std::memcpy(blocks_.back().get(), event, size);
        entries_.push_back(blocks_.back().get());
    }
    void addNull() { entries_.push_back(nullptr); }
    /// The list, good until the next call.
    const VstEvents* events(std::int32_t numEvents) {
        const std::size_t size = offsetof(VstEvents, events) + entries_.size() * sizeof(void*);
        list_ = std::make_unique<std::uint8_t[]>(std::max(size, sizeof(VstEvents)));
        std::memcpy(list_.get() + offsetof(VstEvents, numEvents), &numEvents, sizeof numEvents);
        if (!entries_.empty())
            std::memcpy(list_.get() + offsetof(VstEvents, events), entries_.data(),
                        entries_.size() * sizeof(void*));
        return reinterpret_cast<const VstEvents*>(list_.get());
    }
    std::int32_t size() const { return static_cast<std::int32_t>(entries_.size()); }

  private:
    std::vector<std::unique_ptr<std::uint8_t[]>> blocks_;
    std::vector<void*> entries_;
    std::unique_ptr<std::uint8_t[]> list_;
};

/// The same rules told once more, one message after the other.
void expect(const VstMidiEvent& event, midi::NoteState& notes, std::vector<Act>& acts) {
    const auto status = static_cast<std::uint8_t>(event.midiData[0]) & 0xF0;
    const int second = static_cast<std::int8_t>(event.midiData[1]);
    const int third = static_cast<std::uint8_t>(event.midiData[2]) & 0x7F;
    if (status == 0xC0)
        acts.push_back({true, second, 0.0f});
    if (status == 0xB0)
        acts.push_back({false, second, static_cast<float>(third) * 0.007874015718698502f});
    if (status != 0x80 && status != 0x90)
        return;
    const int note = second & 0x7F;
    const int velocity = status == 0x80 ? 0 : third;
    if (velocity == 0 && note == notes.currentNote)
        notes.noteIsOn = 0;
    else
        notes = {note, velocity, event.deltaFrames, 1};
}

void addMidi(ByteSource& source, EventList& list, midi::NoteState& notes, std::vector<Act>& acts) {
    VstMidiEvent event = {};
    event.type = kVstMidiType;
    event.byteSize = source.byte();
    event.deltaFrames = source.number();
    const auto bytes = source.bytes(sizeof event.midiData);
    if (!bytes.empty())
        std::memcpy(event.midiData, bytes.data(), bytes.size());
    list.add(&event, sizeof event);
    expect(event, notes, acts);
}

/// An event that is no MIDI message, with nothing behind the head that every event has.
void addOther(ByteSource& source, EventList& list) {
    std::int32_t head[4] = {source.number(), source.number(), source.number(), source.number()};
    if (head[0] == kVstMidiType)
        head[0] = kVstSysExType;
    list.add(head, sizeof head);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ByteSource source(data, size);
    EventList list;
    midi::NoteState expectedNotes;
    std::vector<Act> expected;
    while (!source.isEmpty() && list.size() < 4096) {
        const std::uint8_t kind = source.byte();
        if (kind == 0)
            list.addNull();
        else if (kind < 16)
            addOther(source, list);
        else
            addMidi(source, list, expectedNotes, expected);
    }

    Listener listener;
    midi::NoteState notes;
    const auto readEvents = [&](const VstEvents* events) {
        vst2_door::forEachMessage(
            events, [&](const midi::Message& message) { midi::readMessage(message, notes, listener); });
    };
    readEvents(nullptr);
    readEvents(list.events(0));
    readEvents(list.events(-1));
    promise(listener.acts.empty() && notes.noteIsOn == 0, "an empty list means nothing");

    readEvents(list.events(list.size()));
    promise(listener.acts == expected, "each event acts as its bytes say, in order");
    for (const Act& act : listener.acts) {
        promise(act.number >= -128 && act.number <= 127, "a signed byte");
        promise(act.value >= 0.0f && act.value <= 1.0f, "a normalised value");
    }
    promise(notes.currentNote == expectedNotes.currentNote &&
                notes.currentVelocity == expectedNotes.currentVelocity &&
                notes.currentDelta == expectedNotes.currentDelta && notes.noteIsOn == expectedNotes.noteIsOn,
            "the last note");
    return 0;
}
