// What a host's events do: values and MIDI at their frame, and what the host is told in return.
#include "clap_module.h"
#include "sound.h"

#include "desk/private_folder.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace clap_test;
using namespace clap_door;
using namespace parameters;

constexpr std::uint8_t kProgramChange = 0xC3, kControlChange = 0xB5;

/// The module of the build; stays loaded.
const Module& module() {
    static const Module loaded;
    return loaded;
}

class EventList : public testing::Test {
  protected:
    void processSilence(std::uint32_t frames, Events* list = nullptr, ToldEvents* to = nullptr) {
        Row left(frames), right(frames);
        float* const channels[] = {left.data(), right.data()};
        instance.process(channels, channels, frames, list, to);
    }
    /// What a fresh instance plays with these events in a block of 2000 frames, echoes from the first ones
    /// on.
    Stereo soundWith(Events& list, double set = 2.0) {
        Host other;
        Instance fresh(module().entry(), other);
        fresh.set(kSet, set);
        fresh.set(kBaseLength, 0.05);
        fresh.activate();
        return played(fresh, 6000, 2000, &list);
    }

    desk::PrivateFolder folder;
    Host host;
    Instance instance{module().entry(), host};
    Events events;
    ToldEvents told;
};

TEST_F(EventList, SetsValuesBeforeActivationWhileItPlaysAndBetween) {
    instance.set(kTaps, 0.125);
    EXPECT_EQ(instance.value(kTaps), 0.125);
    instance.activate();
    EXPECT_EQ(instance.value(kTaps), 0.125);
    instance.set(kTaps, 0.25);
    EXPECT_EQ(instance.value(kTaps), 0.25);
    processSilence(64, &events.value(kTaps, 0.5, 63));
    EXPECT_EQ(instance.value(kTaps), 0.5);
    instance.set(kTaps, 0.75);
    instance.deactivate();
    EXPECT_EQ(instance.value(kTaps), 0.75);
}

TEST_F(EventList, KeepsWhatWasSetWhereTheSoundGoesByAnotherValue) {
    instance.set(kAmpDecay, 1.0);
    instance.set(kPreGain, 0.25);
    instance.activate();
    processSilence(64);
    EXPECT_EQ(instance.value(kAmpDecay), 1.0);
    EXPECT_EQ(instance.value(kPreGain), 0.25);
}

TEST_F(EventList, TakesTheEndOfTheRangeForValuesBeyond) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (std::uint32_t index = 0; index < kNumListed; ++index) {
        clap_param_info_t info;
        instance.parameters().get_info(instance.plugin(), index, &info);
        for (const double high : {info.max_value + 0.5, 1e300, infinity}) {
            instance.set(info.id, high);
            EXPECT_EQ(instance.value(info.id), info.max_value) << index;
            instance.set(info.id, -high);
            EXPECT_EQ(instance.value(info.id), 0.0) << index;
        }
    }
}

TEST_F(EventList, TakesStepsForWholeNumbers) {
    instance.set(kSet, 1.99);
    EXPECT_EQ(instance.value(kSet), 1.0);
    instance.set(kProgramId, 7.99);
    EXPECT_EQ(instance.value(kProgramId), 7.0);
}

TEST_F(EventList, TakesValuesForSingleNotesForAll) {
    clap_event_param_value_t event = {};
    event.header = Events::header(sizeof event, CLAP_EVENT_PARAM_VALUE, 0);
    event.param_id = kTaps;
    event.value = 0.125;
    instance.flush(events.add(event));
    EXPECT_EQ(instance.value(kTaps), 0.125);
    event.cookie = this;
    event.note_id = 7;
    event.port_index = 5;
    event.channel = event.key = 3;
    event.value = 0.25;
    instance.flush(events.add(event));
    EXPECT_EQ(instance.value(kTaps), 0.25);
}

