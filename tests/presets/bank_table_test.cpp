// The factory bank as a table and as a file: every float survives the way there and back, every fault is told
// with its place, and what is delivered is what the table says.
#include "base/truncation.h"
#include "factory_bank.h"
#include "parameters/pattern_laws.h"
#include "tools/bank/bank_file.h"
#include "tools/bank/bank_table.h"
#include "tools/bank/cell_text.h"
#include "tools/bank/whole_file.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <random>
#include <set>

using namespace bank;
using namespace parameters;

namespace {

const std::string kTablePath = QUILLON_SOURCE "/skins/factory_bank.tsv";
const std::string kBankPath = QUILLON_SOURCE "/skins/default.fxb";

std::string textAt(const std::string& path) {
    const auto bytes = readWholeFile(path);
    return {bytes.begin(), bytes.end()};
}

std::uint32_t bitsOf(float value) {
    return std::bit_cast<std::uint32_t>(value);
}

/// A bank of default values under different names.
Bank plainBank() {
    Bank bank;
    for (std::size_t number = 0; number < bank.size(); ++number) {
        bank[number].name = "Program " + std::to_string(number);
        for (std::size_t entry = 0; entry < bank[number].values.size(); ++entry)
            bank[number].values[entry] = parameter(static_cast<std::int32_t>(entry)).defaultValue;
    }
    return bank;
}

/// The message that a table is refused with; empty if it is taken.
std::string refusal(const std::string& table) {
    try {
        parseTable(table, "sounds.tsv");
    } catch (const BankError& error) {
        return error.what();
    }
    return {};
}

/// The plain bank's table with one cell replaced; row and column count from 1, the headings are row 1.
std::string tableWith(std::size_t row, std::size_t column, const std::string& cell) {
    std::string table = tableText(plainBank());
    std::size_t start = 0;
    for (std::size_t line = 1; line < row; ++line)
        start = table.find('\n', start) + 1;
    for (std::size_t i = 1; i < column; ++i)
        start = table.find('\t', start) + 1;
    const std::size_t end = table.find_first_of("\t\n", start);
    return table.replace(start, end - start, cell);
}

void expectOneText(ParameterId id, float value) {
    const std::string text = cellText(id, value);
    const auto back = cellValue(id, text);
    ASSERT_TRUE(back.has_value()) << columnHeading(id) << " " << text;
    EXPECT_EQ(bitsOf(value), bitsOf(*back)) << columnHeading(id) << " " << text;
    EXPECT_EQ(text, cellText(id, *back)) << columnHeading(id);
}

} // namespace

TEST(BankCells, GiveEveryFloatBackBitForBit) {
    std::mt19937 random(20);
    std::uniform_real_distribution<float> inRange(0.0f, 1.0f);
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
        for (int i = 0; i < 2000; ++i) {
            expectOneText(static_cast<ParameterId>(id), inRange(random));
            expectOneText(static_cast<ParameterId>(id),
                          std::bit_cast<float>(static_cast<std::uint32_t>(random())));
        }
}

TEST(BankCells, GiveEveryOddFloatBackBitForBit) {
    using Limits = std::numeric_limits<float>;
    const float odd[] = {0.0f,
                         -0.0f,
                         1.0f,
                         -1.0f,
                         0.5f,
                         std::nextafter(0.5f, 0.0f),
                         1.0000001f,
                         std::nextafter(1.0f, 0.0f),
                         1e30f,
                         -1e30f,
                         Limits::min(),
                         Limits::denorm_min(),
                         Limits::max(),
                         Limits::infinity(),
                         -Limits::infinity(),
                         Limits::quiet_NaN(),
                         std::bit_cast<float>(0xffffff80u),
                         std::bit_cast<float>(0x7f800001u)};
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
        for (const float value : odd)
            expectOneText(static_cast<ParameterId>(id), value);
}

