// The factory programs as sound: each is played a drum hit, a plucked string and speech through the built
// library, and measured. A program that is silent, that blows up, that rings on where its pattern has ended
// or that nobody can tell from another has no place in the bank.
#include "desk/private_folder.h"
#include "factory_bank.h"
#include "tools/bank/audition.h"
#include "tools/bank/bank_file.h"
#include "tools/bank/fingerprint.h"
#include "tools/bank/parallel.h"
#include "tools/bank/program_loudness.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <numeric>
#include <sstream>
#include <utility>

using namespace bank;
using namespace parameters;

namespace {

/// A wet signal above this, from an input at full scale, needs the mark "loud" in the table.
constexpr double kLoudDecibels = 6.0;
/// No program may pass this as it is stored, marked or not.
constexpr double kStoredPeakDecibels = 6.0;
/// The loudest passage of the wet signal reaches this against that of the input, whatever the input.
constexpr double kAudibleDecibels = -20.0;
/// Tails are followed for this long.
constexpr double kTailSeconds = 20.0;
/// Two programs that are closer than this sound like one.
constexpr double kSmallestDistance = 6.0;
/// Programs of related ideas keep at least this distance.
constexpr double kRelatedDistance = 9.5;
constexpr std::pair<std::size_t, std::size_t> kRelated[] = {
    {15, 56}, {16, 88}, {17, 90}, {22, 118}, {104, 105}};
/// From the quietest to the loudest program, in loudness units.
constexpr double kLoudnessSpread = 6.0;

/// Filters ring for some milliseconds behind a tap.
constexpr double kRingSeconds = 0.03;

bool feedsBack(const BankProgram& program) {
    return feedbackTail(program).secondsTo60dB > 0.0;
}

/// One tap that repeats itself in whole samples, so that nothing but the feedback wears a pass down.
bool isExactLoop(const BankProgram& program) {
    return patternOf(program).numTaps.load() == 1 && program.value(kSet) == 0.0f && feedsBack(program);
}

/// The numbers of all programs for which `isMeant` holds; under the sanitizers, which slow everything down,
/// of those among four of different make.
std::vector<std::size_t> auditioned(const std::function<bool(const BankProgram&)>& isMeant = {}) {
#ifdef BANK_SAMPLE_ONLY
    const std::vector<std::size_t> all = {0, 33, 47, 112};
#else
    std::vector<std::size_t> all(kNumPrograms);
    std::iota(all.begin(), all.end(), std::size_t{0});
#endif
    std::vector<std::size_t> meant;
    std::copy_if(all.begin(), all.end(), std::back_inserter(meant),
                 [&](std::size_t number) { return !isMeant || isMeant(factoryBank()[number]); });
    return meant;
}

/// The library writes into the current directory when an instance closes.
class BankSound : public testing::Test {
  protected:
    desk::PrivateFolder folder_;
    Audition audition_{QUILLON_LIBRARY};
};

class FactoryProgram : public BankSound, public testing::WithParamInterface<std::size_t> {
  protected:
    std::size_t number() const { return GetParam(); }
    const BankProgram& program() const { return factoryBank()[number()]; }
    double patternEnd() const {
        return patternSeconds(patternOf(program())) + sweepSamples(program()) / kAuditionRate;
    }

    /// The wet answer to a click, until it has died away or the tail has been followed long enough.
    StereoSignal clickAnswer() const {
        const double end = patternEnd() + feedbackTail(program()).secondsTo60dB + 1.0;
        return audition_.play(number(), click(), std::min(end, kTailSeconds), Listening::wetOnly);
    }
    /// The wet answer to a source that may itself be seconds long.
    StereoSignal wetAnswer(const Signal& source) const {
        const double length = static_cast<double>(source.size()) / kAuditionRate;
        const double end = length + patternEnd() + feedbackTail(program()).secondsTo60dB + 1.0;
        return audition_.play(number(), source, std::min(end, kTailSeconds), Listening::wetOnly);
    }
};

class ProgramWithoutFeedback : public FactoryProgram {};
class ProgramWithFeedback : public FactoryProgram {};
class LoopOfOneTap : public FactoryProgram {};

struct Source {
    const char* name;
    Signal signal;
};

const std::vector<Source>& sources() {
    static const std::vector<Source> all = {
        {"drum", drumHit()}, {"string", pluckedString()}, {"speech", recording(QUILLON_SPEECH)}};
    return all;
}

/// What is left of the energy from `seconds` on, in dB.
double remaining(const StereoSignal& signal, double seconds) {
    const auto frame = static_cast<std::size_t>(seconds * kAuditionRate);
    return decibels(std::sqrt(energyOf(signal, std::min(frame, signal.frames())) / energyOf(signal)));
}

/// What a pattern without feedback leaves of its energy from `seconds` on, in dB.
double implied(const dsp::TapPattern& pattern, double seconds) {
    double all = 0.0;
    double left = 0.0;
    for (std::size_t tap = 0; tap < static_cast<std::size_t>(pattern.numTaps.load()); ++tap) {
        const double time = static_cast<double>(pattern.tapTimeTarget[tap].load()) / kAuditionRate;
        if (time > kTailSeconds)
            continue;
        const double energy = std::pow(static_cast<double>(pattern.tapGain[tap].load()), 2.0);
        all += energy;
        left += time >= seconds ? energy : 0.0;
    }
    return decibels(std::sqrt(left / all));
}

double narrowestGapSeconds(const dsp::TapPattern& pattern) {
    double narrowest = static_cast<double>(pattern.tapTimeTarget[0].load());
    for (std::size_t tap = 1; tap < static_cast<std::size_t>(pattern.numTaps.load()); ++tap)
        narrowest = std::min(narrowest, static_cast<double>(pattern.tapTimeTarget[tap].load()) -
                                            static_cast<double>(pattern.tapTimeTarget[tap - 1].load()));
    return narrowest / kAuditionRate;
}

} // namespace