TEST_F(EventList, LosesTheEchoesByAnotherProgramAlone) {
    instance.set(kDryWet, 1.0);
    instance.set(kBaseLength, 0.3);
    instance.activate();
    EXPECT_GT(loudestAfterClick(instance, [&] { instance.set(kProgramId, 0.0); }), 0.01f);
    EXPECT_LT(loudestAfterClick(instance, [&] { instance.set(kProgramId, 1.0); }), 0.001f);
}

/// That `told` holds every value once, as the instance has it, of that frame.
void expectAllTold(const ToldEvents& told, const Instance& instance, std::uint32_t time) {
    ASSERT_EQ(told.values.size(), kNumListed);
    for (std::uint32_t index = 0; index < kNumListed; ++index) {
        const clap_event_param_value_t& event = told.values[index];
        EXPECT_EQ(event.param_id, idAt(index));
        EXPECT_EQ(event.value, instance.value(event.param_id)) << index;
        EXPECT_EQ(event.header.time, time);
        EXPECT_EQ(event.header.space_id, CLAP_CORE_EVENT_SPACE_ID);
        EXPECT_EQ(event.header.flags, CLAP_EVENT_DONT_RECORD);
        EXPECT_EQ(event.note_id, -1);
        EXPECT_EQ(event.port_index, -1);
        EXPECT_EQ(event.channel, -1);
        EXPECT_EQ(event.key, -1);
    }
}

TEST_F(EventList, SelectsAProgramAndTellsAllValuesAtItsFrame) {
    instance.activate();
    processSilence(64, &events.midi(kProgramChange, 9, 0, 33), &told);
    EXPECT_EQ(instance.value(kProgramId), 9.0);
    expectAllTold(told, instance, 33);
    told.values.clear();
    processSilence(64, nullptr, &told);
    EXPECT_EQ(told.values.size(), 0u);
}

TEST_F(EventList, TellsAllValuesWhereTheHostItselfSelectsAProgram) {
    instance.activate();
    processSilence(64, &events.value(kProgramId, 9.0, 5), &told);
    expectAllTold(told, instance, 5);
    told.values.clear();
    events.clear();
    instance.flush(events.value(kProgramId, 10.0), &told);
    expectAllTold(told, instance, 0);
}

TEST_F(EventList, TellsWhatAFrameEndsWith) {
    instance.activate();
    processSilence(64, &events.value(kProgramId, 9.0, 5).value(kDryWet, 0.3, 5), &told);
    EXPECT_EQ(instance.value(kDryWet), static_cast<double>(0.3f));
    expectAllTold(told, instance, 5);
}

TEST_F(EventList, TellsOlderChangesWithWhatTheFirstFrameMakesOfThem) {
    instance.activate();
    instance.flush(events.value(kProgramId, 9.0).list(), nullptr);
    events.clear();
    processSilence(64, &events.value(kDryWet, 0.3), &told);
    expectAllTold(told, instance, 0);
}

TEST_F(EventList, TellsNothingOfWhatTheHostHasSet) {
    instance.activate();
    processSilence(64, &events.value(kTaps, 0.125).value(kProgramId, 0.0), &told);
    instance.flush(events.value(kTaps, 0.25), &told);
    EXPECT_EQ(told.values.size(), 0u);
}

TEST_F(EventList, PassesOverProgramChangesThatThereAreNot) {
    instance.activate();
    processSilence(64, &events.midi(kProgramChange, 0x85), &told);
    EXPECT_EQ(instance.value(kProgramId), 0.0);
    EXPECT_EQ(told.values.size(), 0u);
}

TEST_F(EventList, TellsLaterWhatTheHostHasNoRoomFor) {
    instance.activate();
    told.room = 5;
    processSilence(64, &events.midi(kProgramChange, 9), &told);
    EXPECT_EQ(told.values.size(), 5u);
    told.room = ~std::size_t{0};
    processSilence(64, nullptr, &told);
    expectAllTold(told, instance, 0);
}

TEST_F(EventList, TellsWithinTheBlockWhereAnEventStandsBehindItsEnd) {
    instance.activate();
    processSilence(64, &events.midi(kProgramChange, 9, 0, 64), &told);
    expectAllTold(told, instance, 63);
    told.values.clear();
    events.clear();
    processSilence(0, &events.midi(kProgramChange, 10, 0, 64), &told);
    expectAllTold(told, instance, 0);
}