TEST(BankCells, SpeakTheUnitsOfTheDisplay) {
    EXPECT_EQ("500", cellText(kBaseLength, 0.5f));
    EXPECT_EQ("3.5", cellText(kLfoRate, 0.5f));
    EXPECT_EQ("0", cellText(kStretch, 0.5f));
    EXPECT_EQ("-1", cellText(kAmpDecay, 0.0f));
    EXPECT_EQ("0.5", cellText(kCurve, 0.75f));
    EXPECT_EQ("0.1", cellText(kLfoDepth, 0.1f));
    EXPECT_EQ("jump", cellText(kSet, 0.0f));
    EXPECT_EQ("linear", cellText(kSet, 0.5f));
    EXPECT_EQ("cubic", cellText(kSet, 1.0f));
    EXPECT_EQ("20590", cellText(kPreLowPass, 1.0f));
    EXPECT_EQ("102", cellText(kPreHighPass, 0.0f));
    EXPECT_EQ("35", cellText(kDryWet, 0.35f));
}

TEST(BankCells, FallBackToTheNormalisedNumberWhereTheUnitMissesIt) {
    EXPECT_EQ("p=0.3", cellText(kTaps, 0.3f));
    EXPECT_EQ("p=2", cellText(kDryWet, 2.0f));
    EXPECT_EQ("p=0x7fc00000", cellText(kDryWet, std::numeric_limits<float>::quiet_NaN()));
}

TEST(BankCells, GiveTheEngineExactlyTheTapsTheySay) {
    for (int count = 1; count <= 128; ++count) {
        const auto value = cellValue(kTaps, std::to_string(count));
        ASSERT_TRUE(value.has_value()) << count;
        EXPECT_EQ(count, parameters::numTapsOf(*value));
        // A host that rounds what it stores does not change the count; 128 stands alone at the very end.
        if (count < 128) {
            EXPECT_EQ(count, parameters::numTapsOf(*value - 0.001f));
            EXPECT_EQ(count, parameters::numTapsOf(*value + 0.001f));
        }
    }
}

TEST(BankCells, RefuseWhatIsNoNumberOfTheirUnit) {
    for (const char* text : {"", " ", "x", "12x", "1,5", "1e", "-1", "2001", "nan", "inf", "p=", "p=x",
                             "p=nan", "p=0x", "p=0x123456789", "p=1 "})
        EXPECT_FALSE(cellValue(kBaseLength, text).has_value()) << text;
    EXPECT_FALSE(cellValue(kTaps, "0").has_value());
    EXPECT_FALSE(cellValue(kTaps, "129").has_value());
    EXPECT_FALSE(cellValue(kTaps, "3.5").has_value());
    EXPECT_FALSE(cellValue(kSet, "Jump").has_value());
}

TEST(BankTable, GoesToTheFileAndBackWithoutTheLossOfABit) {
    std::mt19937 random(7);
    Bank bank = plainBank();
    for (BankProgram& program : bank)
        for (float& value : program.values)
            value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    const auto file = bankFileBytes(bank);
    const Bank fromFile = parseBankFile(file, "bank.fxb");
    const std::string table = tableText(fromFile);
    EXPECT_EQ(file, bankFileBytes(parseTable(table, "sounds.tsv")));
    EXPECT_EQ(table, tableText(parseTable(table, "sounds.tsv")));
}

TEST(BankTable, TakesLineEndsOfBothKindsRemarksAndEmptyLines) {
    const std::string table = tableText(plainBank());
    std::string other = "# a remark\r\n\r\n";
    for (const char c : table)
        other += c == '\n' ? std::string("\r\n") : std::string(1, c);
    EXPECT_EQ(bankFileBytes(parseTable(table, "a")), bankFileBytes(parseTable(other, "b")));
}