TEST_F(BankSound, ComesFromTheBankBesideTheLibrary) {
    EXPECT_EQ(chunkBytes(factoryBank()), audition_.chunk());
}

TEST_P(FactoryProgram, IsFiniteAudibleAndAsLoudAsItSays) {
    double loudest = -200.0;
    for (const Source& source : sources()) {
        const StereoSignal wet = wetAnswer(source.signal);
        ASSERT_TRUE(isFinite(wet)) << source.name;
        EXPECT_GT(decibels(loudestPassage(wet) / loudestPassage(source.signal)), kAudibleDecibels)
            << source.name;
        loudest = std::max(loudest, decibels(peakOf(wet)));
    }
    if (program().loud)
        EXPECT_GT(loudest, kLoudDecibels) << "marked as loud and is not";
    else
        EXPECT_LT(loudest, kLoudDecibels) << "needs the mark \"loud\"";
}

TEST_P(FactoryProgram, CanBePutOnATrackAsItIsStored) {
    for (const Source& source : sources()) {
        const StereoSignal output = audition_.play(number(), source.signal, 6.0, Listening::asStored);
        ASSERT_TRUE(isFinite(output)) << source.name;
        EXPECT_LT(decibels(peakOf(output)), kStoredPeakDecibels) << source.name;
        EXPECT_GT(decibels(loudestPassage(output) / loudestPassage(source.signal)), -12.0) << source.name;
    }
}

TEST_P(ProgramWithoutFeedback, EndsWithItsPattern) {
    const StereoSignal answer = clickAnswer();
    const dsp::TapPattern pattern = patternOf(program());
    if (patternEnd() + kRingSeconds < kTailSeconds) {
        EXPECT_LT(remaining(answer, patternEnd() + kRingSeconds), -60.0);
    }
    // Where taps stand apart, what is left at any time is what the gains of the taps to come say.
    constexpr double kApartSeconds = 0.004;
    constexpr double kAgreementDecibels = 2.0;
    if (narrowestGapSeconds(pattern) < kApartSeconds)
        return;
    for (const double part : {0.25, 0.5, 0.75}) {
        const double seconds = part * std::min(patternEnd(), kTailSeconds);
        const auto isNear = [&](const base::Shared<float>& time) {
            return std::abs(static_cast<double>(time.load()) / kAuditionRate - seconds) < kRingSeconds;
        };
        const auto end = pattern.tapTimeTarget.begin() + pattern.numTaps.load();
        if (std::any_of(pattern.tapTimeTarget.begin(), end, isNear))
            continue;
        EXPECT_NEAR(implied(pattern, seconds), remaining(answer, seconds), kAgreementDecibels)
            << seconds << " s";
    }
}

TEST_P(ProgramWithFeedback, DiesAwayAsFastAsItMust) {
    const FeedbackTail tail = feedbackTail(program());
    const StereoSignal answer = clickAnswer();
    constexpr double kSlackDecibels = 6.0;
    const double followed = static_cast<double>(answer.frames()) / kAuditionRate - 0.5;
    const double reach = std::min(1.0, (followed - patternEnd()) / tail.secondsTo60dB);
    ASSERT_GT(reach, 0.0);
    for (const double part : {reach / 2.0, reach}) {
        const double seconds = patternEnd() + kRingSeconds + part * tail.secondsTo60dB;
        EXPECT_LT(remaining(answer, seconds), -60.0 * part + kSlackDecibels) << seconds << " s";
    }
}