void writeMap(std::int32_t id, std::int32_t controller) {
    std::array<std::int32_t, 21> map;
    map.fill(-1);
    map[static_cast<std::size_t>(id)] = controller;
    std::ofstream("Pluginccmap.bin", std::ios::binary)
        .write(reinterpret_cast<const char*>(map.data()), sizeof map);
}

TEST_F(EventList, BindsControllersByTheMapInTheCurrentFolder) {
    writeMap(kFeedback, 21);
    Host other;
    Instance mapped(module().entry(), other);
    mapped.activate();
    Row samples(64);
    float* const channels[] = {samples.data(), samples.data()};
    mapped.process(channels, channels, 64,
                   &events.midi(kControlChange, 21, 127, 10).midi(kControlChange, 22, 5), &told);
    EXPECT_EQ(mapped.value(kFeedback), 1.0);
    ASSERT_EQ(told.values.size(), 1u);
    EXPECT_EQ(told.values[0].param_id, static_cast<clap_id>(kFeedback));
    EXPECT_EQ(told.values[0].value, 1.0);
    EXPECT_EQ(told.values[0].header.time, 10u);
    EXPECT_EQ(told.values[0].header.flags, CLAP_EVENT_DONT_RECORD);
}

TEST_F(EventList, HasNoControllersWithoutAMap) {
    std::filesystem::remove("Pluginccmap.bin");
    Host other;
    Instance mapless(module().entry(), other);
    const double before = mapless.value(kFeedback);
    mapless.activate();
    Row samples(64);
    float* const channels[] = {samples.data(), samples.data()};
    for (int controller = 0; controller < 128; ++controller)
        events.midi(kControlChange, static_cast<std::uint8_t>(controller), 127);
    mapless.process(channels, channels, 64, &events, &told);
    EXPECT_EQ(mapless.value(kFeedback), before);
    EXPECT_EQ(told.values.size(), 0u);
}

/// Events that mean nothing here, all at this frame.
void addForeign(Events& events, std::uint32_t time) {
    clap_event_param_value_t value = {};
    value.header = Events::header(sizeof value, CLAP_EVENT_PARAM_VALUE, time);
    value.param_id = kTaps;
    value.value = 0.9;
    clap_event_param_value_t other = value;
    other.header.space_id = 7;
    events.add(other);
    other = value;
    other.header.size = sizeof(clap_event_header_t);
    events.add(other);
    other = value;
    other.header.type = 999;
    events.add(other);
    other = value;
    other.value = std::numeric_limits<double>::quiet_NaN();
    events.add(other);
    events.value(17, 0.9, time).value(CLAP_INVALID_ID, 0.9, time).nothing();
    clap_event_param_mod_t modulation = {};
    modulation.header = Events::header(sizeof modulation, CLAP_EVENT_PARAM_MOD, time);
    modulation.param_id = kTaps;
    modulation.amount = 0.9;
    events.add(modulation);
    clap_event_note_t note = {};
    note.header = Events::header(sizeof note, CLAP_EVENT_NOTE_ON, time);
    events.add(note);
    clap_event_midi_t midi = {};
    midi.header = Events::header(sizeof midi, CLAP_EVENT_MIDI, time);
    midi.port_index = 1;
    midi.data[0] = kProgramChange;
    midi.data[1] = 9;
    events.add(midi);
    clap_event_midi_sysex_t exclusive = {};
    exclusive.header = Events::header(sizeof exclusive, CLAP_EVENT_MIDI_SYSEX, time);
    events.add(exclusive);
    clap_event_transport_t transport = {};
    transport.header = Events::header(sizeof transport, CLAP_EVENT_TRANSPORT, time);
    events.add(transport);
}

