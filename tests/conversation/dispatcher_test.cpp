// Every opcode, its answer, and what it leaves alone in the caller's buffers.
#include "support/echoes.h"
#include "support/host_buffer.h"
#include "support/plugin_folder.h"

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <random>
#include <set>

namespace conversation {
namespace {

using namespace vst2;

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

/// What one opcode answers on a fresh instance, with index and value 0, and how many bytes of the buffer it
/// writes.
struct Answer {
    std::intptr_t answer = 0;
    std::size_t writes = 0;
};

/// All that is not nothing. Opcodes that are not here answer 0 and write nothing.
const std::map<std::int32_t, Answer> kAnswers = {
    {effGetProgramName, {0, 25}},
    {effGetParamLabel, {0, 9}},
    {effGetParamDisplay, {0, 4}},
    {effGetParamName, {0, 9}},
    {effEditGetRect, {1, sizeof(void*)}},
    {effIdentify, {fourCharacterCode("NvEf"), 0}},
    {effGetChunk, {14336, sizeof(void*)}},
    {effProcessEvents, {1, 0}},
    {effCanBeAutomated, {1, 0}},
    {effGetProgramNameIndexed, {1, 25}},
    {effGetOutputProperties, {1, kVstMaxLabelLen + sizeof(std::int32_t)}},
    {effGetEffectName, {1, 33}},
    {effGetVendorString, {1, 65}},
    {effGetProductString, {1, 65}},
    {effGetVendorVersion, {1000, 0}},
    {effCanDo, {-1, 0}},
    {effGetVstVersion, {2400, 0}},
    {effSetEditKnobMode, {1, 0}},
    {effGetCurrentMidiProgram, {-1, 0}},
    {effGetSpeakerArrangement, {0, sizeof(void*)}},
};

Answer answerTo(std::int32_t opcode) {
    const auto found = kAnswers.find(opcode);
    return found == kAnswers.end() ? Answer{} : found->second;
}

class Dispatcher : public QuietPlugin {
  protected:
    host::Plugin plugin{library()};

    /// Gives the opcode a buffer that suits it.
    void prepare(HostBuffer& buffer, std::int32_t opcode) {
        if (opcode == effProcessEvents)
            buffer.clear();
        if (opcode == effSetProgramName || opcode == effCanDo)
            buffer.write("Some words");
    }

    void expectAnswer(std::int32_t opcode) {
        SCOPED_TRACE("opcode " + std::to_string(opcode));
        HostBuffer buffer;
        prepare(buffer, opcode);
        // A chunk of no bytes for the current program is the one that needs no acknowledgement.
        const std::int32_t index = opcode == effSetChunk ? 1 : 0;
        const Answer expected = opcode == effSetChunk ? Answer{1, 0} : answerTo(opcode);
        EXPECT_EQ(plugin.dispatch(opcode, index, 0, buffer.data()), expected.answer);
        EXPECT_EQ(buffer.changedUpTo(), expected.writes);
    }

