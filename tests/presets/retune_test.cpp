// Programs at a tempo: what is set, what stays, and how long the engine makes the gaps.
#include "dsp/tap_pattern.h"
#include "parameters/pattern_laws.h"
#include "tools/bank/bank_file.h"
#include "tools/bank/bank_table.h"
#include "tools/bank/retune.h"
#include "tools/bank/whole_file.h"
#include "tools/common/law_values.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <set>

using namespace bank;
using namespace parameters;

namespace {

/// A bank of plain programs, with one of these values and rhythms in place 7.
Bank bankWith(const std::string& name, const char* rhythm, float baseLength, float taps = 0.2f,
              float stretch = 0.5f) {
    Bank bank;
    for (std::size_t number = 0; number < bank.size(); ++number) {
        bank[number].name = "Program " + std::to_string(number);
        for (std::size_t entry = 0; entry < bank[number].values.size(); ++entry)
            bank[number].values[entry] = parameter(static_cast<std::int32_t>(entry)).defaultValue;
    }
    bank[7].name = name;
    bank[7].rhythm = tools::noteFrom(rhythm);
    bank[7].values[kBaseLength] = baseLength;
    bank[7].values[kTaps] = taps;
    bank[7].values[kStretch] = stretch;
    return bank;
}

float lengthOf(double milliseconds) {
    return static_cast<float>(kLongestGap.normalised(milliseconds));
}

dsp::TapPattern patternAt(const BankProgram& program, float sampleRate) {
    dsp::TapPattern pattern;
    dsp::computeTaps(pattern,
                     {program.value(kBaseLength), program.value(kTaps), program.value(kStretch),
                      program.value(kAmpDecay), program.value(kCurve)},
                     sampleRate);
    return pattern;
}

} // namespace

TEST(Retune, PutsAnEchoOnEveryNoteOfEachRhythmicProgram) {
    for (const double bpm : {45.0, 60.0, 93.7, 112.0, 128.0, 174.0, 240.0}) {
        const RetunedBank result = retuned(builtInFactoryBank(), bpm);
        ASSERT_GT(result.programs.size(), 8u);
        for (const RetunedProgram& program : result.programs) {
            ASSERT_TRUE(program.fits) << program.nameBefore << " at " << bpm;
            for (const float sampleRate : {44100.0f, 48000.0f}) {
                const dsp::TapPattern pattern = patternAt(result.bank[program.number], sampleRate);
                const double note =
                    tools::milliseconds(program.note, bpm) * static_cast<double>(sampleRate) / 1000.0;
                for (std::size_t tap = 0; tap < static_cast<std::size_t>(pattern.numTaps.load()); ++tap) {
                    const auto echo = static_cast<double>(tap + 1);
                    EXPECT_NEAR(static_cast<double>(pattern.tapTimeTarget[tap].load()), echo * note,
                                1.0 + 0.5 * echo)
                        << result.bank[program.number].name << ", echo " << echo;
                }
            }
        }
    }
}

TEST(Retune, LeavesEverythingElseAsItWas) {
    const Bank& before = builtInFactoryBank();
    const RetunedBank result = retuned(before, 112.0);
    std::set<std::size_t> rhythmic;
    for (const RetunedProgram& program : result.programs)
        rhythmic.insert(program.number);
    for (std::size_t number = 0; number < before.size(); ++number) {
        const bool isRhythmic = rhythmic.count(number) > 0;
        EXPECT_EQ(before[number].rhythm.has_value(), isRhythmic) << before[number].name;
        if (!isRhythmic) {
            EXPECT_EQ(before[number].name, result.bank[number].name);
        }
        for (std::size_t entry = isRhythmic ? 1 : 0; entry < before[number].values.size(); ++entry)
            EXPECT_EQ(before[number].values[entry], result.bank[number].values[entry])
                << before[number].name << ", parameter " << entry;
    }
}

TEST(Retune, ChangesTheTempoInAName) {
    const Bank bank = bankWith("Eighths 100 Loud", "1/8", lengthOf(600.0));
    EXPECT_EQ("Eighths 112 Loud", retuned(bank, 112.0).bank[7].name);
    EXPECT_EQ("Eighths 93.75 Loud", retuned(bank, 93.75).bank[7].name);
    EXPECT_EQ("Eighths 96.33 Loud", retuned(bank, 96.3333).bank[7].name);
}

TEST(Retune, LeavesANumberInANameThatIsNotItsTempo) {
    EXPECT_EQ("Route 66", retuned(bankWith("Route 66", "1/8", lengthOf(600.0)), 112.0).bank[7].name);
}

