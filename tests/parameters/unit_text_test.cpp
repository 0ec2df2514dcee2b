// Values as hosts show them, with a unit, and what a person writes in their place.
#include "parameters/unit_text.h"

#include "parameters/host_panel.h"

#include <cstdint>
#include <optional>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace {

using namespace parameters;

std::optional<std::string> readAndShown(std::int32_t id, const char* text) {
    const std::optional<float> value = valueOfUnitText(id, text);
    return value ? std::optional(unitText(id, *value)) : std::nullopt;
}

TEST(UnitText, ShowsTheDefaultProgram) {
    const char* const expected[kNumLiveParameters] = {
        "321 ms",     "39",     "3.5 Hz", "-24 %",    "-1", "0",    "0", "0.1",     "Glide",
        "16.772 kHz", "318 Hz", "0",      "-6.02 dB", "1",  "50 %", "0", "-6.02 dB"};
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
        EXPECT_EQ(unitText(id, parameter(id).defaultValue), expected[id]) << id;
}

TEST(UnitText, ShowsTheEndsOfTheRanges) {
    EXPECT_EQ(unitText(kBaseLength, 0.0f), "1 ms");
    EXPECT_EQ(unitText(kBaseLength, 1.0f), "2001 ms");
    EXPECT_EQ(unitText(kTaps, 1.0f), "128");
    EXPECT_EQ(unitText(kLfoRate, 1.0f), "14 Hz");
    EXPECT_EQ(unitText(kStretch, 0.0f), "-30 %");
    EXPECT_EQ(unitText(kFeedback, 0.0f), "-1");
    EXPECT_EQ(unitText(kPreLowPass, 1.0f), "20.59 kHz");
    EXPECT_EQ(unitText(kPreHighPass, 0.0f), "102 Hz");
    EXPECT_EQ(unitText(kPreGain, 0.0f), "-oo dB");
    EXPECT_EQ(unitText(kOutGain, 1.0f), "0 dB");
    EXPECT_EQ(unitText(kDryWet, 1.0f), "100 %");
}

TEST(UnitText, NamesThePlacesOfSet) {
    EXPECT_EQ(unitText(kSet, 0.0f), "Jump");
    EXPECT_EQ(unitText(kSet, 0.25f), "Glide");
    EXPECT_EQ(unitText(kSet, 0.5f), "Glide");
    EXPECT_EQ(unitText(kSet, 0.51f), "Fine");
    EXPECT_EQ(unitText(kSet, 1.0f), "Fine");
}

TEST(UnitText, ShowsTheWholeNumbersThatTheWindowDisplays) {
    std::mt19937 random(1);
    for (const std::int32_t id : {kBaseLength, kTaps, kStretch})
        for (int i = 0; i < 1000; ++i) {
            const float value = static_cast<float>(random() >> 8) * 0x1p-24f;
            char displayed[kDisplayTextSize];
            parameter(id).display(value, displayed);
            const std::string text = unitText(id, value);
            EXPECT_EQ(text.substr(0, text.find(' ')),
                      std::string(displayed).substr(0, std::string(displayed).find(' ')))
                << id << " at " << value;
        }
}

TEST(ValueOfUnitText, TakesNumbersWithTheirUnits) {
    EXPECT_EQ(readAndShown(kBaseLength, "400 ms"), "400 ms");
    EXPECT_EQ(readAndShown(kBaseLength, "1.2 s"), "1200 ms");
    EXPECT_EQ(readAndShown(kDryWet, "21 %"), "21 %");
    EXPECT_EQ(readAndShown(kDryWet, "21%"), "21 %");
    EXPECT_EQ(readAndShown(kPreLowPass, "8 kHz"), "8 kHz");
    EXPECT_EQ(readAndShown(kPreLowPass, "8000 HZ"), "8 kHz");
    EXPECT_EQ(readAndShown(kPreLowPass, "501"), "501 Hz");
    EXPECT_EQ(readAndShown(kPreGain, "-6 dB"), "-6 dB");
    EXPECT_EQ(readAndShown(kPreGain, "-oo dB"), "-oo dB");
    EXPECT_EQ(readAndShown(kPreGain, "-oo"), "-oo dB");
    EXPECT_EQ(readAndShown(kSet, " glide "), "Glide");
    EXPECT_EQ(readAndShown(kTaps, " +12 "), "12");
    EXPECT_EQ(readAndShown(kFeedback, "-0.25"), "-0.25");
    EXPECT_EQ(valueOfUnitText(kDryWet, "21 %"), 0.21f);
}

