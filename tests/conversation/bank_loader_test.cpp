// The factory bank beside the library: which files are taken, what is read from them, and what is said about
// the rest.
#include "support/own_process.h"
#include "support/plugin_folder.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>

namespace conversation {
namespace {

using namespace vst2;

constexpr char kNotFound[] = "Preset loader: Default bank error: file not found\n";
constexpr char kNoBank[] = "Preset loader: Default bank error: not an fxb file\n";
constexpr char kWrongID[] = "Preset loader: Default bank error: wrong unique ID\n";
constexpr char kBankRefused[] = "Error!: Can't load bank, wrong file size!\n";

class BankFixture : public PluginFolder {
  protected:
    /// Starts one instance with this bank beside the library. Gives what it prints; `look` sees it from
    /// inside.
    std::string startWith(const Bytes& bank, const std::function<void(host::Plugin&)>& look = [](auto&) {}) {
        writeFile(module.beside(kBankFile), bank);
        return start(look);
    }

    std::string start(const std::function<void(host::Plugin&)>& look) {
        return errorsOf([&] {
            host::Plugin plugin(module.library());
            look(plugin);
        });
    }

    void expectDefaultsAnd(const std::string& message, const Bytes& bank) {
        EXPECT_EQ(startWith(bank, expectPrograms(defaultPrograms())), message);
    }