    std::string textBy(std::int32_t opcode, std::size_t size, std::int32_t index = 0) {
        HostBuffer buffer;
        plugin.dispatch(opcode, index, 0, buffer.data());
        return buffer.bytes(size);
    }
};

TEST_F(Dispatcher, AnswersEveryOpcodeByTheTable) {
    for (std::int32_t opcode = -1; opcode <= 100; ++opcode)
        if (opcode != effClose)
            expectAnswer(opcode);
}

TEST_F(Dispatcher, AnswersZeroToOpcodesFarOutside) {
    for (const std::int32_t opcode : {kLowest, kLowest + 1, -1000, 1000, 0x10000, kHighest})
        expectAnswer(opcode);
}

// An instance with no skin beside its library: it has an editor, and the editor has no window to show.

TEST_F(Dispatcher, SaysThatThereIsAnEditor) {
    EXPECT_NE(plugin.effect()->flags & effFlagsHasEditor, 0);
}

TEST_F(Dispatcher, GivesAWindowOfNoSizeWithoutASkin) {
    ERect* size = nullptr;
    EXPECT_EQ(plugin.dispatch(effEditGetRect, 0, 0, &size), 1);
    ASSERT_NE(size, nullptr);
    EXPECT_EQ(size->left, 0);
    EXPECT_EQ(size->top, 0);
    EXPECT_EQ(size->right, 0);
    EXPECT_EQ(size->bottom, 0);
}

TEST_F(Dispatcher, OpensNoWindowWithoutASkin) {
    int parent = 0;
    EXPECT_EQ(plugin.dispatch(effEditOpen, 0, 0, &parent), 0);
    EXPECT_EQ(plugin.dispatch(effEditIdle), 0);
    EXPECT_EQ(plugin.dispatch(effEditClose), 0);
}

TEST_F(Dispatcher, TakesNoKeysWithoutAWindow) {
    for (const std::int32_t opcode : {effEditKeyDown, effEditKeyUp}) {
        HostBuffer buffer;
        EXPECT_EQ(plugin.dispatch(opcode, 'a', 2, buffer.data(), 1.0f), 0);
        EXPECT_EQ(buffer.changedUpTo(), 0u);
    }
}

TEST_F(Dispatcher, TakesAnyKnobMode) {
    for (const std::intptr_t mode : {0, 1, 2, 77, -1})
        EXPECT_EQ(plugin.dispatch(effSetEditKnobMode, 0, mode), 1) << mode;
}

TEST_F(Dispatcher, TakesTheEditorsOpcodesInAnyOrder) {
    for (const std::int32_t opcode : {effEditIdle, effEditClose, effEditClose, effEditIdle, effEditOpen,
                                      effEditIdle, effEditOpen, effEditClose, effEditIdle})
        EXPECT_EQ(plugin.dispatch(opcode), 0) << opcode;
}

TEST_F(Dispatcher, AnswersOneToCloseAndNothingElseNeedsDoing) {
    EXPECT_EQ(plugin.close(), 1);
}

TEST_F(Dispatcher, AnswersTheCurrentProgram) {
    plugin.dispatch(effSetProgram, 0, 5);
    EXPECT_EQ(plugin.dispatch(effGetProgram), 5);
}

TEST_F(Dispatcher, AnswersZeroWhenAProgramIsSet) {
    EXPECT_EQ(plugin.dispatch(effSetProgram, 0, 5), 0);
    EXPECT_EQ(plugin.dispatch(effSetProgram, 0, 128), 0);
}

TEST_F(Dispatcher, SaysThatEveryParameterCanBeAutomated) {
    for (const std::int32_t index : {kLowest, -1, 0, 16, 17, 20, 21, kHighest})
        EXPECT_EQ(plugin.dispatch(effCanBeAutomated, index), 1) << index;
}

TEST_F(Dispatcher, GivesTextsCutAndFilledUpWithNuls) {
    EXPECT_EQ(textBy(effGetProgramName, 25), paddedText("Fiber Cascade", 24));
    EXPECT_EQ(textBy(effGetProgramNameIndexed, 25, 9), paddedText("Fiber Cascade", 24));
    EXPECT_EQ(textBy(effGetParamName, 9, kAmpDecay), paddedText("Amp Decay", 8));
    EXPECT_EQ(textBy(effGetParamLabel, 9), paddedText("", 8));
    EXPECT_EQ(textBy(effGetEffectName, 33), paddedText("velmo_delay", 32));
    EXPECT_EQ(textBy(effGetVendorString, 65), paddedText("Quillon Software", 64));
    EXPECT_EQ(textBy(effGetProductString, 65), paddedText("Quillon Software Quillon Multitap Delay", 64));
}

TEST_F(Dispatcher, NamesTheProductByVendorAndProduct) {
    EXPECT_EQ(plugin.product(), "Quillon Software Quillon Multitap Delay");
}

TEST_F(Dispatcher, KnowsWhatItCanDoLetterByLetter) {
    const std::map<std::string, std::int32_t> abilities = {
        {"receiveVstEvents", 1},
        {"receiveVstMidiEvent", 1},
        {"midiProgramNames", 0},
        {"receiveVstMidiEvents", -1},
        {"receiveVstEvent", -1},
        {"ReceiveVstEvents", -1},
        {"MidiProgramNames", -1},
        {"receiveVstEvents ", -1},
        {" receiveVstEvents", -1},
        {"sendVstEvents", -1},
        {"sendVstMidiEvent", -1},
        {"receiveVstTimeInfo", -1},
        {"bypass", -1},
        {"offline", -1},
        {"2in2out", -1},
        {"1in2out", -1},
        {"sizeWindow", -1},
        {"", -1},
    };
    for (const auto& [ability, answer] : abilities)
        EXPECT_EQ(plugin.canDo(ability), answer) << '"' << ability << '"';
}

TEST_F(Dispatcher, NamesItsTwoOutputPins) {
    for (const std::int32_t index : {0, 1}) {
        SCOPED_TRACE(index);
        HostBuffer buffer;
        EXPECT_EQ(plugin.dispatch(effGetOutputProperties, index, 0, buffer.data()), 1);
        const auto* pin = reinterpret_cast<const VstPinProperties*>(buffer.data());
        EXPECT_EQ(std::string(pin->label), "Quillon Multitap Delay" + std::to_string(index + 1));
        EXPECT_EQ(pin->label[63], '\0');
        EXPECT_EQ(pin->flags, 3);
        EXPECT_TRUE(buffer.untouched(offsetof(VstPinProperties, arrangementType), 1024));
    }
}

TEST_F(Dispatcher, LeavesTheRecordOfAThirdOutputPinAsItWas) {
    for (const std::int32_t index : {2, 3, 128, kHighest}) {
        HostBuffer buffer;
        EXPECT_EQ(plugin.dispatch(effGetOutputProperties, index, 0, buffer.data()), 0) << index;
        EXPECT_EQ(buffer.changedUpTo(), 0u) << index;
    }
}

TEST_F(Dispatcher, WritesNoFurtherThanTheFlagsForANegativeOutputPin) {
    for (const std::int32_t index : {-1, -2, -1000, kLowest}) {
        HostBuffer buffer;
        EXPECT_EQ(plugin.dispatch(effGetOutputProperties, index, 0, buffer.data()), 1) << index;
        EXPECT_LE(buffer.changedUpTo(), offsetof(VstPinProperties, arrangementType)) << index;
    }
}

TEST_F(Dispatcher, HasNoNamesForInputPins) {
    for (const std::int32_t index : {-1, 0, 1, 2}) {
        HostBuffer buffer;
        EXPECT_EQ(plugin.dispatch(effGetInputProperties, index, 0, buffer.data()), 0) << index;
        EXPECT_EQ(buffer.changedUpTo(), 0u) << index;
    }
}

TEST_F(Dispatcher, GivesTheSamplesToProcessBack) {
    // A day at 96000 Hz is more than 32 bits hold.
    for (const std::int64_t value : std::initializer_list<std::int64_t>{
             0, 1, -1, 44100, 0x7FFFFFFF, 0x80000000, 24ll * 60 * 60 * 96000, -24ll * 60 * 60 * 96000})
        EXPECT_EQ(plugin.dispatch(effSetTotalSampleToProcess, 0, static_cast<std::intptr_t>(value)), value);
}

TEST_F(Dispatcher, SetsBothSpeakerArrangementsToNullAndWritesNoFurther) {
    HostBuffer input, output;
    EXPECT_EQ(plugin.dispatch(effGetSpeakerArrangement, 0, reinterpret_cast<std::intptr_t>(input.data()),
                              output.data()),
              0);
    const std::string null(sizeof(void*), '\0');
    for (const HostBuffer* pointer : {&input, &output}) {
        EXPECT_EQ(pointer->bytes(sizeof(void*)), null);
        EXPECT_EQ(pointer->changedUpTo(), sizeof(void*));
    }
}

TEST_F(Dispatcher, WritesNoSpeakerArrangementThatIsNotAskedFor) {
    VstSpeakerArrangement arrangement = {};
    VstSpeakerArrangement* one = &arrangement;
    EXPECT_EQ(plugin.dispatch(effGetSpeakerArrangement, 0, 0, nullptr), 0);
    EXPECT_EQ(plugin.dispatch(effGetSpeakerArrangement, 0, reinterpret_cast<std::intptr_t>(&one), nullptr),
              0);
}

TEST_F(Dispatcher, TakesNoSpeakerArrangement) {
    HostBuffer input, output;
    EXPECT_EQ(plugin.dispatch(effSetSpeakerArrangement, 0, reinterpret_cast<std::intptr_t>(input.data()),
                              output.data()),
              0);
    EXPECT_EQ(input.changedUpTo(), 0u);
    EXPECT_EQ(output.changedUpTo(), 0u);
    EXPECT_EQ(plugin.effect()->numInputs, 2);
    EXPECT_EQ(plugin.effect()->numOutputs, 2);
}

TEST_F(Dispatcher, HasNoBypassAndTheSoundGoesOn) {
    plugin.start(44100.0f, 512);
    choosePlainEchoes(plugin);
    for (const std::intptr_t value : {1, 0, -1})
        expectEchoesKept(plugin, [&] { EXPECT_EQ(plugin.dispatch(effSetBypass, 0, value), 0); });
}

TEST_F(Dispatcher, GivesNoTailHoweverLongThePattern) {
    for (const float length : {0.0f, 0.5f, 1.0f}) {
        plugin.setParameter(kBaseLength, length);
        plugin.setParameter(kTaps, length);
        EXPECT_EQ(plugin.dispatch(effGetTailSize), 0);
    }
}

TEST_F(Dispatcher, HasNoMidiProgramNamesOnAnyChannel) {
    for (std::int32_t channel = 0; channel < 16; ++channel) {
        SCOPED_TRACE(channel);
        for (const auto& [opcode, answer] :
             std::map<std::int32_t, std::intptr_t>{{effGetMidiProgramName, 0},
                                                   {effGetCurrentMidiProgram, -1},
                                                   {effGetMidiProgramCategory, 0},
                                                   {effHasMidiProgramsChanged, 0},
                                                   {effGetMidiKeyName, 0}}) {
            HostBuffer buffer;
            EXPECT_EQ(plugin.dispatch(opcode, channel, 0, buffer.data()), answer) << opcode;
            EXPECT_EQ(buffer.changedUpTo(), 0u) << opcode;
        }
    }
}

TEST_F(Dispatcher, NeverSaysThatMidiProgramsHaveChanged) {
    plugin.setProgramName("A new name");
    EXPECT_EQ(plugin.dispatch(effHasMidiProgramsChanged), 0);
    plugin.setProgram(9);
    EXPECT_EQ(plugin.dispatch(effHasMidiProgramsChanged), 0);
}

TEST_F(Dispatcher, MakesNoParameterOfATextAndDescribesNone) {
    HostBuffer buffer;
    buffer.write("1.0");
    EXPECT_EQ(plugin.dispatch(effString2Parameter, kCurve, 0, buffer.data()), 0);
    EXPECT_EQ(plugin.getParameter(kCurve), 0.5f);
    HostBuffer properties;
    EXPECT_EQ(plugin.dispatch(effGetParameterProperties, kCurve, 0, properties.data()), 0);
    EXPECT_EQ(properties.changedUpTo(), 0u);
}

class ProgramNumber : public Dispatcher {
  protected:
    ProgramNumber() {
        plugin.start(44100.0f, 512);
        choosePlainEchoes(plugin);
        Programs programs;
        programs.fill(programOf(plugin.getChunk(true)));
        plugin.setChunk(bytesOf(programs), false);
        plugin.setProgram(3);
        plugin.clearCalls();
    }

