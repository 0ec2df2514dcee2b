// The state as a project keeps it: what a chunk holds, which ones are taken, and which are refused with a
// message.
#include "support/echoes.h"
#include "support/own_process.h"
#include "support/plugin_folder.h"

#include <bit>
#include <cstring>
#include <numeric>

namespace conversation {
namespace {

using namespace vst2;

constexpr char kPresetRefused[] = "Error!: Can't load preset, wrong file size!\n";
constexpr char kBankRefused[] = "Error!: Can't load bank, wrong file size!\n";

/// Bytes of which no two neighbours agree.
Bytes countingBytes(std::size_t size, std::uint8_t first) {
    Bytes bytes(size);
    std::iota(bytes.begin(), bytes.end(), first);
    return bytes;
}

class ChunkFixture : public DistinctPlugin {
  protected:
    host::Plugin plugin{library()};

    /// A chunk of the size that the host claims; there may be more bytes than that.
    std::intptr_t setChunkOfSize(const Bytes& data, std::intptr_t size, bool isPreset) {
        Bytes copy = data;
        return plugin.dispatch(effSetChunk, isPreset, size, copy.data());
    }

    void makeAllProgramsPlainEchoes() {
        plugin.start(44100.0f, 512);
        choosePlainEchoes(plugin);
        Programs programs;
        programs.fill(programOf(plugin.getChunk(true)));
        plugin.setChunk(bytesOf(programs), false);
    }
};

class GetChunk : public ChunkFixture {};

TEST_F(GetChunk, GivesABankOf14336Bytes) {
    void* data = nullptr;
    EXPECT_EQ(plugin.dispatch(effGetChunk, 0, 0, &data), 14336);
    EXPECT_NE(data, nullptr);
}

TEST_F(GetChunk, GivesAPresetOf112Bytes) {
    void* data = nullptr;
    EXPECT_EQ(plugin.dispatch(effGetChunk, 1, 0, &data), 112);
    EXPECT_NE(data, nullptr);
}

TEST_F(GetChunk, TakesAnyIndexButZeroForAPreset) {
    for (const std::int32_t index : {1, 2, -1, 128}) {
        void* data = nullptr;
        EXPECT_EQ(plugin.dispatch(effGetChunk, index, 0, &data), 112) << index;
    }
}

TEST_F(GetChunk, GivesAllProgramsInOrderWithNothingAroundThem) {
    EXPECT_EQ(plugin.getChunk(false), bytesOf(distinctPrograms()));
}

TEST_F(GetChunk, GivesTheCurrentProgramAsAPreset) {
    plugin.setProgram(99);
    EXPECT_EQ(plugin.getChunk(true), bytesOf(distinctPrograms()[99]));
}

TEST_F(GetChunk, HoldsTheLatestEdits) {
    plugin.setProgram(99);
    plugin.setParameter(kFeedback, 0.3f);
    plugin.setProgramName("Edited");
    ProgramRecord expected = distinctPrograms()[99];
    expected.values[kFeedback] = 0.3f;
    expected.setName("Edited");
    EXPECT_EQ(programOf(plugin.getChunk(true)), expected);
    EXPECT_EQ(programsOf(plugin.getChunk(false))[99], expected);
}

TEST_F(GetChunk, HandsOutBytesThatLaterEditsDoNotChange) {
    void* data = nullptr;
    plugin.dispatch(effGetChunk, 0, 0, &data);
    plugin.setParameter(kCurve, 0.3f);
    plugin.setProgramName("Edited");
    plugin.setProgram(5);
    plugin.setParameter(kCurve, 0.3f);
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    EXPECT_EQ(Bytes(bytes, bytes + kBankSize), bytesOf(distinctPrograms()));
}

TEST_F(GetChunk, HandsOutAPresetThatLiesInItsBank) {
    plugin.setProgram(5);
    void *bank = nullptr, *preset = nullptr;
    plugin.dispatch(effGetChunk, 0, 0, &bank);
    plugin.dispatch(effGetChunk, 1, 0, &preset);
    EXPECT_EQ(static_cast<char*>(preset), static_cast<char*>(bank) + 5 * 112);
}

TEST_F(GetChunk, SaysNothingToTheHost) {
    plugin.clearCalls();
    plugin.getChunk(true);
    plugin.getChunk(false);
    EXPECT_TRUE(plugin.calls().empty());
}

class PresetChunk : public ChunkFixture {};

TEST_F(PresetChunk, Of112BytesBecomesTheCurrentProgramByteForByte) {
    plugin.setProgram(5);
    Bytes chunk = bytesOf(distinctPrograms()[64]);
    for (std::size_t i = 109; i < 112; ++i)
        chunk[i] = static_cast<std::uint8_t>(i); // reserved, and carried along
    EXPECT_EQ(plugin.setChunk(chunk, true), 1);
    EXPECT_EQ(plugin.getChunk(true), chunk);
    Programs expected = distinctPrograms();
    expected[5] = programOf(chunk);
    EXPECT_EQ(programsOf(plugin.getChunk(false)), expected);
}

TEST_F(PresetChunk, IsHeardAtOnce) {
    plugin.setChunk(bytesOf(distinctPrograms()[64]), true);
    for (std::int32_t id = 0; id < kLiveParameters; ++id)
        EXPECT_EQ(plugin.getParameter(id), distinctPrograms()[64].values[static_cast<std::size_t>(id)]) << id;
}

TEST_F(PresetChunk, CarriesTheSlotsOfNoUseAndNeverAppliesThem) {
    ProgramRecord program = defaultProgram();
    for (std::size_t id = kLiveParameters; id < kParameters; ++id)
        program.values[id] = 0.25f * static_cast<float>(id);
    plugin.setChunk(bytesOf(program), true);
    EXPECT_EQ(programOf(plugin.getChunk(true)), program);
    for (std::int32_t id = kLiveParameters; id < kParameters; ++id)
        EXPECT_EQ(plugin.getParameter(id), 0.0f);
    plugin.setParameter(18, 0.5f);
    EXPECT_EQ(programOf(plugin.getChunk(true)), program);
}

TEST_F(PresetChunk, MayHoldAnyValues) {
    ProgramRecord program;
    for (std::size_t id = 0; id < kParameters; ++id)
        program.values[id] = std::bit_cast<float>(0x7FC00000u + static_cast<std::uint32_t>(id) * 0x01000001u);
    plugin.setChunk(bytesOf(program), true);
    EXPECT_EQ(plugin.getChunk(true), bytesOf(program));
}

TEST_F(PresetChunk, MayHoldANameWithoutAnEnd) {
    Bytes chunk = bytesOf(defaultProgram());
    std::fill(chunk.begin() + 84, chunk.end(), std::uint8_t{'x'});
    plugin.setChunk(chunk, true);
    EXPECT_EQ(plugin.programName(), std::string(24, 'x'));
    EXPECT_EQ(plugin.programName(0).value_or(""), std::string(24, 'x'));
    EXPECT_EQ(plugin.getChunk(true), chunk);
}

TEST_F(PresetChunk, OfFewerBytesOverwritesTheFrontOfTheProgramOnly) {
    for (const std::size_t size : {1u, 4u, 6u, 83u, 84u, 100u, 111u}) {
        plugin.setChunk(bytesOf(distinctPrograms()), false);
        plugin.setProgram(7);
        const Bytes front = countingBytes(size, 1);
        EXPECT_EQ(plugin.setChunk(front, true), 1);
        Bytes expected = bytesOf(distinctPrograms()[7]);
        std::copy(front.begin(), front.end(), expected.begin());
        EXPECT_EQ(plugin.getChunk(true), expected) << size;
    }
}

TEST_F(PresetChunk, OfNoBytesChangesNothingAndWipesTheEchoes) {
    makeAllProgramsPlainEchoes();
    const Bytes before = plugin.getChunk(false);
    expectEchoesWiped(plugin, [this] { EXPECT_EQ(setChunkOfSize(Bytes(1), 0, true), 1); });
    EXPECT_EQ(plugin.getChunk(false), before);
}

TEST_F(PresetChunk, Of113BytesIsRefusedWithAMessageAndWipesTheEchoes) {
    const std::string errors = errorsOf([this] {
        makeAllProgramsPlainEchoes();
        const Bytes before = plugin.getChunk(false);
        expectEchoesWiped(plugin, [this] { EXPECT_EQ(plugin.setChunk(Bytes(113, 7), true), 1); });
        EXPECT_EQ(plugin.getChunk(false), before);
    });
    EXPECT_EQ(errors, kPresetRefused);
}

TEST_F(PresetChunk, OfANegativeSizeIsRefusedWithAMessage) {
    for (const std::intptr_t size :
         {std::intptr_t{-1}, std::intptr_t{-112}, std::intptr_t{-2147483647} - 1}) {
        SCOPED_TRACE(size);
        const std::string errors = errorsOf([&] {
            EXPECT_EQ(setChunkOfSize(Bytes(112, 7), size, true), 1);
            EXPECT_EQ(plugin.getChunk(false), bytesOf(distinctPrograms()));
        });
        EXPECT_EQ(errors, kPresetRefused);
    }
}

TEST_F(PresetChunk, ThatIsFarTooLargeIsRefusedUnread) {
    const std::string errors = errorsOf([&] {
        EXPECT_EQ(setChunkOfSize(Bytes(1), 0x7FFFFFFF, true), 1);
        EXPECT_EQ(plugin.getChunk(false), bytesOf(distinctPrograms()));
    });
    EXPECT_EQ(errors, kPresetRefused);
}

class BankChunk : public ChunkFixture {};

TEST_F(BankChunk, BringsAllPrograms) {
    EXPECT_EQ(plugin.setChunk(bytesOf(defaultPrograms()), false), 1);
    EXPECT_EQ(programsOf(plugin.getChunk(false)), defaultPrograms());
    EXPECT_EQ(plugin.programName(), "Fiber Cascade");
}

TEST_F(BankChunk, LeavesTheSelectionWhereItIsWithTheNewContent) {
    plugin.setProgram(5);
    Programs bank = defaultPrograms();
    bank[5].setName("The fifth");
    bank[5].values[kCurve] = 0.125f;
    plugin.setChunk(bytesOf(bank), false);
    EXPECT_EQ(plugin.getProgram(), 5);
    EXPECT_EQ(plugin.programName(), "The fifth");
    EXPECT_EQ(plugin.getParameter(kCurve), 0.125f);
}

TEST_F(BankChunk, IsTakenByteForByte) {
    Bytes bank = countingBytes(kBankSize, 3);
    plugin.setChunk(bank, false);
    EXPECT_EQ(plugin.getChunk(false), bank);
}

TEST_F(BankChunk, OfAnyOtherSizeIsRefusedWithAMessage) {
    for (const std::intptr_t size : {std::intptr_t{0}, std::intptr_t{112}, std::intptr_t{14335},
                                     std::intptr_t{14337}, std::intptr_t{28672}, std::intptr_t{-14336}}) {
        SCOPED_TRACE(size);
        const std::string errors = errorsOf([&] {
            EXPECT_EQ(setChunkOfSize(Bytes(28672, 7), size, false), 1);
            EXPECT_EQ(plugin.getChunk(false), bytesOf(distinctPrograms()));
        });
        EXPECT_EQ(errors, kBankRefused);
    }
}

TEST_F(BankChunk, ThatIsRefusedStillWipesTheEchoes) {
    const std::string errors = errorsOf([this] {
        makeAllProgramsPlainEchoes();
        expectEchoesWiped(plugin, [this] { plugin.setChunk(Bytes(14335), false); });
    });
    EXPECT_EQ(errors, kBankRefused);
}

class AnyChunk : public ChunkFixture {};

TEST_F(AnyChunk, TellsTheHostOnceThatTheProgramIsAnother) {
    errorsOf([this] {
        for (const std::size_t size : {std::size_t{112}, std::size_t{14336}, std::size_t{14335}})
            for (const bool isPreset : {false, true}) {
                plugin.clearCalls();
                plugin.setChunk(Bytes(size), isPreset);
                EXPECT_EQ(plugin.callsOf(audioMasterUpdateDisplay), 1) << size << ", " << isPreset;
                EXPECT_EQ(plugin.calls().size(), 1u) << size << ", " << isPreset;
            }
    });
}

TEST_F(AnyChunk, BringsBackTheStoredValuesEvenWhenItIsRefused) {
    errorsOf([this] {
        plugin.setParameter(kPreGain, 0.25f);
        plugin.setParameter(kAmpDecay, 1.0f);
        std::array<float, 16> silence = {};
        float* buffers[] = {silence.data(), silence.data()};
        plugin.process(buffers, buffers, 16);
        ASSERT_EQ(plugin.getParameter(kPreGain), 1.0f);
        plugin.setChunk(Bytes(113), true);
        EXPECT_EQ(plugin.getParameter(kPreGain), 0.25f);
        EXPECT_EQ(plugin.getParameter(kAmpDecay), 0.99999f);
    });
}

TEST_F(AnyChunk, WipesTheEchoesWhenItIsTaken) {
    makeAllProgramsPlainEchoes();
    for (const bool isPreset : {false, true}) {
        const Bytes own = plugin.getChunk(isPreset);
        expectEchoesWiped(plugin, [&] { plugin.setChunk(own, isPreset); });
    }
}

TEST_F(AnyChunk, MayComeFromTheBytesThatWereHandedOut) {
    // The bytes are brought up to date before anything is read from them: edits since then stay.
    for (const bool isPreset : {false, true}) {
        void* data = nullptr;
        const std::intptr_t size = plugin.dispatch(effGetChunk, isPreset, 0, &data);
        plugin.setParameter(kCurve, 0.3f);
        EXPECT_EQ(plugin.dispatch(effSetChunk, isPreset, size, data), 1);
        EXPECT_EQ(plugin.getParameter(kCurve), 0.3f);
        Programs expected = distinctPrograms();
        expected[0].values[kCurve] = 0.3f;
        EXPECT_EQ(programsOf(plugin.getChunk(false)), expected);
    }
}

/// Files that a musician's project may hold. They must load for ever as they do here.
class KeptChunks : public QuietPlugin {
  protected:
    static Bytes fixture(const std::string& name) {
        const auto bytes = readFile(QUILLON_SOURCE "/tests/fixtures/" + name);
        EXPECT_TRUE(bytes) << name << " is missing";
        return bytes.value_or(Bytes());
    }
    host::Plugin plugin{library()};
};

TEST_F(KeptChunks, OfOneProgramLoadUnchanged) {
    const Bytes chunk = fixture("program.chunk");
    ASSERT_EQ(chunk.size(), kProgramSize);
    EXPECT_EQ(plugin.setChunk(chunk, true), 1);
    EXPECT_EQ(plugin.getChunk(true), chunk);
    EXPECT_EQ(plugin.programName(), "Dotted eighths, dark");
    const std::array<float, kLiveParameters> values = {0.61f, 0.055f, 0.21f, 0.5f,  0.2f, 0.33f,
                                                       0.72f, 0.015f, 1.0f,  0.45f, 0.1f, 0.5f,
                                                       0.5f,  0.25f,  0.35f, 0.6f,  0.5f};
    for (std::int32_t id = 0; id < kLiveParameters; ++id)
        EXPECT_EQ(plugin.getParameter(id), values[static_cast<std::size_t>(id)]) << id;
    EXPECT_EQ(plugin.parameterDisplay(kBaseLength), "745");
    EXPECT_EQ(plugin.parameterDisplay(kTaps), "7");
    EXPECT_EQ(plugin.parameterDisplay(kDryWet), "0.650 / 0.350");
}

TEST_F(KeptChunks, OfAWholeBankLoadUnchanged) {
    const Bytes chunk = fixture("bank.chunk");
    ASSERT_EQ(chunk.size(), kBankSize);
    EXPECT_EQ(plugin.setChunk(chunk, false), 1);
    EXPECT_EQ(plugin.getChunk(false), chunk);
    for (std::int32_t number = 0; number < kPrograms; ++number) {
        plugin.setProgram(number);
        EXPECT_EQ(plugin.programName(), "Kept program " + std::to_string(number));
        for (std::int32_t id = 0; id < kLiveParameters; ++id)
            EXPECT_EQ(plugin.getParameter(id), static_cast<float>((number * 17 + id) % 64) / 64.0f)
                << number << ", " << id;
    }
}

} // namespace
} // namespace conversation