    static std::function<void(host::Plugin&)> expectPrograms(const Programs& expected) {
        return [expected](host::Plugin& plugin) {
            EXPECT_EQ(plugin.getProgram(), 0);
            const Programs found = programsOf(plugin.getChunk(false));
            for (std::size_t number = 0; number < kPrograms; ++number)
                EXPECT_EQ(found[number], expected[number]) << "program " << number;
        };
    }
};

class BankFile : public BankFixture {};

TEST_F(BankFile, ThatIsMissingIsReportedOnceAndLeavesFiberCascades) {
    EXPECT_EQ(start(expectPrograms(defaultPrograms())), kNotFound);
}

TEST_F(BankFile, ThatIsMissingIsReportedOnceByEachInstance) {
    const std::string errors = errorsOf([this] {
        const host::Plugin one(module.library()), two(module.library());
        const host::Plugin three(module.library());
    });
    EXPECT_EQ(errors, std::string(kNotFound) + kNotFound + kNotFound);
}

TEST_F(BankFile, IsNotSoughtInTheCurrentDirectory) {
    writeFile(here(kBankFile), chunkBank(distinctPrograms()));
    EXPECT_EQ(start(expectPrograms(defaultPrograms())), kNotFound);
}

TEST_F(BankFile, IsFoundBesideTheLibraryWhereverTheHostHasGone) {
    writeFile(module.beside(kBankFile), chunkBank(distinctPrograms()));
    const std::string errors = errorsOf([this] {
        std::filesystem::create_directory("elsewhere");
        host::Library& library = module.library();
        std::filesystem::current_path("elsewhere");
        host::Plugin plugin(library);
        EXPECT_EQ(programsOf(plugin.getChunk(false)), distinctPrograms());
    });
    EXPECT_EQ(errors, "");
}

TEST_F(BankFile, IsReadAnewByEachInstance) {
    errorsOf([this] {
        writeFile(module.beside(kBankFile), chunkBank(distinctPrograms()));
        host::Plugin one(module.library());
        writeFile(module.beside(kBankFile), chunkBank(defaultPrograms()));
        host::Plugin two(module.library());
        EXPECT_EQ(programsOf(one.getChunk(false)), distinctPrograms());
        EXPECT_EQ(programsOf(two.getChunk(false)), defaultPrograms());
    });
}

TEST_F(BankFile, ThatIsAFolderBringsOneMessageAndTheDefaults) {
    std::filesystem::create_directory(module.beside(kBankFile));
    const std::string errors = start(expectPrograms(defaultPrograms()));
    EXPECT_TRUE(errors == kNotFound || errors == kNoBank) << errors;
}

class ChunkBank : public BankFixture {};

TEST_F(ChunkBank, FillsAllProgramsNamesIncluded) {
    EXPECT_EQ(startWith(chunkBank(distinctPrograms()), expectPrograms(distinctPrograms())), "");
}

TEST_F(ChunkBank, StandsOnItsFirstProgram) {
    startWith(chunkBank(distinctPrograms()), [](host::Plugin& plugin) {
        EXPECT_EQ(plugin.programName(), "Program 0");
        for (std::int32_t id = 0; id < kLiveParameters; ++id)
            EXPECT_EQ(plugin.getParameter(id), distinctPrograms()[0].values[static_cast<std::size_t>(id)])
                << id;
    });
}

TEST_F(ChunkBank, OfTheOlderIdIsTakenToo) {
    BankImage image(chunkBank(distinctPrograms()));
    image.code(16, "vmdl");
    EXPECT_EQ(startWith(image.bytes(), expectPrograms(distinctPrograms())), "");
}

TEST_F(ChunkBank, MayHoldAnythingInTheWordsThatAreNotRead) {
    for (const std::uint32_t word : {0u, 0xFFFFFFFFu, 0x80808080u, 0x12345678u}) {
        SCOPED_TRACE(word);
        BankImage image(chunkBank(distinctPrograms()));
        for (const std::size_t offset : {4u, 12u, 20u, 24u})
            image.bigEndian(offset, word);
        for (std::size_t offset = 28; offset < kBankHeaderSize; offset += 4)
            image.bigEndian(offset, word);
        EXPECT_EQ(startWith(image.bytes(), expectPrograms(distinctPrograms())), "");
    }
}

TEST_F(ChunkBank, MayHaveBytesBehindItsChunk) {
    BankImage image(chunkBank(distinctPrograms()));
    image.append(Bytes(1000, 0xEE));
    EXPECT_EQ(startWith(image.bytes(), expectPrograms(distinctPrograms())), "");
}

TEST_F(ChunkBank, OfOneProgramIsRefusedAsABank) {
    expectDefaultsAnd(kBankRefused, chunkBank(bytesOf(distinctPrograms()[3])));
}

TEST_F(ChunkBank, OfAnyOtherSizeIsRefused) {
    for (const std::size_t size : {0u, 1u, 127u, 14335u, 14337u, 28672u}) {
        SCOPED_TRACE(size);
        BankImage image(chunkBank(Bytes(size, 7)));
        // Enough behind the chunk, whatever its size is taken for.
        image.append(Bytes(40000, 7));
        expectDefaultsAnd(outcomeOf(image.bytes()).message, image.bytes());
        EXPECT_EQ(outcomeOf(image.bytes()).message, kBankRefused);
    }
}

TEST_F(ChunkBank, OfASizeWhoseLastByteIsAbove127IsOfANegativeSizeAndRefused) {
    for (const std::uint32_t size : {128u, 255u, 0x80000080u, 0xFFFFFFFFu}) {
        BankImage image(chunkBank(bytesOf(distinctPrograms())));
        image.bigEndian(kBankHeaderSize, size);
        expectDefaultsAnd(kBankRefused, image.bytes());
    }
}

TEST_F(ChunkBank, WhoseChunkRunsPastTheEndIsNoBank) {
    Bytes bank = chunkBank(distinctPrograms());
    for (const std::size_t missing : {std::size_t{1}, std::size_t{112}, kBankSize - 1, kBankSize}) {
        SCOPED_TRACE(missing);
        expectDefaultsAnd(kNoBank, Bytes(bank.begin(), bank.end() - static_cast<std::ptrdiff_t>(missing)));
    }
    BankImage greedy(bank);
    greedy.bigEndian(kBankHeaderSize, std::uint32_t{0x7FFFFF00});
    expectDefaultsAnd(kNoBank, greedy.bytes());
}

TEST_F(ChunkBank, OfManyMegabytesIsRefusedForItsSize) {
    constexpr std::size_t size = 20 * 1024 * 1024;
    const Bytes bank = chunkBank(Bytes(size, 7));
    EXPECT_EQ(outcomeOf(bank).message, kBankRefused);
    expectDefaultsAnd(kBankRefused, bank);
}

TEST_F(ChunkBank, MayHaveManyMegabytesBehindItsChunk) {
    BankImage image(chunkBank(distinctPrograms()));
    image.append(Bytes(20 * 1024 * 1024, 0xEE));
    EXPECT_EQ(startWith(image.bytes(), expectPrograms(distinctPrograms())), "");
}

TEST_F(ChunkBank, ThatWasKeptFromLongAgoLoadsUnchanged) {
    const auto bank = readFile(QUILLON_SOURCE "/tests/fixtures/bank.fxb");
    const auto chunk = readFile(QUILLON_SOURCE "/tests/fixtures/bank.chunk");
    ASSERT_TRUE(bank && chunk);
    EXPECT_EQ(startWith(*bank, expectPrograms(programsOf(*chunk))), "");
}

class BankHeader : public BankFixture {};

TEST_F(BankHeader, ThatIsCutShortIsNoBank) {
    const Bytes bank = chunkBank(distinctPrograms());
    for (const std::size_t size : {0u, 1u, 3u, 4u, 8u, 12u, 20u, 27u, 28u, 100u, 155u, 156u, 159u}) {
        SCOPED_TRACE(size);
        expectDefaultsAnd(kNoBank, Bytes(bank.begin(), bank.begin() + static_cast<std::ptrdiff_t>(size)));
    }
}

TEST_F(BankHeader, OfAPlainBankThatIsCutShortIsNoBank) {
    const Bytes bank = bankHeader("FxBk", 1).bytes();
    for (const std::size_t size : {0u, 27u, 28u, 155u}) {
        SCOPED_TRACE(size);
        expectDefaultsAnd(kNoBank, Bytes(bank.begin(), bank.begin() + static_cast<std::ptrdiff_t>(size)));
    }
}

TEST_F(BankHeader, WithAnotherMagicIsNoBank) {
    for (const char* magic : {"CcnL", "KncC", "ccnk", "RIFF"}) {
        SCOPED_TRACE(magic);
        BankImage image(chunkBank(distinctPrograms()));
        expectDefaultsAnd(kNoBank, image.code(0, magic).bytes());
    }
}

TEST_F(BankHeader, OfASingleProgramOrAnotherKindIsNoBank) {
    for (const char* kind : {"FxCk", "FPCh", "FBCH", "fxbk", "kBxF"}) {
        SCOPED_TRACE(kind);
        BankImage image(chunkBank(distinctPrograms()));
        expectDefaultsAnd(kNoBank, image.code(8, kind).bytes());
    }
}

TEST_F(BankHeader, OfAnotherPluginIsOfTheWrongId) {
    for (const char* id : {"QLVD", "qlve", "vmdm", "NoEf", "dvlq"})
        for (const char* kind : {"FBCh", "FxBk"}) {
            SCOPED_TRACE(std::string(id) + " in " + kind);
            BankImage image(chunkBank(distinctPrograms()));
            expectDefaultsAnd(kWrongID, image.code(8, kind).code(16, id).bytes());
        }
}

TEST_F(BankHeader, IsLookedAtForItsKindBeforeItsId) {
    BankImage image(chunkBank(distinctPrograms()));
    expectDefaultsAnd(kNoBank, image.code(8, "FPCh").code(16, "none").bytes());
}

TEST_F(BankHeader, IsLookedAtForItsIdBeforeItsChunk) {
    const Bytes bank = chunkBank(distinctPrograms());
    BankImage cut(Bytes(bank.begin(), bank.begin() + 1000));
    expectDefaultsAnd(kWrongID, cut.code(16, "none").bytes());
}

/// Records of a plain bank with counts in memory order, as no host ever writes them and as the walk takes
/// them.
class PlainBank : public BankFixture {
  protected:
    /// `counts.size()` records, each with as many values as it counts: value `id` of record r is (r * 32 +
    /// id) / 128.
    static BankImage bankOf(const std::vector<std::uint32_t>& counts) {
        BankImage image = bankHeader("FxBk", static_cast<std::uint32_t>(counts.size()));
        for (std::size_t r = 0; r < counts.size(); ++r) {
            BankImage record(60 + 4 * std::size_t{counts[r]});
            record.littleEndian(24, counts[r]);
            for (std::size_t id = 0; id < counts[r]; ++id)
                record.bigEndian(56 + 4 * id, static_cast<float>(r * 32 + id) / 128.0f);
            image.append(record.bytes());
        }
        return image;
    }

