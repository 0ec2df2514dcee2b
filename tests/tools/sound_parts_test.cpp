// Where the output ends, how loud it is, its outline, and the kind of file that it goes to.

#include "tools/common/tool_error.h"
#include "tools/render/audio_file.h"
#include "tools/render/level_meter.h"
#include "tools/render/tail_watch.h"
#include "tools/render/waveform.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

using namespace tools;
using namespace tools::render;

constexpr float loud = 0.1f;
constexpr float quiet = 0.99e-4f;

std::vector<float> block(std::size_t frames, float level) {
    return std::vector<float>(frames, level);
}

TEST(TailWatch, EndsAFixedTailOnItsLastFrame) {
    TailWatch watch({false, 0.5}, 1000);
    EXPECT_EQ(watch.look(block(100, loud), 1), 100);
    watch.inputEndedAt(150);
    EXPECT_EQ(watch.look(block(600, quiet), 1), 550);
    EXPECT_TRUE(watch.hasEnded());
    EXPECT_EQ(watch.certainFrames(), 650);
}

TEST(TailWatch, EndsWithTheInputIfThereIsToBeNoTail) {
    TailWatch watch({false, 0.0}, 1000);
    watch.look(block(100, quiet), 1);
    watch.inputEndedAt(100);
    EXPECT_TRUE(watch.hasEnded());
    EXPECT_EQ(watch.certainFrames(), 100);
}

TEST(TailWatch, KeepsTheWholeInputHoweverQuietItIs) {
    TailWatch watch({true, 0.0}, 44100);
    watch.look(block(1000, quiet), 1);
    watch.inputEndedAt(1000);
    while (!watch.hasEnded())
        watch.look(block(65536, quiet), 1);
    EXPECT_EQ(watch.certainFrames(), 1000);
}

TEST(TailWatch, EndsWithTheLastFrameThatWasNotQuiet) {
    TailWatch watch({true, 0.0}, 44100);
    watch.inputEndedAt(0);
    auto first = block(100, quiet);
    first[41] = -loud;
    watch.look(first, 1);
    while (!watch.hasEnded())
        watch.look(block(5000, quiet), 1);
    EXPECT_EQ(watch.certainFrames(), 42);
    EXPECT_FALSE(watch.wasCutShort());
}

TEST(TailWatch, HearsEitherChannel) {
    TailWatch watch({true, 0.0}, 44100);
    watch.inputEndedAt(0);
    auto first = block(200, quiet);
    first[2 * 30 + 1] = loud;
    EXPECT_EQ(watch.look(first, 2), 100);
    EXPECT_EQ(watch.certainFrames(), 31);
}

TEST(TailWatch, WaitsAsLongAsTheMemoryRemembers) {
    TailWatch watch({true, 0.0}, 192000);
    watch.inputEndedAt(1);
    auto sound = block(1, loud);
    watch.look(sound, 1);
    EXPECT_EQ(watch.look(block(kQuietFrames - 1, quiet), 1), kQuietFrames - 1);
    EXPECT_FALSE(watch.hasEnded());
    watch.look(sound, 1);
    EXPECT_EQ(watch.certainFrames(), kQuietFrames + 1);
    EXPECT_EQ(watch.look(block(kQuietFrames + 10, quiet), 1), kQuietFrames);
    EXPECT_TRUE(watch.hasEnded());
}

TEST(TailWatch, StopsAtTheLongestTailAndSaysSoIfItStillSounds) {
    TailWatch watch({true, 0.0}, 100);
    watch.inputEndedAt(50);
    while (!watch.hasEnded())
        watch.look(block(777, loud), 1);
    EXPECT_EQ(watch.certainFrames(), 50 + 12000);
    EXPECT_TRUE(watch.wasCutShort());
}

