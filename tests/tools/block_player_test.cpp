// Parameter changes and MIDI at their places, in blocks of any size.

#include "tools/render/block_player.h"

#include "desk/private_folder.h"
#include "tools/common/effect_library.h"

#include <gtest/gtest.h>

namespace {

using tools::render::BlockPlayer;
using tools::render::Events;

/// A loaded probe effect, playing a constant input.
class Playing {
  public:
    explicit Playing(const std::string& name, const Events& events, std::int32_t blockSize)
        : library_(tools::loadForGood(PROBES "/" + name + ".so")), plugin_(library_),
          player_(start(), events, blockSize), blockSize_(blockSize) {}

    /// The first output, `blocks` blocks long.
    std::vector<float> hear(int blocks) {
        std::vector<float> heard;
        const auto length = static_cast<std::size_t>(blockSize_);
        std::vector<std::vector<float>> in(2, std::vector<float>(length, input)), out = in;
        for (int i = 0; i < blocks; ++i) {
            player_.play(in, out, blockSize_);
            heard.insert(heard.end(), out[0].begin(), out[0].end());
            other.insert(other.end(), out[1].begin(), out[1].end());
        }
        return heard;
    }
    BlockPlayer& player() { return player_; }

    float input = 1.0f;
    std::vector<float> other; ///< the second output

  private:
    host::Plugin& start() {
        plugin_.start(44100.0f, 512);
        return plugin_;
    }

    desk::PrivateFolder folder_;
    const host::Library& library_;
    host::Plugin plugin_;
    BlockPlayer player_;
    std::int32_t blockSize_;
};

constexpr std::int32_t gain = 0;

TEST(BlockPlayer, ChangesAParameterOnItsVerySample) {
    Events events;
    events.parameters = {
        {0, gain, 0.5f}, {1, gain, 0.25f}, {63, gain, 0.75f}, {64, gain, 0.125f}, {1000, gain, 0.0f}};
    for (std::int32_t blockSize : {1, 16, 64, 65, 512}) {
        const auto heard = Playing("probe", events, blockSize).hear(1200 / blockSize + 1);
        EXPECT_EQ(heard[0], 0.5f) << blockSize;
        EXPECT_EQ(heard[1], 0.25f) << blockSize;
        EXPECT_EQ(heard[62], 0.25f) << blockSize;
        EXPECT_EQ(heard[63], 0.75f) << blockSize;
        EXPECT_EQ(heard[64], 0.125f) << blockSize;
        EXPECT_EQ(heard[999], 0.125f) << blockSize;
        EXPECT_EQ(heard[1000], 0.0f) << blockSize;
    }
}

TEST(BlockPlayer, SplitsABlockOnlyWhereAChangeLiesWithin) {
    Events events;
    events.parameters = {{64, gain, 0.5f}, {100, gain, 0.5f}, {100, gain, 0.6f}};
    const auto heard = Playing("probe_blocks", events, 64).hear(3);
    EXPECT_EQ(heard[0] * 65536.0f, 64.0f);
    EXPECT_EQ(heard[64] * 65536.0f, 36.0f);
    EXPECT_EQ(heard[100] * 65536.0f, 28.0f);
    EXPECT_EQ(heard[128] * 65536.0f, 64.0f);
}

TEST(BlockPlayer, LetsTheLastOfSeveralChangesAtOnceWin) {
    Events events;
    events.parameters = {{10, gain, 0.5f}, {10, gain, 0.75f}};
    EXPECT_EQ(Playing("probe", events, 64).hear(1)[10], 0.75f);
}

TEST(BlockPlayer, SendsMidiAheadOfItsBlockWithItsDistance) {
    Events events;
    events.midi = {{0, {0x90, 60, 127}}, {63, {0x90, 60, 127}}, {64, {0x90, 60, 127}}, {200, {0xB0, 1, 127}}};
    for (std::int32_t blockSize : {1, 64, 100, 512}) {
        Playing playing("probe", events, blockSize);
        playing.input = 0.0f;
        const auto heard = playing.hear(600 / blockSize + 1);
        for (std::size_t i = 0; i < heard.size(); ++i) {
            EXPECT_EQ(heard[i], i == 0 || i == 63 || i == 64 ? 1.0f : 0.0f) << i << " of " << blockSize;
            EXPECT_EQ(playing.other[i], i == 200 ? 1.0f : 0.0f) << i << " of " << blockSize;
        }
    }
}

TEST(BlockPlayer, KeepsMidiInPlaceWhereABlockIsSplit) {
    Events events;
    events.parameters = {{30, gain, 0.0f}};
    events.midi = {{29, {0x90, 60, 127}}, {30, {0x90, 60, 127}}, {40, {0x90, 60, 127}}};
    Playing playing("probe", events, 64);
    playing.input = 0.0f;
    const auto heard = playing.hear(1);
    for (std::size_t i = 0; i < heard.size(); ++i)
        EXPECT_EQ(heard[i], i == 29 || i == 30 || i == 40 ? 1.0f : 0.0f) << i;
}

TEST(BlockPlayer, LetsNoEventFallIntoThePreRoll) {
    Events events;
    events.parameters = {{0, gain, 0.5f}};
    events.midi = {{5, {0x90, 60, 127}}};
    Playing playing("probe", events, 64);
    playing.player().preRoll(1000);
    EXPECT_EQ(playing.player().position(), 0);
    EXPECT_EQ(playing.player().eventsAhead(), 2u);
    const auto heard = playing.hear(1);
    EXPECT_EQ(heard[0], 0.5f);
    EXPECT_EQ(heard[5], 1.5f);
    EXPECT_EQ(playing.player().eventsAhead(), 0u);
}

} // namespace
