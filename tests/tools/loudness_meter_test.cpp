// The loudness meter against what the standards say of sounds whose loudness can be calculated: EBU R 128,
// and the cases of EBU Tech 3341 and 3342.

#include "tools/common/loudness_meter.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <numbers>
#include <thread>
#include <vector>

namespace {

using tools::LoudnessMeter;

constexpr int kRate = 48000;

/// The weighting is 0 dB at this frequency, in Hz, with the constant of the standard.
constexpr double kNeutralTone = 997.0;

struct Tone {
    double seconds = 0.0;
    double decibels = 0.0; ///< of its peak against full scale
    double hertz = kNeutralTone;
    double startDegrees = 0.0;
};

/// The tones one after the other, the same in each channel, interleaved.
std::vector<float> sound(const std::vector<Tone>& tones, int channels = 2, int rate = kRate) {
    std::vector<float> samples;
    for (const Tone& tone : tones) {
        const double amplitude = std::pow(10.0, tone.decibels / 20.0);
        const auto frames = static_cast<std::int64_t>(tone.seconds * rate);
        for (std::int64_t frame = 0; frame < frames; ++frame) {
            const double cycles = static_cast<double>(frame) * tone.hertz / rate + tone.startDegrees / 360.0;
            const double value = amplitude * std::sin(2.0 * std::numbers::pi * cycles);
            samples.insert(samples.end(), static_cast<std::size_t>(channels), static_cast<float>(value));
        }
    }
    return samples;
}

LoudnessMeter measured(const std::vector<float>& samples, int channels = 2, int rate = kRate) {
    LoudnessMeter meter(channels, rate);
    meter.add(samples);
    return meter;
}

TEST(LoudnessMeter, GivesTheLevelOfAToneInBothChannels) {
    for (const double level : {-23.0, -33.0, -6.0})
        EXPECT_NEAR(measured(sound({{20.0, level}})).integrated().value(), level, 0.1);
}

TEST(LoudnessMeter, GivesTheSameAtEverySampleRate) {
    for (const int rate : {8000, 22050, 44100, 96000, 192000, 768000})
        EXPECT_NEAR(measured(sound({{3.0, -23.0}}, 2, rate), 2, rate).integrated().value(), -23.0, 0.1)
            << rate;
}

TEST(LoudnessMeter, CountsMonoAsOneChannel) {
    EXPECT_NEAR(measured(sound({{20.0, -20.0}}, 1), 1).integrated().value(), -23.01, 0.1);
}

TEST(LoudnessMeter, WeightsLowFrequenciesLessAndHighOnesMore) {
    // The weighting's ends: +4 dB far above 1.7 kHz, and -10.5 dB at 25 Hz, all against 997 Hz.
    EXPECT_NEAR(measured(sound({{20.0, -23.0, 15000.0}})).integrated().value(), -23.0 + 4.0 - 0.69, 0.1);
    EXPECT_LT(measured(sound({{20.0, -23.0, 25.0}})).integrated().value(), -33.0);
}

TEST(LoudnessMeter, LeavesQuietPassagesOutOfTheLoudness) {
    const auto samples = sound({{10.0, -36.0}, {60.0, -23.0}, {10.0, -36.0}});
    EXPECT_NEAR(measured(samples).integrated().value(), -23.0, 0.1);
    const auto fadeBySteps =
        sound({{10.0, -72.0}, {10.0, -36.0}, {60.0, -23.0}, {10.0, -36.0}, {10.0, -72.0}});
    EXPECT_NEAR(measured(fadeBySteps).integrated().value(), -23.0, 0.1);
}

TEST(LoudnessMeter, GivesTheRangeBetweenQuietAndLoudPassages) {
    EXPECT_NEAR(measured(sound({{20.0, -20.0}, {20.0, -30.0}})).range().value(), 10.0, 0.5);
    EXPECT_NEAR(measured(sound({{20.0, -20.0}, {20.0, -15.0}})).range().value(), 5.0, 0.5);
    EXPECT_NEAR(measured(sound({{20.0, -20.0}})).range().value(), 0.0, 0.1);
}

TEST(LoudnessMeter, FindsPeaksBetweenTheSamples) {
    // A quarter of the sample rate, starting at 45 degrees: all samples lie 3 dB below the tone's peak.
    for (const int rate : {44100, 48000, 96000}) {
        const LoudnessMeter meter = measured(sound({{1.0, -6.0, rate / 4.0, 45.0}}, 2, rate), 2, rate);
        EXPECT_NEAR(meter.samplePeak(), -9.01, 0.01) << rate;
        EXPECT_NEAR(meter.truePeak().value(), -6.0, 0.4) << rate;
    }
}

TEST(LoudnessMeter, NeverGivesATruePeakBelowTheSamplePeak) {
    std::vector<float> samples(2 * kRate);
    samples.back() = -0.5f;
    const LoudnessMeter meter = measured(samples);
    EXPECT_NEAR(meter.samplePeak(), -6.02, 0.01);
    EXPECT_GE(meter.truePeak().value(), meter.samplePeak());
    // Half steps of 192 kHz and more are too short for anything to hide in.
    const LoudnessMeter fast = measured(sound({{0.1, -6.0}}, 2, 384000), 2, 384000);
    EXPECT_NEAR(fast.truePeak().value(), -6.0, 0.01);
}

TEST(LoudnessMeter, GivesNoLoudnessForSilence) {
    const LoudnessMeter meter = measured(std::vector<float>(2 * 5 * kRate));
    EXPECT_FALSE(meter.integrated().has_value());
    EXPECT_FALSE(meter.range().has_value());
    EXPECT_EQ(meter.samplePeak(), -INFINITY);
    EXPECT_EQ(meter.truePeak().value(), -INFINITY);
}

TEST(LoudnessMeter, GivesOnlyPeaksForWhatIsShorterThanABlock) {
    const LoudnessMeter shortest = measured(sound({{0.399, -6.0}}));
    EXPECT_FALSE(shortest.integrated().has_value());
    EXPECT_FALSE(shortest.range().has_value());
    EXPECT_NEAR(shortest.truePeak().value(), -6.0, 0.1);
    EXPECT_NEAR(measured(sound({{0.4, -6.0}})).integrated().value(), -6.0, 0.3);
    EXPECT_FALSE(measured(sound({{2.9, -6.0}})).range().has_value());
    EXPECT_TRUE(measured(sound({{3.0, -6.0}})).range().has_value());
    EXPECT_FALSE(LoudnessMeter(1, kRate).integrated().has_value());
}

TEST(LoudnessMeter, GivesOnlyTheSamplePeakBelowItsLowestRate) {
    const LoudnessMeter meter = measured(sound({{5.0, -6.0, 100.0}}, 2, 7999), 2, 7999);
    EXPECT_FALSE(meter.integrated().has_value());
    EXPECT_FALSE(meter.range().has_value());
    EXPECT_FALSE(meter.truePeak().has_value());
    EXPECT_NEAR(meter.samplePeak(), -6.0, 0.01);
}

TEST(LoudnessMeter, LeavesTheTruePeakOutIfItIsNotAskedFor) {
    LoudnessMeter meter(2, kRate, LoudnessMeter::Extent::loudness);
    meter.add(sound({{3.0, -23.0}}));
    EXPECT_NEAR(meter.integrated().value(), -23.0, 0.1);
    EXPECT_NEAR(meter.samplePeak(), -23.0, 0.01);
    EXPECT_FALSE(meter.truePeak().has_value());
}

TEST(LoudnessMeter, MeasuresTheSameInPieces) {
    const auto samples = sound({{4.0, -30.0, 440.0}, {4.0, -12.0, 3000.0}});
    const LoudnessMeter whole = measured(samples);
    LoudnessMeter inPieces(2, kRate);
    std::size_t frames = 1;
    for (std::span<const float> rest = samples; !rest.empty(); frames = frames * 7 % 1009 + 1) {
        const auto piece = rest.first(std::min(2 * frames, rest.size()));
        inPieces.add(piece);
        rest = rest.subspan(piece.size());
    }
    EXPECT_EQ(inPieces.integrated(), whole.integrated());
    EXPECT_EQ(inPieces.range(), whole.range());
    EXPECT_EQ(inPieces.truePeak(), whole.truePeak());
    EXPECT_EQ(inPieces.samplePeak(), whole.samplePeak());
}

TEST(LoudnessMeter, MeasuresSeveralSoundsAtOnce) {
    const auto samples = sound({{3.0, -23.0}});
    std::vector<double> levels(40);
    const auto measureFrom = [&](std::size_t first) {
        for (std::size_t i = first; i < levels.size(); i += 2)
            levels[i] = measured(samples).integrated().value_or(0.0);
    };
    std::thread other(measureFrom, 1);
    measureFrom(0);
    other.join();
    for (const double level : levels)
        EXPECT_NEAR(level, -23.0, 0.1);
}

} // namespace
