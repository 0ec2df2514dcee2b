// Two threads change the same thing, in every order that their instructions can take. A moment's mixture may
// be heard, but it must not outlive the two: afterwards the engine sounds as the parameters say.
#include "interleaving.h"

#include "desk/private_folder.h"
#include "doors/vst2/velmo_delay.h"
#include "dsp/delay_engine.h"
#include "dsp/pattern_record.h"
#include "platform/message_box.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace realtime {
namespace {

using namespace parameters;

constexpr float kRate = 44100.0f;

/// A work that each attempt starts anew.
using Work = std::function<void()>;

/// More places than this are not all tried, but some of them at random.
constexpr std::int64_t kMostPlaces = 400;

class Orders {
  public:
    /// `prepare` sets the stage for each attempt; `check` says, and reports with a text that names the
    /// attempt, whether it ended well.
    Orders(Work prepare, Work first, Work second, std::function<bool(const std::string&)> check)
        : prepare_(std::move(prepare)), first_(std::move(first)), second_(std::move(second)),
          check_(std::move(check)) {
        // Once without a count: the loader looks functions up at their first call.
        prepare_();
        first_();
        second_();
        firstLength_ = lengthOf(first_);
        secondLength_ = lengthOf(second_);
    }

    /// Tries the second work at each instruction of the first, or at many of them, and then some orders in
    /// which each interrupts the other. Until one ends badly.
    void tryAll() {
        ASSERT_GT(firstLength_, 4);
        ASSERT_GT(secondLength_, 4);
        const bool tooMany = firstLength_ > kMostPlaces;
        for (std::int64_t i = 1; i < std::min(firstLength_, kMostPlaces) && isGood_; ++i)
            attempt(tooMany ? placeIn(firstLength_) : i, kToTheEnd);
        for (int i = 0; i < 250 && isGood_; ++i)
            attempt(placeIn(firstLength_), placeIn(secondLength_));
    }

  private:
    std::int64_t lengthOf(const Work& work) {
        prepare_();
        return countInstructions(work);
    }
    std::int64_t placeIn(std::int64_t length) {
        return std::uniform_int_distribution<std::int64_t>(1, length - 1)(random_);
    }
    void attempt(std::int64_t firstSteps, std::int64_t secondSteps) {
        prepare_();
        interleave(first_, firstSteps, second_, secondSteps);
        isGood_ = check_("after " + std::to_string(firstSteps) + " instructions of the first and " +
                         (secondSteps == kToTheEnd ? "all" : std::to_string(secondSteps)) + " of the second");
    }

