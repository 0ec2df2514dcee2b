// Our own host, seen from the plug-in: what it asks, how it answers, and what it refuses to take for a
// plug-in.

#include "host/plugin.h"

#include "sample_effect.h"

#include "desk/private_folder.h"

#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <numeric>

namespace {

using namespace vst2;
using host::HostBehaviour;
using host::HostError;
using host::Library;
using host::MidiMessage;
using host::Plugin;

template <typename Action>
std::string errorOf(Action action) {
    try {
        action();
    } catch (const HostError& error) {
        return error.what();
    }
    return "no error";
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class HostLibrary : public testing::Test {
  protected:
    HostLibrary() { effect = SampleEffect(); }

    /// A call as the plug-in makes it.
    std::intptr_t askHost(std::int32_t opcode, void* ptr = nullptr, std::int32_t index = 0) {
        return effect.host(effect.effect, opcode, index, 0, ptr, 0);
    }
    std::intptr_t canHostDo(const char* what) { return askHost(audioMasterCanDo, const_cast<char*>(what)); }
    std::vector<std::int32_t> opcodesAsked() const {
        std::vector<std::int32_t> opcodes;
        for (const SampleEffect::Asked& asked : effect.asked)
            opcodes.push_back(asked.opcode);
        return opcodes;
    }

    Library library{SAMPLE_EFFECT};
    SampleEffect& effect = *reinterpret_cast<SampleEffectAccess>(library.symbol("sampleEffect"))();
};

TEST(HostLibraryLoader, NamesTheFileThatIsNotThere) {
    EXPECT_TRUE(contains(errorOf([] { Library("/no/such/Plugin.so"); }), "/no/such/Plugin.so"));
}

TEST(HostLibraryLoader, NamesTheFileThatIsNoLibrary) {
    const desk::PrivateFolder folder;
    std::ofstream("text.so") << "not a library";
    EXPECT_TRUE(contains(errorOf([] { Library("./text.so"); }), "text.so"));
}

TEST(HostLibraryLoader, RefusesALibraryWithoutTheEntryPointItWasTold) {
    const std::string error = errorOf([] { Library(SAMPLE_EFFECT, "noSuchEntry"); });
    EXPECT_TRUE(contains(error, SAMPLE_EFFECT) && contains(error, "noSuchEntry")) << error;
}

TEST_F(HostLibrary, TakesTheEntryPointItWasTold) {
    const Library other(SAMPLE_EFFECT, "anotherEffect");
    Plugin plugin(other);
    EXPECT_EQ(plugin.effect()->uniqueID, fourCharacterCode("othr"));
}

TEST_F(HostLibrary, RefusesAnEntryPointThatGivesNothing) {
    effect.comesUp = false;
    EXPECT_TRUE(contains(errorOf([this] { Plugin{library}; }), "no instance"));
}

TEST_F(HostLibrary, LetsAPlugInRefuseAHostOfNoVersion) {
    HostBehaviour behaviour;
    behaviour.version = 0;
    EXPECT_TRUE(contains(errorOf([&] { Plugin(library, behaviour); }), "no instance"));
}

TEST_F(HostLibrary, RefusesARecordWithAnotherMagic) {
    effect.magic = fourCharacterCode("VstX");
    EXPECT_TRUE(contains(errorOf([this] { Plugin{library}; }), "not a plug-in"));
}

TEST_F(HostLibrary, RefusesARecordThatLacksAFunction) {
    effect.hasProcess = false;
    EXPECT_TRUE(contains(errorOf([this] { Plugin{library}; }), "lacks a function"));
    effect.hasProcess = true;
    effect.hasDispatcher = false;
    EXPECT_TRUE(contains(errorOf([this] { Plugin{library}; }), "lacks a function"));
}

TEST_F(HostLibrary, StartsAPlugInInTheOrderOfHosts) {
    Plugin plugin(library);
    plugin.start(48000.0f, 256);
    EXPECT_EQ(opcodesAsked(),
              (std::vector<std::int32_t>{effOpen, effSetSampleRate, effSetBlockSize, effMainsChanged}));
    EXPECT_EQ(effect.asked[1].opt, 48000.0f);
    EXPECT_EQ(effect.asked[2].value, 256);
    EXPECT_EQ(effect.asked[3].value, 1);
}

TEST_F(HostLibrary, ClosesOnceAndOnlyOnce) {
    {
        Plugin plugin(library);
        EXPECT_EQ(effect.alive, 1);
        EXPECT_EQ(plugin.close(), 1);
        EXPECT_EQ(plugin.effect(), nullptr);
        EXPECT_EQ(plugin.close(), 0);
        EXPECT_EQ(errorOf([&] { plugin.resume(); }), "the instance is closed");
    }
    EXPECT_EQ(effect.alive, 0);
    EXPECT_EQ(opcodesAsked(), std::vector<std::int32_t>{effClose});
}

TEST_F(HostLibrary, ClosesWhatWasLeftOpen) {
    {
        Plugin plugin(library);
    }
    EXPECT_EQ(effect.alive, 0);
}

TEST_F(HostLibrary, CutsATextWithoutAnEnd) {
    Plugin plugin(library);
    effect.fillsTextBuffers = true;
    EXPECT_EQ(plugin.effectName(), std::string(255, 'x'));
    EXPECT_EQ(plugin.parameterName(3), std::string(255, 'x'));
    EXPECT_EQ(effect.asked.back().index, 3);
}

TEST_F(HostLibrary, PassesTextsOn) {
    Plugin plugin(library);
    plugin.setProgramName("My echo");
    EXPECT_EQ(effect.asked.back().text, "My echo");
    EXPECT_EQ(plugin.canDo("bypass"), -1);
    EXPECT_EQ(effect.asked.back().text, "bypass");
    EXPECT_EQ(plugin.getProgram(), 7);
    EXPECT_EQ(plugin.programName(1), "sample");
    EXPECT_EQ(plugin.programName(2), std::nullopt);
    EXPECT_EQ(plugin.getParameter(2), 0.5f);
}

TEST_F(HostLibrary, CopiesChunksBothWays) {
    Plugin plugin(library);
    const std::vector<std::uint8_t> bytes = {1, 2, 0, 255};
    EXPECT_EQ(plugin.setChunk(bytes, true), 1);
    EXPECT_EQ(effect.asked.back().index, 1);
    EXPECT_EQ(effect.asked.back().value, 4);
    EXPECT_EQ(plugin.getChunk(false), bytes);
    EXPECT_EQ(effect.asked.back().index, 0);
    plugin.setChunk({}, false);
    EXPECT_EQ(plugin.getChunk(false), std::vector<std::uint8_t>());
}

TEST_F(HostLibrary, SendsAnyNumberOfMidiMessagesInOrder) {
    Plugin plugin(library);
    for (const int count : {0, 1, 2, 3, 1000}) {
        effect.midi.clear();
        std::vector<MidiMessage> messages;
        for (int i = 0; i < count; ++i)
            messages.push_back({i, {0xB0, static_cast<unsigned char>(i & 127), 127}});
        EXPECT_EQ(plugin.sendMidi(messages), 1);
        ASSERT_EQ(effect.midi.size(), messages.size());
        for (std::size_t i = 0; i < messages.size(); ++i) {
            const VstMidiEvent& event = effect.midi[i];
            EXPECT_EQ(event.type, kVstMidiType);
            EXPECT_EQ(event.byteSize, 24) << "what follows the size field";
            EXPECT_EQ(event.deltaFrames, static_cast<std::int32_t>(i));
            EXPECT_EQ(std::memcmp(event.midiData, messages[i].bytes, 3), 0);
            EXPECT_EQ(event.midiData[3], 0);
        }
    }
}

TEST_F(HostLibrary, RendersAnyLengthInBlocksWhateverTheChannels) {
    Plugin plugin(library);
    std::vector<float> in(100), left(100, -1.0f), right(100, -1.0f);
    std::iota(in.begin(), in.end(), 1.0f);
    plugin.processStereo(in.data(), in.data(), left.data(), right.data(), 100, 32);
    EXPECT_EQ(effect.blocks, (std::vector<std::int32_t>{32, 32, 32, 4}));
    for (std::size_t i = 0; i < in.size(); ++i)
        ASSERT_EQ(left[i], 2 * in[i]) << "frame " << i;
    EXPECT_EQ(right, std::vector<float>(100, 0.0f)) << "a mono plug-in has no right output";
    EXPECT_EQ(in.back(), 100.0f);
}

TEST_F(HostLibrary, RendersWithoutInputsAndWithoutOutputs) {
    Plugin plugin(library);
    std::vector<float> out(10, -1.0f);
    float* const outputs[] = {out.data()};
    plugin.processChannels({}, outputs, 10, 4);
    EXPECT_EQ(out, std::vector<float>(10, 0.0f));
    plugin.processChannels({}, {}, 10, 4);
    EXPECT_EQ(effect.blocks.size(), 6u);
}

TEST_F(HostLibrary, RefusesABlockOfNoLength) {
    Plugin plugin(library);
    EXPECT_NE(errorOf([&] { plugin.processChannels({}, {}, 10, 0); }), "no error");
    EXPECT_TRUE(effect.blocks.empty());
}

TEST_F(HostLibrary, AnswersAsAPlainSequencer) {
    HostBehaviour behaviour;
    behaviour.vendor = std::string(100, 'v');
    behaviour.product = "A sequencer";
    Plugin plugin(library, behaviour);
    plugin.start(96000.0f, 128);
    char text[64];
    EXPECT_EQ(askHost(audioMasterVersion), 2400);
    EXPECT_EQ(askHost(audioMasterGetSampleRate), 96000);
    EXPECT_EQ(askHost(audioMasterGetBlockSize), 128);
    EXPECT_EQ(askHost(audioMasterCurrentId), fourCharacterCode("smpl"));
    EXPECT_EQ(askHost(audioMasterGetVendorString, text), 1);
    EXPECT_EQ(std::string(text), std::string(63, 'v')) << "64 bytes are what a plug-in keeps ready";
    EXPECT_EQ(askHost(audioMasterGetProductString, text), 1);
    EXPECT_STREQ(text, "A sequencer");
    EXPECT_EQ(canHostDo("sendVstEvents"), 1);
    EXPECT_EQ(canHostDo("sendVstMidiEvent"), 1);
    EXPECT_EQ(canHostDo("sizeWindow"), 1);
    EXPECT_EQ(canHostDo("makeCoffee"), 0);
    EXPECT_EQ(askHost(audioMasterAutomate), 0);
    EXPECT_EQ(askHost(audioMasterIdle), 0);
    EXPECT_EQ(askHost(12345), 0);
}

TEST_F(HostLibrary, SurvivesQuestionsWithoutABuffer) {
    Plugin plugin(library);
    EXPECT_EQ(askHost(audioMasterGetVendorString), 0);
    EXPECT_EQ(askHost(audioMasterGetProductString), 0);
    EXPECT_EQ(askHost(audioMasterCanDo), 0);
}

TEST_F(HostLibrary, TellsTheTimeOfWhatItHasPlayed) {
    HostBehaviour behaviour;
    behaviour.tempo = 90.0;
    Plugin plugin(library, behaviour);
    plugin.start(48000.0f, 512);
    std::vector<float> in(48000), out(48000);
    float* inputs[] = {in.data()};
    float* outputs[] = {out.data()};
    plugin.process(inputs, outputs, 48000);
    const auto* time = reinterpret_cast<const VstTimeInfo*>(askHost(audioMasterGetTime));
    ASSERT_NE(time, nullptr);
    EXPECT_EQ(time->samplePos, 48000.0);
    EXPECT_EQ(time->sampleRate, 48000.0);
    EXPECT_EQ(time->tempo, 90.0);
    EXPECT_DOUBLE_EQ(time->ppqPos, 1.5);
    EXPECT_EQ(time->timeSigNumerator, 4);
    EXPECT_EQ(time->flags, kVstTransportPlaying | kVstPpqPosValid | kVstTempoValid | kVstTimeSigValid);
}

TEST_F(HostLibrary, RecordsWhatThePlugInSays) {
    effect.callsWhileMade = audioMasterUpdateDisplay;
    Plugin plugin(library);
    ASSERT_EQ(plugin.calls().size(), 2u);
    EXPECT_EQ(plugin.calls()[0].opcode, audioMasterVersion);
    EXPECT_FALSE(plugin.calls()[0].hadRecord);
    EXPECT_EQ(plugin.calls()[0].answer, 2400);
    EXPECT_EQ(plugin.calls()[1].opcode, audioMasterUpdateDisplay)
        << "from a record not yet tied to the instance";
    EXPECT_TRUE(plugin.calls()[1].hadRecord);
    EXPECT_EQ(plugin.calls()[1].uniqueID, fourCharacterCode("smpl"));
    EXPECT_EQ(plugin.calls()[1].numInputs, 1);

    plugin.clearCalls();
    canHostDo("sizeWindow");
    askHost(audioMasterAutomate, nullptr, 5);
    EXPECT_EQ(plugin.callsOf(audioMasterCanDo), 1);
    EXPECT_EQ(plugin.calls()[0].text, "sizeWindow");
    EXPECT_EQ(plugin.calls()[1].index, 5);

    plugin.behaviour().record = false;
    askHost(audioMasterAutomate);
    EXPECT_EQ(plugin.calls().size(), 2u);
}

TEST_F(HostLibrary, LetsATestAnswerInItsPlace) {
    HostBehaviour behaviour;
    behaviour.answer = [](const host::HostCall& call, void*) -> std::optional<std::intptr_t> {
        if (call.opcode == audioMasterCanDo)
            return 17;
        return std::nullopt;
    };
    Plugin plugin(library, behaviour);
    EXPECT_EQ(canHostDo("sizeWindow"), 17);
    EXPECT_EQ(plugin.calls().back().answer, 17);
    EXPECT_EQ(askHost(audioMasterVersion), 2400) << "the rest goes on as ever";
}

TEST_F(HostLibrary, KeepsInstancesApart) {
    Plugin first(library);
    AEffect* const firstRecord = effect.effect;
    Plugin second(library);
    first.clearCalls();
    second.clearCalls();
    effect.host(firstRecord, audioMasterIdle, 0, 0, nullptr, 0);
    EXPECT_EQ(first.callsOf(audioMasterIdle), 1);
    EXPECT_EQ(second.callsOf(audioMasterIdle), 0);
}

TEST_F(HostLibrary, AnswersACallOnNobodysBehalf) {
    Plugin plugin(library);
    EXPECT_EQ(effect.host(nullptr, audioMasterVersion, 0, 0, nullptr, 0), 2400);
    EXPECT_EQ(effect.host(nullptr, audioMasterGetSampleRate, 0, 0, nullptr, 0), 0);
}

} // namespace