    void select(std::intptr_t value) { plugin.dispatch(effSetProgram, 0, value); }
};

TEST_F(ProgramNumber, InRangeIsSelectedWithTheEchoesWiped) {
    expectEchoesWiped(plugin, [this] { select(5); });
    EXPECT_EQ(plugin.getProgram(), 5);
    EXPECT_EQ(plugin.callsOf(audioMasterUpdateDisplay), 1);
}

TEST_F(ProgramNumber, Of128IsRefusedAndLeavesTheEchoesAlone) {
    expectEchoesKept(plugin, [this] { select(128); });
    EXPECT_EQ(plugin.getProgram(), 3);
    EXPECT_TRUE(plugin.calls().empty());
}

TEST_F(ProgramNumber, BelowZeroWipesTheEchoesAndChangesNothingElse) {
    const Bytes before = plugin.getChunk(false);
    expectEchoesWiped(plugin, [this] { select(-1); });
    EXPECT_EQ(plugin.getProgram(), 3);
    EXPECT_EQ(plugin.getChunk(false), before);
    EXPECT_TRUE(plugin.calls().empty());
}

TEST_F(ProgramNumber, IsComparedAsTheFullPointerSizedValue) {
    for (const std::int64_t value :
         {std::int64_t{0x100000005}, std::int64_t{0x100000000}, std::int64_t{0x7FFFFFFFFFFFFFFF}}) {
        SCOPED_TRACE(value);
        expectEchoesKept(plugin, [this, value] { select(static_cast<std::intptr_t>(value)); });
        EXPECT_EQ(plugin.getProgram(), 3);
    }
}

TEST_F(ProgramNumber, FarBelowZeroSelectsNothingEither) {
    for (const std::int64_t value :
         {std::int64_t{-0x100000000} + 5, std::int64_t{kLowest}, std::numeric_limits<std::int64_t>::min()}) {
        SCOPED_TRACE(value);
        expectEchoesWiped(plugin, [this, value] { select(static_cast<std::intptr_t>(value)); });
        EXPECT_EQ(plugin.getProgram(), 3);
        EXPECT_TRUE(plugin.calls().empty());
    }
}

class Lifecycle : public ProgramNumber {};

TEST_F(Lifecycle, SuspendKeepsTheEchoes) {
    expectEchoesKept(plugin, [this] { plugin.suspend(); });
}

TEST_F(Lifecycle, OffAndOnAgainWipesTheEchoes) {
    expectEchoesWiped(plugin, [this] {
        plugin.suspend();
        plugin.resume();
    });
}

TEST_F(Lifecycle, AnyValueButZeroSwitchesOn) {
    for (const std::intptr_t value : {1, 2, -1})
        expectEchoesWiped(plugin, [this, value] { plugin.dispatch(effMainsChanged, 0, value); });
}

TEST_F(Lifecycle, ABlockSizeKeepsTheEchoes) {
    for (const std::int32_t frames : {1024, 1, 0, -1})
        expectEchoesKept(plugin, [this, frames] { plugin.setBlockSize(frames); });
}

TEST_F(Lifecycle, ASampleRateWithoutResumeLeavesNoEchoesUntilAParameterIsTouched) {
    plugin.setSampleRate(44100.0f);
    EXPECT_LT(loudestEchoAcross(plugin, [] {}), kAudible);
    plugin.setParameter(20, 0.5f);
    EXPECT_GT(loudestEchoAcross(plugin, [] {}), kAudible);
}

TEST_F(Lifecycle, OpeningChangesNothing) {
    const Bytes before = plugin.getChunk(false);
    expectEchoesKept(plugin, [this] { plugin.open(); });
    EXPECT_EQ(plugin.getChunk(false), before);
}

/// A host that says whatever comes to its mind, with buffers that are good for whatever it says.
class TalkativeHost {
  public:
    TalkativeHost(host::Plugin& plugin, std::uint32_t seed) : plugin_(plugin), random_(seed) {}

