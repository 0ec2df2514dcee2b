// The reference against numbers worked out by hand: what everything else is measured with is measured first.

#include "reference/reference_engine.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <numbers>
#include <vector>

namespace {

using namespace reference;

constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

std::uint32_t bitsOf(float value) {
    return std::bit_cast<std::uint32_t>(value);
}

/// Blocks of the same two samples, over and over; gives what came out last.
struct Pair {
    float left = 0;
    float right = 0;
};

Pair run(ReferenceEngine& engine, std::int32_t frames, float left, float right) {
    std::vector<float> inLeft(static_cast<std::size_t>(frames), left), inRight(inLeft.size(), right);
    std::vector<float> outLeft(inLeft.size()), outRight(inLeft.size());
    float* inputs[] = {inLeft.data(), inRight.data()};
    float* outputs[] = {outLeft.data(), outRight.data()};
    engine.processReplacing(inputs, outputs, frames);
    return frames > 0 ? Pair{outLeft.back(), outRight.back()} : Pair{};
}

/// Two seconds of base length, evenly spaced, at 44100 Hz.
std::unique_ptr<ReferenceEngine> evenPattern(float taps) {
    auto engine = ReferenceEngine::create();
    engine->setParameter(kBaseLength, 1.0f);
    engine->setParameter(kStretch, 0.5f);
    engine->setParameter(kAmpDecay, 0.5f);
    engine->setParameter(kTaps, taps);
    return engine;
}

// --- Conversion to integer ---

TEST(Truncation, GoesTowardZero) {
    EXPECT_EQ(truncate(2.9), 2);
    EXPECT_EQ(truncate(-2.9), -2);
    EXPECT_EQ(truncate(-0.9), 0);
}

TEST(Truncation, GivesTheLowestIntegerForWhatHasNone) {
    EXPECT_EQ(truncate(std::numeric_limits<double>::quiet_NaN()), INT32_MIN);
    EXPECT_EQ(truncate(std::numeric_limits<double>::infinity()), INT32_MIN);
    EXPECT_EQ(truncate(-std::numeric_limits<double>::infinity()), INT32_MIN);
    EXPECT_EQ(truncate(2147483648.0), INT32_MIN);
    EXPECT_EQ(truncate(-2147483649.0), INT32_MIN);
}

TEST(Truncation, KeepsTheOutermostIntegers) {
    EXPECT_EQ(truncate(2147483647.9), 2147483647);
    EXPECT_EQ(truncate(-2147483648.9), INT32_MIN);
}

// --- The tap pattern ---

TEST(TapPattern, HasOneTapAtTheBottomAndAllAtTheTop) {
    EXPECT_EQ(evenPattern(0.0f)->numTaps, 1);
    EXPECT_EQ(evenPattern(1.0f)->numTaps, 128);
}

TEST(TapPattern, HoldsBetweenOneAndAllTapsWhateverTheHostSets) {
    EXPECT_EQ(evenPattern(-3.0f)->numTaps, 1);
    EXPECT_EQ(evenPattern(9.0f)->numTaps, 128);
    EXPECT_EQ(evenPattern(kNotANumber)->numTaps, 1);
    EXPECT_EQ(evenPattern(kInfinity)->numTaps, 1);
}

TEST(TapPattern, IsEvenInTheMiddleOfStretch) {
    // 88201 samples of base length: half of it is 44100.5, and each tap loses its half sample.
    auto engine = evenPattern(0.5f);
    ASSERT_EQ(engine->numTaps, 64);
    for (int tap = 0; tap < 64; ++tap)
        EXPECT_EQ(engine->tapTimeTarget[tap], 44100.0f * static_cast<float>(tap + 1)) << "tap " << tap;
}

TEST(TapPattern, EndsAtTheCapacityOfTheMemory) {
    // Tap 94 would be at 4189500 and still fits; tap 95 would be at 4233600.
    auto engine = evenPattern(1.0f);
    EXPECT_EQ(engine->tapTimeTarget[94], 4189500.0f);
    EXPECT_EQ(engine->tapGain[94], 1.0f);
    for (int tap = 95; tap < 128; ++tap) {
        EXPECT_EQ(engine->tapTimeTarget[tap], 4194302.0f) << "tap " << tap;
        EXPECT_EQ(engine->tapGain[tap], 0.0f) << "tap " << tap;
    }
}

TEST(TapPattern, CollapsesToThreeSamplesWithNoLength) {
    auto engine = evenPattern(1.0f);
    engine->setParameter(kBaseLength, 0.0f);
    for (float time : engine->tapTimeTarget)
        EXPECT_EQ(time, 3.0f);
}

TEST(TapPattern, AcceleratesAtTheTopOfStretchAndSpreadsAtTheBottom) {
    auto engine = evenPattern(15.5f / 127.0f);
    ASSERT_EQ(engine->numTaps, 16);
    engine->setParameter(kStretch, 1.0f);
    EXPECT_EQ(engine->tapTimeTarget[0], 85835.0f);
    EXPECT_EQ(engine->tapTimeTarget[1], 170690.0f);
    EXPECT_EQ(engine->tapTimeTarget[15], 747335.0f);
    engine->setParameter(kStretch, 0.0f);
    EXPECT_EQ(engine->tapTimeTarget[0], 2365.0f);
    EXPECT_EQ(engine->tapTimeTarget[1], 5710.0f);
    EXPECT_EQ(engine->tapTimeTarget[15], 663865.0f);
}

TEST(TapPattern, KeepsOldTimesWithoutGainAboveAShrunkenCount) {
    auto engine = evenPattern(0.5f);
    engine->setParameter(kTaps, 0.0f);
    EXPECT_EQ(engine->numTaps, 1);
    EXPECT_EQ(engine->tapTimeTarget[63], 64.0f * 44100.0f);
    EXPECT_EQ(engine->tapGain[63], 0.0f);
}

TEST(TapPattern, HasFullGainEverywhereInTheMiddleOfAmpDecay) {
    auto engine = evenPattern(0.5f);
    for (int tap = 0; tap < 64; ++tap)
        EXPECT_EQ(engine->tapGain[tap], 1.0f);
}

TEST(TapPattern, FallsBelowTheMiddleOfAmpDecayAndSwellsAboveIt) {
    auto engine = evenPattern(0.5f);
    engine->setParameter(kCurve, 1.0f / 3.0f); // exponent 1
    engine->setParameter(kAmpDecay, 0.25f);
    EXPECT_EQ(engine->tapGain[0], 1.0f);
    EXPECT_NEAR(engine->tapGain[32], 0.75f, 1e-6f);
    EXPECT_NEAR(engine->tapGain[63], 1.0f - 0.5f * 63.0f / 64.0f, 1e-6f);
    engine->setParameter(kAmpDecay, 0.75f);
    EXPECT_NEAR(engine->tapGain[0], 0.5f, 1e-6f);
    EXPECT_NEAR(engine->tapGain[32], 0.75f, 1e-6f);
    EXPECT_NEAR(engine->tapGain[63], 1.0f - 0.5f / 64.0f, 1e-6f);
}

TEST(TapPattern, BendsTheRampByCurve) {
    auto engine = evenPattern(0.5f);
    engine->setParameter(kAmpDecay, 0.0f); // tap 32 of 64 stands at one half
    const struct {
        float curve, exponent;
    } rows[] = {{0.0f, 0.5f}, {0.5f, 1.25f}, {1.0f, 2.0f}};
    for (const auto& row : rows) {
        engine->setParameter(kCurve, row.curve);
        EXPECT_NEAR(engine->tapGain[32], std::pow(0.5f, row.exponent), 1e-6f) << "Curve " << row.curve;
    }
}

TEST(TapPattern, TakesAFullAmpDecayAsAlmostFull) {
    auto full = evenPattern(0.3f), almost = evenPattern(0.3f);
    full->setParameter(kAmpDecay, 1.0f);
    almost->setParameter(kAmpDecay, 0.99999f);
    EXPECT_EQ(bitsOf(full->getParameter(kAmpDecay)), bitsOf(0.99999f));
    EXPECT_EQ(std::memcmp(full->tapGain, almost->tapGain, sizeof full->tapGain), 0);
    EXPECT_GT(full->tapGain[0], 0.0f);
    EXPECT_LT(full->tapGain[0], 1e-5f);
}

TEST(TapPattern, LeavesTheSetAmpDecayInTheProgram) {
    auto engine = evenPattern(0.3f);
    engine->setParameter(kAmpDecay, 1.0f);
    EXPECT_EQ(engine->programs[0].values[kAmpDecay], 1.0f);
}

TEST(TapPattern, KeepsGainsBetweenSilenceAndOne) {
    auto engine = evenPattern(1.0f);
    engine->setParameter(kBaseLength, 0.3f);
    for (int decay = 0; decay <= 20; ++decay)
        for (int curve = 0; curve <= 20; ++curve) {
            engine->setParameter(kAmpDecay, static_cast<float>(decay) / 20.0f);
            engine->setParameter(kCurve, static_cast<float>(curve) / 20.0f);
            for (float gain : engine->tapGain) {
                ASSERT_GE(gain, 0.0f);
                ASSERT_LE(gain, 1.0f);
            }
        }
}

TEST(TapPattern, NeverHoldsAWildTimeWhateverTheHostSets) {
    auto engine = evenPattern(1.0f);
    for (std::int32_t id : {kBaseLength, kStretch, kTaps})
        for (float wild : {kNotANumber, kInfinity, -kInfinity, 1e30f, -1e30f, 1e9f, -1.0f, 2.0f}) {
            engine->setParameter(kBaseLength, 1.0f);
            engine->setParameter(kStretch, 0.5f);
            engine->setParameter(id, wild);
            for (float time : engine->tapTimeTarget) {
                ASSERT_GE(time, 3.0f) << "id " << id << " at " << wild;
                ASSERT_LE(time, 4194302.0f) << "id " << id << " at " << wild;
            }
        }
}

TEST(TapPattern, ChoosesTheReadFromSet) {
    const struct {
        float set;
        std::int32_t mode;
    } rows[] = {{0.0f, 2},   {0.001f, 1}, {0.25f, 1}, {0.5f, 1},
                {0.501f, 0}, {1.0f, 0},   {-0.5f, 3}, {1.5f, -1}};
    auto engine = ReferenceEngine::create();
    for (const auto& row : rows) {
        engine->setParameter(kSet, row.set);
        EXPECT_EQ(engine->delay.interpMode, row.mode) << "Set " << row.set;
    }
}

TEST(TapPattern, SweepsAtUpToFourteenHertzOnASquareLaw) {
    auto engine = ReferenceEngine::create();
    engine->setParameter(kLfoRate, 1.0f);
    EXPECT_EQ(engine->lfo.rate, 14.0f);
    engine->setParameter(kLfoRate, 0.5f);
    EXPECT_EQ(engine->lfo.rate, 3.5f);
}

TEST(TapPattern, KeepsItsLengthInSecondsAtOtherRates) {
    auto engine = evenPattern(0.0f);
    engine->setSampleRate(96000.0f);
    engine->setParameter(kFirstUnused, 0.0f);
    EXPECT_EQ(engine->tapTimeTarget[0], 96000.0f); // half of 192001, cut
}

// --- Smoothers, oscillator, filters ---

TEST(OnePoleSmoother, HasItsTwoWeightsToTheBit) {
    OnePole pole;
    EXPECT_EQ(bitsOf(pole.a), 0x3F7FF823u);
    EXPECT_EQ(bitsOf(pole.b), 0x38FBA000u);
    EXPECT_EQ(pole.a + pole.b, 1.0f);
    EXPECT_EQ(pole.z, 0.0f);
}

TEST(OnePoleSmoother, IsShutAtTheGateAndKeepsItsPlace) {
    OnePole pole;
    pole.z = 0.5f;
    EXPECT_EQ(pole.gatedProcess(1e-5f), 0.0f);
    EXPECT_EQ(pole.gatedProcess(-1.0f), 0.0f);
    EXPECT_EQ(pole.gatedProcess(kNotANumber), 0.0f);
    EXPECT_EQ(pole.z, 0.5f);
    EXPECT_GT(pole.gatedProcess(std::nextafter(1e-5f, 1.0f)), 0.4999f);
}

TEST(OnePoleSmoother, CoversTwoThirdsOfTheWayIn8334Samples) {
    OnePole pole;
    for (int i = 0; i < 8334; ++i)
        pole.gatedProcess(1.0f);
    EXPECT_NEAR(pole.z, 1.0 - 1.0 / std::numbers::e, 1e-3);
}

TEST(Sweep, IsWithinOneAndAnEighthOfASine) {
    ModuleFMop lfo;
    for (int i = -499; i < 500; ++i) {
        lfo.phase = static_cast<float>(i) / 1000.0f;
        double sine = 100.0 * std::sin(2.0 * std::numbers::pi * lfo.phase);
        EXPECT_NEAR(lfo.advance(), sine, 1.12) << "phase " << lfo.phase;
    }
}

TEST(Sweep, PeaksJustUnderAHundredAtAQuarterTurn) {
    ModuleFMop lfo;
    lfo.phase = 0.25f;
    EXPECT_NEAR(lfo.advance(), 99.9999f, 1e-4f);
    lfo.phase = -0.25f;
    EXPECT_NEAR(lfo.advance(), -99.9999f, 1e-4f);
}

TEST(Sweep, StaysWithinHalfATurn) {
    ModuleFMop lfo;
    lfo.rate = 14.0f;
    for (int i = 0; i < 100000; ++i) {
        lfo.advance();
        ASSERT_LE(std::fabs(lfo.phase), 0.5f);
    }
}

TEST(Sweep, StandsStillAtNoRate) {
    auto engine = ReferenceEngine::create();
    engine->setParameter(kLfoRate, 0.0f);
    run(*engine, 1000, 0.1f, 0.1f);
    EXPECT_EQ(engine->lfo.phase, 0.0f);
}

TEST(Sweep, MovesAllTapsLaterByAHundredSamplesOfDepthWhenItStands) {
    auto engine = ReferenceEngine::create();
    engine->setParameter(kLfoRate, 0.0f);
    engine->setParameter(kLfoDepth, 1.0f);
    engine->paramSmoother[4].z = 1.0f;
    run(*engine, 1, 0.0f, 0.0f);
    EXPECT_EQ(engine->delay.lfoOffset, -100.0f);
}

TEST(Sweep, HasNoOffsetAndANegativeZeroWithNoDepth) {
    auto engine = ReferenceEngine::create();
    engine->setParameter(kLfoDepth, 0.0f);
    run(*engine, 1, 0.0f, 0.0f);
    EXPECT_EQ(bitsOf(engine->delay.lfoOffset), bitsOf(-0.0f));
}

TEST(Oscillator, HasItsSampleTimeToTheBit) {
    EXPECT_EQ(bitsOf(ModuleFMop().sampleTime), 0x37BE37C6u);
}

TEST(DcRemoval, HasItsStepToTheBit) {
    Smoother smoother;
    smoother.setRate(44100.0f);
    EXPECT_EQ(bitsOf(smoother.radiansPerSample), 0x39156599u);
    EXPECT_EQ(smoother.decay, 1.0f);
}

TEST(DcRemoval, TakesAStandingLevelAway) {
    Smoother smoother;
    smoother.setRate(44100.0f);
    float out = smoother.process(1.0f);
    EXPECT_NEAR(out, 1.0f, 0.01f);
    for (int i = 0; i < 44100; ++i)
        out = smoother.process(1.0f);
    EXPECT_NEAR(out, 0.0f, 1e-4f);
}

TEST(InputFilters, AreBornWithTheDesignForFourHundredHertz) {
    Biquad designed, ready = startUpHighPass();
    designBiquad(designed, kHighPass, 400.0, 44100.0, 0.3);
    EXPECT_EQ(bitsOf(designed.b0), bitsOf(ready.b0));
    EXPECT_EQ(bitsOf(designed.b1), bitsOf(ready.b1));
    EXPECT_EQ(bitsOf(designed.b2), bitsOf(ready.b2));
    EXPECT_EQ(bitsOf(designed.a1), bitsOf(ready.a1));
    EXPECT_EQ(bitsOf(designed.a2), bitsOf(ready.a2));
}

TEST(InputFilters, PassAndStopWhatTheirNamesSay) {
    Biquad low, high;
    designBiquad(low, kLowPass, 1000.0, 44100.0, 1.0);
    designBiquad(high, kHighPass, 1000.0, 44100.0, 1.0);
    float lowOut = 0, highOut = 0;
    for (int i = 0; i < 5000; ++i) {
        lowOut = low.process(1.0f);
        highOut = high.process(1.0f);
    }
    EXPECT_NEAR(lowOut, 1.0f, 1e-4f);
    EXPECT_NEAR(highOut, 0.0f, 1e-4f);
}

TEST(InputFilters, AreDesignedByTheOccasion) {
    auto engine = ReferenceEngine::create();
    engine->setParameter(kPreLowPass, 0.5f);
    engine->setParameter(kPreHighPass, 0.5f);
    Biquad low, high;
    designBiquad(low, kLowPass, 5522.5, 44100.0, 1.0);
    designBiquad(high, kHighPass, 702.0, 44100.0, 1.0);
    EXPECT_EQ(engine->preLowPass.b0, low.b0);
    EXPECT_EQ(engine->preHighPass.b0, high.b0);
    engine->resume();
    designBiquad(low, kLowPass, 5000.0, 44100.0, 0.3);
    designBiquad(high, kHighPass, 810.0, 44100.0, 0.3);
    EXPECT_EQ(engine->preLowPass.b0, low.b0);
    EXPECT_EQ(engine->preHighPass.b0, high.b0);
    engine->setParameter(kPreLowPass, 0.5f); // touching one leaves the other where it is
    designBiquad(low, kLowPass, 5522.5, 44100.0, 1.0);
    EXPECT_EQ(engine->preLowPass.b0, low.b0);
    EXPECT_EQ(engine->preHighPass.b0, high.b0);
    engine->setProgram(0);
    designBiquad(high, kHighPass, 702.0, 44100.0, 1.0);
    EXPECT_EQ(engine->preHighPass.b0, high.b0);
}

// --- Reading the memory ---

struct Memory : testing::Test {
    std::unique_ptr<ModuleDelay> delay = std::make_unique<ModuleDelay>();

