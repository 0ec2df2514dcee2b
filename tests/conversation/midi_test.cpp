// MIDI as the host hands it over: notes that do nothing, program changes, and controllers through the map.
#include "support/echoes.h"
#include "support/plugin_folder.h"

#include <cstddef>
#include <initializer_list>
#include <new>

namespace conversation {
namespace {

using namespace vst2;
using host::MidiMessage;

constexpr float kStep = 0.007874015718698502f;

/// The map of the tests: 16 for the base length, 17 for curve and mix alike, 20 for an id that stores
/// nothing, -5 for the feedback, and none elsewhere.
Bytes controllerMap() {
    BankImage map(Bytes(84, 0xFF));
    map.littleEndian(4 * kBaseLength, 16).littleEndian(4 * kCurve, 17).littleEndian(4 * kDryWet, 17);
    map.littleEndian(4 * 18, 20).littleEndian(4 * kFeedback, static_cast<std::uint32_t>(-5));
    return map.bytes();
}

class MidiFixture : public DistinctPlugin {
  protected:
    MidiFixture() { writeFile(module.beside(kMapFile), controllerMap()); }

    std::intptr_t send(host::Plugin& plugin, std::initializer_list<MidiMessage> messages) {
        return plugin.sendMidi({messages.begin(), messages.size()});
    }
    /// Sends events of any kind, one list of them.
    static std::intptr_t sendEvents(host::Plugin& plugin, std::initializer_list<void*> events) {
        alignas(VstEvents) std::byte room[sizeof(VstEvents) + 16 * sizeof(VstEvent*)];
        auto* list = new (room) VstEvents{};
        list->numEvents = static_cast<std::int32_t>(events.size());
        VstEvent** entry = list->events;
        for (void* event : events)
            *entry++ = static_cast<VstEvent*>(event);
        return plugin.dispatch(effProcessEvents, 0, 0, list);
    }
    static MidiMessage control(int controller, int value, int channel = 0) {
        return {0,
                {static_cast<unsigned char>(0xB0 | channel), static_cast<unsigned char>(controller),
                 static_cast<unsigned char>(value)}};
    }
    static MidiMessage programChange(int number, int channel = 0) {
        return {0, {static_cast<unsigned char>(0xC0 | channel), static_cast<unsigned char>(number), 0}};
    }
    /// EXPECTs that nothing at all has changed that a host or a listener could notice.
    void expectNoEffectOf(host::Plugin& plugin, const std::vector<MidiMessage>& messages) {
        const Bytes before = plugin.getChunk(false);
        plugin.clearCalls();
        expectEchoesKept(plugin, [&] { EXPECT_EQ(plugin.sendMidi(messages), 1); });
        EXPECT_EQ(plugin.getChunk(false), before);
        EXPECT_EQ(plugin.getProgram(), 0);
        EXPECT_TRUE(plugin.calls().empty());
    }
};

class PlayingMidiFixture : public MidiFixture {
  protected:
    PlayingMidiFixture() {
        plugin.start(44100.0f, 512);
        choosePlainEchoes(plugin);
    }

