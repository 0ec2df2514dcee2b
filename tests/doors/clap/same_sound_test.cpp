// A sound that is kept with one door is the same behind the other: a chunk in a VST 2.4 project, a state or
// the values of the same program here.
#include "clap_module.h"

#include "host/plugin.h"
#include "support/plugin_folder.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace conversation;
using Values = std::array<float, parameters::kNumLiveParameters>;

constexpr std::size_t kBlock = 512;
constexpr int kBlocks = 120;

/// The bytes of all programs in the delivered bank.
Bytes factoryPrograms() {
    const Bytes file = readFile(QUILLON_CLAP "/default.fxb").value();
    return {file.begin() + 160, file.end()};
}

/// A state of the bank with this program selected.
Bytes stateOf(const Bytes& bank, std::size_t number) {
    constexpr std::size_t valuesAt = 12, bankAt = valuesAt + sizeof(Values);
    Bytes state(bankAt + bank.size());
    const std::array<std::uint8_t, valuesAt> head = {
        'Q', 'l', 'v', 'd', 1, 0, 0, 0, static_cast<std::uint8_t>(number)};
    std::copy(head.begin(), head.end(), state.begin());
    std::memcpy(&state[valuesAt], &bank[number * kProgramSize], sizeof(Values));
    std::memcpy(&state[bankAt], bank.data(), bank.size());
    return state;
}

class SameSound : public QuietPlugin, public testing::WithParamInterface<std::size_t> {};

TEST_P(SameSound, ComesFromAChunkAStateAndValues) {
    const Bytes bank = factoryPrograms();
    const auto begin = bank.begin() + static_cast<std::ptrdiff_t>(GetParam() * kProgramSize);
    const Bytes chunk(begin, begin + static_cast<std::ptrdiff_t>(kProgramSize));
    Values values;
    std::memcpy(values.data(), chunk.data(), sizeof values);

    host::HostBehaviour silent;
    silent.record = false;
    host::Plugin plugin(library(), silent);
    plugin.open();
    plugin.setSampleRate(48000.0f);
    plugin.setChunk(chunk, true);
    plugin.resume();
    // What a filter sounds like depends on what has touched it last: here as there its parameter.
    for (std::int32_t id = 0; id < parameters::kNumLiveParameters; ++id)
        plugin.setParameter(id, values[static_cast<std::size_t>(id)]);

    const clap_test::Module clap;
    clap_test::Host hosts[2];
    clap_test::Instance loaded(clap.entry(), hosts[0]), set(clap.entry(), hosts[1]);
    ASSERT_TRUE(loaded.load(stateOf(bank, GetParam())));
    for (std::size_t id = 0; id < values.size(); ++id)
        set.set(static_cast<clap_id>(id), clap_door::hostValueOf(static_cast<std::int32_t>(id), values[id]));
    loaded.activate(48000.0);
    set.activate(48000.0);

    std::mt19937 random(1);
    std::vector<float> left(kBlock), right(kBlock);
    std::vector<float> rows[3][2] = {{left, left}, {left, left}, {left, left}};
    float* inputs[] = {left.data(), right.data()};
    float* outputs[3][2];
    for (std::size_t door = 0; door < 3; ++door)
        for (std::size_t channel = 0; channel < 2; ++channel)
            outputs[door][channel] = rows[door][channel].data();
    bool isHeard = false;
    for (int block = 0; block < kBlocks; ++block) {
        for (std::size_t i = 0; i < kBlock; ++i) {
            left[i] = static_cast<float>(random() >> 8) * 0x1p-23f - 1.0f;
            right[i] = static_cast<float>(random() >> 8) * 0x1p-23f - 1.0f;
        }
        plugin.process(inputs, outputs[0], kBlock);
        loaded.process(inputs, outputs[1], kBlock);
        set.process(inputs, outputs[2], kBlock);
        for (std::size_t channel = 0; channel < 2; ++channel) {
            const void* const chunks = rows[0][channel].data();
            ASSERT_EQ(std::memcmp(rows[1][channel].data(), chunks, kBlock * sizeof(float)), 0)
                << "state, block " << block << ", channel " << channel;
            ASSERT_EQ(std::memcmp(rows[2][channel].data(), chunks, kBlock * sizeof(float)), 0)
                << "values, block " << block << ", channel " << channel;
        }
        isHeard = isHeard || rows[0][0] != left;
    }
    EXPECT_TRUE(isHeard);
}

INSTANTIATE_TEST_SUITE_P(FactoryPrograms, SameSound, testing::Values(0, 9, 39, 64, 100, 127));

} // namespace
