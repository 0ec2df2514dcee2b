// The engine's corners as they can be heard: impulses, steps and silence through the built library, and
// nothing but its outputs to judge by.

#include "library_under_test.h"
#include "reference/reference_engine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <vector>

namespace {

using namespace reference; // for the parameters' ids alone

constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float kOneTap = 0.0f;
constexpr float kAllTaps = 1.0f;
constexpr std::int32_t kSettled = 200000; ///< samples after which every glide has come to rest

float valueOfTaps(std::int32_t taps) {
    return taps == 128 ? 1.0f : (static_cast<float>(taps) - 0.5f) / 127.0f;
}

/// The "Bs Lgh 1" whose base length is `samples` at 44100 Hz.
float valueOfLength(double samples) {
    return static_cast<float>(std::sqrt((samples - 0.5) / 88200.0));
}

struct Stereo {
    std::vector<float> left;
    std::vector<float> right;
};

std::vector<float> silence(std::int32_t frames) {
    return std::vector<float>(static_cast<std::size_t>(frames));
}

std::vector<float> impulse(std::int32_t frames) {
    std::vector<float> signal = silence(frames);
    signal[0] = 1.0f;
    return signal;
}

std::vector<float> tone(std::int32_t frames, double hertz) {
    std::vector<float> signal = silence(frames);
    for (std::size_t i = 0; i < signal.size(); ++i)
        signal[i] = static_cast<float>(
            0.5 * std::sin(2.0 * std::numbers::pi * hertz * static_cast<double>(i) / 44100.0));
    return signal;
}

float loudest(const std::vector<float>& signal, std::int64_t first, std::int64_t end) {
    float peak = 0;
    for (std::int64_t i = first; i < end; ++i)
        peak = std::max(peak, std::fabs(signal[static_cast<std::size_t>(i)]));
    return peak;
}

float loudest(const std::vector<float>& signal) {
    return loudest(signal, 0, std::ssize(signal));
}

/// The first sample from `from` on that can be heard, or -1.
std::int64_t onset(const std::vector<float>& signal, std::int64_t from = 0, float threshold = 0.1f) {
    for (std::int64_t i = from; i < std::ssize(signal); ++i)
        if (std::fabs(signal[static_cast<std::size_t>(i)]) > threshold)
            return i;
    return -1;
}

bool sameBits(const std::vector<float>& a, const std::vector<float>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0;
}

bool allZero(const std::vector<float>& signal) {
    return std::all_of(signal.begin(), signal.end(), [](float sample) { return sample == 0.0f; });
}

/// An instance at 44100 Hz, set to one plain echo: the left input alone, one tap of full gain at 2756
/// samples, read at whole samples, no sweep, no feedback worth the name, the wet signal alone, even taps left
/// and odd taps right.
class Take {
  public:
    static constexpr std::int32_t kTapTime = 2756; ///< half a base length of 5513, cut

    Take() : plugin(libraryUnderTest(), quietHost()) {
        plugin.start(44100.0f, 512);
        set(kSet, 0.0f);
        set(kBaseLength, 0.25f);
        set(kTaps, kOneTap);
        set(kStretch, 0.5f);
        set(kAmpDecay, 0.5f);
        set(kFeedback, 0.5f);
        set(kLfoRate, 0.0f);
        set(kLfoDepth, 0.0f);
        set(kPreLowPass, 0.9f);
        set(kPreHighPass, 0.0f);
        set(kPrePan, 0.0f);
        set(kStereo, 0.0f);
        set(kDryWet, 1.0f);
        set(kOutPan, 0.5f);
    }

    void set(std::int32_t id, float value) { plugin.setParameter(id, value); }

    Stereo play(const std::vector<float>& left, const std::vector<float>& right, std::int32_t block = 512) {
        Stereo out{left, right};
        plugin.processStereo(left.data(), right.data(), out.left.data(), out.right.data(), std::ssize(left),
                             block);
        return out;
    }

    /// The same into both channels.
    Stereo play(const std::vector<float>& both, std::int32_t block = 512) { return play(both, both, block); }

    /// Silence until all glides and fades are over.
    void settle() { play(silence(kSettled)); }

    void sendMidi(unsigned char status, unsigned char data, unsigned char value = 0) {
        const host::MidiMessage message[] = {{0, {status, data, value}}};
        plugin.sendMidi(message);
    }

