// The pattern of the taps, heard from outside, against the law that it follows.

#include "tools/render/tap_pattern.h"

#include "desk/private_folder.h"
#include "tools/common/effect_library.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

using tools::render::measureTapPattern;
using tools::render::Tap;

constexpr std::int32_t baseLength = 0, taps = 1, stretch = 3, ampDecay = 4, curve = 5, feedback = 6, set = 8,
                       stereo = 13;

class TapPattern : public testing::Test {
  protected:
    std::vector<Tap> measure(double sampleRate,
                             std::initializer_list<std::pair<std::int32_t, float>> values) {
        host::Plugin plugin(library);
        plugin.start(static_cast<float>(sampleRate), 512);
        for (const auto& [id, value] : values)
            plugin.setParameter(id, value);
        return measureTapPattern(plugin, sampleRate);
    }

    desk::PrivateFolder folder;
    const host::Library& library = tools::loadForGood(QUILLON_LIBRARY);
};

TEST_F(TapPattern, IsEvenInTheMiddleOfStretchAndFlatInTheMiddleOfDecay) {
    for (double rate : {44100.0, 48000.0, 96000.0, 22050.0}) {
        const float length = 0.3f;
        const auto found =
            measure(rate, {{baseLength, length}, {taps, 20.5f / 127.0f}, {stretch, 0.5f}, {ampDecay, 0.5f}});
        ASSERT_EQ(found.size(), 21u) << rate;
        const double gap = std::floor(std::floor(length * length * rate * 2.0 + 1.0) / 2.0);
        for (std::size_t i = 0; i < found.size(); ++i) {
            // A tap of a delay of n samples reads what was written n - 1 samples before.
            EXPECT_NEAR(found[i].seconds * rate, gap * static_cast<double>(i + 1) - 1.0, 1.5)
                << i << " at " << rate;
            EXPECT_NEAR(found[i].level, 1.0f, 0.01f) << i << " at " << rate;
            EXPECT_EQ(found[i].isRight, i % 2 == 1) << i << " at " << rate;
        }
    }
}

TEST_F(TapPattern, FollowsTheRampAndItsCurve) {
    const int count = 11;
    const auto found = measure(
        48000.0,
        {{baseLength, 0.2f}, {taps, 10.5f / 127.0f}, {stretch, 0.5f}, {ampDecay, 0.25f}, {curve, 1.0f}});
    ASSERT_EQ(found.size(), static_cast<std::size_t>(count));
    std::vector<double> gains;
    double sum = 0.0;
    for (int i = 0; i < count; ++i) {
        gains.push_back(std::pow(1.0 + (2.0 * 0.25 - 1.0) / count * i, 2.0));
        sum += gains.back();
    }
    for (std::size_t i = 0; i < found.size(); ++i)
        EXPECT_NEAR(found[i].level, gains[i] * (2.0 - sum / count), 0.01) << i;
}

TEST_F(TapPattern, IsThePlainOneWhateverSweepFeedbackAndStereoAre) {
    const auto plain = measure(44100.0, {{taps, 0.1f}, {baseLength, 0.3f}});
    const auto busy =
        measure(44100.0, {{taps, 0.1f}, {baseLength, 0.3f}, {set, 1.0f}, {feedback, 1.0f}, {stereo, 1.0f}});
    ASSERT_EQ(plain.size(), busy.size());
    for (std::size_t i = 0; i < plain.size(); ++i) {
        EXPECT_EQ(plain[i].seconds, busy[i].seconds);
        EXPECT_NEAR(plain[i].level, busy[i].level, 1e-3f);
    }
}

TEST_F(TapPattern, LosesTheTapsBehindTheMemorysEnd) {
    const auto found =
        measure(44100.0, {{baseLength, 1.0f}, {taps, 1.0f}, {stretch, 0.5f}, {ampDecay, 0.5f}});
    EXPECT_EQ(found.size(), 95u);
}

TEST_F(TapPattern, IsOneTapIfThereIsOne) {
    const auto found = measure(44100.0, {{taps, 0.0f}, {baseLength, 0.5f}, {ampDecay, 0.5f}});
    ASSERT_EQ(found.size(), 1u);
    EXPECT_NEAR(found[0].level, 1.0f, 0.01f);
}

TEST_F(TapPattern, IsAskedOnlyOfAnEffectThatHasOne) {
    host::Plugin quillon(library);
    EXPECT_TRUE(tools::render::hasTapPattern(quillon));
    const host::Library& probeLibrary = tools::loadForGood(PROBES "/probe.so");
    host::Plugin probe(probeLibrary);
    EXPECT_FALSE(tools::render::hasTapPattern(probe));
}

} // namespace
