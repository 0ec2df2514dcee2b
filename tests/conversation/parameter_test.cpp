// The parameters as a host sees them: names, defaults, values, and what is written below each knob.
#include "support/echoes.h"
#include "support/german_locale.h"
#include "support/host_buffer.h"
#include "support/own_process.h"
#include "support/plugin_folder.h"

#include <array>
#include <bit>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>

namespace conversation {
namespace {

using namespace vst2;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kLargest = std::numeric_limits<float>::max();
constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

constexpr std::array<std::int32_t, 8> kOutside = {kLowest, -909090, -2, -1, 21, 22, 128, kHighest};

const std::array<const char*, kParameters> kNames = {
    "Bs Lgh 1", "Taps #",  "LFO Rt",   "Stretch ", "Amp Deca", "Curve",    "Feedback",
    "LFO Dp",   "Set",     "Pre LP ",  "Pre HP ",  "Pre Pan",  "Pre Gain", "Stereo",
    "Dry Wet",  "Out Pan", "Out Gain", "not used", "not used", "not used", "not used"};

/// Toward zero; what has no place among the integers becomes the lowest one.
std::int32_t whole(float value) {
    return value > -2147483904.0f && value < 2147483648.0f ? static_cast<std::int32_t>(value) : kLowest;
}

std::string decimals(float value) {
    std::array<char, 128> text;
    std::snprintf(text.data(), text.size(), "%.3f", static_cast<double>(value));
    return text.data();
}

/// Decibels in eight characters: sign, whole digits, point, and the decimals that still fit, cut and not
/// rounded. The exact decimal expansion is printed and then cut.
std::string decibels(float gain) {
    if (gain <= 0.0f)
        return "-oo";
    const double exact = 20.0 * std::log10(static_cast<double>(gain));
    const auto cut = [](double value) {
        std::array<char, 512> text;
        std::snprintf(text.data(), text.size(), "%.60f", value);
        return std::string(text.data()).substr(0, 8);
    };
    // Only values are looked at for which it does not matter in which precision the decibels are held.
    EXPECT_EQ(cut(exact), cut(static_cast<double>(static_cast<float>(exact)))) << gain;
    return cut(exact);
}

std::string expectedDisplay(std::int32_t id, float p) {
    switch (id) {
    case kBaseLength:
        return std::to_string(whole(p * p * 1000.0f * 2.0f + 1.0f));
    case kTaps:
        return std::to_string(whole(p * 127.0f + 1.0f));
    case kLfoRate:
        return decimals(p * 14.0f * p);
    case kStretch:
        return std::to_string(whole(p * 60.0f - 30.0f)) + " %";
    case kSet:
        return whole(2.0f - (p + p)) == 2 ? "LFO Off,Use Pitch Off" : "LFO On,Use Pitch On";
    case kPreLowPass:
        return std::to_string(whole(p * 20090.0f * p + 500.0f));
    case kPreHighPass:
        return std::to_string(whole(p * 2400.0f * p + 102.0f));
    case kPreGain:
    case kOutGain:
        return decibels(p);
    case kLfoDepth:
        return decimals(p);
    case kDryWet:
        return decimals(1.0f - p) + " / " + decimals(p);
    default:
        return decimals(p + p - 1.0f);
    }
}

class ParameterFixture : public QuietPlugin {
  protected:
    host::Plugin plugin{library()};

