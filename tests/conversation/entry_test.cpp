// From the loaded file to a working instance and back: exports, the record, what the host is told meanwhile,
// and what instances and copies of the library share.
#include "support/echoes.h"
#include "support/own_process.h"
#include "support/plugin_folder.h"

#include <algorithm>
#include <array>
#include <ios>
#include <ostream>

namespace conversation {
namespace {

using namespace vst2;

constexpr std::int32_t kFreshID = fourCharacterCode("NoEf");
constexpr std::int32_t kUniqueID = fourCharacterCode("qlvd");

/// One call to the host, in the form that the order of start-up is told in here.
struct Said {
    std::int32_t opcode;
    bool hadRecord;
    std::int32_t uniqueID;
    std::int32_t numInputs;
    bool operator==(const Said&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Said& said) {
    return stream << "opcode " << said.opcode << (said.hadRecord ? " with a record, id " : " alone, id ")
                  << std::hex << said.uniqueID << std::dec << ", inputs " << said.numInputs;
}

std::vector<Said> saidBy(const host::Plugin& plugin) {
    std::vector<Said> said;
    for (const host::HostCall& call : plugin.calls())
        said.push_back({call.opcode, call.hadRecord, call.uniqueID, call.numInputs});
    return said;
}

const Said kAskedForVersion = {audioMasterVersion, false, 0, 0};
const Said kFirstProgram = {audioMasterUpdateDisplay, true, kFreshID, 1};
const Said kLaterProgram = {audioMasterUpdateDisplay, true, kUniqueID, 2};

std::intptr_t hostOf2400(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void*, float) {
    return opcode == audioMasterVersion ? kVstVersion : 0;
}

std::intptr_t hostOfVersionZero(AEffect*, std::int32_t, std::int32_t, std::intptr_t, void*, float) {
    return 0;
}

class Exports : public QuietPlugin {};

TEST_F(Exports, EachGiveAWorkingInstance) {
    for (const char* name : {"VSTPluginMain", "main", "MAIN"}) {
        SCOPED_TRACE(name);
        const host::Library byName(module.path(), name);
        host::Plugin plugin(byName);
        EXPECT_EQ(plugin.effect()->uniqueID, kUniqueID);
        plugin.start(44100.0f, 512);
        choosePlainEchoes(plugin);
        expectEchoesKept(plugin, [] {});
    }
}

class EntryPoint : public QuietPlugin {};

TEST_F(EntryPoint, GivesNothingToAHostOfVersionZero) {
    EXPECT_EQ(library().entryPoint()(hostOfVersionZero), nullptr);
}

TEST_F(EntryPoint, AcceptsAnyOtherVersion) {
    for (const std::int32_t version : {1, 2, 1000, 2300, 2400, 2401, -1}) {
        SCOPED_TRACE(version);
        host::HostBehaviour behaviour;
        behaviour.version = version;
        host::Plugin plugin(library(), behaviour);
        EXPECT_EQ(plugin.effect()->uniqueID, kUniqueID);
    }
}

TEST_F(EntryPoint, AsksForTheVersionOnceAndFirstOfAllWithoutARecord) {
    host::HostBehaviour behaviour;
    std::vector<void*> pointers;
    behaviour.answer = [&pointers](const host::HostCall&, void* ptr) {
        pointers.push_back(ptr);
        return std::optional<std::intptr_t>();
    };
    host::Plugin plugin(library(), behaviour);
    ASSERT_FALSE(plugin.calls().empty());
    const host::HostCall& first = plugin.calls().front();
    EXPECT_EQ(first.opcode, audioMasterVersion);
    EXPECT_FALSE(first.hadRecord);
    EXPECT_EQ(first.index, 0);
    EXPECT_EQ(first.value, 0);
    EXPECT_EQ(first.opt, 0.0f);
    EXPECT_EQ(pointers.front(), nullptr);
    EXPECT_EQ(plugin.callsOf(audioMasterVersion), 1);
}

TEST_F(EntryPoint, PrintsNothingForAHostOfVersionZero) {
    removeFile(module.beside(kBankFile));
    EXPECT_EQ(errorsOf([this] { EXPECT_EQ(library().entryPoint()(hostOfVersionZero), nullptr); }), "");
    EXPECT_FALSE(readFile(here(kMapFile))) << "a map was written for an instance that never was";
}

TEST_F(EntryPoint, CallsEvenAHostThatIsNotThere) {
    const VstEntryPoint entry = library().entryPoint();
    const ProcessEnd end = runInOwnProcess([entry] { entry(nullptr); });
    EXPECT_FALSE(end.exited && end.code == 0) << "the first call to the host was not made";
}

class Record : public QuietPlugin {};

TEST_F(Record, TellsWhatTheInstanceIs) {
    host::Plugin plugin(library());
    const AEffect& effect = *plugin.effect();
    EXPECT_EQ(effect.magic, kVstMagic);
    EXPECT_EQ(effect.numPrograms, 128);
    EXPECT_EQ(effect.numParams, 21);
    EXPECT_EQ(effect.numInputs, 2);
    EXPECT_EQ(effect.numOutputs, 2);
    EXPECT_EQ(effect.flags, 0x39);
    EXPECT_EQ(effect.ioRatio, 1.0f);
    EXPECT_EQ(effect.uniqueID, kUniqueID);
    EXPECT_EQ(effect.version, 1);
    EXPECT_NE(effect.object, nullptr);
    EXPECT_NE(effect.process, nullptr);
    EXPECT_NE(effect.processDoubleReplacing, nullptr);
}

TEST_F(Record, IsZeroInAllElse) {
    AEffect* effect = library().entryPoint()(hostOf2400);
    ASSERT_NE(effect, nullptr);
    EXPECT_EQ(effect->resvd1, 0);
    EXPECT_EQ(effect->resvd2, 0);
    EXPECT_EQ(effect->initialDelay, 0);
    EXPECT_EQ(effect->realQualities, 0);
    EXPECT_EQ(effect->offQualities, 0);
    EXPECT_EQ(effect->user, nullptr);
    EXPECT_TRUE(std::all_of(std::begin(effect->future), std::end(effect->future),
                            [](char byte) { return byte == 0; }));
    EXPECT_EQ(effect->dispatcher(effect, effClose, 0, 0, nullptr, 0.0f), 1);
}

TEST_F(Record, KeepsItsChannelsThroughALife) {
    host::Plugin plugin(library());
    plugin.start(96000.0f, 64);
    plugin.setProgram(7);
    plugin.suspend();
    EXPECT_EQ(plugin.effect()->numInputs, 2);
    EXPECT_EQ(plugin.effect()->numOutputs, 2);
    EXPECT_EQ(plugin.effect()->flags, 0x39);
    EXPECT_EQ(plugin.effect()->initialDelay, 0);
}

TEST_F(Record, HasProcessingInTheOldAndTheDoubleFormThatTouchesNothing) {
    host::Plugin plugin(library());
    plugin.start(44100.0f, 16);
    std::array<float, 16> in, left, right;
    std::array<double, 16> inDouble, leftDouble, rightDouble;
    in.fill(0.5f);
    left.fill(0.25f);
    right.fill(0.125f);
    inDouble.fill(0.5);
    leftDouble.fill(0.25);
    rightDouble.fill(0.125);
    float *inputs[] = {in.data(), in.data()}, *outputs[] = {left.data(), right.data()};
    double *inputsDouble[] = {inDouble.data(), inDouble.data()},
           *outputsDouble[] = {leftDouble.data(), rightDouble.data()};
    plugin.effect()->process(plugin.effect(), inputs, outputs, 16);
    plugin.effect()->processDoubleReplacing(plugin.effect(), inputsDouble, outputsDouble, 16);
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_EQ(left[i], 0.25f);
        EXPECT_EQ(right[i], 0.125f);
        EXPECT_EQ(leftDouble[i], 0.25);
        EXPECT_EQ(rightDouble[i], 0.125);
    }
    EXPECT_EQ(plugin.getParameter(kPreGain), 0.5f) << "audio has run";
}

TEST_F(Record, IsReadyForABlockWithoutAnyOtherCall) {
    host::Plugin plugin(library());
    choosePlainEchoes(plugin);
    expectEchoesKept(plugin, [] {});
}

class StartUp : public PluginFolder {
  protected:
    /// All that an instance made here says to its host; its messages are swallowed.
    void expectSaid(const std::vector<Said>& expected) {
        errorsOf([&] {
            const host::Plugin plugin(module.library());
            EXPECT_EQ(saidBy(plugin), expected);
        });
    }
};

TEST_F(StartUp, TellsTheHostFourTimesWithoutABank) {
    expectSaid({kAskedForVersion, kFirstProgram, kLaterProgram, kLaterProgram, kLaterProgram});
}

TEST_F(StartUp, TellsTheHostFiveTimesWithABankOfOneChunk) {
    writeFile(module.beside(kBankFile), chunkBank(distinctPrograms()));
    expectSaid({kAskedForVersion, kFirstProgram, kLaterProgram, kLaterProgram, kLaterProgram, kLaterProgram});
}

TEST_F(StartUp, TellsTheHostFiveTimesWithAChunkThatIsRefused) {
    writeFile(module.beside(kBankFile), chunkBank(Bytes(112)));
    expectSaid({kAskedForVersion, kFirstProgram, kLaterProgram, kLaterProgram, kLaterProgram, kLaterProgram});
}

TEST_F(StartUp, TellsTheHostFiveTimesWithAPlainBankOf128Programs) {
    BankImage image = bankHeader("FxBk", 128);
    writeFile(module.beside(kBankFile), image.append(Bytes(128 * 140)).bytes());
    expectSaid({kAskedForVersion, kFirstProgram, kLaterProgram, kLaterProgram, kLaterProgram, kLaterProgram});
}

TEST_F(StartUp, TellsTheHostOfEachProgramOfAShortPlainBank) {
    BankImage image = bankHeader("FxBk", 3);
    writeFile(module.beside(kBankFile), image.append(Bytes(3 * 60)).bytes());
    std::vector<Said> expected(9, kLaterProgram);
    expected[0] = kAskedForVersion;
    expected[1] = kFirstProgram;
    expectSaid(expected);
}

TEST_F(StartUp, ComesUpAfterOneMessageWithNothingBesideTheLibrary) {
    const std::string errors = errorsOf([this] {
        host::Plugin plugin(module.library());
        EXPECT_EQ(programsOf(plugin.getChunk(false)), defaultPrograms());
        EXPECT_EQ(plugin.getProgram(), 0);
    });
    EXPECT_EQ(errors, "Preset loader: Default bank error: file not found\n");
}

class Close : public QuietPlugin {};

TEST_F(Close, AnswersOne) {
    host::Plugin plugin(library());
    EXPECT_EQ(plugin.close(), 1);
}

TEST_F(Close, AnswersOneWithoutOpenAndWhileRunning) {
    host::Plugin running(library());
    running.start(44100.0f, 512);
    EXPECT_EQ(running.close(), 1);
}

TEST_F(Close, SaysNothingToTheHost) {
    host::Plugin plugin(library());
    plugin.clearCalls();
    plugin.close();
    EXPECT_TRUE(plugin.calls().empty());
}

/// A map that binds one controller to the base length and nothing else.
Bytes mapOfBaseLength(std::uint8_t controller) {
    Bytes map(84, 0xFF);
    map[0] = controller;
    map[1] = map[2] = map[3] = 0;
    return map;
}

void sendController(host::Plugin& plugin, std::uint8_t controller, std::uint8_t value) {
    const host::MidiMessage message = {0, {0xB0, controller, value}};
    plugin.sendMidi({&message, 1});
}

class Instances : public QuietPlugin {};

TEST_F(Instances, HaveProgramsAndParametersOfTheirOwn) {
    host::Plugin one(library()), other(library());
    one.setParameter(kBaseLength, 0.75f);
    one.setProgramName("Mine");
    other.setProgram(3);
    EXPECT_EQ(other.getParameter(kBaseLength), 0.4f);
    EXPECT_EQ(one.getProgram(), 0);
    EXPECT_EQ(*other.programName(0), "Fiber Cascade");
    EXPECT_EQ(programsOf(other.getChunk(false)), defaultPrograms());
}

TEST_F(Instances, OfOneLibraryShareTheControllerMap) {
    writeFile(here(kMapFile), mapOfBaseLength(10));
    host::Plugin first(library());
    sendController(first, 10, 127);
    EXPECT_EQ(first.getParameter(kBaseLength), 1.0f);

    writeFile(here(kMapFile), mapOfBaseLength(11));
    const host::Plugin second(library());
    sendController(first, 10, 0);
    EXPECT_EQ(first.getParameter(kBaseLength), 1.0f) << "the first instance kept a map of its own";
    sendController(first, 11, 64);
    EXPECT_EQ(first.getParameter(kBaseLength), 64 * 0.007874015718698502f);
}

class Copies : public QuietPlugin {};

TEST_F(Copies, OfTheLibraryDoNotDisturbEachOther) {
    ModuleCopy otherModule(here("other"));
    writeFile(otherModule.beside(kBankFile), chunkBank(distinctPrograms()));
    writeFile(module.beside(kMapFile), mapOfBaseLength(10));
    writeFile(otherModule.beside(kMapFile), mapOfBaseLength(20));

    host::Plugin one(module.library()), other(otherModule.library());
    EXPECT_NE(reinterpret_cast<void*>(one.effect()->dispatcher),
              reinterpret_cast<void*>(other.effect()->dispatcher));
    EXPECT_EQ(one.programName(), "Fiber Cascade");
    EXPECT_EQ(other.programName(), "Program 0");

    one.setProgram(5);
    one.setParameter(kCurve, 0.25f);
    EXPECT_EQ(other.getProgram(), 0);
    EXPECT_EQ(programsOf(other.getChunk(false)), distinctPrograms());

    for (host::Plugin* plugin : {&one, &other}) {
        plugin->setParameter(kBaseLength, 0.5f);
        sendController(*plugin, 10, 127);
    }
    EXPECT_EQ(one.getParameter(kBaseLength), 1.0f);
    EXPECT_EQ(other.getParameter(kBaseLength), 0.5f) << "the copies share one controller map";
    sendController(other, 20, 0);
    EXPECT_EQ(other.getParameter(kBaseLength), 0.0f);
}

} // namespace
} // namespace conversation