TEST(BankTable, TellsTheRowAndColumnOfABadCell) {
    EXPECT_EQ("sounds.tsv:3:4: \"fast\" is not Bs Lgh 1 [ms]: a number from 0 to 2000",
              refusal(tableWith(3, 4, "fast")));
    EXPECT_EQ("sounds.tsv:129:5: \"3.5\" is not Taps #: a whole number from 1 to 128",
              refusal(tableWith(129, 5, "3.5")));
    EXPECT_EQ("sounds.tsv:2:12: \"swoop\" is not Set: jump, linear or cubic",
              refusal(tableWith(2, 12, "swoop")));
    EXPECT_EQ("sounds.tsv:2:3: \"Loud\" must be \"loud\" or empty", refusal(tableWith(2, 3, "Loud")));
}

TEST(BankTable, TakesTheWindowsNamesAsHeadingsInAnyCase) {
    EXPECT_EQ("", refusal(tableWith(1, 4, "Base length [ms]")));
    EXPECT_EQ("", refusal(tableWith(1, 5, "echoes")));
    EXPECT_EQ("", refusal(tableWith(1, 12, "HOW ECHOES MOVE")));
    EXPECT_EQ("", refusal(tableWith(1, 6, "lfo rt [hz]")));
    EXPECT_EQ(
        "sounds.tsv:1:4: the heading is \"Echoes\" and must be \"Bs Lgh 1 [ms]\" or \"Base length [ms]\"",
        refusal(tableWith(1, 4, "Echoes")));
}

TEST(BankTable, TellsTheRowAndColumnOfABadHeading) {
    EXPECT_EQ("sounds.tsv:1:5: the heading is \"Taps\" and must be \"Taps #\" or \"Echoes\"",
              refusal(tableWith(1, 5, "Taps")));
    EXPECT_EQ("sounds.tsv:1:23: found 23 cells where a line has 21 or 22",
              refusal(tableWith(1, 22, "rhythm\tmore")));
}

TEST(BankTable, TellsTheRowOfALineOfTheWrongLength) {
    EXPECT_EQ("sounds.tsv:9:23: found 23 cells where a line has 21 or 22",
              refusal(tableWith(9, 21, "\t\tmore")));
    const std::string table = tableText(plainBank());
    EXPECT_EQ("sounds.tsv:2:2: found 1 cells where a line has 21 or 22",
              refusal(table.substr(0, table.find('\n') + 1) + "short\n"));
}

TEST(BankTable, MayHaveARhythmAtTheEndOfALine) {
    EXPECT_EQ("", refusal(tableWith(1, 21, "note")));
    Bank bank = plainBank();
    bank[3].rhythm = tools::NoteValue{1, 8, tools::NoteValue::Kind::dotted};
    bank[3].values[kStretch] = 0.5f;
    bank[5].rhythm = tools::NoteValue{1, 1, tools::NoteValue::Kind::plain};
    bank[5].values[kTaps] = 0.0f;
    const std::string table = tableText(bank);
    EXPECT_NE(std::string::npos, table.find("\t1/8.\n"));
    const Bank back = parseTable(table, "sounds.tsv");
    for (std::size_t number = 0; number < bank.size(); ++number)
        EXPECT_EQ(bank[number].rhythm, back[number].rhythm) << number;
    const std::string without = "\trhythm\n";
    std::string older = tableText(plainBank());
    older.replace(older.find(without), without.size(), "\n");
    EXPECT_EQ("", refusal(older));
}

TEST(BankTable, RefusesARhythmThatIsNoneOrThatTheEchoesDoNotHave) {
    EXPECT_EQ("sounds.tsv:4:22: \"fast\" is not a note value such as 1/4, 1/8. or 1/8t",
              refusal(tableWith(4, 21, "\tfast")));
    EXPECT_EQ("sounds.tsv:4:22: a program with a rhythm needs even gaps or a single echo: "
              "Stretch dly [%] 0 or Taps # 1",
              refusal(tableWith(4, 21, "\t1/4")));
}