    host::Plugin plugin{library()};
};

class Events : public PlayingMidiFixture {};

TEST_F(Events, AreAnsweredWithOne) {
    EXPECT_EQ(send(plugin, {}), 1);
    EXPECT_EQ(send(plugin, {control(16, 1)}), 1);
    EXPECT_EQ(send(plugin, {programChange(1), programChange(2), programChange(3)}), 1);
}

TEST_F(Events, OfAnotherTypeAreSkipped) {
    for (const std::int32_t type : {0, 2, 3, 4, 5, 7, -1}) {
        VstMidiEvent event = {};
        event.type = type;
        event.byteSize = 24;
        event.midiData[0] = static_cast<char>(0xC0);
        event.midiData[1] = 9;
        EXPECT_EQ(sendEvents(plugin, {&event}), 1);
        EXPECT_EQ(plugin.getProgram(), 0) << type;
    }
}

TEST_F(Events, OfSystemExclusiveKindAreSkipped) {
    char dump[] = "\xF0\x7E\x7F\x09\x01\xF7";
    VstMidiSysexEvent sysex = {};
    sysex.type = kVstSysExType;
    sysex.byteSize = sizeof sysex;
    sysex.dumpBytes = 6;
    sysex.sysexDump = dump;
    VstMidiEvent after = {};
    after.type = kVstMidiType;
    after.midiData[0] = static_cast<char>(0xB0);
    after.midiData[1] = 16;
    after.midiData[2] = 127;
    EXPECT_EQ(sendEvents(plugin, {&sysex, &after, &sysex}), 1);
    EXPECT_EQ(plugin.getParameter(kBaseLength), 1.0f);
    EXPECT_EQ(plugin.getProgram(), 0);
}

TEST_F(Events, ActInTheirOrder) {
    send(plugin, {control(16, 10), control(16, 100), control(16, 64)});
    EXPECT_EQ(plugin.getParameter(kBaseLength), 64 * kStep);
}

TEST_F(Events, ActInTheirOrderAcrossAProgramChange) {
    send(plugin, {control(16, 10), programChange(5), control(16, 127)});
    EXPECT_EQ(plugin.getProgram(), 5);
    const Programs programs = programsOf(plugin.getChunk(false));
    EXPECT_EQ(programs[0].values[kBaseLength], 10 * kStep);
    EXPECT_EQ(programs[5].values[kBaseLength], 1.0f);
}

TEST_F(Events, ActAtOnceWhateverTheirPlaceInTheBlock) {
    for (const std::int32_t frames : {0, 511, 100000, -1}) {
        MidiMessage message = control(16, 64);
        message.deltaFrames = frames;
        plugin.setParameter(kBaseLength, 0.0f);
        send(plugin, {message});
        EXPECT_EQ(plugin.getParameter(kBaseLength), 64 * kStep) << frames;
    }
}

TEST_F(Events, MayBeManyInOneList) {
    std::vector<MidiMessage> many(1000, control(16, 3));
    many.push_back(programChange(100));
    EXPECT_EQ(plugin.sendMidi(many), 1);
    EXPECT_EQ(plugin.getProgram(), 100);
}

class Notes : public PlayingMidiFixture {};

TEST_F(Notes, HaveNoEffect) {
    expectNoEffectOf(plugin, {{0, {0x90, 60, 100}}, {7, {0x9F, 61, 1}}, {0, {0x80, 60, 64}}});
}

TEST_F(Notes, OfVelocityZeroCountAsTheirEndAndHaveNoEffect) {
    expectNoEffectOf(plugin, {{0, {0x90, 60, 100}}, {0, {0x90, 60, 0}}, {0, {0x90, 72, 0}}});
}

TEST_F(Notes, OfAnyBytesHaveNoEffect) {
    expectNoEffectOf(plugin, {{0, {0x90, 0xFF, 0xFF}}, {0, {0x80, 0x80, 0x80}}, {-9, {0x8A, 16, 17}}});
}

TEST_F(Notes, DoNotActAsControllersOrPrograms) {
    expectNoEffectOf(plugin, {{0, {0x90, 16, 127}}, {0, {0x80, 17, 0}}});
}

class OtherMessages : public PlayingMidiFixture {};

TEST_F(OtherMessages, AreIgnored) {
    std::vector<MidiMessage> messages;
    for (const int status :
         {0xA0, 0xAF, 0xD0, 0xDF, 0xE0, 0xE7, 0xF0, 0xF1, 0xF2, 0xF3, 0xF6, 0xF8, 0xFE, 0xFF})
        messages.push_back({0, {static_cast<unsigned char>(status), 16, 127}});
    expectNoEffectOf(plugin, messages);
}

TEST_F(OtherMessages, WithoutAStatusAreIgnored) {
    std::vector<MidiMessage> messages;
    for (const int first : {0x00, 0x10, 0x30, 0x40, 0x7F})
        messages.push_back({0, {static_cast<unsigned char>(first), 16, 127}});
    expectNoEffectOf(plugin, messages);
}

class MidiProgramChange : public PlayingMidiFixture {};

TEST_F(MidiProgramChange, ReachesEveryProgramFromZeroOn) {
    for (int number = 0; number < kPrograms; ++number) {
        send(plugin, {programChange(number)});
        EXPECT_EQ(plugin.getProgram(), number);
    }
}

TEST_F(MidiProgramChange, Of127SelectsTheLastProgram) {
    send(plugin, {programChange(127)});
    EXPECT_EQ(plugin.getProgram(), 127);
    EXPECT_EQ(plugin.programName(), "Program 127");
    EXPECT_EQ(plugin.getParameter(kCurve), distinctPrograms()[127].values[kCurve]);
}

TEST_F(MidiProgramChange, ActsOnAllChannels) {
    for (int channel = 0; channel < 16; ++channel) {
        send(plugin, {programChange(channel + 1, channel)});
        EXPECT_EQ(plugin.getProgram(), channel + 1);
    }
}

TEST_F(MidiProgramChange, TellsTheHostAndWipesTheEchoes) {
    const ProgramRecord echoes = programOf(plugin.getChunk(true));
    Programs programs;
    programs.fill(echoes);
    plugin.setChunk(bytesOf(programs), false);
    plugin.clearCalls();
    expectEchoesWiped(plugin, [this] { send(plugin, {programChange(4)}); });
    EXPECT_EQ(plugin.callsOf(audioMasterUpdateDisplay), 1);
    EXPECT_EQ(plugin.calls().size(), 1u);
}

TEST_F(MidiProgramChange, Of128AndAboveOnlyWipesTheEchoes) {
    for (const int number : {0x80, 0x85, 0xFF}) {
        const Bytes before = plugin.getChunk(false);
        plugin.clearCalls();
        expectEchoesWiped(plugin, [this, number] { send(plugin, {programChange(number)}); });
        EXPECT_EQ(plugin.getProgram(), 0) << number;
        EXPECT_EQ(plugin.getChunk(false), before) << number;
        EXPECT_TRUE(plugin.calls().empty()) << number;
    }
}

class Controllers : public PlayingMidiFixture {};

TEST_F(Controllers, SetTheParameterInStepsOfOne127th) {
    for (int value = 0; value < 128; ++value) {
        send(plugin, {control(16, value)});
        EXPECT_EQ(plugin.getParameter(kBaseLength), static_cast<float>(value) * kStep) << value;
    }
}

TEST_F(Controllers, ReachExactlyZeroAndOneAndALittleMoreThanHalf) {
    send(plugin, {control(16, 0)});
    EXPECT_EQ(plugin.getParameter(kBaseLength), 0.0f);
    send(plugin, {control(16, 127)});
    EXPECT_EQ(plugin.getParameter(kBaseLength), 1.0f);
    send(plugin, {control(16, 64)});
    EXPECT_EQ(static_cast<double>(plugin.getParameter(kBaseLength)), 0.5039370059967041);
}

TEST_F(Controllers, TakeSevenBitsOfTheValue) {
    send(plugin, {control(16, 0xFF)});
    EXPECT_EQ(plugin.getParameter(kBaseLength), 1.0f);
    send(plugin, {control(16, 0x80)});
    EXPECT_EQ(plugin.getParameter(kBaseLength), 0.0f);
}

TEST_F(Controllers, ActOnAllChannels) {
    for (int channel = 0; channel < 16; ++channel) {
        send(plugin, {control(16, channel * 8, channel)});
        EXPECT_EQ(plugin.getParameter(kBaseLength), static_cast<float>(channel * 8) * kStep) << channel;
    }
}

TEST_F(Controllers, DriveEveryParameterThatIsBoundToThem) {
    send(plugin, {control(17, 32)});
    EXPECT_EQ(plugin.getParameter(kCurve), 32 * kStep);
    EXPECT_EQ(plugin.getParameter(kDryWet), 32 * kStep);
    EXPECT_NE(plugin.getParameter(kBaseLength), 32 * kStep);
}

TEST_F(Controllers, ChangeTheCurrentProgramLikeAnyHand) {
    send(plugin, {programChange(6), control(16, 32)});
    EXPECT_EQ(programsOf(plugin.getChunk(false))[6].values[kBaseLength], 32 * kStep);
}

TEST_F(Controllers, DoNotTellTheHost) {
    plugin.clearCalls();
    send(plugin, {control(16, 32), control(17, 32)});
    EXPECT_TRUE(plugin.calls().empty());
}

TEST_F(Controllers, OfNoParameterHaveNoEffect) {
    std::vector<MidiMessage> messages;
    for (int controller = 0; controller < 128; ++controller)
        if (controller != 16 && controller != 17 && controller != 20)
            messages.push_back(control(controller, 99));
    expectNoEffectOf(plugin, messages);
}

TEST_F(Controllers, OfAnIdWithoutAParameterStoreNothing) {
    const Bytes before = plugin.getChunk(false);
    send(plugin, {control(20, 99)});
    EXPECT_EQ(plugin.getChunk(false), before);
    EXPECT_EQ(plugin.getParameter(18), 0.0f);
}

TEST_F(Controllers, OfAnIdWithoutAParameterStillRecomputeThePattern) {
    // A sample rate alone leaves all taps at the write position, until anything computes them anew.
    plugin.setSampleRate(44100.0f);
    EXPECT_LT(loudestEchoAcross(plugin, [] {}), kAudible);
    send(plugin, {control(21, 99)});
    EXPECT_LT(loudestEchoAcross(plugin, [] {}), kAudible) << "an unbound controller recomputed the pattern";
    send(plugin, {control(20, 99)});
    EXPECT_GT(loudestEchoAcross(plugin, [] {}), kAudible);
}

TEST_F(Controllers, AreSignedSoThat255MeetsEveryUnboundParameter) {
    plugin.setParameter(kBaseLength, 0.0f);
    plugin.setParameter(kCurve, 0.0f);
    send(plugin, {control(0xFF, 64)});
    for (std::int32_t id = 0; id < kLiveParameters; ++id) {
        const bool bound = id == kBaseLength || id == kCurve || id == kDryWet || id == kFeedback;
        if (bound)
            EXPECT_NE(plugin.getParameter(id), 64 * kStep) << id;
        else
            EXPECT_EQ(plugin.getParameter(id), 64 * kStep) << id;
    }
}

TEST_F(Controllers, AreSignedSoThat251MeetsAnEntryOfMinusFive) {
    send(plugin, {control(0xFB, 64)});
    EXPECT_EQ(plugin.getParameter(kFeedback), 64 * kStep);
}

TEST_F(Controllers, Between128And254MeetNothingElse) {
    std::vector<MidiMessage> messages;
    for (int controller = 0x80; controller < 0xFF; ++controller)
        if (controller != 0xFB)
            messages.push_back(control(controller, 99));
    expectNoEffectOf(plugin, messages);
}

class FirstEvents : public MidiFixture {};

TEST_F(FirstEvents, MayComeBeforeAnythingElse) {
    host::Plugin plugin(library());
    EXPECT_EQ(send(plugin, {{0, {0x90, 60, 0}}, control(16, 127), programChange(3)}), 1);
    EXPECT_EQ(plugin.getProgram(), 3);
}

} // namespace
} // namespace conversation