    std::string displayAt(std::int32_t id, float value) {
        plugin.setParameter(id, value);
        return plugin.parameterDisplay(id);
    }
};

class ParameterNames : public ParameterFixture {};

TEST_F(ParameterNames, AreCutToEightCharacters) {
    EXPECT_EQ(plugin.parameterName(kStretch), "Stretch ");
    EXPECT_EQ(plugin.parameterName(kAmpDecay), "Amp Deca");
}

TEST_F(ParameterNames, AreThoseOfTheTable) {
    for (std::int32_t id = 0; id < kParameters; ++id)
        EXPECT_EQ(plugin.parameterName(id), kNames[static_cast<std::size_t>(id)]) << id;
}

TEST_F(ParameterNames, KeepTheirLastBlank) {
    EXPECT_EQ(plugin.parameterName(kPreLowPass), "Pre LP ");
    EXPECT_EQ(plugin.parameterName(kPreHighPass), "Pre HP ");
}

TEST_F(ParameterNames, AreNotUsedOutsideTheTable) {
    for (const std::int32_t id : kOutside)
        EXPECT_EQ(plugin.parameterName(id), "not used") << id;
}

TEST_F(ParameterNames, FillNineBytesAndNoMore) {
    for (std::int32_t id = -1; id <= kParameters; ++id) {
        HostBuffer buffer;
        EXPECT_EQ(plugin.dispatch(effGetParamName, id, 0, buffer.data()), 0);
        EXPECT_EQ(buffer.bytes(9), paddedText(buffer.text(), 8)) << id;
        EXPECT_TRUE(buffer.untouched(9, 1024)) << id;
    }
}

class ParameterLabels : public ParameterFixture {};

TEST_F(ParameterLabels, AreEmpty) {
    for (std::int32_t id = -1; id <= kParameters; ++id) {
        HostBuffer buffer;
        EXPECT_EQ(plugin.dispatch(effGetParamLabel, id, 0, buffer.data()), 0);
        EXPECT_EQ(buffer.bytes(9), paddedText("", 8)) << id;
        EXPECT_TRUE(buffer.untouched(9, 1024)) << id;
    }
    for (const std::int32_t id : kOutside)
        EXPECT_EQ(plugin.parameterLabel(id), "") << id;
}

class ParameterValues : public ParameterFixture {};

TEST_F(ParameterValues, StandAtTheirDefaultsToTheLastBit) {
    const ProgramRecord expected = defaultProgram();
    for (std::int32_t id = 0; id < kParameters; ++id)
        EXPECT_EQ(std::bit_cast<std::uint32_t>(plugin.getParameter(id)),
                  std::bit_cast<std::uint32_t>(expected.values[static_cast<std::size_t>(id)]))
            << id;
}

TEST_F(ParameterValues, ComeBackAsTheyWereSet) {
    for (std::int32_t id = 0; id < kLiveParameters; ++id)
        for (const float value :
             {0.0f, 0.123456789f, 0.99999f, -0.0f, -3.5f, 1e-45f, -kLargest, -kInfinity}) {
            plugin.setParameter(id, value);
            EXPECT_EQ(std::bit_cast<std::uint32_t>(plugin.getParameter(id)),
                      std::bit_cast<std::uint32_t>(value))
                << id << " at " << value;
        }
}

TEST_F(ParameterValues, AboveOneAreNotClampedButForTheAmplitudeRamp) {
    for (std::int32_t id = 0; id < kLiveParameters; ++id)
        for (const float value : {1.0f, 2.5f, kLargest, kInfinity}) {
            plugin.setParameter(id, value);
            EXPECT_EQ(plugin.getParameter(id), id == kAmpDecay ? 0.99999f : value) << id << " at " << value;
        }
}

TEST_F(ParameterValues, MayBeNoNumber) {
    for (std::int32_t id = 0; id < kLiveParameters; ++id) {
        plugin.setParameter(id, kNaN);
        if (id != kAmpDecay) {
            EXPECT_TRUE(std::isnan(plugin.getParameter(id))) << id;
        }
    }
}

TEST_F(ParameterValues, OfTheAmplitudeRampStayInTheProgramAsTheyWereSet) {
    plugin.setParameter(kAmpDecay, 1.0f);
    EXPECT_EQ(plugin.getParameter(kAmpDecay), 0.99999f);
    EXPECT_EQ(programOf(plugin.getChunk(true)).values[kAmpDecay], 1.0f);
}

TEST_F(ParameterValues, OfThePreGainAreOneOnceAudioHasRunAndTheProgramKeepsWhatWasSet) {
    plugin.start(44100.0f, 16);
    std::array<float, 16> silence = {};
    float* buffers[] = {silence.data(), silence.data()};
    for (const float value : {0.0f, 0.5f, 0.75f}) {
        plugin.setParameter(kPreGain, value);
        EXPECT_EQ(plugin.getParameter(kPreGain), value);
        plugin.process(buffers, buffers, 16);
        EXPECT_EQ(plugin.getParameter(kPreGain), 1.0f);
        EXPECT_EQ(plugin.parameterDisplay(kPreGain), "0.000000");
        EXPECT_EQ(programOf(plugin.getChunk(true)).values[kPreGain], value);
    }
}

TEST_F(ParameterValues, OfPreGainSurviveABlockOfNoFrames) {
    plugin.start(44100.0f, 16);
    plugin.setParameter(kPreGain, 0.25f);
    plugin.process(nullptr, nullptr, 0);
    plugin.process(nullptr, nullptr, -5);
    EXPECT_EQ(plugin.getParameter(kPreGain), 0.25f);
}

TEST_F(ParameterValues, OfNoUseAreNotStored) {
    const Bytes before = plugin.getChunk(false);
    for (const std::int32_t id : {17, 18, 19, 20}) {
        plugin.setParameter(id, 0.75f);
        EXPECT_EQ(plugin.getParameter(id), 0.0f) << id;
    }
    EXPECT_EQ(plugin.getChunk(false), before);
}

TEST_F(ParameterValues, OutsideTheTableAreZeroAndStoreNothing) {
    const Bytes before = plugin.getChunk(false);
    for (const std::int32_t id : kOutside) {
        plugin.setParameter(id, 0.75f);
        EXPECT_EQ(plugin.getParameter(id), 0.0f) << id;
    }
    EXPECT_EQ(plugin.getChunk(false), before);
    EXPECT_EQ(plugin.getParameter(kBaseLength), 0.4f);
}

TEST_F(ParameterValues, ChangeWithoutAWordToTheHost) {
    plugin.clearCalls();
    for (std::int32_t id = -1; id <= kParameters; ++id)
        plugin.setParameter(id, 0.25f);
    EXPECT_TRUE(plugin.calls().empty());
}

TEST_F(ParameterValues, OfWildKindsLeaveAnEngineThatStillRuns) {
    plugin.start(44100.0f, 64);
    std::array<float, 64> in = {}, left, right;
    float *inputs[] = {in.data(), in.data()}, *outputs[] = {left.data(), right.data()};
    for (const float value : {kNaN, kInfinity, -kInfinity, kLargest, -kLargest, -1.0f, 1e10f, 1e-40f})
        for (std::int32_t id = -1; id <= kParameters; ++id) {
            plugin.setParameter(id, value);
            plugin.process(inputs, outputs, 64);
        }
    // A program of sane values brings the dry signal back, whatever the filters hold by now.
    plugin.setChunk(bytesOf(defaultProgram()), true);
    plugin.setParameter(kDryWet, 0.0f);
    EXPECT_EQ(plugin.getParameter(kBaseLength), 0.4f);
    plugin.process(inputs, outputs, 64);
}

class ParameterDisplays : public ParameterFixture {};

TEST_F(ParameterDisplays, ShowTheDefaultProgram) {
    const std::array<const char*, kParameters> shown = {"321",      "39",       "3.500",
                                                        "-24 %",    "-1.000",   "0.000",
                                                        "0.000",    "0.100",    "LFO On,Use Pitch On",
                                                        "16772",    "318",      "0.000",
                                                        "-6.02059", "1.000",    "0.500 / 0.500",
                                                        "0.000",    "-6.02059", "",
                                                        "",         "",         ""};
    for (std::int32_t id = 0; id < kParameters; ++id)
        EXPECT_EQ(plugin.parameterDisplay(id), shown[static_cast<std::size_t>(id)]) << id;
}

TEST_F(ParameterDisplays, FollowTheLawOfEachParameter) {
    for (std::int32_t id = 0; id < kLiveParameters; ++id)
        for (const float value : {0.0f, 0.15f, 0.25f, 1.0f / 3.0f, 0.5f, 0.7f, 0.9f, 0.999f})
            EXPECT_EQ(displayAt(id, value), expectedDisplay(id, value)) << id << " at " << value;
}

TEST_F(ParameterDisplays, FollowTheLawAtAnyValue) {
    std::mt19937 random(4711);
    std::uniform_real_distribution<float> values(-2.0f, 3.0f);
    for (std::int32_t id = 0; id < kLiveParameters; ++id) {
        if (id == kPreGain || id == kOutGain)
            continue; // by named values below, where the precision of the logarithm does not show
        for (int i = 0; i < 500; ++i) {
            const float value = values(random);
            const float live = id == kAmpDecay ? std::min(value, 0.99999f) : value;
            EXPECT_EQ(displayAt(id, value), expectedDisplay(id, live)) << id << " at " << value;
        }
    }
}

TEST_F(ParameterDisplays, OfTheBaseLengthAreMilliseconds) {
    EXPECT_EQ(displayAt(kBaseLength, 0.0f), "1");
    EXPECT_EQ(displayAt(kBaseLength, 1.0f), "2001");
    EXPECT_EQ(displayAt(kBaseLength, 0.5f), "501");
}

TEST_F(ParameterDisplays, OfTheTapsGoFromOneTo128) {
    EXPECT_EQ(displayAt(kTaps, 0.0f), "1");
    EXPECT_EQ(displayAt(kTaps, 1.0f), "128");
    EXPECT_EQ(displayAt(kTaps, 0.5f), "64");
}

TEST_F(ParameterDisplays, OfTheStretchAreANumberABlankAndAPercentSign) {
    EXPECT_EQ(displayAt(kStretch, 0.5f), "0 %");
    EXPECT_EQ(displayAt(kStretch, 0.0f), "-30 %");
    EXPECT_EQ(displayAt(kStretch, 1.0f), "30 %");
}

TEST_F(ParameterDisplays, OfTheMixShowTheDryShareFirst) {
    EXPECT_EQ(displayAt(kDryWet, 0.25f), "0.750 / 0.250");
    EXPECT_EQ(displayAt(kDryWet, 0.0f), "1.000 / 0.000");
    EXPECT_EQ(displayAt(kDryWet, 1.0f), "0.000 / 1.000");
}

TEST_F(ParameterDisplays, OfSetHaveTwoTextsForThreeModes) {
    for (const float off : {0.0f, -0.0f, -0.25f})
        EXPECT_EQ(displayAt(kSet, off), "LFO Off,Use Pitch Off") << off;
    for (const float on : {1e-6f, 0.25f, 0.5f, 0.75f, 1.0f, 1.5f, -0.5f, -1.0f})
        EXPECT_EQ(displayAt(kSet, on), "LFO On,Use Pitch On") << on;
}

TEST_F(ParameterDisplays, OfSetWriteAllOfTheirTextAndNoMore) {
    plugin.setParameter(kSet, 0.0f);
    HostBuffer buffer;
    plugin.dispatch(effGetParamDisplay, kSet, 0, buffer.data());
    EXPECT_EQ(buffer.bytes(22), std::string("LFO Off,Use Pitch Off") + '\0');
    EXPECT_TRUE(buffer.untouched(22, 1024));
}

TEST_F(ParameterDisplays, OfTheGainsAreDecibelsCutToEightCharacters) {
    for (const std::int32_t id : {kPreGain, kOutGain}) {
        SCOPED_TRACE(id);
        EXPECT_EQ(displayAt(id, 0.5f), "-6.02059");
        EXPECT_EQ(displayAt(id, 0.25f), "-12.0411");
        EXPECT_EQ(displayAt(id, 1.0f), "0.000000");
        EXPECT_EQ(displayAt(id, 2.0f), "6.020599");
        EXPECT_EQ(displayAt(id, 10.0f), "20.00000");
        EXPECT_EQ(displayAt(id, 0.01f), "-40.0000");
        EXPECT_EQ(displayAt(id, 1e5f), "100.0000");
        EXPECT_EQ(displayAt(id, 0.99f), "-0.08729");
        EXPECT_EQ(displayAt(id, 2e-30f), expectedDisplay(id, 2e-30f));
        EXPECT_EQ(displayAt(id, 1e-45f), expectedDisplay(id, 1e-45f));
        EXPECT_EQ(displayAt(id, kLargest), expectedDisplay(id, kLargest));
    }
}

TEST_F(ParameterDisplays, OfTheGainsAreMinusInfinityFromZeroDown) {
    for (const std::int32_t id : {kPreGain, kOutGain})
        for (const float value : {0.0f, -0.0f, -1e-45f, -1.0f, -kLargest, -kInfinity})
            EXPECT_EQ(displayAt(id, value), "-oo") << id << " at " << value;
}

TEST_F(ParameterDisplays, OfAGainBeyondAllDigitsStayEmpty) {
    EXPECT_EQ(displayAt(kPreGain, kInfinity), "");
    EXPECT_EQ(displayAt(kOutGain, kInfinity), "");
}

TEST_F(ParameterDisplays, OfTheGainsStayWithinNineBytes) {
    for (const float value : {0.0f, 0.5f, 1.0f, 1e-45f, kLargest, kInfinity, kNaN}) {
        plugin.setParameter(kOutGain, value);
        HostBuffer buffer;
        plugin.dispatch(effGetParamDisplay, kOutGain, 0, buffer.data());
        EXPECT_TRUE(buffer.untouched(9, 1024)) << value;
        EXPECT_LE(buffer.text().size(), 8u) << value;
    }
}

TEST_F(ParameterDisplays, TurnWhatIsNoIntegerIntoTheLowestOne) {
    for (const float value : {kNaN, kInfinity, kLargest}) {
        EXPECT_EQ(displayAt(kBaseLength, value), "-2147483648") << value;
        EXPECT_EQ(displayAt(kTaps, value), "-2147483648") << value;
        EXPECT_EQ(displayAt(kStretch, value), "-2147483648 %") << value;
        EXPECT_EQ(displayAt(kPreLowPass, value), "-2147483648") << value;
        EXPECT_EQ(displayAt(kPreHighPass, value), "-2147483648") << value;
        EXPECT_EQ(displayAt(kSet, value), "LFO On,Use Pitch On") << value;
    }
}

TEST_F(ParameterDisplays, OfWildValuesAreCutAt63Bytes) {
    for (const std::int32_t id : {kLfoRate, kCurve, kFeedback, kLfoDepth, kPrePan, kStereo, kDryWet, kOutPan})
        for (const float value : {1e38f, -1e38f, 1e19f, kLargest, -kLargest, kInfinity, -kInfinity}) {
            plugin.setParameter(id, value);
            HostBuffer buffer;
            plugin.dispatch(effGetParamDisplay, id, 0, buffer.data());
            EXPECT_TRUE(buffer.untouched(64, 1024)) << id << " at " << value;
            EXPECT_EQ(buffer.text(), expectedDisplay(id, value).substr(0, 63)) << id << " at " << value;
        }
}

TEST_F(ParameterDisplays, AreEmptyWhereThereIsNoParameter) {
    for (const std::int32_t id : {17, 18, 19, 20, 21, 22, -1, kLowest, kHighest}) {
        HostBuffer buffer;
        EXPECT_EQ(plugin.dispatch(effGetParamDisplay, id, 0, buffer.data()), 0);
        EXPECT_EQ(buffer.text(), "") << id;
        EXPECT_LE(buffer.changedUpTo(), 1u) << id;
    }
}

TEST_F(ParameterDisplays, FollowAChangeOfProgram) {
    plugin.setChunk(bytesOf(distinctPrograms()), false);
    plugin.setProgram(77);
    for (std::int32_t id = 0; id < kLiveParameters; ++id) {
        if (id == kPreGain || id == kOutGain)
            continue;
        const float value = distinctPrograms()[77].values[static_cast<std::size_t>(id)];
        EXPECT_EQ(plugin.parameterDisplay(id), expectedDisplay(id, value)) << id;
    }
}

TEST_F(ParameterDisplays, HaveAPointWhateverTheHostsLocale) {
    ASSERT_TRUE(makeGermanLocale(here(""))) << "Debian's package \"locales\" has what it takes";
    errorsOf([this] {
        becomeGerman();
        ASSERT_STREQ(std::localeconv()->decimal_point, ",");
        EXPECT_EQ(plugin.parameterDisplay(kLfoRate), "3.500");
        EXPECT_EQ(plugin.parameterDisplay(kDryWet), "0.500 / 0.500");
        EXPECT_EQ(plugin.parameterDisplay(kOutGain), "-6.02059");
        EXPECT_EQ(displayAt(kBaseLength, 1.0f), "2001");
    });
}

} // namespace
} // namespace conversation
