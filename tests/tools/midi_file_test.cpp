// Reading standard MIDI files, whole ones and broken ones.

#include "tools/common/tool_error.h"
#include "tools/render/midi_file.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using tools::render::parseMidiFile;
using tools::render::TimedMidi;
using Bytes = std::vector<std::uint8_t>;

Bytes join(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

Bytes chunk(const char* mark, const Bytes& content) {
    const auto size = static_cast<std::uint32_t>(content.size());
    return join({Bytes(mark, mark + 4),
                 {static_cast<std::uint8_t>(size >> 24), static_cast<std::uint8_t>(size >> 16),
                  static_cast<std::uint8_t>(size >> 8), static_cast<std::uint8_t>(size)},
                 content});
}

Bytes header(std::uint8_t format, std::uint8_t tracks, std::uint16_t division) {
    return chunk("MThd", {0, format, 0, tracks, static_cast<std::uint8_t>(division >> 8),
                          static_cast<std::uint8_t>(division)});
}

const Bytes endOfTrack = {0x00, 0xFF, 0x2F, 0x00};

Bytes track(const Bytes& events) {
    return chunk("MTrk", join({events, endOfTrack}));
}

/// A file of format 0 with 100 ticks a quarter note, half a second at the tempo that nobody has changed.
Bytes simpleFile(const Bytes& events) {
    return join({header(0, 1, 100), track(events)});
}

void expectMessage(const TimedMidi& message, double seconds, int status, int first, int second) {
    EXPECT_NEAR(message.seconds, seconds, 1e-9);
    EXPECT_EQ(message.bytes[0], status);
    EXPECT_EQ(message.bytes[1], first);
    EXPECT_EQ(message.bytes[2], second);
}

void expectRefused(const Bytes& bytes, const std::string& reason) {
    try {
        parseMidiFile(bytes);
        FAIL() << "was read; expected: " << reason;
    } catch (const tools::ToolError& error) {
        EXPECT_NE(std::string(error.what()).find(reason), std::string::npos) << error.what();
        EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos);
    }
}

TEST(MidiFile, GivesNotesControllersAndProgramChangesInTime) {
    const auto messages =
        parseMidiFile(simpleFile({0, 0x90, 60, 100, 100, 0x80, 60, 0, 100, 0xB3, 7, 127, 0, 0xC5, 9}));
    ASSERT_EQ(messages.size(), 4u);
    expectMessage(messages[0], 0.0, 0x90, 60, 100);
    expectMessage(messages[1], 0.5, 0x80, 60, 0);
    expectMessage(messages[2], 1.0, 0xB3, 7, 127);
    expectMessage(messages[3], 1.0, 0xC5, 9, 0);
}

TEST(MidiFile, GivesAllOtherChannelMessagesToo) {
    const auto messages = parseMidiFile(simpleFile({0, 0xA0, 60, 1, 0, 0xD0, 2, 0, 0xE0, 3, 4}));
    ASSERT_EQ(messages.size(), 3u);
    expectMessage(messages[0], 0.0, 0xA0, 60, 1);
    expectMessage(messages[1], 0.0, 0xD0, 2, 0);
    expectMessage(messages[2], 0.0, 0xE0, 3, 4);
}

TEST(MidiFile, UnderstandsRunningStatus) {
    const auto messages = parseMidiFile(simpleFile({0, 0x90, 60, 100, 100, 60, 0, 0, 0xC0, 1, 0, 2}));
    ASSERT_EQ(messages.size(), 4u);
    expectMessage(messages[1], 0.5, 0x90, 60, 0);
    expectMessage(messages[3], 0.5, 0xC0, 2, 0);
}

TEST(MidiFile, ReadsLongTimesOfUpToFourBytes) {
    const auto messages =
        parseMidiFile(simpleFile({0x81, 0x48, 0xB0, 1, 1, 0x81, 0x80, 0x80, 0x00, 0xB0, 1, 2}));
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_NEAR(messages[0].seconds, 1.0, 1e-9);
    EXPECT_NEAR(messages[1].seconds, 1.0 + 2097152 * 0.005, 1e-6);
}