TEST(Retune, TakesTheHalfOfANoteThatIsTooLongAndSaysSo) {
    const RetunedBank result = retuned(bankWith("Bars", "1/1", lengthOf(1900.0), 0.0f, 1.0f), 100.0);
    ASSERT_EQ(1u, result.programs.size());
    EXPECT_EQ("1/2", tools::noteText(result.programs[0].note));
    EXPECT_EQ("Bars", result.bank[7].name);
    EXPECT_NE(std::string::npos,
              retuningText(result, 100.0).find("1/1 needs 2466.1 ms; the longest is 2000.0 ms"))
        << retuningText(result, 100.0);
    const RetunedBank slow = retuned(bankWith("Quarters 70", "1/4", lengthOf(120000.0 / 70.0)), 25.0);
    EXPECT_EQ("1/16", tools::noteText(slow.programs[0].note));
    EXPECT_EQ("1/16 at 25", slow.bank[7].name);
}

TEST(Retune, LeavesAProgramAsItWasIfNoLengthOfItsNoteFits) {
    const Bank bank = bankWith("Odd", "63/64", lengthOf(600.0));
    const RetunedBank result = retuned(bank, 40.0);
    ASSERT_EQ(1u, result.programs.size());
    EXPECT_FALSE(result.programs[0].fits);
    EXPECT_EQ(bank[7].values, result.bank[7].values);
    EXPECT_NE(std::string::npos, retuningText(result, 40.0).find("left as it was: no length of 63/64 fits"));
    EXPECT_NE(std::string::npos,
              retuningText(result, 40.0).find("No program follows 40 bpm; the other 128 are as they were."));
}

TEST(Retune, GivesEachProgramANameOfItsOwnAtAnyTempo) {
    for (double bpm = tools::kSlowestBpm; bpm <= tools::kFastestBpm; bpm += 1.3) {
        std::set<std::string> names;
        for (const BankProgram& program : retuned(builtInFactoryBank(), bpm).bank) {
            EXPECT_EQ("", nameFault(program.name));
            EXPECT_TRUE(names.insert(program.name).second) << program.name << " at " << bpm;
        }
    }
}

TEST(Retune, KnowsTheRhythmsOfABankThatHasNoTable) {
    const std::string path = QUILLON_SOURCE "/skins/default.fxb";
    Bank bank = parseBankFile(readWholeFile(path), path);
    adoptRhythms(bank, builtInFactoryBank());
    for (std::size_t number = 0; number < bank.size(); ++number)
        EXPECT_EQ(builtInFactoryBank()[number].rhythm, bank[number].rhythm) << bank[number].name;
}

TEST(Retune, KnowsThemAgainAfterAnyOtherTempo) {
    const RetunedBank first = retuned(builtInFactoryBank(), 140.0);
    for (const double between : {47.0, 101.5, 333.0}) {
        Bank bank = retuned(builtInFactoryBank(), between).bank;
        for (BankProgram& program : bank)
            program.rhythm.reset();
        adoptRhythms(bank, builtInFactoryBank());
        const RetunedBank again = retuned(bank, 140.0);
        ASSERT_EQ(first.programs.size(), again.programs.size()) << between;
        for (std::size_t number = 0; number < bank.size(); ++number)
            EXPECT_EQ(first.bank[number].values, again.bank[number].values) << bank[number].name;
    }
}

TEST(Retune, LetsAProgramAloneThatWasRenamedOrIsNoLongerEven) {
    const Bank& factory = builtInFactoryBank();
    const auto source = std::ranges::find_if(
        factory, [](const auto& program) { return program.rhythm && numTapsOf(program.value(kTaps)) > 1; });
    ASSERT_NE(source, factory.end());
    const auto number = static_cast<std::size_t>(source - factory.begin());
    const auto rhythmWith = [&](auto&& change) {
        Bank bank = factory;
        for (BankProgram& program : bank)
            program.rhythm.reset();
        change(bank[number]);
        adoptRhythms(bank, factory);
        return bank[number].rhythm;
    };
    EXPECT_TRUE(rhythmWith([](BankProgram&) {}));
    EXPECT_FALSE(rhythmWith([](BankProgram& program) { program.name = "My Own Echo"; }));
    EXPECT_FALSE(rhythmWith([](BankProgram& program) { program.values[kStretch] = 0.7f; }));
}

TEST(Retune, CountsOnTheEnginesFirstGap) {
    for (float stretch = 0.0f; stretch <= 1.0f; stretch += 0.05f) {
        const BankProgram program = bankWith("One", "1/4", lengthOf(1500.0), 0.0f, stretch)[7];
        const dsp::TapPattern pattern = patternAt(program, 96000.0f);
        EXPECT_NEAR(static_cast<double>(pattern.tapTimeTarget[0].load()), firstGapShare(program) * 144000.0,
                    1.5)
            << stretch;
    }
}