    static void setValues(ProgramRecord& program, std::size_t record, std::size_t count) {
        for (std::size_t id = 0; id < std::min<std::size_t>(count, kLiveParameters); ++id)
            program.values[id] = static_cast<float>(record * 32 + id) / 128.0f;
    }
};

TEST_F(PlainBank, Of128ProgramsPassesAllChecksAndChangesNothing) {
    BankImage image = bankHeader("FxBk", 128);
    for (std::size_t i = 0; i < 128; ++i) {
        BankImage record(140);
        record.code(0, "CcnK").code(8, "FxCk").code(16, "qlvd").bigEndian(24, std::uint32_t{21});
        for (std::size_t id = 0; id < kParameters; ++id)
            record.bigEndian(56 + 4 * id, 1.0f);
        image.append(record.bytes());
    }
    expectDefaultsAnd("", image.bytes());
}

TEST_F(PlainBank, OfTheOlderIdPassesToo) {
    BankImage image = bankOf({21});
    image.code(16, "vmdl");
    Programs expected = defaultPrograms();
    setValues(expected[0], 0, 21);
    EXPECT_EQ(startWith(image.bytes(), expectPrograms(expected)), "");
}

TEST_F(PlainBank, WithCountsInMemoryOrderIsWalkedInStepsOf60BytesAndItsValues) {
    Programs expected = defaultPrograms();
    const std::vector<std::uint32_t> counts = {21, 3, 0, 17};
    for (std::size_t r = 0; r < counts.size(); ++r)
        setValues(expected[r], r, counts[r]);
    EXPECT_EQ(startWith(bankOf(counts).bytes(), expectPrograms(expected)), "");
}

TEST_F(PlainBank, LosesTheNamesOfItsPrograms) {
    BankImage image = bankOf({21});
    image.code(kBankHeaderSize + 28, "Mine");
    startWith(image.bytes(), [](host::Plugin& plugin) { EXPECT_EQ(plugin.programName(), "Fiber Cascade"); });
}

TEST_F(PlainBank, StoresNothingIntoTheSlotsOfNoUse) {
    startWith(bankOf({21}).bytes(), [](host::Plugin& plugin) {
        const ProgramRecord first = programOf(plugin.getChunk(true));
        for (std::size_t id = kLiveParameters; id < kParameters; ++id)
            EXPECT_EQ(first.values[id], 0.0f);
    });
}

TEST_F(PlainBank, AsAHostWritesItGivesItsFirstRecordAllValuesUpToTheEnd) {
    // A count of 21, most significant byte first, reads as 352321536: the first record takes the whole file.
    BankImage image = bankOf({21, 21});
    image.bigEndian(kBankHeaderSize + 24, std::uint32_t{21});
    Programs expected = defaultPrograms();
    setValues(expected[0], 0, 21);
    EXPECT_EQ(startWith(image.bytes(), expectPrograms(expected)), "");
}

TEST_F(PlainBank, ThatEndsWithinARecordAppliesEveryCompleteValue) {
    const Bytes bank = bankOf({21}).bytes();
    for (const std::size_t values : {0u, 1u, 7u, 16u})
        for (const std::size_t odd : {0u, 1u, 3u}) {
            SCOPED_TRACE(std::to_string(values) + " values and " + std::to_string(odd) + " bytes");
            Programs expected = defaultPrograms();
            setValues(expected[0], 0, values);
            const std::size_t size = kBankHeaderSize + 56 + 4 * values + odd;
            EXPECT_EQ(startWith(Bytes(bank.begin(), bank.begin() + static_cast<std::ptrdiff_t>(size)),
                                expectPrograms(expected)),
                      "");
        }
}

TEST_F(PlainBank, ThatEndsWithinTheHeadOfARecordChangesNothingMore) {
    const Bytes bank = bankOf({2, 21}).bytes();
    const std::size_t second = kBankHeaderSize + 68;
    Programs expected = defaultPrograms();
    setValues(expected[0], 0, 2);
    for (const std::size_t size : {second, second + 1, second + 24, second + 27, second + 28, second + 55}) {
        SCOPED_TRACE(size);
        EXPECT_EQ(startWith(Bytes(bank.begin(), bank.begin() + static_cast<std::ptrdiff_t>(size)),
                            expectPrograms(expected)),
                  "");
    }
}

TEST_F(PlainBank, OfAHeaderAloneChangesNothing) {
    for (const std::uint32_t programs : {0u, 1u, 127u, 128u, 0x7FFFFF7Fu})
        expectDefaultsAnd("", bankHeader("FxBk", programs).bytes());
}

TEST_F(PlainBank, Of127ProgramsReachesTheLastButOne) {
    Programs expected = defaultPrograms();
    BankImage image = bankHeader("FxBk", 127);
    for (std::size_t number = 0; number < 127; ++number) {
        BankImage record(64);
        record.littleEndian(24, 1).bigEndian(56, static_cast<float>(number) / 128.0f);
        image.append(record.bytes());
        expected[number].values[0] = static_cast<float>(number) / 128.0f;
    }
    EXPECT_EQ(startWith(image.bytes(), expectPrograms(expected)), "");
}

TEST_F(PlainBank, OfMoreThan128ProgramsGoesOnInTheLast) {
    BankImage image = bankHeader("FxBk", 0x101);
    for (std::size_t number = 0; number < 0x101; ++number) {
        BankImage record(64);
        record.littleEndian(24, 1).bigEndian(56, static_cast<float>(number) / 512.0f);
        image.append(record.bytes());
    }
    Programs expected = defaultPrograms();
    for (std::size_t number = 0; number < 128; ++number)
        expected[number].values[0] = static_cast<float>(number) / 512.0f;
    expected[127].values[0] = 256.0f / 512.0f;
    EXPECT_EQ(startWith(image.bytes(), expectPrograms(expected)), "");
}

TEST_F(PlainBank, TurnsAValueWhoseLastByteIsAbove127IntoNoNumber) {
    BankImage image = bankOf({4});
    const std::size_t values = kBankHeaderSize + 56;
    image.bigEndian(values, 0.4f);                          // 3E CC CC CD
    image.bigEndian(values + 4, std::uint32_t{0x3F000080}); // a little above 0.5
    image.bigEndian(values + 8, std::uint32_t{0x3F00007F});
    image.bigEndian(values + 12, 0.5f);
    startWith(image.bytes(), [](host::Plugin& plugin) {
        const ProgramRecord first = programOf(plugin.getChunk(true));
        EXPECT_EQ(std::bit_cast<std::uint32_t>(first.values[0]), 0xFFFFFFCDu);
        EXPECT_EQ(std::bit_cast<std::uint32_t>(first.values[1]), 0xFFFFFF80u);
        EXPECT_EQ(std::bit_cast<std::uint32_t>(first.values[2]), 0x3F00007Fu);
        EXPECT_EQ(first.values[3], 0.5f);
    });
}

TEST_F(PlainBank, OfNegativeCountsNeverLeavesTheFile) {
    for (const std::uint32_t count :
         {0xFFFFFFFFu, 0xFFFFFFF2u, 0xFFFFFFF1u, 0xFFFFFFF0u, 0xFFFFFF00u, 0x80000000u, 0xC0000000u}) {
        SCOPED_TRACE(count);
        BankImage image = bankHeader("FxBk", 0x7FFFFF7F);
        image.append(Bytes(400)).littleEndian(kBankHeaderSize + 24, count);
        expectDefaultsAnd("", image.bytes());
    }
}

/// Bank files that nobody ever wrote, from a seed.
class BankMaker {
  public:
    explicit BankMaker(std::uint32_t seed) : random_(seed) {}