    Work prepare_, first_, second_;
    std::function<bool(const std::string&)> check_;
    std::int64_t firstLength_ = 0, secondLength_ = 0;
    bool isGood_ = true;
    std::mt19937_64 random_{1};
};

void tryAllOrders(Work prepare, Work first, Work second, std::function<bool(const std::string&)> check) {
    Orders(std::move(prepare), std::move(first), std::move(second), std::move(check)).tryAll();
}

// --- A filter's coefficients ---

constexpr dsp::BiquadCoefficients kOld = {1, 2, 3, 4, 5}, kOne = {11, 12, 13, 14, 15},
                                  kOther = {21, 22, 23, 24, 25};

bool operator==(const dsp::BiquadCoefficients& a, const dsp::BiquadCoefficients& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

std::string textOf(const dsp::BiquadCoefficients& c) {
    return std::to_string(c.b0) + " " + std::to_string(c.b1) + " " + std::to_string(c.b2) + " " +
           std::to_string(c.a1) + " " + std::to_string(c.a2);
}

class Coefficients : public testing::Test {
  protected:
    void start() {
        shared.publish(kOld);
        read();
    }
    /// As the loop reads them: into what it had before.
    void read() { shared.load(seen); }
    bool seenIsOneOf(const std::string& when, const std::vector<dsp::BiquadCoefficients>& whole) {
        const bool good = std::any_of(whole.begin(), whole.end(), [&](const auto& c) { return c == seen; });
        EXPECT_TRUE(good) << textOf(seen) << " " << when;
        return good;
    }

    dsp::SharedCoefficients shared;
    dsp::BiquadCoefficients seen;
};

TEST_F(Coefficients, ReachTheLoopAsOneSetWhereverItsReadingIsInterrupted) {
    const auto publishManyTimes = [this] {
        for (int i = 0; i < 20; ++i)
            shared.publish(kOne);
    };
    tryAllOrders([this] { start(); }, [this] { read(); }, publishManyTimes,
                 [this](const std::string& when) { return seenIsOneOf(when, {kOld, kOne}); });
}

TEST_F(Coefficients, ReachTheLoopAsOneSetWhereverTheirWritingIsInterrupted) {
    tryAllOrders([this] { start(); }, [this] { shared.publish(kOne); }, [this] { read(); },
                 [this](const std::string& when) { return seenIsOneOf(when, {kOld, kOne}); });
}

TEST_F(Coefficients, AreOneWholeSetAfterTwoWriters) {
    tryAllOrders([this] { start(); }, [this] { shared.publish(kOne); }, [this] { shared.publish(kOther); },
                 [this](const std::string& when) {
                     read();
                     return seenIsOneOf(when, {kOne, kOther});
                 });
}

TEST_F(Coefficients, AreOneWholeSetAfterAWriterWhomAnotherHasLappedManyTimes) {
    const auto publishManyTimes = [this] {
        for (int i = 0; i < 20; ++i)
            shared.publish(kOther);
    };
    tryAllOrders([this] { start(); }, [this] { shared.publish(kOne); }, publishManyTimes,
                 [this](const std::string& when) {
                     read();
                     return seenIsOneOf(when, {kOne, kOther});
                 });
}

// --- Rewrites of the tap tables ---

TEST(Rewrites, TellTheOneThatEndsLastWhereverTheOtherInterruptsIt) {
    using dsp::PatternRecord;
    PatternRecord record;
    auto outer = PatternRecord::Outcome::whole, inner = PatternRecord::Outcome::whole;
    const auto rewrite = [&](PatternRecord::Outcome& outcome) {
        const PatternRecord::Rewrite begun = record.begin();
        outcome = record.endOther(begun);
    };
    int interrupted = 0;
    const std::int64_t length = countInstructions([&] { rewrite(outer); });
    for (std::int64_t steps = 1; steps < length; ++steps) {
        interleave([&] { rewrite(outer); }, steps, [&] { rewrite(inner); });
        const bool wasInside = inner == PatternRecord::Outcome::unfinished;
        interrupted += wasInside;
        EXPECT_TRUE(!wasInside || outer == PatternRecord::Outcome::mixed) << steps;
    }
    EXPECT_GT(interrupted, 1);
}

// --- The engine ---

class Engine : public testing::Test {
  protected:
    Engine() {
        for (dsp::DelayEngine* engine : {raced.get(), expected.get()}) {
            engine->startUp();
            engine->prepare(kRate);
            for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
                engine->setParameterValue(id, 0.5f);
            engine->setParameterValue(kBaseLength, 0.02f);
            engine->setParameterValue(kTaps, 0.012f); // two taps: short works
            engine->setParameterValue(kAmpDecay, 0.3f);
            renewAll(*engine);
        }
        for (int block = 0; block < 100; ++block)
            EXPECT_TRUE(soundsAsItsParametersSay("at rest"));
    }

    static void renewAll(dsp::DelayEngine& engine) {
        engine.computeTapPattern(kRate);
        engine.designLowPassOnChange(kRate);
        engine.designHighPassOnChange(kRate);
    }

    /// What the effect does with the engine when a parameter is set.
    void change(std::int32_t id, float value) {
        raced->setParameterValue(id, value);
        raced->computeTapPattern(kRate);
        if (id == kPreLowPass)
            raced->designLowPassOnChange(kRate);
        if (id == kPreHighPass)
            raced->designHighPassOnChange(kRate);
    }

    /// Plays some noise, and the same through an engine that nobody disturbed.
    bool soundsAsItsParametersSay(const std::string& when) {
        for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
            expected->setParameterValue(id, raced->parameterValue(id));
        renewAll(*expected);
        std::array<float, kFrames> left, right;
        for (float& sample : left)
            sample = static_cast<float>(random_() >> 40) * 0x1p-24f - 0.5f;
        for (float& sample : right)
            sample = static_cast<float>(random_() >> 40) * 0x1p-24f - 0.5f;
        const float* const inputs[] = {left.data(), right.data()};
        std::array<float, kFrames> left1, right1, left2, right2;
        float *const ours[] = {left1.data(), right1.data()}, *const theirs[] = {left2.data(), right2.data()};
        raced->processReplacing(inputs, ours, kFrames);
        expected->processReplacing(inputs, theirs, kFrames);
        const bool good = std::memcmp(left1.data(), left2.data(), sizeof left1) == 0 &&
                          std::memcmp(right1.data(), right2.data(), sizeof right1) == 0;
        EXPECT_TRUE(good) << when;
        return good;
    }

    /// Two threads set one parameter, each to its value.
    void raceForOne(std::int32_t id, float one, float other) {
        tryAllOrders([&, this] { change(id, 0.25f); }, [&, this] { change(id, one); },
                     [&, this] { change(id, other); },
                     [&, this](const std::string& when) { return soundsAsItsParametersSay(when); });
    }

    static constexpr std::int32_t kFrames = 128;
    std::unique_ptr<dsp::DelayEngine> raced = std::make_unique<dsp::DelayEngine>();
    std::unique_ptr<dsp::DelayEngine> expected = std::make_unique<dsp::DelayEngine>();

  private:
    std::mt19937_64 random_{7};
};

TEST_F(Engine, FiltersAsTheLastLowPassSaysAfterTwoWriters) {
    raceForOne(kPreLowPass, 0.2f, 0.8f);
}

TEST_F(Engine, FiltersAsTheLastHighPassSaysAfterTwoWriters) {
    raceForOne(kPreHighPass, 0.2f, 0.8f);
}

TEST_F(Engine, SweepsAtTheRateOfItsParameterAfterTwoWriters) {
    raceForOne(kLfoRate, 0.4f, 0.9f);
}

TEST_F(Engine, ReadsInTheModeOfItsParameterAfterTwoWriters) {
    raceForOne(kSet, 0.0f, 0.8f);
}

TEST_F(Engine, PlaysThePatternOfItsParametersAfterTwoWritersOfOne) {
    raceForOne(kBaseLength, 0.03f, 0.04f);
}

TEST_F(Engine, PlaysThePatternOfItsParametersAfterTwoWritersOfDifferentOnes) {
    tryAllOrders(
        [this] {
            change(kBaseLength, 0.02f);
            change(kCurve, 0.3f);
        },
        [this] { change(kBaseLength, 0.03f); }, [this] { change(kCurve, 0.7f); },
        [this](const std::string& when) {
            EXPECT_EQ(raced->parameterValue(kBaseLength), 0.03f);
            EXPECT_EQ(raced->parameterValue(kCurve), 0.7f);
            return soundsAsItsParametersSay(when);
        });
}

TEST_F(Engine, KeepsAPersonsAmpDecayBesideAChangeOfAnotherParameter) {
    for (const std::pair<float, float>& values : {std::pair{0.25f, 1.0f}, {1.0f, 0.75f}}) {
        const float before = values.first, set = values.second;
        tryAllOrders([&, this] { raced->setParameterValue(kAmpDecay, before); },
                     [this] { change(kFeedback, 0.5f); }, [&, this] { change(kAmpDecay, set); },
                     [&, this](const std::string& when) {
                         const float limited = std::min(set, 0.99999f);
                         EXPECT_EQ(raced->parameterValue(kAmpDecay), limited) << when;
                         return !HasFailure() && soundsAsItsParametersSay(when);
                     });
    }
}

/// The rate that a host sets on one thread while another changes a parameter.
class Rates : public Engine {
  protected:
    void setRate(float rate) {
        sampleRate.storeInOrder(rate);
        raced->prepare(sampleRate);
    }
    void setParameter(std::int32_t id, float value) {
        raced->setParameterValue(id, value);
        raced->computeTapPattern(sampleRate);
    }
    /// Times of zero, as a new rate leaves them, or those that the parameters give at the rate.
    bool tapsFitTheRate(const std::string& when) {
        dsp::TapPattern fresh;
        computeTaps(fresh,
                    {raced->parameterValue(kBaseLength), raced->parameterValue(kTaps),
                     raced->parameterValue(kStretch), raced->parameterValue(kAmpDecay),
                     raced->parameterValue(kCurve)},
                    sampleRate.load());
        const dsp::TapPattern& taps = raced->tapPattern();
        const auto used = static_cast<std::size_t>(fresh.numTaps.load());
        EXPECT_EQ(taps.numTaps.load(), fresh.numTaps.load()) << when;
        const auto same = [](const base::Shared<float>& a, const base::Shared<float>& b) {
            return a.load() == b.load();
        };
        EXPECT_TRUE(std::equal(taps.tapGain.begin(), taps.tapGain.end(), fresh.tapGain.begin(), same))
            << when;
        const auto times = std::span(taps.tapTimeTarget).first(used);
        const auto has = [&](float time) {
            return std::all_of(times.begin(), times.end(), [&](const auto& t) { return t.load() == time; });
        };
        EXPECT_TRUE(has(0.0f) || std::equal(times.begin(), times.end(), fresh.tapTimeTarget.begin(), same))
            << when;
        return !HasFailure();
    }

    base::Shared<float> sampleRate = kRate;
};

TEST_F(Rates, LeaveAPatternOfTheNewRateWhereverAChangeIsInterrupted) {
    const auto start = [this] {
        setRate(kRate);
        setParameter(kBaseLength, 0.3f);
    };
    const auto changeLength = [this] { setParameter(kBaseLength, 0.4f); };
    const auto changeRate = [this] { setRate(96000.0f); };
    const auto fits = [this](const std::string& when) { return tapsFitTheRate(when); };
    tryAllOrders(start, changeLength, changeRate, fits);
    tryAllOrders(start, changeRate, changeLength, fits);
}

// --- The effect: what is saved beside what is heard ---

class Effect : public testing::Test {
  protected:
    Effect() {
        platform::replaceMessageBox([](void*, const char*, const char*, const platform::MessageLook&) {},
                                    nullptr);
        effect = std::make_unique<vst2_door::velmo_delay>(nullptr);
        effect->setParameter(kTaps, 0.012f);
    }
    ~Effect() override { platform::replaceMessageBox(nullptr, nullptr); }

    float saved(std::int32_t id) {
        void* chunk = nullptr;
        effect->getChunk(&chunk, true);
        return static_cast<const presets::DelayProgram*>(chunk)->values[id];
    }
    bool savesWhatIsHeard(const std::string& when) {
        for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
            EXPECT_EQ(effect->getParameter(id), saved(id)) << parameter(id).name << " " << when;
        return !HasFailure();
    }

    desk::PrivateFolder folder;
    std::unique_ptr<vst2_door::velmo_delay> effect;
};

TEST_F(Effect, SavesTheValueThatIsHeardAfterTwoThreadsHaveSetIt) {
    tryAllOrders([this] { effect->setParameter(kFeedback, 0.5f); },
                 [this] { effect->setParameter(kFeedback, 0.2f); },
                 [this] { effect->setParameter(kFeedback, 0.8f); },
                 [this](const std::string& when) { return savesWhatIsHeard(when); });
}

TEST_F(Effect, PlaysTheCurrentProgramAfterAChangeOfProgramBesideOneOfAParameter) {
    const auto start = [this] {
        effect->setProgram(1);
        effect->setParameter(kFeedback, 0.3f);
        effect->setProgram(0);
        effect->setParameter(kFeedback, 0.5f);
        effect->setParameter(kTaps, 0.012f);
    };
    const auto set = [this] { effect->setParameter(kFeedback, 0.8f); };
    const auto select = [this] { effect->setProgram(1); };
    tryAllOrders(start, set, select, [this](const std::string& when) { return savesWhatIsHeard(when); });
}

} // namespace
} // namespace realtime
