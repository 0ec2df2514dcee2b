// Setting a parameter to what the effect shows.

#include "tools/common/display_search.h"

#include "desk/private_folder.h"
#include "tools/common/effect_library.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"

#include <gtest/gtest.h>

namespace {

using tools::valueShowing;
using tools::wantedValue;

class Effect {
  public:
    explicit Effect(const std::string& path) : library_(tools::loadForGood(path)), plugin(library_) {
        plugin.start(44100.0f, 512);
    }

    /// What the effect shows once it is set to what was asked for.
    std::string displayFor(std::int32_t id, const std::string& wanted) {
        plugin.setParameter(id, valueShowing(plugin, id, wantedValue(wanted)));
        return plugin.parameterDisplay(id);
    }

  private:
    desk::PrivateFolder folder_;
    const host::Library& library_;

  public:
    host::Plugin plugin;
};

struct QuillonEffect : Effect {
    QuillonEffect() : Effect(QUILLON_LIBRARY) {}
};
struct ProbeEffect : Effect {
    ProbeEffect() : Effect(PROBES "/probe.so") {}
};

constexpr std::int32_t baseLength = 0, taps = 1, stretch = 3, ampDecay = 4, feedback = 6, set = 8,
                       preLowPass = 9, preGain = 12, stereo = 13, dryWet = 14, outGain = 16;

template <typename Action>
void expectRefused(Action&& action, const std::string& reason) {
    try {
        action();
        FAIL() << "was found; expected: " << reason;
    } catch (const tools::ToolError& error) {
        EXPECT_NE(std::string(error.what()).find(reason), std::string::npos) << error.what();
    }
}

TEST(DisplaySearch, FindsWhateverEachParameterOfTheDelayCanShow) {
    QuillonEffect effect;
    for (std::int32_t id = 0; id <= outGain; ++id) {
        for (int step = 0; step <= 8; ++step) {
            effect.plugin.setParameter(id, static_cast<float>(step) / 8.0f);
            const std::string display = effect.plugin.parameterDisplay(id);
            // From elsewhere, so that the value in use is no help.
            effect.plugin.setParameter(id, step < 4 ? 0.97f : 0.03f);
            EXPECT_EQ(effect.displayFor(id, "display:" + display), display)
                << "parameter " << id << ", step " << step;
        }
    }
}

TEST(DisplaySearch, UnderstandsUnits) {
    QuillonEffect effect;
    EXPECT_EQ(effect.displayFor(baseLength, "250ms"), "250");
    EXPECT_EQ(effect.displayFor(baseLength, "0.25 s"), "250");
    EXPECT_EQ(effect.displayFor(preLowPass, "2000Hz"), "2000");
    EXPECT_EQ(effect.displayFor(preLowPass, "2kHz"), "2000");
    EXPECT_EQ(effect.displayFor(outGain, "-6dB").substr(0, 4), "-6.0");
    EXPECT_EQ(tools::leadingNumber(effect.displayFor(stretch, "-24%"))->value, -24.0);
}

TEST(DisplaySearch, FindsEveryNumberOfTaps) {
    QuillonEffect effect;
    for (int count = 1; count <= 128; count += 9)
        EXPECT_EQ(effect.displayFor(taps, "display:" + std::to_string(count)), std::to_string(count));
    EXPECT_EQ(effect.displayFor(taps, "display:128"), "128");
}

TEST(DisplaySearch, FindsWordsAndPairs) {
    QuillonEffect effect;
    EXPECT_EQ(effect.displayFor(set, "display:LFO Off,Use Pitch Off"), "LFO Off,Use Pitch Off");
    EXPECT_EQ(effect.plugin.getParameter(set), 0.0f);
    EXPECT_EQ(effect.displayFor(set, "display:lfo on,use  pitch on"), "LFO On,Use Pitch On");
    EXPECT_EQ(effect.displayFor(dryWet, "display:0.750 / 0.250"), "0.750 / 0.250");
    EXPECT_EQ(effect.displayFor(dryWet, "display:0.75"), "0.750 / 0.250");
}

TEST(DisplaySearch, FindsTheGainOfNothing) {
    QuillonEffect effect;
    EXPECT_EQ(effect.displayFor(preGain, "display:-oo"), "-oo");
    EXPECT_EQ(effect.plugin.getParameter(preGain), 0.0f);
    EXPECT_EQ(effect.displayFor(outGain, "-100dB").substr(0, 5), "-100.");
}

TEST(DisplaySearch, PrefersTheEndsAndTheMiddleOfWhatShowsTheSame) {
    QuillonEffect effect;
    effect.displayFor(feedback, "display:1.000");
    EXPECT_EQ(effect.plugin.getParameter(feedback), 1.0f);
    effect.displayFor(stereo, "display:-1.000");
    EXPECT_EQ(effect.plugin.getParameter(stereo), 0.0f);
    effect.displayFor(stereo, "display:0.500");
    EXPECT_NEAR(effect.plugin.getParameter(stereo), 0.75f, 1e-4f);
}

TEST(DisplaySearch, KeepsTheValueInUseIfItShowsTheSame) {
    QuillonEffect effect;
    effect.plugin.setParameter(set, 0.93f);
    EXPECT_EQ(valueShowing(effect.plugin, set, wantedValue("display:LFO On,Use Pitch On")), 0.93f);
    effect.plugin.setParameter(taps, 0.301f);
    EXPECT_EQ(valueShowing(effect.plugin, taps, wantedValue("display:39")), 0.301f);
}

TEST(DisplaySearch, PutsTheParameterBack) {
    QuillonEffect effect;
    effect.plugin.setParameter(feedback, 0.3f);
    valueShowing(effect.plugin, feedback, wantedValue("display:0.9"));
    EXPECT_EQ(effect.plugin.getParameter(feedback), 0.3f);
    EXPECT_THROW(valueShowing(effect.plugin, feedback, wantedValue("display:7")), tools::ToolError);
    EXPECT_EQ(effect.plugin.getParameter(feedback), 0.3f);
}

TEST(DisplaySearch, TakesTheNearestThatRoundsToTheWantedNumber) {
    QuillonEffect effect;
    EXPECT_EQ(effect.displayFor(feedback, "display:0.12345"), "0.123");
    EXPECT_EQ(effect.displayFor(ampDecay, "display:-0.5"), "-0.500");
}

TEST(DisplaySearch, LeavesNormalisedValuesAlone) {
    QuillonEffect effect;
    EXPECT_EQ(valueShowing(effect.plugin, feedback, wantedValue("0.123456")), 0.123456f);
}

TEST(DisplaySearch, SaysWhatCannotBeShown) {
    QuillonEffect effect;
    expectRefused([&] { effect.displayFor(taps, "display:200"); },
                  "\"Taps #\" never shows \"200\"; it goes from "
                  "\"1\" to \"128\"");
    expectRefused([&] { effect.displayFor(taps, "display:0"); }, "never shows \"0\"");
    expectRefused([&] { effect.displayFor(baseLength, "3s"); }, "\"Bs Lgh 1\" never shows \"3s\"");
    expectRefused([&] { effect.displayFor(set, "display:off"); }, "\"Set\" never shows \"off\"");
    expectRefused([&] { effect.displayFor(17, "display:1"); }, "\"not used\" shows nothing");
}

TEST(DisplaySearch, TurnsUnitsIntoTheOneThatTheEffectNames) {
    ProbeEffect effect;
    constexpr std::int32_t gain = 0, delay = 1, echo = 2;
    EXPECT_EQ(effect.displayFor(delay, "2500ms"), "2.50");
    EXPECT_EQ(effect.displayFor(delay, "2.5s"), "2.50");
    EXPECT_EQ(effect.displayFor(echo, "-6dB"), "-6.00");
    EXPECT_EQ(effect.displayFor(gain, "50%"), "50.0");
    expectRefused([&] { effect.displayFor(delay, "5dB"); }, "the effect shows it in \"s\", not in \"dB\"");
}

TEST(DisplaySearch, TakesTheMiddleOfAWord) {
    ProbeEffect effect;
    constexpr std::int32_t wave = 3, steps = 6;
    EXPECT_EQ(effect.displayFor(wave, "display:triangle wave"), "Triangle wave");
    EXPECT_NEAR(effect.plugin.getParameter(wave), 0.375f, 1e-4f);
    EXPECT_EQ(effect.displayFor(steps, "display:7"), "7");
    EXPECT_NEAR(effect.plugin.getParameter(steps), 0.75f, 1e-4f);
}

} // namespace