TEST(TailWatch, IsTheSameHoweverTheSoundIsCutIntoBlocks) {
    std::vector<float> sound(30000, quiet);
    for (std::size_t i : {3u, 511u, 512u, 20000u})
        sound[i] = loud;
    for (std::size_t size : {1u, 7u, 512u, 30000u}) {
        TailWatch watch({true, 0.0}, 200);
        watch.inputEndedAt(10);
        for (std::size_t at = 0; at < sound.size() && !watch.hasEnded(); at += size)
            watch.look(std::span(sound).subspan(at, std::min(size, sound.size() - at)), 1);
        EXPECT_EQ(watch.certainFrames(), 20001) << size;
    }
}

TEST(LevelMeter, FindsThePeakAndCountsWhatIsOverFullScale) {
    LevelMeter meter;
    meter.add(std::vector<float>{0.5f, -1.25f, 1.0f, -1.0f});
    meter.add(std::vector<float>{1.0001f});
    EXPECT_EQ(meter.peak(), 1.25f);
    EXPECT_EQ(meter.samplesOver(), 2);
}

TEST(Decibels, AreTwentyForEachPowerOfTen) {
    EXPECT_DOUBLE_EQ(decibels(1.0), 0.0);
    EXPECT_DOUBLE_EQ(decibels(0.01), -40.0);
    EXPECT_EQ(decibels(0.0), -std::numeric_limits<double>::infinity());
}

TEST(Waveform, KeepsTheExtremesOfBothChannelsHoweverLongTheSoundIs) {
    Waveform wave;
    std::vector<float> samples(2 * 300000, 0.0f);
    samples[2 * 100000] = 0.5f;
    samples[2 * 250000 + 1] = -0.75f;
    wave.add(samples, 2);
    EXPECT_EQ(wave.frames(), 300000);
    EXPECT_EQ(wave.peak(), 0.75f);
    const Extremes first = wave.between(99990.0, 100010.0);
    EXPECT_EQ(first.highest[0], 0.5f);
    EXPECT_EQ(first.lowest[1], 0.0f);
    const Extremes second = wave.between(249990.0, 250010.0);
    EXPECT_EQ(second.lowest[1], -0.75f);
    EXPECT_EQ(second.highest[0], 0.0f);
    EXPECT_EQ(wave.between(150000.0, 160000.0).highest[0], 0.0f);
}

TEST(Waveform, IsNothingBeyondItsEnds) {
    Waveform wave;
    wave.add(std::vector<float>{0.5f, 0.5f}, 1);
    EXPECT_EQ(wave.between(2.0, 10.0).highest[0], 0.0f);
    EXPECT_EQ(wave.between(-5.0, 0.0).highest[0], 0.0f);
    EXPECT_EQ(wave.between(0.0, 2.0).lowest[0], 0.5f);
}

TEST(Waveform, KnowsWhereALevelIsReachedLast) {
    Waveform wave;
    std::vector<float> samples(1000, 0.01f);
    samples[700] = -0.5f;
    wave.add(samples, 1);
    EXPECT_EQ(wave.lastReaching(0.4f), 701);
    EXPECT_EQ(wave.lastReaching(0.01f), 1000);
    EXPECT_EQ(wave.lastReaching(0.6f), 0);
}

TEST(OutputKind, IsALargeKindOfWavFileOnlyForWhatDoesNotFitIntoAPlainOne) {
    const auto major = [](std::int64_t frames, SampleFormat format) {
        return outputKind("a.wav", format, 48000, 2, frames).format & SF_FORMAT_TYPEMASK;
    };
    constexpr std::int64_t mostFrames24 = ((std::int64_t{1} << 32) - 65536) / 6;
    EXPECT_EQ(major(mostFrames24, SampleFormat::automatic), SF_FORMAT_WAV);
    EXPECT_EQ(major(mostFrames24 + 1, SampleFormat::automatic), SF_FORMAT_RF64);
    EXPECT_EQ(major(mostFrames24, SampleFormat::float32), SF_FORMAT_RF64);
    EXPECT_THROW(outputKind("a.aiff", SampleFormat::pcm24, 48000, 2, mostFrames24 + 1), ToolError);
    EXPECT_EQ(outputKind("a.w64", SampleFormat::pcm24, 48000, 2, mostFrames24 + 1).name, "Wave64, 24 bit");
}

} // namespace