TEST(BankTable, RefusesTooFewAndTooManyPrograms) {
    const std::string table = tableText(plainBank());
    const std::string fewer = table.substr(0, table.rfind('\n', table.size() - 2) + 1);
    EXPECT_EQ("sounds.tsv:129:1: the table ends after 127 programs, a bank holds 128", refusal(fewer));
    const std::string last = table.substr(table.rfind('\n', table.size() - 2) + 1);
    EXPECT_EQ("sounds.tsv:130:1: a bank holds 128 programs, this is one more", refusal(table + last));
    EXPECT_EQ("sounds.tsv:1:1: the table ends after 0 programs, a bank holds 128", refusal(""));
}

TEST(BankTable, RefusesNamesThatDoNotFit) {
    EXPECT_EQ("sounds.tsv:2:2: a program needs a name", refusal(tableWith(2, 2, "")));
    EXPECT_EQ("", refusal(tableWith(2, 2, "Twenty-four characters..")));
    EXPECT_EQ("sounds.tsv:2:2: \"Twenty-five characters...\" has 25 characters, at most 24 fit",
              refusal(tableWith(2, 2, "Twenty-five characters...")));
    EXPECT_EQ("sounds.tsv:2:2: \" Slap\" has a blank at an end", refusal(tableWith(2, 2, " Slap")));
    EXPECT_EQ("sounds.tsv:2:2: a name is made of printable ASCII characters other than the double quote",
              refusal(tableWith(2, 2, "D\xc3\xa4mmerung")));
}

TEST(BankTable, RefusesANameThatIsTakenWhateverItsCase) {
    EXPECT_EQ("sounds.tsv:5:2: \"PROGRAM 1\" is taken by row 3", refusal(tableWith(5, 2, "PROGRAM 1")));
}

TEST(BankTable, RefusesTrademarksAsWholeWordsOnly) {
    EXPECT_EQ("sounds.tsv:2:2: \"Big Moog Echo\" holds the trademark \"moog\"",
              refusal(tableWith(2, 2, "Big Moog Echo")));
    EXPECT_EQ("", refusal(tableWith(2, 2, "Smoogie")));
}

TEST(BankFile, HasTheHeaderOfABankInOneChunk) {
    const auto bytes = bankFileBytes(plainBank());
    ASSERT_EQ(160u + 14336u, bytes.size());
    const auto word = [&](std::size_t at) {
        return (std::uint32_t{bytes[at]} << 24) | (std::uint32_t{bytes[at + 1]} << 16) |
               (std::uint32_t{bytes[at + 2]} << 8) | bytes[at + 3];
    };
    EXPECT_EQ(0, std::memcmp("CcnK", bytes.data(), 4));
    EXPECT_EQ(bytes.size() - 8, word(4));
    EXPECT_EQ(0, std::memcmp("FBCh", bytes.data() + 8, 4));
    EXPECT_EQ(1u, word(12));
    EXPECT_EQ(0, std::memcmp("qlvd", bytes.data() + 16, 4));
    EXPECT_EQ(1u, word(20));
    EXPECT_EQ(128u, word(24));
    EXPECT_TRUE(std::all_of(bytes.begin() + 28, bytes.begin() + 156, [](auto byte) { return byte == 0; }));
    EXPECT_EQ(14336u, word(156));
}

TEST(BankFile, HoldsLittleEndianRecordsOf112Bytes) {
    Bank bank = plainBank();
    bank[1].name = "Twenty-four characters..";
    bank[1].values[0] = std::bit_cast<float>(0x11223344u);
    const auto bytes = bankFileBytes(bank);
    const std::uint8_t* record = bytes.data() + 160 + 112;
    const std::uint8_t first[] = {0x44, 0x33, 0x22, 0x11};
    EXPECT_EQ(0, std::memcmp(first, record, 4));
    EXPECT_TRUE(std::all_of(record + 68, record + 84, [](auto byte) { return byte == 0; }));
    EXPECT_EQ(0, std::memcmp("Twenty-four characters..", record + 84, 24));
    EXPECT_TRUE(std::all_of(record + 108, record + 112, [](auto byte) { return byte == 0; }));
}