TEST_P(LoopOfOneTap, LivesForAllItsPasses) {
    const dsp::TapPattern pattern = patternOf(program());
    const FeedbackTail tail = feedbackTail(program());
    // One tap counts as the first and the last, so each pass keeps twice the gain.
    const double pass = decibels(2.0 * std::abs(tail.loopGain));
    const double seconds = static_cast<double>(pattern.tapTimeTarget[0].load()) / kAuditionRate;
    const StereoSignal answer = clickAnswer();
    const int passes =
        std::min(8, static_cast<int>(static_cast<double>(answer.frames()) / kAuditionRate / seconds) - 1);
    const auto window = [&](int number) {
        const auto start = static_cast<std::size_t>((number + 0.5) * seconds * kAuditionRate);
        const auto length = static_cast<std::size_t>(seconds * kAuditionRate);
        return energyOf(answer, start) - energyOf(answer, std::min(start + length, answer.frames()));
    };
    EXPECT_NEAR(pass * passes, decibels(std::sqrt(window(passes) / window(0))), 0.1 * passes);
}

INSTANTIATE_TEST_SUITE_P(Bank, FactoryProgram, testing::ValuesIn(auditioned()), programTestName);
INSTANTIATE_TEST_SUITE_P(Bank, ProgramWithoutFeedback,
                         testing::ValuesIn(auditioned([](const BankProgram& p) { return !feedsBack(p); })),
                         programTestName);
INSTANTIATE_TEST_SUITE_P(Bank, ProgramWithFeedback, testing::ValuesIn(auditioned(feedsBack)),
                         programTestName);
INSTANTIATE_TEST_SUITE_P(Bank, LoopOfOneTap, testing::ValuesIn(auditioned(isExactLoop)), programTestName);

TEST_F(BankSound, IsOfEqualLoudnessInEveryProgram) {
    const std::vector<std::size_t> programs = auditioned();
    const LoudnessProbe probe(recording(QUILLON_SPEECH));
    std::vector<ProgramLoudness> loudness(programs.size());
    forEachInParallel(programs.size(), [&](std::size_t i) {
        loudness[i] = probe.measure(audition_, programs[i], factoryBank()[programs[i]]);
    });
    for (std::size_t sound = 0; sound < kLoudnessSounds.size(); ++sound) {
        const auto quieter = [sound](const ProgramLoudness& a, const ProgramLoudness& b) {
            return a[sound].change < b[sound].change;
        };
        const auto [quietest, loudest] = std::minmax_element(loudness.begin(), loudness.end(), quieter);
        const auto nameOf = [&](auto place) {
            return factoryBank()[programs[static_cast<std::size_t>(place - loudness.begin())]].name;
        };
        EXPECT_LE((*loudest)[sound].change - (*quietest)[sound].change, kLoudnessSpread)
            << kLoudnessSounds[sound] << " from " << nameOf(quietest) << " to " << nameOf(loudest);
    }
    for (std::size_t i = 0; i < programs.size(); ++i)
        for (std::size_t sound = 0; sound < kLoudnessSounds.size(); ++sound)
            EXPECT_LT(loudness[i][sound].truePeak, 0.0)
                << factoryBank()[programs[i]].name << ", " << kLoudnessSounds[sound];
}

TEST_F(BankSound, IsDifferentForEveryProgram) {
    const std::vector<std::size_t> programs = auditioned();
    std::vector<Fingerprint> fingerprints;
    for (const std::size_t program : programs)
        fingerprints.push_back(fingerprintOf(audition_, program));
    double closest = 1000.0;
    std::string pair;
    for (std::size_t a = 0; a < programs.size(); ++a)
        for (std::size_t b = a + 1; b < programs.size(); ++b) {
            const double apart = distance(fingerprints[a], fingerprints[b]);
            const std::string names =
                factoryBank()[programs[a]].name + " and " + factoryBank()[programs[b]].name;
            EXPECT_GT(apart, kSmallestDistance) << names;
            if (apart < closest) {
                closest = apart;
                pair = names;
            }
        }
    std::ostringstream line;
    line << pair << ", " << closest << " dB";
    RecordProperty("closest", line.str());
    std::cout << "closest: " << line.str() << "\n";
}

TEST_F(BankSound, TellsRelatedProgramsApart) {
    for (const auto& [a, b] : kRelated)
        EXPECT_GT(distance(fingerprintOf(audition_, a), fingerprintOf(audition_, b)), kRelatedDistance)
            << factoryBank()[a].name << " and " << factoryBank()[b].name;
}
