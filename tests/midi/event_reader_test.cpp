// What becomes of single MIDI messages, seen from inside: the last note, which nothing outside can show, and
// the numbers that reach the effect.
#include "doors/vst2/event_list.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <string>
#include <vector>

namespace {

using namespace vst2;

struct Act {
    std::string kind;
    std::int32_t number;
    float value;
    bool operator==(const Act&) const = default;
};

class EventReader : public testing::Test, protected midi::EventReceiver {
  protected:
    static VstMidiEvent message(int status, int second, int third = 0, std::int32_t deltaFrames = 0) {
        VstMidiEvent event = {};
        event.type = kVstMidiType;
        event.byteSize = 24;
        event.deltaFrames = deltaFrames;
        event.midiData[0] = static_cast<char>(status);
        event.midiData[1] = static_cast<char>(second);
        event.midiData[2] = static_cast<char>(third);
        return event;
    }

    void send(std::vector<VstMidiEvent> messages) {
        std::vector<void*> entries;
        for (VstMidiEvent& event : messages)
            entries.push_back(&event);
        sendEntries(entries);
    }

    void sendEntries(const std::vector<void*>& entries) {
        alignas(VstEvents) std::byte room[sizeof(VstEvents) + 16 * sizeof(VstEvent*)];
        ASSERT_LE(entries.size(), 16u);
        auto* list = new (room) VstEvents{};
        list->numEvents = static_cast<std::int32_t>(entries.size());
        if (!entries.empty())
            std::memcpy(room + offsetof(VstEvents, events), entries.data(), entries.size() * sizeof(void*));
        vst2_door::forEachMessage(
            list, [this](const midi::Message& read) { midi::readMessage(read, notes, *this); });
    }

    void expectNote(int note, int velocity, int deltaFrames, int isOn) {
        EXPECT_EQ(notes.currentNote, note);
        EXPECT_EQ(notes.currentVelocity, velocity);
        EXPECT_EQ(notes.currentDelta, deltaFrames);
        EXPECT_EQ(notes.noteIsOn, isOn);
    }

    midi::NoteState notes;
    std::vector<Act> acts;

  private:
    void programChange(std::int32_t program) override { acts.push_back({"program", program, 0.0f}); }
    void controlChange(std::int32_t controller, float value) override {
        acts.push_back({"controller", controller, value});
    }
};

class LastNote : public EventReader {};

TEST_F(LastNote, IsNoneAtFirst) {
    expectNote(0, 0, 0, 0);
}

TEST_F(LastNote, IsKeptWithItsVelocityAndPlaceInTheBlock) {
    send({message(0x93, 60, 100, 17)});
    expectNote(60, 100, 17, 1);
    EXPECT_TRUE(acts.empty());
}

TEST_F(LastNote, EndsWithItsNoteOffAndKeepsAllElse) {
    send({message(0x90, 60, 100, 17), message(0x80, 60, 64, 99)});
    expectNote(60, 100, 17, 0);
}

TEST_F(LastNote, EndsWithANoteOnOfVelocityZero) {
    send({message(0x90, 60, 100, 17), message(0x90, 60, 0, 99)});
    expectNote(60, 100, 17, 0);
}

TEST_F(LastNote, EndsOnAnyChannel) {
    send({message(0x90, 60, 100), message(0x8F, 60, 0)});
    EXPECT_EQ(notes.noteIsOn, 0);
}

TEST_F(LastNote, IsReplacedByTheNextOne) {
    send({message(0x90, 60, 100, 17), message(0x90, 64, 90, 30)});
    expectNote(64, 90, 30, 1);
}

TEST_F(LastNote, IsReplacedByTheNoteOffOfAnotherWhichCountsAsOn) {
    send({message(0x90, 60, 100, 17), message(0x80, 64, 90, 30)});
    expectNote(64, 0, 30, 1);
    send({message(0x90, 65, 0, 31)});
    expectNote(65, 0, 31, 1);
}

TEST_F(LastNote, TakesSevenBitsOfEachByte) {
    send({message(0x90, 0xBC, 0xE4)});
    expectNote(60, 100, 0, 1);
    send({message(0x90, 0x3C, 0x80)});
    EXPECT_EQ(notes.noteIsOn, 0) << "0x80 is a velocity of zero";
}

TEST_F(LastNote, IsLeftAloneByAllOtherMessages) {
    send({message(0x90, 60, 100, 17)});
    send({message(0xA0, 61, 1), message(0xB0, 61, 1), message(0xC0, 61), message(0xD0, 61),
          message(0xE0, 61, 1), message(0xF8, 61, 1), message(0x40, 61, 1)});
    expectNote(60, 100, 17, 1);
}

class Numbers : public EventReader {};

TEST_F(Numbers, AreReadWithTheSignOfTheirByte) {
    send({message(0xC0, 127), message(0xCF, 0x80), message(0xC0, 0xFF), message(0xB0, 0xFF, 127),
          message(0xB9, 0x80, 0)});
    EXPECT_EQ(acts, (std::vector<Act>{{"program", 127, 0.0f},
                                      {"program", -128, 0.0f},
                                      {"program", -1, 0.0f},
                                      {"controller", -1, 1.0f},
                                      {"controller", -128, 0.0f}}));
}

TEST_F(Numbers, OfAControllerAreStepsThatReachOneExactly) {
    send({message(0xB0, 7, 0), message(0xB0, 7, 64), message(0xB0, 7, 127), message(0xB0, 7, 0xFF)});
    ASSERT_EQ(acts.size(), 4u);
    EXPECT_EQ(acts[0].value, 0.0f);
    EXPECT_EQ(static_cast<double>(acts[1].value), 0.5039370059967041);
    EXPECT_EQ(acts[2].value, 1.0f);
    EXPECT_EQ(acts[3].value, 1.0f);
}

class Lists : public EventReader {};

TEST_F(Lists, MayBeEmptyOrMissing) {
    sendEntries({});
    vst2_door::forEachMessage(nullptr, [](const midi::Message&) { FAIL(); });
    EXPECT_TRUE(acts.empty());
}

TEST_F(Lists, MayHoldWhatIsNoMidiMessage) {
    VstMidiEvent other = message(0xC0, 5);
    other.type = kVstSysExType;
    VstMidiEvent midiMessage = message(0xC0, 6);
    sendEntries({&other, nullptr, &midiMessage});
    EXPECT_EQ(acts, (std::vector<Act>{{"program", 6, 0.0f}}));
}

} // namespace