    host::Plugin plugin;
};

// --- Silence and the dry way ---

TEST(Silence, ComesOutExactlyUntilTheFirstEchoIsDue) {
    Take take;
    take.plugin.resume();
    const Stereo out = take.play(silence(3 * Take::kTapTime));
    for (std::int32_t i = 0; i < Take::kTapTime - 1; ++i) {
        ASSERT_EQ(out.left[static_cast<std::size_t>(i)], 0.0f) << "sample " << i;
        ASSERT_EQ(out.right[static_cast<std::size_t>(i)], 0.0f) << "sample " << i;
    }
    EXPECT_LT(loudest(out.left), 1e-9f); // what keeps denormals away cannot be heard
}

TEST(DryWet, ShutsTheWetSignalOffAtOnce) {
    for (float shut : {0.0f, 1e-6f, 1e-5f, -1.0f}) {
        Take take;
        take.settle();
        take.play(tone(20000, 1000.0));
        take.set(kDryWet, shut);
        const std::vector<float> left = tone(3000, 700.0), right = tone(3000, 300.0);
        const Stereo out = take.play(left, right);
        EXPECT_TRUE(sameBits(out.left, left)) << "Dry Wet " << shut;
        EXPECT_TRUE(sameBits(out.right, right)) << "Dry Wet " << shut;
    }
}

TEST(DryWet, OpensJustAboveTheGateFromWhereItStood) {
    Take take;
    take.settle();
    take.set(kDryWet, 0.0f);
    take.play(silence(100));
    take.set(kDryWet, 0.5f);
    const Stereo out = take.play(impulse(Take::kTapTime + 10));
    EXPECT_LT(std::fabs(out.left[0]), 0.01f); // the glide starts from the full mix, not from none
    EXPECT_EQ(onset(out.left), Take::kTapTime - 1);
}

TEST(DrySignal, IsTouchedByNothingButTheMix) {
    Take take;
    take.set(kDryWet, 0.0f);
    take.settle();
    for (std::int32_t id :
         {kPrePan, kPreLowPass, kPreHighPass, kPreGain, kOutPan, kOutGain, kStereo, kFeedback})
        for (float value : {0.0f, 1.0f}) {
            take.set(id, value);
            const std::vector<float> input = tone(1000, 440.0);
            const Stereo out = take.play(input);
            EXPECT_TRUE(sameBits(out.left, input)) << "id " << id;
            EXPECT_TRUE(sameBits(out.right, input)) << "id " << id;
        }
}

TEST(Gains, DoNothingToTheSound) {
    for (std::int32_t id : {kPreGain, kOutGain}) {
        Take plain, changed;
        changed.set(id, 0.0f);
        const std::vector<float> input = tone(8000, 440.0);
        EXPECT_TRUE(sameBits(plain.play(input).left, changed.play(input).left)) << "id " << id;
    }
}

TEST(PreGain, OfNothingIsOverwrittenAndNoSilenceFollows) {
    Take take;
    take.settle();
    take.set(kPreGain, 0.0f);
    EXPECT_EQ(take.plugin.getParameter(kPreGain), 0.0f);
    const Stereo out = take.play(impulse(Take::kTapTime + 100));
    EXPECT_EQ(take.plugin.getParameter(kPreGain), 1.0f);
    EXPECT_EQ(onset(out.left), Take::kTapTime - 1);
}

// --- Where the echoes fall ---

TEST(Echoes, FallAtTheTimesOfTheirTapsEvenOnesLeftOddOnesRight) {
    Take take;
    take.set(kTaps, valueOfTaps(4));
    take.settle();
    const Stereo out = take.play(impulse(5 * Take::kTapTime));
    EXPECT_EQ(onset(out.left), Take::kTapTime - 1);
    EXPECT_EQ(onset(out.left, Take::kTapTime + 300), 3 * Take::kTapTime - 1);
    EXPECT_EQ(onset(out.left, 3 * Take::kTapTime + 300), -1);
    EXPECT_EQ(onset(out.right), 2 * Take::kTapTime - 1);
    EXPECT_EQ(onset(out.right, 2 * Take::kTapTime + 300), 4 * Take::kTapTime - 1);
}

TEST(Echoes, FallAtTheSameTimesInTheGlidingModesOnceTheyHaveSettled) {
    for (float set : {0.5f, 1.0f}) {
        Take take;
        take.set(kSet, set);
        take.settle();
        const Stereo out = take.play(impulse(2 * Take::kTapTime));
        EXPECT_NEAR(static_cast<double>(onset(out.left)), Take::kTapTime - 1, 2.0) << "Set " << set;
    }
}

TEST(Echoes, ChangeSidesWithStereo) {
    Take take;
    take.set(kTaps, valueOfTaps(2));
    take.set(kStereo, 1.0f);
    take.settle();
    const Stereo out = take.play(impulse(3 * Take::kTapTime));
    EXPECT_EQ(onset(out.right), Take::kTapTime - 1);
    EXPECT_EQ(onset(out.left), 2 * Take::kTapTime - 1);
}

TEST(Echoes, AreTheSameOnBothSidesInTheMiddleOfStereo) {
    Take take;
    take.set(kTaps, valueOfTaps(2));
    take.set(kStereo, 0.5f);
    take.settle();
    const Stereo out = take.play(impulse(3 * Take::kTapTime));
    EXPECT_EQ(onset(out.left), Take::kTapTime - 1);
    for (std::size_t i = 0; i < out.left.size(); ++i)
        ASSERT_NEAR(out.left[i], out.right[i], 1e-3f); // the pan rests a hair short of the middle
}

TEST(Echoes, OfOneTapLeaveTheRightSideSilent) {
    Take take;
    take.settle();
    const Stereo out = take.play(impulse(3 * Take::kTapTime), silence(3 * Take::kTapTime));
    EXPECT_EQ(onset(out.left), Take::kTapTime - 1);
    EXPECT_TRUE(allZero(out.right));
}

TEST(Echoes, OfAllTapsAreAHundredAndTwentyEight) {
    Take take;
    take.set(kTaps, kAllTaps);
    take.set(kBaseLength, valueOfLength(201.0));
    take.settle();
    const Stereo out = take.play(impulse(14000));
    for (std::int32_t tap = 0; tap < 128; ++tap) {
        const auto& channel = tap % 2 ? out.right : out.left;
        const auto at = static_cast<std::size_t>(100 * (tap + 1) - 1);
        EXPECT_GT(std::fabs(channel[at]), 0.3f) << "tap " << tap;
        EXPECT_LT(std::fabs(channel[at - 1]), 0.1f) << "before tap " << tap;
    }
    EXPECT_LT(loudest(out.left, 12900 + 100, 14000), 0.1f);
    EXPECT_LT(loudest(out.right, 12900 + 100, 14000), 0.1f);
}

TEST(Echoes, CoincideAtThreeSamplesWithNoLength) {
    Take take;
    take.set(kTaps, kAllTaps);
    take.set(kBaseLength, 0.0f);
    take.settle();
    const Stereo out = take.play(impulse(3000));
    EXPECT_EQ(onset(out.left), 2);
    EXPECT_EQ(onset(out.right), 2);
    EXPECT_GT(std::fabs(out.left[2]), 30.0f); // 64 taps at once
}

TEST(Echoes, OfTapsThatWereTakenAwayAreNotHeard) {
    Take take;
    take.set(kTaps, valueOfTaps(9));
    take.settle();
    take.set(kTaps, valueOfTaps(2));
    take.settle();
    const Stereo out = take.play(impulse(11 * Take::kTapTime));
    EXPECT_EQ(onset(out.left), Take::kTapTime - 1);
    EXPECT_EQ(onset(out.left, Take::kTapTime + 300), -1);
    EXPECT_EQ(onset(out.right, 2 * Take::kTapTime + 300), -1);
}

TEST(Echoes, KeepTheirLevelInTheMiddleOfAmpDecay) {
    Take take;
    take.set(kTaps, valueOfTaps(16));
    take.settle();
    const Stereo out = take.play(impulse(17 * Take::kTapTime));
    const float first = out.left[Take::kTapTime - 1];
    for (std::size_t tap = 2; tap < 16; tap += 2)
        EXPECT_NEAR(out.left[(tap + 1) * Take::kTapTime - 1], first, 0.001f) << "tap " << tap;
}

TEST(Echoes, FallBelowTheMiddleOfAmpDecayAndSwellAboveIt) {
    for (float decay : {0.1f, 0.9f}) {
        Take take;
        take.set(kTaps, valueOfTaps(16));
        take.set(kAmpDecay, decay);
        take.settle();
        const Stereo out = take.play(impulse(17 * Take::kTapTime));
        for (std::size_t tap = 2; tap < 16; tap += 2) {
            const float before = std::fabs(out.left[(tap - 1) * Take::kTapTime - 1]);
            const float now = std::fabs(out.left[(tap + 1) * Take::kTapTime - 1]);
            EXPECT_EQ(now > before, decay > 0.5f) << "tap " << tap << ", Amp Decay " << decay;
        }
    }
}

TEST(Echoes, OfAFullAmpDecayStartAlmostButNotQuiteSilent) {
    Take take;
    take.set(kTaps, valueOfTaps(16));
    take.set(kAmpDecay, 1.0f);
    take.settle();
    const Stereo out = take.play(impulse(2 * Take::kTapTime));
    const float first = loudest(out.left, Take::kTapTime - 1, Take::kTapTime + 50);
    EXPECT_GT(first, 1e-7f);
    EXPECT_LT(first, 1e-4f);
}

TEST(AmpDecay, AtTheTopSoundsLikeJustBelowAndReadsBackThatWay) {
    Take top, below;
    for (Take* take : {&top, &below}) {
        take->set(kTaps, valueOfTaps(16));
        take->set(kAmpDecay, take == &top ? 1.0f : 0.99999f);
    }
    const std::vector<float> input = tone(50000, 440.0);
    EXPECT_TRUE(sameBits(top.play(input).left, below.play(input).left));
    EXPECT_EQ(top.plugin.getParameter(kAmpDecay), 0.99999f);
}

TEST(AmpDecay, StaysInTheProgramAsItWasSet) {
    Take take;
    take.set(kAmpDecay, 1.0f);
    take.play(impulse(100));
    const std::vector<std::uint8_t> chunk = take.plugin.getChunk(true);
    float stored;
    std::memcpy(&stored, chunk.data() + kAmpDecay * sizeof stored, sizeof stored);
    EXPECT_EQ(stored, 1.0f);
}

TEST(AmpDecay, ThatIsNotANumberPassesWithoutHarm) {
    Take take;
    take.set(kAmpDecay, kNotANumber);
    const float kept = take.plugin.getParameter(kAmpDecay);
    EXPECT_TRUE(std::isnan(kept) || kept == 0.99999f) << kept;
    take.play(silence(1000));
}

// --- The end of the memory ---

TEST(MemoryLimit, SilencesTheTapsThatDoNotFitAndStillCountsThem) {
    Take take;
    take.set(kTaps, kAllTaps);
    take.set(kBaseLength, 1.0f); // gaps of 44100 samples: tap 94 fits at 4189500, tap 95 does not
    take.settle();
    const std::vector<float> start = take.play(impulse(50000)).left;
    EXPECT_EQ(onset(start), 44100 - 1);
    take.set(kTaps, kOneTap); // the long way with one tap, which costs less
    take.play(silence(4170000 - 50000), 4096);
    take.set(kTaps, kAllTaps);
    const Stereo end = take.play(silence(80000));
    EXPECT_EQ(onset(end.left), 95 * 44100 - 1 - 4170000);
    EXPECT_EQ(onset(end.left, 95 * 44100 - 4170000 + 300, 0.01f), -1);
    EXPECT_EQ(onset(end.right, 0, 0.01f), -1);

    Take alone; // one tap of gain 1 is played at factor 1
    alone.settle();
    const float one = alone.play(impulse(Take::kTapTime)).left[Take::kTapTime - 1];
    EXPECT_NEAR(start[44100 - 1] / one, 2.0 - 95.0 / 128.0, 1e-3);
}

/// Loudest of what is heard just before and just after the write position has gone round, with a tone in the
/// last stretch of the memory, the last tap at 4194288 samples and the sweep holding all taps 100 samples
/// later.
struct AroundTheWrap {
    float before = 0;
    float after = 0;
};

AroundTheWrap loudestAroundTheWrap(float set) {
    constexpr std::int32_t taps = 126; // as many jump to their times, and do not glide
    Take take;
    take.set(kLfoDepth, 1.0f);
    take.set(kBaseLength, valueOfLength(2.0 * 4194288.0 / taps + 1.0));
    take.play(silence(4194304 - 4000), 4096); // the long way with one tap, which costs less
    take.set(kSet, set);
    take.set(kTaps, valueOfTaps(taps));
    take.play(silence(2500));
    const Stereo before = take.play(tone(1500, 3000.0), 64), after = take.play(silence(200), 64);
    // The very last sample of the tone is written with the wrap.
    return {std::max(loudest(before.left, 0, 1499), loudest(before.right, 0, 1499)),
            std::max(loudest(after.left), loudest(after.right))};
}

TEST(MemoryLimit, LetsTheLinearReadBurstWhereItFallsOffTwice) {
    const AroundTheWrap linear = loudestAroundTheWrap(0.5f);
    EXPECT_LT(linear.before, 2.0f);
    EXPECT_GT(linear.after, 1000.0f);
}

TEST(MemoryLimit, LeavesTheCubicAndTheWholeReadCalm) {
    for (float set : {0.0f, 1.0f}) {
        const AroundTheWrap calm = loudestAroundTheWrap(set);
        EXPECT_LT(calm.before, 2.0f) << "Set " << set;
        EXPECT_LT(calm.after, 2.0f) << "Set " << set;
    }
}

// --- Feedback ---

/// Level of the repeat over that of the echo before it, for one tap.
float repeatOverEcho(float feedback, std::int32_t repeat) {
    Take take;
    take.set(kFeedback, feedback);
    take.settle();
    const Stereo out = take.play(impulse(5 * Take::kTapTime));
    // A tap time of t sounds t - 1 samples after its input, and what it feeds back goes in with the next
    // sample.
    const auto first = static_cast<std::size_t>(repeat * Take::kTapTime - 1);
    return out.left[first + Take::kTapTime] / out.left[first];
}

TEST(Feedback, InTheMiddleRepeatsNothingAudible) {
    EXPECT_LT(std::fabs(repeatOverEcho(0.5f, 1)), 1e-6f);
}

TEST(Feedback, BelowTheMiddleInvertsEachRepeat) {
    EXPECT_NEAR(repeatOverEcho(0.0f, 1), -0.9f, 0.02f);
    EXPECT_NEAR(repeatOverEcho(0.0f, 2), -0.9f, 0.02f);
}

TEST(Feedback, AboveTheMiddleKeepsTheSign) {
    EXPECT_NEAR(repeatOverEcho(1.0f, 1), 0.9f, 0.02f);
    EXPECT_NEAR(repeatOverEcho(1.0f, 2), 0.9f, 0.02f);
}

// --- The sweep ---

TEST(Sweep, ThatStandsStillMovesTheEchoByAHundredSamples) {
    for (float set : {0.5f, 1.0f}) {
        Take take;
        take.set(kSet, set);
        take.set(kLfoDepth, 1.0f);
        take.settle();
        const Stereo out = take.play(impulse(2 * Take::kTapTime));
        EXPECT_NEAR(static_cast<double>(onset(out.left)), Take::kTapTime - 1 + 100, 3.0) << "Set " << set;
    }
}

TEST(Sweep, OfNoDepthLetsTheEchoGoAtOnce) {
    Take take;
    take.set(kSet, 0.5f);
    take.set(kLfoDepth, 1.0f);
    take.settle();
    take.set(kLfoDepth, 0.0f);
    const Stereo out = take.play(impulse(2 * Take::kTapTime));
    EXPECT_NEAR(static_cast<double>(onset(out.left)), Take::kTapTime - 1, 2.0);
}

TEST(Sweep, RunsUnheardWithWholeSamples) {
    Take still, swept;
    swept.set(kLfoDepth, 1.0f);
    swept.set(kLfoRate, 1.0f);
    const std::vector<float> input = tone(20000, 440.0);
    EXPECT_TRUE(sameBits(still.play(input).left, swept.play(input).left));
}

TEST(ShortestTap, StaysBehindTheWritePositionInEveryMode) {
    for (float set : {0.0f, 0.5f, 1.0f}) {
        Take take;
        take.set(kSet, set);
        take.set(kBaseLength, 0.0f);
        take.settle();
        const Stereo out = take.play(impulse(2000));
        EXPECT_EQ(onset(out.left), 2) << "Set " << set;
    }
}

TEST(Glide, FromAFreshInstanceReadsNothingWild) {
    for (float set : {0.5f, 1.0f}) {
        Take take;
        take.set(kSet, set);
        const Stereo out = take.play(tone(44100, 440.0));
        EXPECT_LT(loudest(out.left), 2.0f) << "Set " << set;
        EXPECT_TRUE(std::isfinite(loudest(out.left))) << "Set " << set;
    }
}

TEST(Glide, EndsAtOneHundredAndTwoTaps) {
    for (std::int32_t taps : {101, 102}) {
        Take take;
        take.set(kSet, 0.5f);
        take.set(kTaps, valueOfTaps(taps));
        take.play(silence(600)); // the mix has opened a little way
        const Stereo out = take.play(impulse(Take::kTapTime + 100));
        const std::int64_t heard = onset(out.left, 1, 0.001f);
        if (taps == 102) {
            EXPECT_EQ(heard, Take::kTapTime - 1);
        } else {
            EXPECT_LT(heard, Take::kTapTime - 1); // the taps are still on their way out
        }
    }
}

// --- Fades ---

constexpr double kHighTone = 5000.0; ///< far above what the DC removal touches

/// Two takes in the middle of the same tone; `change` is then done to the second one. Gives what both play
/// next.
template <typename Change>
std::pair<Stereo, Stereo> beside(Change change, std::int32_t frames, std::int32_t block) {
    Take plain, changed;
    for (Take* take : {&plain, &changed}) {
        take->settle();
        take->play(tone(20000, kHighTone));
    }
    change(changed);
    const std::vector<float> input = tone(frames, kHighTone);
    return {plain.play(input, block), changed.play(input, block)};
}

/// Touches the length without moving it: the pattern stays, the fade comes.
void touchLength(Take& take) {
    take.set(kBaseLength, 0.25f);
}

TEST(Fade, PlaysFourTrapezoidsAndThenInFull) {
    constexpr std::int32_t block = 512;
    const auto [plain, faded] = beside(touchLength, 6 * block, block);
    const float step = 1.0f / (512.0f * 0.104f);
    for (std::int32_t i = 0; i < 6 * block; ++i) {
        const std::int32_t inBlock = i % block;
        float level = 1.0f;
        if (i < 4 * block && inBlock <= 53)
            level = std::min(1.0f, static_cast<float>(inBlock + 1) * step);
        else if (i < 4 * block && inBlock >= block - 53)
            level = std::max(0.0f, 1.0f - static_cast<float>(inBlock - (block - 54)) * step);
        const auto at = static_cast<std::size_t>(i);
        ASSERT_NEAR(faded.left[at], plain.left[at] * level, 0.02f)
            << "block " << i / block << ", sample " << inBlock;
    }
    EXPECT_GT(loudest(plain.left), 0.3f);
}

TEST(Fade, FallsToNothingAtTheEndOfEachOfItsBlocks) {
    const auto [plain, faded] = beside(touchLength, 6 * 512, 512);
    for (std::int32_t end : {512, 1024, 1536, 2048}) {
        EXPECT_GT(loudest(plain.left, end - 10, end), 0.2f);
        EXPECT_LT(loudest(faded.left, end - 2, end), 0.05f) << "before sample " << end;
    }
    EXPECT_GT(loudest(faded.left, 2560 - 10, 2560), 0.2f);
}

TEST(Fade, IsNotHeardInBlocksOfNineOrFewer) {
    for (std::int32_t block : {1, 2, 8, 9}) {
        const auto [plain, faded] = beside(touchLength, 90, block);
        EXPECT_TRUE(sameBits(plain.left, faded.left)) << "blocks of " << block;
    }
}

TEST(Fade, IsHeardFromTenSamplesUp) {
    const auto [plain, faded] = beside(touchLength, 100, 10);
    EXPECT_FALSE(sameBits(plain.left, faded.left));
    for (std::int32_t block = 0; block < 4; ++block)
        EXPECT_NEAR(faded.left[static_cast<std::size_t>(10 * block + 9)], 0.0f, 0.04f);
}

TEST(Fade, ComesWithLengthTapsAndStretchAlone) {
    for (std::int32_t id = -1; id < 22; ++id) {
        if (id == kSet)
            continue;
        const auto [plain, changed] =
            beside([id](Take& take) { take.set(id, take.plugin.getParameter(id)); }, 3 * 512, 512);
        const bool fades = id == kBaseLength || id == kTaps || id == kStretch;
        EXPECT_EQ(sameBits(plain.left, changed.left), !fades) << "id " << id;
    }
}

TEST(Fade, IsNotLengthenedByFurtherChanges) {
    Take plain, changed;
    for (Take* take : {&plain, &changed}) {
        take->settle();
        take->play(tone(20000, kHighTone));
        touchLength(*take);
        take->play(tone(1024, kHighTone));
    }
    touchLength(changed);
    const std::vector<float> input = tone(4096, kHighTone);
    EXPECT_TRUE(sameBits(plain.play(input).left, changed.play(input).left));
}

TEST(Fade, IsUsedUpByBlocksWithoutFrames) {
    const auto emptyBlocks = [](Take& take) {
        touchLength(take);
        float nothing = 0;
        float* channels[] = {&nothing, &nothing};
        for (int block = 0; block < 4; ++block)
            take.plugin.process(channels, channels, 0);
    };
    const auto [plain, changed] = beside(emptyBlocks, 4096, 512);
    EXPECT_TRUE(sameBits(plain.left, changed.left));
}

TEST(Fade, IsNotHeardInTheGlidingModes) {
    for (float set : {0.5f, 1.0f}) {
        Take plain, changed;
        for (Take* take : {&plain, &changed}) {
            take->set(kSet, set);
            take->play(tone(20000, kHighTone));
        }
        touchLength(changed);
        const std::vector<float> input = tone(4096, kHighTone);
        EXPECT_TRUE(sameBits(plain.play(input).left, changed.play(input).left)) << "Set " << set;
    }
}

TEST(Fade, ArmedInAGlidingModeIsHeardAfterTheSwitchToWholeSamples) {
    const auto armElsewhere = [](Take& take) {
        take.set(kSet, 1.0f);
        touchLength(take);
        take.set(kSet, 0.0f);
    };
    const auto [plain, faded] = beside(armElsewhere, 1024, 512);
    EXPECT_LT(loudest(faded.left, 510, 513), 0.05f);
    EXPECT_GT(loudest(plain.left, 500, 520), 0.2f);
}

// --- Off and on, rates, programs ---

TEST(OffAndOn, ClearsTheMemory) {
    for (float feedback : {0.9f, 0.1f, 0.5f}) {
        Take take;
        take.set(kBaseLength, 1.0f); // one tap at a second
        take.set(kFeedback, feedback);
        take.settle();
        take.play(tone(100000, 440.0));
        take.plugin.suspend();
        take.plugin.resume();
        const Stereo out = take.play(silence(80000));
        // What stood in the DC removal is gone in a fifth of a second. The last feedback is held and goes
        // into the memory, so the silence ends with the first tap, unless there is no feedback to speak of.
        EXPECT_LT(loudest(out.left, 9000, 44099), 1e-6f) << "Feedback " << feedback;
        if (feedback == 0.5f) {
            EXPECT_LT(loudest(out.left, 46000, 80000), 1e-4f);
        }
    }
}

TEST(OffAndOn, GivesTheEchoesBack) {
    Take take;
    take.settle();
    take.plugin.suspend();
    take.plugin.resume();
    EXPECT_EQ(onset(take.play(impulse(Take::kTapTime + 10)).left), Take::kTapTime - 1);
}

TEST(OffAndOn, OpensTheFiltersWider) {
    // Another law, and a wider one: the high-pass moves from 702 to 810 Hz and the low-pass from 5522 to 5000
    // Hz.
    Take touched, resumed;
    for (Take* take : {&touched, &resumed}) {
        take->set(kPreLowPass, 0.5f);
        take->set(kPreHighPass, 0.5f);
    }
    resumed.plugin.resume();
    for (Take* take : {&touched, &resumed})
        take->settle();
    const std::vector<float> input = impulse(Take::kTapTime + 100);
    EXPECT_FALSE(sameBits(touched.play(input).left, resumed.play(input).left));
    for (Take* take : {&touched, &resumed}) {
        take->set(kPreLowPass, 0.5f);
        take->set(kPreHighPass, 0.5f);
        take->settle();
    }
    const Stereo a = touched.play(input), b = resumed.play(input);
    for (std::size_t i = 0; i < input.size(); ++i)
        ASSERT_NEAR(a.left[i], b.left[i], 1e-5f);
}

TEST(Suspend, KeepsTheEchoes) {
    Take take;
    take.settle();
    take.play(impulse(100));
    take.plugin.suspend();
    take.plugin.setBlockSize(64);
    EXPECT_EQ(onset(take.play(silence(Take::kTapTime)).left), Take::kTapTime - 1 - 100);
}

TEST(SampleRate, WithoutResumeCollapsesTheTapsUntilAnyParameterIsTouched) {
    for (std::int32_t id : {-1, 7, 17, 20, 99}) {
        Take take;
        take.settle();
        take.plugin.setSampleRate(44100.0f);
        const Stereo collapsed = take.play(impulse(3 * Take::kTapTime));
        EXPECT_EQ(onset(collapsed.left, 0, 0.01f), -1);
        take.plugin.setSampleRate(44100.0f);
        take.set(id, 0.0f);
        EXPECT_EQ(onset(take.play(impulse(2 * Take::kTapTime)).left), Take::kTapTime - 1) << "id " << id;
    }
}

TEST(SampleRate, WithoutResumeLeavesTheSweepAloneInTheGlidingModes) {
    for (float set : {0.5f, 1.0f}) {
        Take take;
        take.set(kSet, set);
        take.set(kLfoDepth, 1.0f);
        take.settle();
        take.plugin.setSampleRate(44100.0f);
        take.play(silence(1000));
        const Stereo out = take.play(impulse(3 * Take::kTapTime));
        EXPECT_NEAR(static_cast<double>(onset(out.left)), 99.0, 2.0) << "Set " << set;
        EXPECT_EQ(onset(out.left, 400), -1) << "Set " << set;
    }
}

TEST(SampleRate, KeepsThePatternInSeconds) {
    Take take;
    take.set(kBaseLength, 0.5f);
    take.plugin.setSampleRate(88200.0f);
    take.plugin.resume();
    take.settle();
    EXPECT_EQ(onset(take.play(impulse(30000)).left), 22050 - 1); // a quarter of a second
}

TEST(UnusedParameters, StoreNothing) {
    Take take;
    const std::vector<std::uint8_t> before = take.plugin.getChunk(false);
    for (std::int32_t id : {17, 18, 19, 20, 21, -1}) {
        take.set(id, 0.7f);
        EXPECT_EQ(take.plugin.getParameter(id), 0.0f) << "id " << id;
    }
    EXPECT_EQ(take.plugin.getChunk(false), before);
}

/// Whether an echo on its way survives what is done.
template <typename Change>
bool echoSurvives(Change change) {
    Take take;
    // A program of the same values, so that only the clearing makes a difference.
    const std::vector<std::uint8_t> values = take.plugin.getChunk(true);
    take.plugin.setProgram(1);
    take.plugin.setChunk(values, true);
    take.settle();
    take.play(impulse(100));
    change(take);
    return onset(take.play(silence(2 * Take::kTapTime)).left) >= 0;
}

TEST(ProgramChange, WipesAllEchoes) {
    EXPECT_TRUE(echoSurvives([](Take&) {}));
    EXPECT_FALSE(echoSurvives([](Take& take) { take.plugin.setProgram(0); }));
    EXPECT_FALSE(echoSurvives([](Take& take) { take.plugin.setProgram(1); }));
}

TEST(ProgramChange, BelowNothingClearsTheMemoryAndNothingElse) {
    EXPECT_FALSE(echoSurvives([](Take& take) {
        take.plugin.setProgram(-1);
        EXPECT_EQ(take.plugin.getProgram(), 1);
    }));
}

TEST(ProgramChange, BeyondTheLastIsRefusedFromTheHost) {
    EXPECT_TRUE(echoSurvives([](Take& take) {
        take.plugin.setProgram(128);
        EXPECT_EQ(take.plugin.getProgram(), 1);
    }));
}

TEST(ProgramChange, BeyondTheLastByMidiClearsTheMemoryAndNothingElse) {
    EXPECT_FALSE(echoSurvives([](Take& take) {
        const std::vector<std::uint8_t> before = take.plugin.getChunk(false);
        take.sendMidi(0xC0, 0x80);
        EXPECT_EQ(take.plugin.getProgram(), 1);
        EXPECT_EQ(take.plugin.getChunk(false), before);
        EXPECT_EQ(take.plugin.getParameter(kBaseLength), 0.25f);
    }));
}

TEST(ProgramChange, IsSilentForAsLongAsTheFirstTap) {
    Take take;
    take.settle();
    take.play(tone(10000, kHighTone));
    take.plugin.setProgram(0);
    const Stereo out = take.play(tone(2 * Take::kTapTime, kHighTone));
    EXPECT_LT(loudest(out.left, 1500, Take::kTapTime - 1), 0.01f); // the DC removal has come to rest
    EXPECT_GT(loudest(out.left, Take::kTapTime - 1, 2 * Take::kTapTime), 0.2f);
}

TEST(ProgramChange, TurnsTheNarrowFilterLawsOn) {
    Take touched, selected;
    for (Take* take : {&touched, &selected}) {
        take->set(kPreLowPass, 0.5f);
        take->set(kPreHighPass, 0.5f);
        take->plugin.resume();
    }
    touched.set(kPreLowPass, 0.5f);
    touched.set(kPreHighPass, 0.5f);
    selected.plugin.setProgram(0);
    const std::vector<float> input = impulse(Take::kTapTime + 400);
    const Stereo a = touched.play(input), b = selected.play(input);
    for (std::size_t i = 0; i < input.size(); ++i)
        ASSERT_EQ(a.left[i], b.left[i]) << "sample " << i;
}

TEST(Chunk, OfTheWrongSizeStillWipesAllEchoes) {
    EXPECT_FALSE(echoSurvives([](Take& take) {
        const std::vector<std::uint8_t> before = take.plugin.getChunk(false);
        EXPECT_EQ(take.plugin.setChunk(std::vector<std::uint8_t>(113), true), 1);
        EXPECT_EQ(take.plugin.getChunk(false), before);
    }));
    EXPECT_FALSE(echoSurvives([](Take& take) { take.plugin.setChunk({}, true); }));
    EXPECT_FALSE(
        echoSurvives([](Take& take) { take.plugin.setChunk(std::vector<std::uint8_t>(14335), false); }));
}

} // namespace
