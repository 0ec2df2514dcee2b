// The table of the parameters: names, start values and how a value reads, id by id.
#include "parameters/parameter_table.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using namespace parameters;

std::string displayOf(std::int32_t id, float value) {
    char text[kDisplayTextSize] = "x";
    parameter(id).display(value, text);
    return text;
}

struct Row {
    const char* name;
    float defaultValue;
    const char* display; ///< of the start value
};

constexpr Row kRows[] = {
    {"Bs Lgh 1", 0.4f, "321"},      {"Taps #", 0.3f, "39"},         {"LFO Rt", 0.5f, "3.500"},
    {"Stretch dly", 0.1f, "-24 %"}, {"Amp Decay", 0.0f, "-1.000"},  {"Curve", 0.5f, "0.000"},
    {"Feedback", 0.5f, "0.000"},    {"LFO Dp", 0.1f, "0.100"},      {"Set", 0.5f, "LFO On,Use Pitch On"},
    {"Pre LP ", 0.9f, "16772"},     {"Pre HP ", 0.3f, "318"},       {"Pre Pan", 0.5f, "0.000"},
    {"Pre Gain", 0.5f, "-6.02059"}, {"Stereo", 1.0f, "1.000"},      {"Dry Wet", 0.5f, "0.500 / 0.500"},
    {"Out Pan", 0.5f, "0.000"},     {"Out Gain", 0.5f, "-6.02059"},
};
static_assert(std::size(kRows) == kNumLiveParameters);

TEST(ParameterTable, NamesEachParameterAndStartsItAtItsDefault) {
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id) {
        const Row& row = kRows[id];
        EXPECT_STREQ(parameter(id).name, row.name) << id;
        EXPECT_EQ(parameter(id).defaultValue, row.defaultValue) << id;
        EXPECT_EQ(displayOf(id, row.defaultValue), row.display) << id;
    }
}

TEST(ParameterTable, HasOneEntryForAllIdsThatAreNotLive) {
    for (const std::int32_t id : {-1, kNumLiveParameters, kNumParameters - 1, kNumParameters, 1000}) {
        EXPECT_STREQ(parameter(id).name, "not used") << id;
        EXPECT_EQ(parameter(id).defaultValue, 0.0f) << id;
        EXPECT_EQ(displayOf(id, 0.5f), "") << id;
    }
}

TEST(DefaultValues, AreThoseOfTheTableAndZeroForTheFreeIds) {
    const auto values = defaultValues();
    ASSERT_EQ(values.size(), 21u);
    for (std::size_t id = 0; id < values.size(); ++id)
        EXPECT_EQ(values[id], id < std::size(kRows) ? kRows[id].defaultValue : 0.0f) << id;
}

TEST(Displays, GoFromOneEndOfTheParameterToTheOther) {
    EXPECT_EQ(displayOf(kBaseLength, 0.0f) + " " + displayOf(kBaseLength, 1.0f), "1 2001");
    EXPECT_EQ(displayOf(kTaps, 0.0f) + " " + displayOf(kTaps, 1.0f), "1 128");
    EXPECT_EQ(displayOf(kStretch, 0.0f) + " " + displayOf(kStretch, 1.0f), "-30 % 30 %");
    EXPECT_EQ(displayOf(kFeedback, 0.0f) + " " + displayOf(kFeedback, 1.0f), "-1.000 1.000");
    EXPECT_EQ(displayOf(kPreLowPass, 0.0f) + " " + displayOf(kPreLowPass, 1.0f), "500 20590");
    EXPECT_EQ(displayOf(kPreHighPass, 0.0f) + " " + displayOf(kPreHighPass, 1.0f), "102 2502");
    EXPECT_EQ(displayOf(kDryWet, 0.0f) + " " + displayOf(kDryWet, 1.0f), "1.000 / 0.000 0.000 / 1.000");
    EXPECT_EQ(displayOf(kOutGain, 0.0f) + " " + displayOf(kOutGain, 1.0f), "-oo 0.000000");
}

TEST(InterpolationMode, IsWholeSamplesAtZeroAloneAndLinearUpToTheMiddle) {
    EXPECT_EQ(interpolationModeOf(0.0f), kWholeSamples);
    EXPECT_EQ(interpolationModeOf(0.001f), kLinear);
    EXPECT_EQ(interpolationModeOf(0.25f), kLinear);
    EXPECT_EQ(interpolationModeOf(0.5f), kLinear);
    EXPECT_EQ(interpolationModeOf(0.501f), kCubic);
    EXPECT_EQ(interpolationModeOf(1.0f), kCubic);
}

} // namespace