    Bytes next() {
        Bytes bank = number(0, 3) == 0 ? noise(number(0, 400)) : nearlyABank();
        if (number(0, 2) == 0 && !bank.empty()) {
            bank.resize(number(0, static_cast<std::uint32_t>(bank.size())));
        }
        return bank;
    }

  private:
    std::uint32_t number(std::uint32_t low, std::uint32_t high) {
        return std::uniform_int_distribution<std::uint32_t>(low, high)(random_);
    }
    Bytes noise(std::size_t size) {
        Bytes bytes(size);
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(number(0, 255));
        return bytes;
    }
    template <class Value>
    Value oneOf(std::initializer_list<Value> values) {
        return values.begin()[number(0, static_cast<std::uint32_t>(values.size() - 1))];
    }

    Bytes nearlyABank() {
        BankImage image(noise(kBankHeaderSize));
        image.code(0, oneOf({"CcnK", "CcnK", "CcnK", "CcnK", "Ccnk"}));
        image.code(8, oneOf({"FBCh", "FBCh", "FxBk", "FxBk", "FxCk"}));
        image.code(16, oneOf({"qlvd", "qlvd", "qlvd", "vmdl", "none"}));
        image.bigEndian(24, oneOf({0u, 1u, 3u, 64u, 127u, 128u, 300u, number(0, 0xFFFFFFFF)}));
        if (image.bytes()[9] == 'B')
            appendChunk(image);
        else
            appendRecords(image);
        return image.bytes();
    }
    void appendChunk(BankImage& image) {
        const std::uint32_t size = oneOf({14336u, 14336u, 14336u, 112u, 14400u, number(0, 0xFFFFFFFF)});
        image.append(Bytes(4)).bigEndian(kBankHeaderSize, size);
        image.append(noise(oneOf({0u, 112u, 14335u, 14336u, 14336u, 14337u, 14400u})));
    }
    void appendRecords(BankImage& image) {
        for (std::uint32_t records = number(0, 8); records > 0; --records) {
            const std::uint32_t count =
                oneOf({0u, 1u, 17u, 21u, 40u, 0x15000000u, 0xFFFFFFFFu, 0xFFFFFFF2u, number(0, 100)});
            BankImage record(noise(60));
            record.littleEndian(24, count);
            image.append(record.bytes()).append(noise(count < 200 ? 4 * count : number(0, 100)));
        }
    }