    void saySomething() {
        switch (number(0, 9)) {
        case 0:
            plugin_.setParameter(number(-3, 25), value());
            break;
        case 1:
            plugin_.getParameter(number(-3, 25));
            break;
        case 2:
            plugin_.process(inputs_, outputs_, number(0, 64));
            break;
        case 3:
            sendMidi();
            break;
        default:
            sendOpcode(number(-1, 100));
        }
    }

  private:
    std::int32_t number(std::int32_t low, std::int32_t high) {
        return std::uniform_int_distribution<std::int32_t>(low, high)(random_);
    }
    float value() { return std::uniform_real_distribution<float>(-0.5f, 1.5f)(random_); }

    void sendMidi() {
        host::MidiMessage message;
        for (unsigned char& byte : message.bytes)
            byte = static_cast<unsigned char>(number(0, 255));
        plugin_.sendMidi({&message, 1});
    }

    void sendOpcode(std::int32_t opcode) {
        if (opcode == effClose || opcode == effEditOpen || opcode == effProcessEvents)
            return;
        HostBuffer buffer, other;
        std::intptr_t argument = number(-200, 200);
        std::int32_t index = number(-3, 200);
        if (opcode == effGetProgramNameIndexed || opcode == effGetOutputProperties)
            index = std::abs(index);
        if (opcode == effSetProgramName || opcode == effCanDo)
            buffer.write("Some words that outrun a name");
        if (opcode ==
            effSetChunk) { // a part of a program, the only chunk that shows no message at any length
            index = 1;
            argument = number(0, 112);
        }
        if (opcode == effGetSpeakerArrangement || opcode == effSetSpeakerArrangement)
            argument = reinterpret_cast<std::intptr_t>(other.data());
        plugin_.dispatch(opcode, index, argument, buffer.data(), value() * 48000.0f + 30000.0f);
    }

    host::Plugin& plugin_;
    std::mt19937 random_;
    std::array<float, 64> left_ = {}, right_ = {};
    float* inputs_[2] = {left_.data(), right_.data()};
    float* outputs_[2] = {left_.data(), right_.data()};
};

TEST_F(Dispatcher, SendsTheHostNothingButWhatItIsKnownFor) {
    const std::set<std::int32_t> known = {audioMasterAutomate,   audioMasterVersion, audioMasterIdle,
                                          audioMasterSizeWindow, audioMasterCanDo,   audioMasterUpdateDisplay,
                                          audioMasterBeginEdit,  audioMasterEndEdit};
    plugin.start(44100.0f, 64);
    TalkativeHost talkative(plugin, 20240607);
    for (int i = 0; i < 20000; ++i)
        talkative.saySomething();
    EXPECT_GT(plugin.callsOf(audioMasterUpdateDisplay), 100) << "hardly anything was said";
    EXPECT_EQ(plugin.callsOf(audioMasterVersion), 1);
    for (const host::HostCall& call : plugin.calls())
        ASSERT_TRUE(known.contains(call.opcode)) << "opcode " << call.opcode;
}

} // namespace
} // namespace conversation