TEST(BankFile, OfAnotherKindIsRefusedInOneLine) {
    const auto good = bankFileBytes(plainBank());
    const auto refusalOf = [](std::vector<std::uint8_t> bytes) -> std::string {
        try {
            parseBankFile(bytes, "bank.fxb");
        } catch (const BankError& error) {
            return error.what();
        }
        return {};
    };
    const auto with = [&](std::size_t at, const char* four) {
        auto bytes = good;
        std::memcpy(bytes.data() + at, four, 4);
        return bytes;
    };
    EXPECT_EQ("", refusalOf(good));
    EXPECT_EQ("", refusalOf(with(16, "vmdl")));
    EXPECT_EQ("bank.fxb: not an fxb file", refusalOf(with(0, "RIFF")));
    EXPECT_EQ("bank.fxb: not an fxb file", refusalOf({}));
    for (const int size : {4, 100, 159})
        EXPECT_EQ("bank.fxb: an fxb file that ends within its header",
                  refusalOf({good.begin(), good.begin() + size}));
    EXPECT_EQ("bank.fxb: not a bank of one chunk", refusalOf(with(8, "FxBk")));
    EXPECT_EQ("bank.fxb: a bank of another plug-in", refusalOf(with(16, "abcd")));
    EXPECT_EQ("bank.fxb: the chunk is not one of 128 programs", refusalOf(with(156, "\0\0\0\x70")));
    EXPECT_EQ("bank.fxb: an fxb file that ends before the end of its bank",
              refusalOf({good.begin(), good.end() - 1}));
}

TEST(FactoryBank, IsWhatItsTableCompilesTo) {
    EXPECT_EQ(readWholeFile(kBankPath), bankFileBytes(factoryBank()))
        << "the table was changed: build the target compile_bank";
}

TEST(FactoryBank, LiesBesideTheLibrary) {
    EXPECT_EQ(readWholeFile(kBankPath), readWholeFile(QUILLON_STAGE "/default.fxb"));
}

TEST(FactoryBank, HasATableInItsShortestForm) {
    EXPECT_EQ(textAt(kTablePath), tableText(factoryBank()));
}

TEST(FactoryBank, HoldsSixteenFamiliesOfEight) {
    const Bank bank = factoryBank();
    std::set<std::string> families;
    for (std::size_t number = 0; number < bank.size(); ++number) {
        EXPECT_FALSE(bank[number].family.empty()) << number;
        EXPECT_EQ(bank[number / 8 * 8].family, bank[number].family) << number;
        families.insert(bank[number].family);
    }
    EXPECT_EQ(16u, families.size());
}

TEST(FactoryBank, HasRhythmsInEveryProgramThatIsMadeForATempo) {
    for (const BankProgram& program : factoryBank())
        EXPECT_TRUE(program.family != "Grids" || program.rhythm) << program.name;
}

TEST(FactoryBank, KeepsItsLowPassesStableFrom32kHzUp) {
    // A low-pass designed above half the rate grows without limit, by the law of a program change as by that
    // of a resume.
    constexpr double kHalfRate = 16000.0;
    for (const BankProgram& program : factoryBank()) {
        const double p = static_cast<double>(program.value(kPreLowPass));
        EXPECT_LT(p * p * 20090.0 + 500.0, kHalfRate) << program.name;
        EXPECT_LT(p * p * 18000.0 + 500.0, kHalfRate) << program.name;
    }
}

TEST(FactoryBank, LeavesTheTwoGainsWithoutEffectAtTheirDefaults) {
    for (const BankProgram& program : factoryBank()) {
        EXPECT_EQ(0.5f, program.value(kPreGain)) << program.name;
        EXPECT_EQ(0.5f, program.value(kOutGain)) << program.name;
    }
}
