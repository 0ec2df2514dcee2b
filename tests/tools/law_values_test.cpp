// Values with units and note lengths, for each parameter of the delay.

#include "tools/common/law_values.h"

#include "desk/private_folder.h"
#include "dsp/tap_pattern.h"
#include "parameters/host_panel.h"
#include "parameters/pattern_laws.h"
#include "tools/common/effect_library.h"
#include "tools/common/effect_settings.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>

namespace {

using namespace parameters;

constexpr double kBpm = 120.0;

class LawValues : public testing::Test {
  protected:
    LawValues() : plugin(tools::loadForGood(QUILLON_LIBRARY)) { plugin.start(44100.0f, 512); }

    /// What the effect shows once the parameter is set as written.
    std::string displayFor(std::int32_t id, const std::string& text) {
        const auto values = tools::applySettings(
            plugin, tools::settingsFrom({std::string(panelEntry(id).name) + "=" + text}, kBpm));
        EXPECT_EQ(values.at(0).id, id);
        return std::string(tools::trimmed(plugin.parameterDisplay(id)));
    }

    std::string refusalOf(std::int32_t id, const std::string& text, double bpm = kBpm) {
        const std::string setting = std::string(panelEntry(id).name) + "=" + text;
        try {
            tools::applySettings(plugin, tools::settingsFrom({setting}, bpm));
        } catch (const tools::ToolError& error) {
            const std::string message = error.what();
            const std::string front = "--set \"" + setting + "\": ";
            EXPECT_EQ(message.substr(0, front.size()), front);
            return message.substr(std::min(front.size(), message.size()));
        }
        ADD_FAILURE() << setting << " was taken";
        return {};
    }

  private:
    desk::PrivateFolder folder_;

  protected:
    host::Plugin plugin;
};

TEST_F(LawValues, ShowTheNumberThatWasWritten) {
    struct Case {
        std::int32_t id;
        const char* written;
        const char* shown;
    };
    constexpr Case cases[] = {
        {kBaseLength, "250ms", "250"},
        {kBaseLength, "0.75 s", "750"},
        {kBaseLength, "1ms", "1"},
        {kBaseLength, "2000ms", "2000"},
        {kBaseLength, "2001 MS", "2001"},
        {kBaseLength, "1/8", "250"},
        {kBaseLength, "1/4.", "750"},
        {kLfoRate, "3.5Hz", "3.500"},
        {kLfoRate, "0.014kHz", "14.000"},
        {kLfoRate, "0Hz", "0.000"},
        {kLfoRate, "1/1", "0.500"},
        {kLfoRate, "1/8t", "6.000"},
        {kStretch, "-24%", "-24 %"},
        {kStretch, "21 %", "21 %"},
        {kStretch, "0%", "0 %"},
        {kAmpDecay, "-85%", "-0.850"},
        {kAmpDecay, "100%", "1.000"},
        {kCurve, "30%", "0.300"},
        {kFeedback, "-30%", "-0.300"},
        {kFeedback, "94.5%", "0.945"},
        {kLfoDepth, "40%", "0.400"},
        {kPreLowPass, "8kHz", "8000"},
        {kPreLowPass, "500 hz", "500"},
        {kPreLowPass, "20590Hz", "20590"},
        {kPreHighPass, "180Hz", "180"},
        {kPreHighPass, "2.5kHz", "2500"},
        {kPrePan, "-100%", "-1.000"},
        {kPreGain, "-6dB", "-6.00000"},
        {kStereo, "0%", "0.000"},
        {kDryWet, "40%", "0.600 / 0.400"},
        {kDryWet, "100%", "0.000 / 1.000"},
        {kOutPan, "+12.5%", "0.125"},
        {kOutGain, "0dB", "0.000000"},
        {kTaps, "display:16", "16"},
        {kSet, "display:Jump", "LFO Off,Use Pitch Off"},
    };
    std::array<int, kNumLiveParameters> seen{};
    for (const Case& value : cases) {
        EXPECT_EQ(displayFor(value.id, value.written), value.shown)
            << panelEntry(value.id).name << '=' << value.written;
        ++seen.at(static_cast<std::size_t>(value.id));
    }
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
        EXPECT_GT(seen.at(static_cast<std::size_t>(id)), 0) << panelEntry(id).name;
}

TEST_F(LawValues, DoNotDependOnWhatIsSetNow) {
    plugin.setParameter(kFeedback, 0.35004f); // shows -0.300, too
    EXPECT_EQ(displayFor(kFeedback, "-30%"), "-0.300");
    EXPECT_EQ(plugin.getParameter(kFeedback), 0.35f);
}

TEST_F(LawValues, OfAnotherKindOfUnitAreRefused) {
    EXPECT_EQ(refusalOf(kBaseLength, "40%"), "Base length takes no \"%\"; it goes from 1 to 2001 ms");
    EXPECT_EQ(refusalOf(kTaps, "16%"), "Echoes has no unit; for 16 echoes, write display:16");
    EXPECT_EQ(refusalOf(kSet, "1/4"),
              "How echoes move has no unit; write display:Jump, display:Glide or display:Fine");
    EXPECT_EQ(refusalOf(kFeedback, "1/4"), "Feedback takes no note length; it goes from -100 to 100 %");
    EXPECT_EQ(refusalOf(kPreLowPass, "1/4"), "High cut takes no note length; it goes from 500 to 20590 Hz");
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id) {
        int taken = 0;
        for (const char* text : {"400ms", "1kHz", "-6dB", "10%"}) {
            try {
                tools::valueByLaw(id, tools::wantedValue(text));
                ++taken;
            } catch (
                const tools::ToolError&) { // one kind of unit at most, and the sweep is no kilohertz fast
            }
        }
        EXPECT_EQ(taken, id == kTaps || id == kSet || id == kLfoRate ? 0 : 1) << panelEntry(id).name;
    }
}