TEST(MidiFile, FollowsTempoChanges) {
    // 250 ms a quarter from tick 100 on, a second a quarter from tick 300 on.
    const auto messages = parseMidiFile(simpleFile({100, 0xFF, 0x51, 3, 0x03, 0xD0, 0x90, 100, 0xB0, 1, 1,
                                                    100, 0xFF, 0x51, 3, 0x0F, 0x42, 0x40, 50,  0xB0, 1, 2}));
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_NEAR(messages[0].seconds, 0.75, 1e-9);
    EXPECT_NEAR(messages[1].seconds, 1.5, 1e-9);
}

TEST(MidiFile, LetsATempoOfOneTrackCountForAllOthers) {
    const Bytes tempoTrack = track({100, 0xFF, 0x51, 3, 0x0F, 0x42, 0x40});
    const Bytes noteTrack = track({0x81, 0x48, 0x90, 60, 1});
    const auto messages = parseMidiFile(join({header(1, 2, 100), noteTrack, tempoTrack}));
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_NEAR(messages[0].seconds, 1.5, 1e-9);
}

TEST(MidiFile, MergesTracksByTimeAndKeepsTheirOrderWithinOneMoment) {
    const auto messages = parseMidiFile(join({header(1, 2, 100), track({0, 0x90, 1, 1, 100, 0x90, 2, 1}),
                                              track({50, 0x91, 3, 1, 50, 0x91, 4, 1})}));
    ASSERT_EQ(messages.size(), 4u);
    EXPECT_EQ(messages[0].bytes[1], 1);
    EXPECT_EQ(messages[1].bytes[1], 3);
    EXPECT_EQ(messages[2].bytes[1], 2);
    EXPECT_EQ(messages[3].bytes[1], 4);
}

TEST(MidiFile, CountsFilmFramesWhereTheHeaderSaysSo) {
    // 25 frames of 40 ticks: one tick is a millisecond, whatever the tempo.
    const auto film =
        parseMidiFile(join({header(0, 1, 0xE728), track({0, 0xFF, 0x51, 3, 0, 0, 1, 100, 0xB0, 1, 1})}));
    ASSERT_EQ(film.size(), 1u);
    EXPECT_NEAR(film[0].seconds, 0.1, 1e-9);
}

TEST(MidiFile, TakesTwentyNineFramesForTheColourTelevisionRate) {
    const auto messages = parseMidiFile(join({header(0, 1, 0xE301), track({30, 0xB0, 1, 1})}));
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_NEAR(messages[0].seconds, 1.001, 1e-9);
}

TEST(MidiFile, PassesOverExclusiveMessagesTextsAndForeignChunks) {
    const Bytes events = {0, 0xF0, 3, 1, 2, 0xF7, 0, 0xFF, 3, 2, 'h', 'i', 0, 0xF7, 1, 5, 0, 0x90, 60, 1};
    const auto messages = parseMidiFile(join({header(0, 1, 100), chunk("XYZW", {1, 2, 3}), track(events)}));
    ASSERT_EQ(messages.size(), 1u);
    expectMessage(messages[0], 0.0, 0x90, 60, 1);
}

TEST(MidiFile, ReadsAHeaderLongerThanTheUsualOne) {
    const Bytes longHeader = chunk("MThd", {0, 0, 0, 1, 0, 100, 9, 9});
    EXPECT_EQ(parseMidiFile(join({longHeader, track({0, 0x90, 60, 1})})).size(), 1u);
}

TEST(MidiFile, ReadsNothingBehindTheEndOfATrack) {
    const auto messages =
        parseMidiFile(join({header(0, 1, 100), chunk("MTrk", join({endOfTrack, {0, 0x90, 60, 1}}))}));
    EXPECT_TRUE(messages.empty());
}

TEST(MidiFile, RefusesWhatIsNoMidiFile) {
    expectRefused({}, "not a standard MIDI file");
    expectRefused({'R', 'I', 'F', 'F', 0, 0, 0, 6, 0, 0, 0, 1, 0, 100}, "not a standard MIDI file");
}