TEST_F(EventList, PassesOverEventsThatMeanNothingHere) {
    // "Set" on 0: also a piece more or less would be heard, in the fade that hides the taps' jump.
    const Stereo plain = soundWith(events.value(kTaps, 0.3, 700), 0.0);
    Events mixed;
    addForeign(mixed, 0);
    mixed.value(kTaps, 0.3, 700);
    addForeign(mixed, 900);
    EXPECT_EQ(soundWith(mixed, 0.0), plain);
}

TEST_F(EventList, HearsAValueFromItsFrameOn) {
    Events none;
    const Stereo before = soundWith(none), after = soundWith(events.value(kDryWet, 0.0, 1234));
    const auto firstDifference = [](const Row& one, const Row& other) {
        return std::mismatch(one.begin(), one.end(), other.begin()).first - one.begin();
    };
    EXPECT_GE(firstDifference(before.left, after.left), 1234);
    EXPECT_LT(std::min(firstDifference(before.left, after.left), firstDifference(before.right, after.right)),
              1300);
}

TEST_F(EventList, TakesLateEventsWhereTheBlockHasGotTo) {
    Events sorted;
    sorted.value(kTaps, 0.3, 700).value(kDryWet, 0.9, 700).value(kFeedback, 0.9, 1500);
    events.value(kTaps, 0.3, 700).value(kDryWet, 0.9, 20).value(kFeedback, 0.9, 1500);
    EXPECT_EQ(soundWith(events), soundWith(sorted));
}

TEST_F(EventList, TakesEventsBeyondTheEndAtTheEnd) {
    Events atEnd;
    atEnd.value(kTaps, 0.3, 2000);
    events.value(kTaps, 0.3, 0xFFFFFFFFu);
    EXPECT_EQ(soundWith(events), soundWith(atEnd));
}

TEST_F(EventList, TakesTheLastOfDoubledValues) {
    Events single;
    single.value(kTaps, 0.3, 700);
    events.value(kTaps, 0.9, 700).value(kTaps, 0.3, 700).value(kTaps, 0.3, 700);
    EXPECT_EQ(soundWith(events), soundWith(single));
}

TEST_F(EventList, HearsNothingOfARepeatedValue) {
    const auto sound = [](Events* repeated) {
        Host other;
        Instance fresh(module().entry(), other);
        // A jump of the taps would be hidden by a fade.
        fresh.set(kSet, 0.0);
        fresh.set(kBaseLength, 0.05);
        fresh.set(kStretch, 0.25);
        fresh.activate();
        played(fresh);
        Row heard;
        for (int block = 0; block < 8; ++block) {
            const Stereo more = played(fresh, 512, 512, repeated);
            heard.insert(heard.end(), more.left.begin(), more.left.end());
            heard.insert(heard.end(), more.right.begin(), more.right.end());
        }
        return heard;
    };
    EXPECT_EQ(sound(&events.value(kStretch, 0.25).value(kPreLowPass, instance.value(kPreLowPass))),
              sound(nullptr));
    Events changed;
    EXPECT_NE(sound(&changed.value(kStretch, 0.26)), sound(nullptr));
}

TEST_F(EventList, TakesEventsInBlocksOfNoFrame) {
    instance.activate();
    processSilence(0, &events.value(kTaps, 0.125, 5));
    EXPECT_EQ(instance.value(kTaps), 0.125);
    processSilence(0);
}

TEST_F(EventList, MakesDoWithoutLists) {
    instance.activate();
    clap_process_t block = {};
    block.frames_count = 64;
    EXPECT_EQ(instance.process(block), CLAP_PROCESS_CONTINUE);
    instance.flush(nullptr, nullptr);
    instance.deactivate();
    instance.flush(nullptr, nullptr);
    instance.flush(events.value(kProgramId, 3.0).list(), nullptr);
    Events none;
    instance.flush(none, &told);
    expectAllTold(told, instance, 0);
}

TEST_F(EventList, TakesNoMidiFromAFlush) {
    instance.flush(events.midi(kProgramChange, 9));
    EXPECT_EQ(instance.value(kProgramId), 0.0);
}

} // namespace
