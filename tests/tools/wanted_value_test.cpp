// Reading "PARAMETER=VALUE".

#include "tools/common/tool_error.h"
#include "tools/common/wanted_value.h"

#include <gtest/gtest.h>

namespace {

using tools::settingFrom;
using tools::ToolError;
using tools::WantedValue;
using tools::wantedValue;
using Kind = tools::WantedValue::Kind;

TEST(WantedValue, IsNormalisedIfItIsABareNumber) {
    for (const char* text : {"0.25", " 0.25 ", "+0.25", ".25", "2.5e-1"}) {
        const WantedValue value = wantedValue(text);
        EXPECT_EQ(value.kind, Kind::normalised) << text;
        EXPECT_DOUBLE_EQ(value.number, 0.25) << text;
    }
}

TEST(WantedValue, IsWhatTheEffectShowsIfItHasAUnit) {
    const WantedValue value = wantedValue("250 ms");
    EXPECT_EQ(value.kind, Kind::shownNumber);
    EXPECT_DOUBLE_EQ(value.number, 250.0);
    EXPECT_EQ(value.unit, "ms");
    for (const char* text : {"2s", "-3dB", "440Hz", "2kHz", "50%", "50 %"})
        EXPECT_EQ(wantedValue(text).kind, Kind::shownNumber) << text;
}

TEST(WantedValue, IsWhatTheEffectShowsBehindDisplay) {
    EXPECT_EQ(wantedValue("display:16").kind, Kind::shownNumber);
    EXPECT_EQ(wantedValue("Display: -24 %").kind, Kind::shownNumber);
    const WantedValue words = wantedValue("display:LFO Off,Use Pitch Off");
    EXPECT_EQ(words.kind, Kind::shownText);
    EXPECT_EQ(words.text, "LFO Off,Use Pitch Off");
    EXPECT_EQ(wantedValue("display:0.750 / 0.250").kind, Kind::shownText);
}

TEST(WantedValue, RefusesAllElse) {
    for (const char* text :
         {"", "loud", "0.5x", "1.5", "-0.1", "display:", "nan", "inf", "1e999", "0,5", "0x1"})
        EXPECT_THROW(wantedValue(text), ToolError) << text;
}

TEST(Setting, IsANameAndAValue) {
    const auto setting = settingFrom(" Bs Lgh 1 = 250ms");
    EXPECT_EQ(setting.parameter, "Bs Lgh 1");
    EXPECT_DOUBLE_EQ(setting.value.number, 250.0);
    EXPECT_EQ(settingFrom("Set=display:a=b").value.text, "a=b");
}

TEST(Setting, RefusesWhatHasNoNameOrNoValue) {
    for (const char* text : {"Feedback", "=0.5", " =0.5", "Feedback=", ""})
        EXPECT_THROW(settingFrom(text), ToolError) << text;
}

TEST(Unit, IsKnownInAnyLetterCase) {
    EXPECT_EQ(tools::unitNamed("KHZ").kind, tools::Unit::Kind::frequency);
    EXPECT_DOUBLE_EQ(tools::unitNamed("khz").factor, 1000.0);
    EXPECT_EQ(tools::unitNamed("parsec").kind, tools::Unit::Kind::none);
}

} // namespace
