// The built library against the reference: whatever a host does, both must give the same samples, bit by bit.
//
// Each test plays a handful of scenarios of one family. SEED=2000017 in the environment plays that one
// scenario instead, in whatever family it belongs to. Builds with sanitizers are ten times slower and play
// some of them.

#include "duel.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <ostream>
#include <string>

namespace {

using scenario::Family;

/// `count` scenarios of a family from `first` on.
struct Batch {
    Family family;
    std::uint64_t first;
    std::uint64_t count;
};

void PrintTo(const Batch& batch, std::ostream* out) {
    *out << "scenarios " << seedOf(batch.family, batch.first) << " to "
         << seedOf(batch.family, batch.first + batch.count - 1);
}

constexpr std::uint64_t kStride = QUILLON_SCENARIO_STRIDE;

std::optional<std::uint64_t> seedOfTheEnvironment() {
    const char* text = std::getenv("SEED");
    if (!text)
        return std::nullopt;
    return std::strtoull(text, nullptr, 10);
}

void expectNoDifference(std::uint64_t seed) {
    const std::optional<std::string> difference = firstDifference(scenario::make(seed));
    EXPECT_FALSE(difference) << *difference;
}

class BitExact : public testing::TestWithParam<Batch> {};

TEST_P(BitExact, SoundsLikeTheReference) {
    const Batch& batch = GetParam();
    if (const auto seed = seedOfTheEnvironment()) {
        const bool mine = *seed / scenario::kSeedsPerFamily == static_cast<std::uint64_t>(batch.family);
        if (!mine || batch.first != 0)
            GTEST_SKIP() << "SEED names a scenario of another test";
        expectNoDifference(*seed);
        return;
    }
    for (std::uint64_t index = batch.first; index < batch.first + batch.count && !HasFailure();
         index += kStride)
        expectNoDifference(seedOf(batch.family, index));
}

std::vector<Batch> batches(Family family, std::uint64_t batchCount, std::uint64_t size) {
    std::vector<Batch> all;
    for (std::uint64_t batch = 0; batch < batchCount; ++batch)
        all.push_back({family, batch * size, size});
    return all;
}

/// Scenarios that fill the memory are long.
std::vector<Batch> longBatches(Family family, std::uint64_t batchCount, std::uint64_t size) {
    return batches(family, kStride == 1 ? batchCount : 1, size);
}

std::string nameOf(const testing::TestParamInfo<Batch>& info) {
    return "From" + std::to_string(seedOf(info.param.family, info.param.first));
}

INSTANTIATE_TEST_SUITE_P(WholeSamples, BitExact, testing::ValuesIn(batches(Family::kWholeSamples, 3, 24)),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(Linear, BitExact, testing::ValuesIn(batches(Family::kLinear, 3, 24)), nameOf);
INSTANTIATE_TEST_SUITE_P(Cubic, BitExact, testing::ValuesIn(batches(Family::kCubic, 3, 24)), nameOf);
INSTANTIATE_TEST_SUITE_P(ModeChanges, BitExact, testing::ValuesIn(batches(Family::kModeChanges, 3, 24)),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(Fades, BitExact, testing::ValuesIn(batches(Family::kFades, 3, 24)), nameOf);
INSTANTIATE_TEST_SUITE_P(Gates, BitExact, testing::ValuesIn(batches(Family::kGates, 2, 24)), nameOf);
INSTANTIATE_TEST_SUITE_P(Programs, BitExact, testing::ValuesIn(batches(Family::kPrograms, 3, 24)), nameOf);
INSTANTIATE_TEST_SUITE_P(Rates, BitExact, testing::ValuesIn(batches(Family::kRates, 3, 24)), nameOf);
INSTANTIATE_TEST_SUITE_P(HostileHost, BitExact, testing::ValuesIn(batches(Family::kHostileHost, 4, 24)),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(ForeignModes, BitExact, testing::ValuesIn(batches(Family::kForeignModes, 2, 24)),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(ShortTimes, BitExact, testing::ValuesIn(batches(Family::kShortTimes, 4, 24)),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(WholeSamplesPastTheWrap, BitExact,
                         testing::ValuesIn(longBatches(Family::kWholeSamplesPastTheWrap, 2, 5)), nameOf);
INSTANTIATE_TEST_SUITE_P(LinearPastTheWrap, BitExact,
                         testing::ValuesIn(longBatches(Family::kLinearPastTheWrap, 3, 5)), nameOf);
INSTANTIATE_TEST_SUITE_P(CubicPastTheWrap, BitExact,
                         testing::ValuesIn(longBatches(Family::kCubicPastTheWrap, 2, 5)), nameOf);
INSTANTIATE_TEST_SUITE_P(ShortFeedback, BitExact, testing::ValuesIn(batches(Family::kShortFeedback, 4, 12)),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(CrossingGlides, BitExact, testing::ValuesIn(batches(Family::kCrossingGlides, 4, 12)),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(Interruptions, BitExact, testing::ValuesIn(batches(Family::kInterruptions, 4, 24)),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(NearSilence, BitExact, testing::ValuesIn(batches(Family::kNearSilence, 3, 16)),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(Extremes, BitExact, testing::ValuesIn(batches(Family::kExtremes, 3, 16)), nameOf);
INSTANTIATE_TEST_SUITE_P(AfterASound, BitExact, testing::ValuesIn(batches(Family::kAfterASound, 3, 8)),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(ShortBlocks, BitExact, testing::ValuesIn(batches(Family::kShortBlocks, 3, 16)),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(FullMemory, BitExact, testing::ValuesIn(longBatches(Family::kFullMemory, 4, 4)),
                         nameOf);

} // namespace