TEST(ValueOfUnitText, TakesTheEndOfTheRangeForWhatLiesBeyond) {
    EXPECT_EQ(valueOfUnitText(kBaseLength, "1e9 ms"), 1.0f);
    EXPECT_EQ(valueOfUnitText(kBaseLength, "-5"), 0.0f);
    EXPECT_EQ(valueOfUnitText(kPreLowPass, "1 Hz"), 0.0f);
    EXPECT_EQ(valueOfUnitText(kOutGain, "6 dB"), 1.0f);
    EXPECT_EQ(valueOfUnitText(kStretch, "400"), 1.0f);
}

TEST(ValueOfUnitText, RefusesWhatIsNoValue) {
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
        for (const char* text : {"", " ", "ms", "nan", "inf", "-inf", "1 m", "1 2", "0x", "1,5", "--1", "+"})
            EXPECT_FALSE(valueOfUnitText(id, text)) << id << ": " << text;
    EXPECT_FALSE(valueOfUnitText(kBaseLength, "1 Hz"));
    EXPECT_FALSE(valueOfUnitText(kLfoRate, "1 ms"));
    EXPECT_FALSE(valueOfUnitText(kTaps, "1 dB"));
    EXPECT_FALSE(valueOfUnitText(kTaps, "-oo"));
    EXPECT_FALSE(valueOfUnitText(kPreGain, "-oo ms"));
    EXPECT_FALSE(valueOfUnitText(kSet, "Gliding"));
}

TEST(ValueOfUnitText, GivesAValueOfTheSameText) {
    std::mt19937 random(1);
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
        for (int i = 0; i < 20000; ++i) {
            const float value = i < 2 ? static_cast<float>(i) : static_cast<float>(random() >> 8) * 0x1p-24f;
            const std::string text = unitText(id, value);
            ASSERT_EQ(readAndShown(id, text.c_str()), text) << id << " at " << value;
        }
}

TEST(ValueOfUnitText, ReadsEveryWholeNumberOfARange) {
    const auto readsAll = [](std::int32_t id, int first, int last) {
        for (int number = first; number <= last; ++number) {
            const std::string text = std::to_string(number);
            const std::optional<float> value = valueOfUnitText(id, text);
            char displayed[kDisplayTextSize];
            parameter(id).display(value.value(), displayed);
            ASSERT_EQ(std::stoi(displayed), number) << id;
        }
    };
    readsAll(kBaseLength, 1, 2001);
    readsAll(kTaps, 1, 128);
    readsAll(kStretch, -30, 30);
    readsAll(kPreLowPass, 500, 20590);
    readsAll(kPreHighPass, 102, 2502);
}

TEST(SetPlaceOf, FollowsTheWayThatTapsAreRead) {
    for (int i = 0; i <= 1000; ++i) {
        const float value = static_cast<float>(i) / 1000.0f;
        EXPECT_EQ(static_cast<std::int32_t>(setPlaceOf(value)), 2 - interpolationModeOf(value)) << value;
    }
    EXPECT_EQ(setPlaceOf(-5.0f), 0u);
    EXPECT_EQ(setPlaceOf(5.0f), 2u);
}

TEST(PanelEntry, GivesEveryLiveParameterANameOfItsOwnAndAGroup) {
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id) {
        EXPECT_STRNE(panelEntry(id).name, "");
        EXPECT_STRNE(panelEntry(id).group.name, "");
        for (std::int32_t other = 0; other < id; ++other)
            EXPECT_STRNE(panelEntry(id).name, panelEntry(other).name);
    }
}

} // namespace