TEST(MidiFile, RefusesAHeaderCutShort) {
    expectRefused({'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 0}, "too short a header");
    expectRefused({'M', 'T', 'h', 'd', 0, 0, 0, 4, 0, 0, 0, 1, 0, 100}, "too short a header");
}

TEST(MidiFile, RefusesIndependentSequences) {
    expectRefused(join({header(2, 1, 100), track({})}), "format 2");
}

TEST(MidiFile, RefusesTimeWithoutTicks) {
    expectRefused(join({header(0, 1, 0), track({})}), "no ticks");
    expectRefused(join({header(0, 1, 0xE700), track({})}), "no ticks");
    expectRefused(join({header(0, 1, 0xF601), track({})}), "film frames");
}

TEST(MidiFile, RefusesMissingTracks) {
    expectRefused(join({header(1, 2, 100), track({0, 0x90, 60, 1})}), "ends after track 1 of 2");
}

TEST(MidiFile, RefusesATrackCutShort) {
    Bytes bytes = simpleFile({0, 0x90, 60, 1});
    bytes.pop_back();
    expectRefused(bytes, "ends in the middle of track 1");
}

TEST(MidiFile, RefusesAnEventCutShort) {
    const auto broken = [](const Bytes& events) { return join({header(0, 1, 100), chunk("MTrk", events)}); };
    expectRefused(broken({0, 0x90, 60}), "track 1, byte 3: the track ends in the middle of an event");
    expectRefused(broken({0}), "middle of an event");
    expectRefused(broken({0x80}), "middle of an event");
    expectRefused(broken({0, 0xFF, 3, 5, 'h'}), "middle of an event");
    expectRefused(broken({0, 0xF0, 0x7F, 1}), "middle of an event");
}

TEST(MidiFile, RefusesDataThatBelongsToNoMessage) {
    expectRefused(simpleFile({0, 60, 100}), "without a message");
    expectRefused(simpleFile({0, 0x90, 60, 1, 0, 0xFF, 1, 0, 0, 60, 1}), "without a message");
}

TEST(MidiFile, RefusesStatusBytesWhereDataShouldBe) {
    expectRefused(simpleFile({0, 0x90, 0x90, 1}), "above 127");
    expectRefused(simpleFile({0, 0x90, 60, 0x80}), "above 127");
}

TEST(MidiFile, RefusesNumbersOfFiveBytes) {
    expectRefused(simpleFile({0x81, 0x81, 0x81, 0x81, 0x01, 0x90, 60, 1}), "more than four bytes");
}

TEST(MidiFile, RefusesMessagesThatHaveNoPlaceInAFile) {
    expectRefused(simpleFile({0, 0xF8}), "no place in a file");
}

TEST(MidiFile, RefusesATempoThatIsNone) {
    expectRefused(simpleFile({0, 0xFF, 0x51, 2, 1, 1}), "a tempo of 2 bytes");
    expectRefused(simpleFile({0, 0xFF, 0x51, 3, 0, 0, 0}), "tempo");
}

TEST(MidiFile, SurvivesEveryCutAndEveryChangedByteOfAFile) {
    const Bytes whole =
        join({header(1, 2, 96), track({0, 0xFF, 0x51, 3, 7, 0xA1, 0x20, 10, 0x90, 60, 1, 5, 61, 2}),
              track({0, 0xF0, 2, 1, 0xF7, 3, 0xC0, 5, 1, 0xB0, 1, 2})});
    for (std::size_t i = 0; i < whole.size(); ++i) {
        Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(i));
        EXPECT_THROW(parseMidiFile(cut), tools::ToolError) << i;
        for (int value = 0; value < 256; ++value) {
            Bytes changed = whole;
            changed[i] = static_cast<std::uint8_t>(value);
            try {
                parseMidiFile(changed);
            } catch (const tools::ToolError&) {
            }
        }
    }
}

} // namespace