    std::mt19937 random_;
};

std::uint32_t seedOfThisRun() {
    const char* seed = std::getenv("SEED");
    return seed ? static_cast<std::uint32_t>(std::strtoul(seed, nullptr, 10)) : 19990704u;
}

TEST_F(BankFile, OfAnyContentIsReadByTheSameRules) {
    constexpr std::size_t files = QUILLON_FUZZED_BANKS;
    BankMaker maker(seedOfThisRun());
    RecordProperty("seed", std::to_string(seedOfThisRun()));
    // Each bank has its heading among the messages, so that the first that went wrong is known.
    const auto headingOf = [](std::size_t i) { return "bank " + std::to_string(i) + "\n"; };
    std::string expectedErrors;
    int taken = 0;
    std::vector<Bytes> banks;
    for (std::size_t i = 0; i < files; ++i) {
        banks.push_back(maker.next());
        expectedErrors += headingOf(i) + outcomeOf(banks.back()).message;
        taken += outcomeOf(banks.back()).programs != defaultPrograms();
    }
    EXPECT_GT(taken, static_cast<int>(files / 10)) << "the files are too poor to try anything";
    const std::string errors = errorsOf([&] {
        for (std::size_t i = 0; i < banks.size() && !HasFailure(); ++i) {
            std::fputs(headingOf(i).c_str(), stderr);
            writeFile(module.beside(kBankFile), banks[i]);
            host::Plugin plugin(module.library());
            EXPECT_EQ(plugin.getChunk(false), bytesOf(outcomeOf(banks[i]).programs))
                << "bank " << i << " of SEED=" << seedOfThisRun();
        }
    });
    const auto found =
        std::mismatch(errors.begin(), errors.end(), expectedErrors.begin(), expectedErrors.end());
    const auto place = static_cast<std::size_t>(found.first - errors.begin());
    const std::size_t from = place > 100 ? place - 100 : 0;
    EXPECT_TRUE(errors == expectedErrors) << "SEED=" << seedOfThisRun() << " printed ...\n"
                                          << errors.substr(from, 200) << "...\ninstead of ...\n"
                                          << expectedErrors.substr(from, 200);
}

} // namespace
} // namespace conversation
