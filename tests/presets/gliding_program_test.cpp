// The factory programs whose point is to be turned while they sound: their echoes bend in pitch, and do not
// click.
#include "desk/private_folder.h"
#include "factory_bank.h"
#include "host/plugin.h"
#include "parameters/host_panel.h"
#include "tools/bank/audition.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <iterator>
#include <numbers>
#include <optional>
#include <string>
#include <vector>

using namespace bank;
using namespace parameters;

namespace {

constexpr double kHertz = 1000.0;
constexpr std::int32_t kBlock = 64;
constexpr std::size_t kSecond = kAuditionRate;

/// What the note of a program asks the player to turn, if that moves its taps.
std::optional<ParameterId> turnedIn(const BankProgram& program) {
    for (const ParameterId id : {kBaseLength, kStretch})
        if (program.note.find(std::string("turn ") + panelEntry(id).name) != std::string::npos)
            return id;
    return std::nullopt;
}

std::vector<std::size_t> programsToTurn() {
    std::vector<std::size_t> numbers;
    for (std::size_t number = 0; number < kNumPrograms; ++number)
        if (turnedIn(factoryBank()[number]))
            numbers.push_back(number);
    return numbers;
}

/// By how much a player turns the parameter within a second, normalised.
constexpr float kTurn = -0.03f;

/// The library writes into the current directory when an instance closes.
class ProgramToTurn : public testing::TestWithParam<std::size_t> {
  protected:
    const BankProgram& program() const { return factoryBank()[GetParam()]; }

    /// The echoes of a held tone while the parameter of the note moves by `turn` within a second.
    Signal played(float turn, float set) const {
        host::Plugin plugin(library_);
        plugin.start(kAuditionRate, kBlock);
        plugin.setProgram(static_cast<std::int32_t>(GetParam()));
        plugin.setParameter(kDryWet, 1.0f);
        plugin.setParameter(kSet, set);
        plugin.setParameter(kLfoDepth, 0.0f); // a sweep bends the pitch as well
        const ParameterId id = *turnedIn(program());
        const float start = program().value(id);
        double frames = 0.0;
        Signal kept;
        // Until the memory is full of the tone and the taps have arrived, as far as that takes 8 s.
        const double settled = std::min(patternSeconds(patternOf(program())) + 3.0, 8.0) * kAuditionRate;
        while (frames < settled + 1.2 * kAuditionRate) {
            const auto moved = static_cast<float>(std::clamp((frames - settled) / kAuditionRate, 0.0, 1.0));
            if (moved > 0.0f)
                plugin.setParameter(id, start + turn * moved);
            Signal tone(kBlock);
            for (float& sample : tone)
                sample = 0.25f * static_cast<float>(
                                     std::sin(2.0 * std::numbers::pi * kHertz * frames++ / kAuditionRate));
            Signal left(kBlock), right(kBlock);
            plugin.processStereo(tone.data(), tone.data(), left.data(), right.data(), kBlock, kBlock);
            if (frames >= settled + 0.4 * kAuditionRate)
                std::copy(left.begin(), left.end(), std::back_inserter(kept));
        }
        return kept;
    }

    desk::PrivateFolder folder_;
    host::Library library_{QUILLON_LIBRARY};
};

/// The share of the energy that does not have the pitch of the tone, in passages of a tenth of a second.
double offPitch(const Signal& signal) {
    constexpr std::size_t passage = kSecond / 10;
    double all = 0.0;
    double onPitch = 0.0;
    for (std::size_t start = 0; start + passage <= signal.size(); start += passage) {
        std::complex<double> sum;
        double energy = 0.0;
        for (std::size_t i = 0; i < passage; ++i) {
            const auto sample = static_cast<double>(signal[start + i]);
            const double phase = 2.0 * std::numbers::pi * kHertz * static_cast<double>(i) / kAuditionRate;
            sum += sample * std::polar(1.0, -phase);
            energy += sample * sample;
        }
        all += energy;
        onPitch += 2.0 * std::norm(sum) / static_cast<double>(passage);
    }
    return 1.0 - onPitch / all;
}

/// The largest step from one sample to the next but one that a tone up to twice as high does not make, over
/// the highest sample.
double roughness(const Signal& signal) {
    double peak = 0.0;
    double step = 0.0;
    for (std::size_t i = 2; i < signal.size(); ++i) {
        const double bend = static_cast<double>(signal[i]) - 2.0 * static_cast<double>(signal[i - 1]) +
                            static_cast<double>(signal[i - 2]);
        step = std::max(step, std::abs(bend));
        peak = std::max(peak, std::abs(static_cast<double>(signal[i])));
    }
    const double w = 2.0 * std::numbers::pi * 2.0 * kHertz / kAuditionRate;
    return step / (peak * w * w);
}

} // namespace

TEST_P(ProgramToTurn, BendsInPitch) {
    ASSERT_NE(0.0f, program().value(kSet));
    const double still = offPitch(played(0.0f, program().value(kSet)));
    const double turned = offPitch(played(kTurn, program().value(kSet)));
    RecordProperty("still", std::to_string(still));
    RecordProperty("turned", std::to_string(turned));
    EXPECT_GT(turned, 0.5) << "still: " << still;
    EXPECT_GT(turned, still + 0.25);
}

TEST_P(ProgramToTurn, DoesNotClickAsItWouldAtJump) {
    const double glided = roughness(played(kTurn, program().value(kSet)));
    EXPECT_LT(glided, 1.0);
    EXPECT_GT(roughness(played(kTurn, 0.0f)), 1.5 * glided);
}

INSTANTIATE_TEST_SUITE_P(Bank, ProgramToTurn, testing::ValuesIn(programsToTurn()), programTestName);

TEST(FactoryBankGlides, InAtLeastSixProgramsOfEitherKindThatAreMeantToBeTurned) {
    std::size_t ofKind[std::size(kSetPlaces)] = {};
    for (const std::size_t number : programsToTurn())
        ++ofKind[setPlaceOf(factoryBank()[number].value(kSet))];
    EXPECT_EQ(0u, ofKind[setPlaceOf(0.0f)]);
    EXPECT_GE(ofKind[setPlaceOf(0.5f)], 6u);
    EXPECT_GE(ofKind[setPlaceOf(1.0f)], 6u);
}
