// How loud programs are, where that can be calculated, and the table of it.
#include "desk/private_folder.h"
#include "factory_bank.h"
#include "tools/bank/audition.h"
#include "tools/bank/bank_file.h"
#include "tools/bank/parallel.h"
#include "tools/bank/program_loudness.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

using namespace bank;
using namespace parameters;

namespace {

void set(BankProgram& program, ParameterId id, float value) {
    program.values[static_cast<std::size_t>(id)] = value;
}

/// The library writes into the current directory when an instance closes.
class ProgramLoudnessTest : public testing::Test {
  protected:
    PlayedLoudness drumsThrough(const BankProgram& program) const {
        Bank bank = factoryBank();
        bank[5] = program;
        const Audition audition(QUILLON_LIBRARY, chunkBytes(bank));
        return LoudnessProbe(recording(QUILLON_SPEECH)).measure(audition, 5, program)[0];
    }

    desk::PrivateFolder folder_;
};

TEST_F(ProgramLoudnessTest, IsThatOfTheDrySoundWithoutEchoes) {
    BankProgram program = factoryBank()[8];
    set(program, kDryWet, 0.0f);
    const PlayedLoudness played = drumsThrough(program);
    EXPECT_NEAR(played.change, 0.0, 0.05);
    EXPECT_NEAR(played.peak, kLoudnessSoundPeak, 0.05);
    EXPECT_GE(played.truePeak, played.peak);
}

TEST_F(ProgramLoudnessTest, IsThatOfTheMixStoredInTheProgram) {
    BankProgram program = factoryBank()[8];
    const double stored = drumsThrough(program).change;
    set(program, kDryWet, 0.1f);
    EXPECT_GT(std::abs(drumsThrough(program).change - stored), 0.5);
}

TEST_F(ProgramLoudnessTest, IsThatOfTheTableAndNotOfTheBankBesideTheLibrary) {
    Bank bank = factoryBank();
    const Audition stored(QUILLON_LIBRARY);
    const Audition same(QUILLON_LIBRARY, chunkBytes(bank));
    const Signal click = bank::click();
    const auto played = [&click](const Audition& audition, std::size_t program) {
        return audition.play(program, click, 1.0, Listening::asStored);
    };
    EXPECT_EQ(played(stored, 0).left, played(same, 0).left);
    EXPECT_EQ(played(stored, 61).right, played(same, 61).right);
    std::swap(bank[0], bank[61]);
    const Audition swapped(QUILLON_LIBRARY, chunkBytes(bank));
    EXPECT_EQ(played(stored, 0).left, played(swapped, 61).left);
    EXPECT_NE(played(stored, 0).left, played(swapped, 0).left);
}

TEST(LoudnessSounds, AreEightSecondsLongAndPeakAtFullScale) {
    const Signal speech = recording(QUILLON_SPEECH);
    for (const Signal& sound : {drumBars(), pluckedPhrase(), repeatedSpeech(speech)}) {
        EXPECT_EQ(sound.size(), 8u * kAuditionRate);
        EXPECT_DOUBLE_EQ(peakOf({sound, sound}), 1.0);
    }
}

TEST(LoudnessTable, HasTheSpreadsAheadAndARowForEachProgram) {
    const Bank bank = factoryBank();
    BankLoudness loudness;
    for (ProgramLoudness& program : loudness)
        program.fill({-1.0, -7.0, -6.5});
    loudness[7][1] = {-4.25, -8.0, -7.5};
    loudness[9][1] = {1.5, -0.75, 0.25};
    EXPECT_DOUBLE_EQ(spreadOf(loudness, 0).decibels, 0.0);
    EXPECT_DOUBLE_EQ(spreadOf(loudness, 1).decibels, 5.75);
    EXPECT_EQ(highestPeakOf(loudness).program, 9u);
    const std::string table = loudnessTable(bank, loudness);
    EXPECT_NE(table.find("# plucks: spread 5.8 LU, from -4.2 LU (7 " + bank[7].name + ") to 1.5 LU (9 " +
                         bank[9].name + ")\n"),
              std::string::npos)
        << table.substr(0, 400);
    EXPECT_NE(table.find("# highest peak: -0.8 dBFS, 0.2 dBTP (9 " + bank[9].name + ")\n"),
              std::string::npos);
    EXPECT_NE(table.find("\n7\t" + bank[7].family + "\t" + bank[7].name +
                         "\t-1.00\t-4.25\t-1.00\t-7.00\t-8.00\t-7.00\t-6.50\t-7.50\t-6.50\n"),
              std::string::npos);
    EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 4 + 1 + 128);
}

TEST(Parallel, DoesEachPieceOnceAndPassesOnAFailure) {
    std::vector<std::atomic<int>> done(100);
    forEachInParallel(done.size(), [&](std::size_t i) { ++done[i]; });
    for (const auto& count : done)
        EXPECT_EQ(count.load(), 1);
    EXPECT_THROW(forEachInParallel(3,
                                   [](std::size_t i) {
                                       if (i == 1)
                                           throw std::runtime_error("no");
                                   }),
                 std::runtime_error);
}

} // namespace