    float read(std::int32_t mode, float time) {
        delay->interpMode = mode;
        delay->readTaps(&time, 1);
        return delay->tapOut[0];
    }
};

TEST_F(Memory, GoesRoundAtItsEnd) {
    delay->writeIndex = 4194303;
    delay->write(1.0f);
    EXPECT_EQ(delay->writeIndex, 0);
    EXPECT_EQ(delay->samples[4194303], 1.0f);
}

TEST_F(Memory, GivesTheSampleOfADelayInEveryMode) {
    for (int i = 0; i < 100; ++i)
        delay->write(static_cast<float>(i));
    for (std::int32_t mode : {0, 1, 2})
        EXPECT_EQ(read(mode, 10.0f), 90.0f) << "mode " << mode;
}

TEST_F(Memory, IsReadBetweenSamplesByBothInterpolations) {
    for (int i = 0; i < 100; ++i)
        delay->write(static_cast<float>(i));
    EXPECT_EQ(read(0, 10.5f), 89.5f); // a straight line is met exactly by both
    EXPECT_EQ(read(1, 10.5f), 89.5f);
    EXPECT_EQ(read(2, 10.5f), 90.0f);
}

TEST_F(Memory, IsReadByACatmullRomCurve) {
    delay->samples[10] = 1.0f;
    delay->writeIndex = 20;
    EXPECT_FLOAT_EQ(read(0, 10.5f), 0.5625f); // half way toward the impulse: 9/16
    EXPECT_FLOAT_EQ(read(0, 11.5f), -0.0625f);
    EXPECT_FLOAT_EQ(read(0, 8.5f), -0.0625f);
}

TEST_F(Memory, MovesTheInterpolatedReadsByTheSweep) {
    for (int i = 0; i < 100; ++i)
        delay->write(static_cast<float>(i));
    delay->lfoOffset = -5.0f;
    EXPECT_EQ(read(0, 10.0f), 85.0f);
    EXPECT_EQ(read(1, 10.0f), 85.0f);
    EXPECT_EQ(read(2, 10.0f), 90.0f);
}

TEST_F(Memory, SkipsItsFirstSlotWhenTheLinearReadGoesRound) {
    delay->samples[4194303] = 5.0f;
    delay->samples[0] = 10.0f;
    delay->samples[1] = 20.0f;
    EXPECT_EQ(read(1, 0.5f), 12.5f); // between the last slot and slot 1
    EXPECT_EQ(read(1, 0.1f), 20.0f); // rounds to the end itself, and that is slot 1
}

TEST_F(Memory, GoesRoundExactlyInTheCubicRead) {
    delay->samples[4194302] = 1.0f;
    delay->samples[4194303] = 2.0f;
    delay->samples[0] = 3.0f;
    delay->samples[1] = 4.0f;
    EXPECT_EQ(read(0, 0.5f), 2.5f);
    EXPECT_EQ(read(0, 0.1f), 3.0f);
}

TEST_F(Memory, GivesALargeValueWhereTheLinearReadFallsOffTwice) {
    delay->writeIndex = 100;
    delay->lfoOffset = -200.0f;
    delay->samples[4194206] = 1.0f;
    delay->samples[4194207] = 2.0f;
    // 100 - 4194302 - 200 + 4194304 = -98, which is slot 4194206 with a fraction of -4194304.
    EXPECT_EQ(read(1, 4194302.0f), -4194303.0f);
    EXPECT_EQ(read(0, 4194302.0f), 1.0f);
}

TEST_F(Memory, IsEmptyAfterClearing) {
    for (int i = 0; i < 100; ++i)
        delay->write(1.0f);
    delay->lfoOffset = -5.0f;
    delay->tapOut[3] = 1.0f;
    delay->clearDelayMemory();
    EXPECT_EQ(delay->writeIndex, 0);
    EXPECT_EQ(delay->lfoOffset, 0.0f);
    EXPECT_EQ(delay->tapOut[3], 0.0f);
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(delay->samples[i], 0.0f);
}

TEST_F(Memory, IsNotLeftByWildTimes) {
    for (std::int32_t mode : {0, 1, 2, -1, 3})
        for (float time : {kNotANumber, kInfinity, -kInfinity, 1e30f, -1e30f, 0.0f}) {
            delay->lfoOffset = mode == 1 ? -kInfinity : -1e20f;
            read(mode, time); // an address sanitizer watches
        }
}

// --- Feedback ---

TEST(Feedback, IsAlmostNothingInTheMiddle) {
    EXPECT_NEAR(feedbackFactor(0.5f), -1.2e-8f, 1e-9f);
    EXPECT_NE(feedbackFactor(0.5f), 0.0f);
}

TEST(Feedback, ReachesFromMinusToPlusFortyFivePercent) {
    EXPECT_FLOAT_EQ(feedbackFactor(0.0f), -0.45f);
    EXPECT_NEAR(feedbackFactor(1.0f), 0.45f, 1e-7f);
}

TEST(Feedback, CountsASingleTapTwice) {
    auto engine = evenPattern(0.0f);
    engine->setParameter(kSet, 0.0f);
    engine->setParameter(kBaseLength, 0.0f);
    engine->delay.samples[0] = 0.25f; // what the three-sample tap meets first, at the third sample
    engine->delay.writeIndex = 2;
    run(*engine, 1, 0.0f, 0.0f);
    EXPECT_EQ(engine->fbSample, 0.5f - 1e-11f);
}

TEST(Feedback, HoldsWhileTheFirstTapIsSilent) {
    auto engine = evenPattern(0.5f);
    engine->fbSample = 0.75f;
    run(*engine, 100, 0.0f, 0.0f);
    EXPECT_EQ(engine->fbSample, 0.75f);
}

TEST(Feedback, DropsADenormalHold) {
    auto engine = evenPattern(0.5f);
    engine->fbSample = std::numeric_limits<float>::denorm_min();
    run(*engine, 1, 0.0f, 0.0f);
    EXPECT_EQ(engine->fbSample, 0.0f);
}

TEST(Feedback, FlushesItsLowPassByTheLowerHalfOfTheNumber) {
    auto engine = evenPattern(0.5f);
    engine->setParameter(kFeedback, 0.5f);
    engine->fbSample = 0.0f;
    engine->fbLowpass = 1.0;
    run(*engine, 1, 0.0f, 0.0f);
    EXPECT_EQ(engine->fbLowpass, 0.997); // has bits in the lower half
    // A live state whose lower half is empty falls to nothing.
    engine->fbLowpass = 0.5 / 0.997;
    double next = engine->fbLowpass * 0.997;
    ASSERT_EQ(next, 0.5);
    run(*engine, 1, 0.0f, 0.0f);
    EXPECT_EQ(engine->fbLowpass, 0.0);
}

// --- The loop ---

TEST(Loop, OverwritesTheInputGainAtEverySample) {
    auto engine = ReferenceEngine::create();
    EXPECT_EQ(engine->getParameter(kPreGain), 0.5f);
    engine->setParameter(kPreGain, 0.0f);
    run(*engine, 0, 0.0f, 0.0f);
    EXPECT_EQ(engine->getParameter(kPreGain), 0.0f);
    run(*engine, 1, 0.0f, 0.0f);
    EXPECT_EQ(engine->getParameter(kPreGain), 1.0f);
    EXPECT_EQ(engine->programs[0].values[kPreGain], 0.0f);
}

TEST(Loop, StopsGlidingAtOneHundredAndTwoTaps) {
    auto engine = evenPattern(100.5f / 127.0f);
    ASSERT_EQ(engine->numTaps, 101);
    engine->setParameter(kBaseLength, 0.1f);
    run(*engine, 1, 0.0f, 0.0f);
    EXPECT_LT(engine->tapTimeNow[0], engine->tapTimeTarget[0]);
    engine->setParameter(kTaps, 101.5f / 127.0f);
    ASSERT_EQ(engine->numTaps, 102);
    float kept = engine->tapSmoother[0].z;
    run(*engine, 1, 0.0f, 0.0f);
    EXPECT_EQ(engine->tapTimeNow[0], engine->tapTimeTarget[0]);
    EXPECT_EQ(engine->tapSmoother[0].z, kept);
}

TEST(Loop, PlaysTheDryInputAloneWhileTheMixIsShut) {
    auto engine = ReferenceEngine::create();
    engine->setParameter(kDryWet, 1e-5f);
    Pair out = run(*engine, 2000, 0.3f, -0.7f);
    EXPECT_EQ(out.left, 0.3f);
    EXPECT_EQ(out.right, -0.7f);
}

TEST(Loop, FadesForFourBlocksAfterAChangeWithoutGlide) {
    auto engine = evenPattern(0.1f);
    engine->setParameter(kSet, 0.0f);
    for (int block = 1; block <= 4; ++block) {
        run(*engine, 512, 0.0f, 0.0f);
        EXPECT_TRUE(engine->fadeArmed);
        EXPECT_EQ(engine->fadeBlockCount, block);
    }
    run(*engine, 512, 0.0f, 0.0f);
    EXPECT_FALSE(engine->fadeArmed);
    EXPECT_EQ(engine->fadeBlockCount, 4);
}

TEST(Loop, DoesNotFadeLongerForChangesDuringTheFade) {
    auto engine = evenPattern(0.1f);
    engine->setParameter(kSet, 0.0f);
    run(*engine, 512, 0.0f, 0.0f);
    run(*engine, 512, 0.0f, 0.0f);
    engine->setParameter(kTaps, 0.2f);
    EXPECT_EQ(engine->fadeBlockCount, 2);
}

TEST(Loop, DropsAnArmedFadeInTheGlidingModes) {
    auto engine = evenPattern(0.1f);
    ASSERT_TRUE(engine->fadeArmed);
    run(*engine, 0, 0.0f, 0.0f);
    EXPECT_FALSE(engine->fadeArmed);
}

TEST(Loop, ArmsTheFadeForLengthTapsAndStretchAlone) {
    for (std::int32_t id = -1; id < 23; ++id) {
        auto engine = ReferenceEngine::create();
        engine->setParameter(id, 0.4f);
        EXPECT_EQ(engine->fadeArmed, id == 0 || id == 1 || id == 3) << "id " << id;
    }
}

// --- The life of the engine ---

TEST(Life, BeginsOnTheDefaultProgram) {
    auto engine = ReferenceEngine::create();
    EXPECT_EQ(engine->getProgram(), 0);
    EXPECT_EQ(bitsOf(engine->getParameter(kBaseLength)), 0x3ECCCCCDu);
    EXPECT_EQ(bitsOf(engine->getParameter(kTaps)), 0x3E99999Au);
    EXPECT_EQ(bitsOf(engine->getParameter(kStretch)), 0x3DCCCCCDu);
    EXPECT_EQ(bitsOf(engine->getParameter(kPreLowPass)), 0x3F666666u);
    EXPECT_EQ(engine->numTaps, 39);
    EXPECT_EQ(engine->delay.interpMode, 1);
    EXPECT_FALSE(engine->fadeArmed);
}

TEST(Life, TakesAFactoryBankAndStandsOnItsFirstProgram) {
    auto other = ReferenceEngine::create();
    other->setParameter(kTaps, 1.0f);
    auto bank = other->getChunk(false);
    auto engine = ReferenceEngine::create(bank);
    EXPECT_EQ(engine->getProgram(), 0);
    EXPECT_EQ(engine->numTaps, 128);
}

TEST(Life, LosesTheTapTimesOnARateChangeUntilAnyParameterIsTouched) {
    for (std::int32_t id : {-1, 7, 17, 20, 99}) {
        auto engine = evenPattern(0.5f);
        engine->setSampleRate(48000.0f);
        for (float time : engine->tapTimeTarget)
            ASSERT_EQ(time, 0.0f);
        engine->setParameter(id, 0.3f);
        EXPECT_EQ(engine->tapTimeTarget[0], 48000.0f);
    }
}

TEST(Life, KeepsWhatSoundsThroughAResume) {
    auto engine = evenPattern(0.1f);
    engine->setParameter(kSet, 0.0f);
    run(*engine, 700, 0.5f, 0.5f);
    engine->fbSample = 0.25f;
    engine->fbLowpass = 0.125;
    Biquad before = engine->preLowPass;
    float phase = engine->lfo.phase;
    engine->resume();
    EXPECT_EQ(engine->preLowPass.y1, before.y1);
    EXPECT_EQ(engine->preLowPass.x2, before.x2);
    EXPECT_EQ(engine->fbSample, 0.25f);
    EXPECT_EQ(engine->fbLowpass, 0.125);
    EXPECT_EQ(engine->lfo.phase, phase);
    EXPECT_TRUE(engine->fadeArmed);
    EXPECT_EQ(engine->fadeBlockCount, 0);
    EXPECT_EQ(engine->delay.writeIndex, 0);
    EXPECT_EQ(engine->tapTimeTarget[0], 44100.0f);
}

TEST(Life, OnlyClearsTheMemoryForAProgramThatIsNotThere) {
    for (std::int32_t program : {128, 1000, -1}) {
        auto engine = evenPattern(0.5f);
        run(*engine, 100, 0.5f, 0.5f);
        engine->setProgram(program);
        EXPECT_EQ(engine->getProgram(), 0);
        EXPECT_EQ(engine->delay.writeIndex, 0);
        EXPECT_EQ(engine->getParameter(kBaseLength), 1.0f);
        EXPECT_EQ(engine->tapTimeTarget[0], 44100.0f);
        EXPECT_TRUE(engine->delay.samples[50] == 0.0f);
    }
}

TEST(Life, StoresNothingForUnusedParameters) {
    for (std::int32_t id = -1; id < 30; ++id) {
        if (id >= 0 && id < kLiveParameters)
            continue;
        auto engine = ReferenceEngine::create();
        auto before = engine->programs[0];
        engine->setParameter(id, 0.7f);
        EXPECT_EQ(engine->getParameter(id), 0.0f);
        EXPECT_EQ(std::memcmp(&before, engine->programs.data(), sizeof before), 0) << "id " << id;
    }
}

// --- Chunks ---

TEST(Chunks, HaveTheirTwoSizes) {
    auto engine = ReferenceEngine::create();
    EXPECT_EQ(engine->getChunk(true).size(), 112u);
    EXPECT_EQ(engine->getChunk(false).size(), 14336u);
}

TEST(Chunks, OfAShortPresetOverwriteTheFrontAlone) {
    auto engine = ReferenceEngine::create();
    const float front[2] = {0.75f, 0.5f};
    EXPECT_EQ(engine->setChunk(front, sizeof front, true), 1);
    EXPECT_EQ(engine->getParameter(kBaseLength), 0.75f);
    EXPECT_EQ(engine->getParameter(kTaps), 0.5f);
    EXPECT_EQ(engine->getParameter(kLfoRate), 0.5f);
    EXPECT_STREQ(engine->programs[0].name, "Fiber Cascade");
}

TEST(Chunks, OfTheWrongSizeClearTheMemoryAndChangeNothing) {
    const std::vector<std::uint8_t> bytes(20000, 0x3F);
    const struct {
        std::int32_t size;
        bool isPreset;
    } rows[] = {{113, true}, {-1, true}, {0, true}, {14335, false}, {14337, false}, {112, false}};
    for (const auto& row : rows) {
        auto engine = evenPattern(0.5f);
        auto before = engine->programs;
        run(*engine, 100, 0.5f, 0.5f);
        EXPECT_EQ(engine->setChunk(bytes.data(), row.size, row.isPreset), 1);
        EXPECT_EQ(std::memcmp(before.data(), engine->programs.data(), sizeof before), 0) << row.size;
        EXPECT_EQ(engine->delay.writeIndex, 0) << row.size;
    }
}

TEST(Chunks, OfABankKeepTheSelection) {
    auto other = ReferenceEngine::create();
    other->setProgram(5);
    other->setParameter(kTaps, 1.0f);
    auto engine = ReferenceEngine::create();
    engine->setProgram(5);
    engine->setChunk(other->getChunk(false).data(), 14336, false);
    EXPECT_EQ(engine->getProgram(), 5);
    EXPECT_EQ(engine->numTaps, 128);
}

} // namespace