TEST_F(LawValues, BeyondTheRangeAreRefusedWithTheRange) {
    EXPECT_EQ(refusalOf(kBaseLength, "1/1", 40.0),
              "1/1 at 40 bpm is 6000 ms; Base length goes from 1 to 2001 ms");
    EXPECT_EQ(refusalOf(kBaseLength, "1/1", 111.0),
              "1/1 at 111 bpm is 2162.162 ms; Base length goes from 1 to 2001 ms");
    EXPECT_EQ(refusalOf(kBaseLength, "0.5ms"),
              "\"0.5ms\" is out of range; Base length goes from 1 to 2001 ms");
    EXPECT_EQ(refusalOf(kLfoRate, "1/64", 240.0),
              "1/64 at 240 bpm is 64 Hz; Sweep rate goes from 0 to 14 Hz");
    EXPECT_EQ(refusalOf(kPreLowPass, "100Hz"),
              "\"100Hz\" is out of range; High cut goes from 500 to 20590 Hz");
    EXPECT_EQ(refusalOf(kStretch, "31%"), "\"31%\" is out of range; Stretch goes from -30 to 30 %");
    EXPECT_EQ(refusalOf(kDryWet, "-1%"), "\"-1%\" is out of range; Mix goes from 0 to 100 %");
    EXPECT_EQ(refusalOf(kFeedback, "101%"), "\"101%\" is out of range; Feedback goes from -100 to 100 %");
    EXPECT_EQ(refusalOf(kOutGain, "1dB"), "\"1dB\" is out of range; Output gain goes from -oo to 0 dB");
}

/// The length that the engine makes of a base length, in samples.
double samplesOf(float value, float sampleRate) {
    return std::trunc(static_cast<double>(baseLengthOf(value, sampleRate)));
}

TEST_F(LawValues, OfTheBaseLengthSoundAsLongAsTheyAreMeantToTheSample) {
    for (const float sampleRate : {44100.0f, 48000.0f, 96000.0f}) {
        for (double wanted = 1.0; wanted <= 2000.0; wanted += 0.37) {
            const double meant = wanted * static_cast<double>(sampleRate) / 1000.0;
            const double made = samplesOf(tools::baseLengthLasting(wanted), sampleRate);
            EXPECT_NEAR(made, meant + 0.5, 0.52) << wanted << " ms at " << sampleRate;
        }
        EXPECT_EQ(samplesOf(tools::baseLengthLasting(250.0), sampleRate),
                  0.25 * static_cast<double>(sampleRate));
    }
}

TEST_F(LawValues, OfNotesDriftByHalfASampleAnEchoAtMost) {
    dsp::TapPattern pattern;
    for (const float sampleRate : {44100.0f, 48000.0f}) {
        for (double bpm = 61.0; bpm <= 200.0; bpm += 0.7) {
            for (const char* text : {"1/4", "1/8.", "1/8", "1/8t", "1/16", "1/32"}) {
                const double spacing = tools::milliseconds(*tools::noteFrom(text), bpm);
                const float length = tools::baseLengthLasting(2.0 * spacing);
                const auto echoes = static_cast<float>(kTapCount.normalised(20.5));
                dsp::computeTaps(pattern, {length, echoes, 0.5f, 0.5f, 0.5f}, sampleRate);
                ASSERT_EQ(pattern.numTaps.load(), 20);
                const double meant = 20.0 * spacing * static_cast<double>(sampleRate) / 1000.0;
                const double made = static_cast<double>(pattern.tapTimeTarget[19].load());
                EXPECT_LT(std::abs(made - meant), 10.5) << text << " at " << bpm << " bpm";
            }
        }
    }
}

} // namespace
