// The 128 programs: what they are without a bank, how they are chosen, changed and named.
#include "support/host_buffer.h"
#include "support/own_process.h"
#include "support/plugin_folder.h"

#include <limits>

namespace conversation {
namespace {

using namespace vst2;

class ProgramsWithoutABank : public PluginFolder {
  protected:
    void withAnInstance(const std::function<void(host::Plugin&)>& look) {
        errorsOf([&] {
            host::Plugin plugin(module.library());
            look(plugin);
        });
    }
};

TEST_F(ProgramsWithoutABank, AreAllNamedFiberCascade) {
    withAnInstance([](host::Plugin& plugin) {
        for (std::int32_t number = 0; number < kPrograms; ++number)
            EXPECT_EQ(plugin.programName(number).value_or("no name"), "Fiber Cascade") << number;
    });
}

TEST_F(ProgramsWithoutABank, Are128EqualRecords) {
    withAnInstance([](host::Plugin& plugin) {
        const Bytes bank = plugin.getChunk(false);
        ASSERT_EQ(bank.size(), kBankSize);
        for (std::size_t number = 1; number < kPrograms; ++number)
            EXPECT_TRUE(std::equal(bank.begin(), bank.begin() + 112,
                                   bank.begin() + static_cast<std::ptrdiff_t>(112 * number)))
                << number;
    });
}

TEST_F(ProgramsWithoutABank, HoldTheDefaultsToTheLastBit) {
    withAnInstance([](host::Plugin& plugin) { EXPECT_EQ(plugin.getChunk(true), bytesOf(defaultProgram())); });
}

TEST_F(ProgramsWithoutABank, StandAtTheFirst) {
    withAnInstance([](host::Plugin& plugin) { EXPECT_EQ(plugin.getProgram(), 0); });
}

TEST_F(ProgramsWithoutABank, AreEqualInEveryInstance) {
    withAnInstance([this](host::Plugin& plugin) {
        plugin.setParameter(kCurve, 0.75f);
        host::Plugin second(module.library());
        EXPECT_EQ(second.getChunk(false), bytesOf(defaultPrograms()));
    });
}

/// An instance whose programs can be told apart.
class ProgramsFixture : public DistinctPlugin {
  protected:
    host::Plugin plugin{library()};
};

class ProgramChange : public ProgramsFixture {};
class ProgramNames : public ProgramsFixture {};

TEST_F(ProgramChange, BringsTheValuesOfTheProgram) {
    for (const std::int32_t number : {1, 64, 127, 0}) {
        plugin.setProgram(number);
        EXPECT_EQ(plugin.getProgram(), number);
        for (std::int32_t id = 0; id < kLiveParameters; ++id)
            EXPECT_EQ(
                plugin.getParameter(id),
                distinctPrograms()[static_cast<std::size_t>(number)].values[static_cast<std::size_t>(id)])
                << number << ", " << id;
    }
}

TEST_F(ProgramChange, NeverAppliesTheSlotsOfNoUse) {
    plugin.setProgram(64);
    for (std::int32_t id = kLiveParameters; id < kParameters; ++id)
        EXPECT_EQ(plugin.getParameter(id), 0.0f) << id;
}

TEST_F(ProgramChange, TellsTheHostOnce) {
    plugin.clearCalls();
    plugin.setProgram(9);
    ASSERT_EQ(plugin.calls().size(), 1u);
    EXPECT_EQ(plugin.calls().front().opcode, audioMasterUpdateDisplay);
}

TEST_F(ProgramChange, ToTheSameProgramTellsTheHostToo) {
    plugin.clearCalls();
    plugin.setProgram(0);
    EXPECT_EQ(plugin.callsOf(audioMasterUpdateDisplay), 1);
}

TEST_F(ProgramChange, TakesTheStoredValueAndNotTheLiveOne) {
    plugin.setParameter(kAmpDecay, 1.0f);
    plugin.setProgram(1);
    plugin.setProgram(0);
    EXPECT_EQ(plugin.getParameter(kAmpDecay), 0.99999f);
    EXPECT_EQ(programOf(plugin.getChunk(true)).values[kAmpDecay], 1.0f);
}

class ParameterChange : public ProgramsFixture {};

TEST_F(ParameterChange, IsAChangeOfTheCurrentProgramAtOnce) {
    plugin.setProgram(5);
    plugin.setParameter(kCurve, 0.3f);
    plugin.setProgram(6);
    EXPECT_NE(plugin.getParameter(kCurve), 0.3f);
    plugin.setProgram(5);
    EXPECT_EQ(plugin.getParameter(kCurve), 0.3f);
}

TEST_F(ParameterChange, LeavesAllOtherProgramsAlone) {
    plugin.setProgram(5);
    Programs expected = distinctPrograms();
    for (std::int32_t id = -1; id <= kParameters; ++id)
        plugin.setParameter(id, 0.3f);
    for (std::size_t id = 0; id < kLiveParameters; ++id)
        expected[5].values[id] = 0.3f;
    EXPECT_EQ(programsOf(plugin.getChunk(false)), expected);
}

TEST_F(ProgramNames, AreGivenByNumberForAllPrograms) {
    for (std::int32_t number = 0; number < kPrograms; ++number)
        EXPECT_EQ(plugin.programName(number).value_or("no name"), "Program " + std::to_string(number));
}

TEST_F(ProgramNames, AreGivenByNumberWhateverTheCategory) {
    for (const std::intptr_t category : {-1, 0, 1, 127, 128, 100000}) {
        HostBuffer buffer;
        EXPECT_EQ(plugin.dispatch(effGetProgramNameIndexed, 12, category, buffer.data()), 1);
        EXPECT_EQ(buffer.text(), "Program 12") << category;
    }
}

TEST_F(ProgramNames, EndAt128WithTheBufferAsItWas) {
    for (const std::int32_t number : {128, 129, 255, 256, std::numeric_limits<std::int32_t>::max()}) {
        HostBuffer buffer;
        EXPECT_EQ(plugin.dispatch(effGetProgramNameIndexed, number, 0, buffer.data()), 0) << number;
        EXPECT_EQ(buffer.changedUpTo(), 0u) << number;
    }
}

TEST_F(ProgramNames, BelowZeroDoNoHarm) {
    for (const std::int32_t number : {-1, -128, std::numeric_limits<std::int32_t>::min()}) {
        HostBuffer buffer;
        plugin.dispatch(effGetProgramNameIndexed, number, 0, buffer.data());
        EXPECT_TRUE(buffer.untouched(25, 1024)) << number;
    }
}

TEST_F(ProgramNames, OfTheCurrentProgramAreAskedWithoutANumber) {
    plugin.setProgram(100);
    EXPECT_EQ(plugin.programName(), "Program 100");
}

TEST_F(ProgramNames, AreChangedForTheCurrentProgramOnly) {
    plugin.setProgram(3);
    plugin.setProgramName("Mine");
    Programs expected = distinctPrograms();
    expected[3].setName("Mine");
    EXPECT_EQ(programsOf(plugin.getChunk(false)), expected);
    EXPECT_EQ(plugin.programName(), "Mine");
}

TEST_F(ProgramNames, Of30CharactersAreCutTo24) {
    plugin.setProgramName("123456789012345678901234567890");
    EXPECT_EQ(plugin.programName(), "123456789012345678901234");
    ProgramRecord expected = distinctPrograms()[0];
    expected.setName("123456789012345678901234");
    EXPECT_EQ(programOf(plugin.getChunk(true)), expected);
}

TEST_F(ProgramNames, Of24CharactersAreKeptWhole) {
    plugin.setProgramName("123456789012345678901234");
    EXPECT_EQ(plugin.programName(), "123456789012345678901234");
    EXPECT_EQ(plugin.programName(0).value_or(""), "123456789012345678901234");
}

TEST_F(ProgramNames, OfFewerCharactersLeaveNothingOfALongerOne) {
    plugin.setProgramName("A name of some length");
    plugin.setProgramName("x");
    ProgramRecord expected = distinctPrograms()[0];
    expected.setName("x");
    EXPECT_EQ(programOf(plugin.getChunk(true)), expected);
}

TEST_F(ProgramNames, MayBeEmpty) {
    plugin.setProgramName("");
    EXPECT_EQ(plugin.programName(), "");
}

TEST_F(ProgramNames, TakeAnyByte) {
    const std::string name = "\xC3\xBC\x01\xFF% %s %n";
    plugin.setProgramName(name);
    EXPECT_EQ(plugin.programName(), name);
}

TEST_F(ProgramNames, Fill25BytesAndNoMore) {
    plugin.setProgramName("123456789012345678901234567890");
    HostBuffer current, byNumber;
    EXPECT_EQ(plugin.dispatch(effGetProgramName, 0, 0, current.data()), 0);
    EXPECT_EQ(plugin.dispatch(effGetProgramNameIndexed, 1, 0, byNumber.data()), 1);
    EXPECT_EQ(current.bytes(25), paddedText("123456789012345678901234", 24));
    EXPECT_EQ(byNumber.bytes(25), paddedText("Program 1", 24));
    EXPECT_TRUE(current.untouched(25, 1024));
    EXPECT_TRUE(byNumber.untouched(25, 1024));
}

TEST_F(ProgramNames, ChangeWithoutAWordToTheHost) {
    plugin.clearCalls();
    plugin.setProgramName("Mine");
    EXPECT_TRUE(plugin.calls().empty());
}

} // namespace
} // namespace conversation
