// The page of factory programs, from numbers that are known beforehand.
#include "factory_bank.h"
#include "tools/bank/preset_page.h"

#include <gtest/gtest.h>
#include <string>

using namespace bank;

namespace {

class PresetPage : public testing::Test {
  protected:
    PresetPage() {
        for (ProgramNumbers& program : numbers_) {
            program.taps = 3;
            program.firstSeconds = 0.25;
            program.patternSeconds = 1.5;
            program.tailSeconds = 2.0;
            program.loudness.fill({1.0, -7.0, -6.5});
        }
    }

    bool says(const std::string& text) const {
        return pageText(bank_, numbers_, "presets").find(text) != std::string::npos;
    }

    Bank bank_ = factoryBank();
    BankNumbers numbers_;
};

} // namespace

TEST_F(PresetPage, SaysAheadHowFarTheProgramsLieApart) {
    numbers_[3].loudness[0].change = -2.5;
    numbers_[5].loudness[2] = {2.0, -0.5, -0.25};
    EXPECT_TRUE(says("above the softest by 3.5 LU with drums, 0.0 LU with plucks and 1.0 LU with speech.\n"));
    EXPECT_TRUE(says("highest peak of any program is -0.5 dBFS, and the highest true peak -0.2 dBTP.\n"));
}

TEST_F(PresetPage, ShowsPictureNameNoteAndFigures) {
    bank_[0].note = "What it is for";
    bank_[0].values[parameters::kDryWet] = 0.4f;
    bank_[0].rhythm.reset();
    EXPECT_TRUE(says("\n## " + bank_[0].family + "\n\n| No. | Echoes | Program | |\n"));
    EXPECT_TRUE(says("| 0 | <img src=\"presets/000.svg\" alt=\"\" width=\"180\"> | **" + bank_[0].name +
                     "**<br>What it is for | "
                     "3\u00a0echoes,\u00a0250\u00a0ms\u00a0to\u00a01.50\u00a0s<br>mix\u00a040\u00a0%,"
                     "\u00a0gone\u00a02.00\u00a0s |\n"));
    numbers_[0].taps = 1;
    numbers_[0].tailGoesOn = true;
    EXPECT_TRUE(says(
        "| 1\u00a0echo\u00a0at\u00a0250\u00a0ms<br>mix\u00a040\u00a0%,\u00a0gone\u00a0>\u00a020\u00a0s |\n"));
}

TEST_F(PresetPage, GivesTheTempoOfProgramsWithARhythm) {
    BankProgram program = bank_[8];
    program.rhythm.reset();
    EXPECT_EQ(tempoText(program), "");
    for (const BankProgram& other : bank_)
        if (other.rhythm) {
            const std::string text = tempoText(other);
            EXPECT_TRUE(text.starts_with(tools::noteText(*other.rhythm) + " at ")) << text;
            EXPECT_TRUE(text.ends_with(" bpm")) << text;
        }
    const auto atTempo = [&](const std::string& name) {
        for (const BankProgram& other : bank_)
            if (other.name == name)
                return tempoText(other);
        return std::string("no such program");
    };
    EXPECT_EQ(atTempo("One Bar at 128").substr(atTempo("One Bar at 128").find(" at ")), " at 128 bpm");
}

TEST_F(PresetPage, EndsWithTheLevelsOfAllPrograms) {
    numbers_[127].loudness = {{{-0.04, -3.0, -2.5}, {1.5, -2.0, -1.0}, {0.25, -4.0, -3.5}}};
    numbers_[127].levelDecibels = -5.5;
    numbers_[127].peakDecibels = 6.5;
    numbers_[127].correlation = 0.5;
    bank_[127].loud = true;
    const std::string page = pageText(bank_, numbers_, "presets");
    EXPECT_TRUE(page.ends_with("| 127 | " + bank_[127].name +
                               " | 0.0 LU | 1.5 LU | 0.2 LU | -2.0 dBFS | -1.0 dBTP | -5.5 dB | 6.5 dB \\* | "
                               "0.5 |\n"))
        << page.substr(page.size() - 300);
}
