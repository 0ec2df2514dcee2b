// The settings under a picture's title.

#include "tools/render/settings_line.h"

#include <gtest/gtest.h>

namespace {

using namespace tools;
using namespace tools::render;

ParameterState parameter(const std::string& name, const std::string& display, const std::string& label = "") {
    ParameterState state;
    state.name = name;
    state.display = display;
    state.label = label;
    return state;
}

std::string lineOf(std::vector<ParameterState> parameters) {
    EffectState state;
    state.parameters = std::move(parameters);
    return settingsLine(state);
}

TEST(SettingsLine, TellsTheDelayInPlainWords) {
    EXPECT_EQ(lineOf({parameter("Bs Lgh 1", "321"), parameter("Taps #", "39"),
                      parameter("Dry Wet", "0.5 / 0.5"), parameter("Curve", "0.000")}),
              "39 echoes   \u00b7   base length 321 ms   \u00b7   mix 0.5 / 0.5");
}

TEST(SettingsLine, SpeaksOfOneEchoAsOne) {
    EXPECT_EQ(lineOf({parameter("Taps #", " 1 ")}), "1 echo");
    EXPECT_EQ(lineOf({parameter("Taps #", "11")}), "11 echoes");
    EXPECT_EQ(lineOf({parameter("Bs Lgh 1", "1"), parameter("LFO Rt", "1")}),
              "base length 1 ms   \u00b7   sweep rate 1 Hz");
}

TEST(SettingsLine, LeavesOutWhatShowsNothing) {
    EXPECT_EQ(lineOf({parameter("Taps #", "  "), parameter("Feedback", "0.250")}), "feedback 0.250");
    EXPECT_EQ(lineOf({}), "");
}

TEST(SettingsLine, TellsTheFirstFewOfAnyOtherEffect) {
    std::vector<ParameterState> parameters = {parameter("Drive ", "12.0", "dB"), parameter("Mode", "1")};
    parameters.resize(7, parameter("More", "2", "x"));
    const std::string dot = "   \u00b7   ";
    EXPECT_EQ(lineOf(parameters), "Drive 12.0 dB" + dot + "Mode 1" + dot + "More 2 x" + dot + "More 2 x" +
                                      dot + "More 2 x" + dot + "More 2 x");
}

} // namespace
