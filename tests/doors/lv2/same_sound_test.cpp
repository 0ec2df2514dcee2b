// A sound that is kept with one door is the same behind the other: a chunk in a VST 2.4 project, the values
// of the same program at the ports here.
#include "instance.h"

#include "host/plugin.h"
#include "support/plugin_folder.h"

#include <array>
#include <cstring>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace conversation;

constexpr std::int32_t kBlock = 512;
constexpr int kBlocks = 120;

/// The program's bytes in the delivered bank.
Bytes factoryProgram(std::size_t number) {
    const Bytes bank = readFile(QUILLON_LV2_BUNDLE "/default.fxb").value();
    const auto begin = bank.begin() + static_cast<std::ptrdiff_t>(160 + number * kProgramSize);
    return {begin, begin + static_cast<std::ptrdiff_t>(kProgramSize)};
}

class SameSound : public QuietPlugin, public testing::WithParamInterface<std::size_t> {};

TEST_P(SameSound, ComesFromAChunkAndFromThePorts) {
    const Bytes bytes = factoryProgram(GetParam());
    std::array<float, parameters::kNumLiveParameters> values;
    std::memcpy(values.data(), bytes.data(), sizeof values);

    host::HostBehaviour silent;
    silent.record = false;
    host::Plugin plugin(library(), silent);
    plugin.open();
    plugin.setSampleRate(48000.0f);
    plugin.setChunk(bytes, true);
    plugin.resume();
    // What a filter sounds like depends on what has touched it last: here as there its parameter.
    for (std::int32_t id = 0; id < parameters::kNumLiveParameters; ++id)
        plugin.setParameter(id, values[static_cast<std::size_t>(id)]);

    const lv2_test::Module lv2;
    lv2_test::Instance instance(*lv2.descriptor(), 48000.0);
    instance.controls = values;
    instance.activate();

    std::mt19937 random(1);
    std::vector<float> left(kBlock), right(kBlock);
    std::vector<float> ours[2] = {left, left}, theirs[2] = {left, left};
    float* const inputs[] = {left.data(), right.data()};
    float* const ourOutputs[] = {ours[0].data(), ours[1].data()};
    float* theirOutputs[] = {theirs[0].data(), theirs[1].data()};
    float* theirInputs[] = {left.data(), right.data()};
    bool isHeard = false;
    for (int block = 0; block < kBlocks; ++block) {
        for (std::size_t i = 0; i < kBlock; ++i) {
            left[i] = static_cast<float>(random() >> 8) * 0x1p-23f - 1.0f;
            right[i] = static_cast<float>(random() >> 8) * 0x1p-23f - 1.0f;
        }
        instance.process(inputs, ourOutputs, kBlock);
        plugin.process(theirInputs, theirOutputs, kBlock);
        for (std::size_t channel = 0; channel < 2; ++channel)
            ASSERT_EQ(std::memcmp(ours[channel].data(), theirs[channel].data(), kBlock * sizeof(float)), 0)
                << "block " << block << ", channel " << channel;
        isHeard = isHeard || ours[0] != left;
    }
    EXPECT_TRUE(isHeard);
}

INSTANTIATE_TEST_SUITE_P(FactoryPrograms, SameSound, testing::Values(0, 9, 39, 64, 100, 127));

} // namespace
