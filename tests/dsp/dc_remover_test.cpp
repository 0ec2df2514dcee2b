// DC removal by rows against the plain filter, sample by sample.
#include "dsp/dc_remover.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <random>

namespace {

using namespace dsp;

/// The filter as one would write it, for one channel.
struct PlainFilter {
    float state = 0.0f;

    float process(float sample, float radiansPerSample) {
        state = (sample - state) * radiansPerSample * 32.0f + state;
        return sample - state;
    }
};

class DcRemoval : public testing::Test {
  protected:
    std::int32_t upTo(std::int32_t most) {
        return 1 + static_cast<std::int32_t>(random_() % static_cast<std::uint32_t>(most));
    }
    float noise(float level) { return level * (static_cast<float>(random_() & 0xFFFF) / 32768.0f - 1.0f); }

    /// Plays `frames` frames in rows and single frames, and EXPECTs the plain filter's bits.
    void play(std::int32_t frames, float leftLevel, float rightLevel) {
        while (frames > 0 && !HasFailure()) {
            const std::int32_t length = std::min(frames, upTo(kSubBlockFrames));
            frames -= length;
            StereoRow wet{}, removed{};
            for (std::size_t i = 0; i < static_cast<std::size_t>(length); ++i) {
                wet.left[i] = leftLevel == 0.0f ? 0.0f : noise(leftLevel);
                wet.right[i] = rightLevel == 0.0f ? 0.0f : noise(rightLevel);
            }
            if (length < 8)
                playFrames(wet, removed, length);
            else
                remover_.process(wet, removed, radiansPerSample_, length);
            for (std::size_t i = 0; i < static_cast<std::size_t>(length); ++i) {
                expectSameBits(removed.left[i], left_.process(wet.left[i], radiansPerSample_));
                expectSameBits(removed.right[i], right_.process(wet.right[i], radiansPerSample_));
            }
        }
    }

    float radiansPerSample_ = 6.28319f / 48000.0f;

  private:
    void playFrames(const StereoRow& wet, StereoRow& removed, std::int32_t frames) {
        for (std::size_t i = 0; i < static_cast<std::size_t>(frames); ++i) {
            const StereoSample sample = remover_.process({wet.left[i], wet.right[i]}, radiansPerSample_);
            removed.left[i] = sample.left;
            removed.right[i] = sample.right;
        }
    }

    static void expectSameBits(float sample, float expected) {
        EXPECT_EQ(std::bit_cast<std::uint32_t>(sample), std::bit_cast<std::uint32_t>(expected));
    }

    std::mt19937 random_{1};
    DcRemover remover_;
    PlainFilter left_, right_;
};

TEST_F(DcRemoval, HasThePlainFiltersBitsUnderASound) {
    play(20000, 1.0f, 0.25f);
}

TEST_F(DcRemoval, HasThePlainFiltersBitsUntilASoundHasSunkAndStopped) {
    play(2000, 1.0f, 1.0f);
    play(60000, 0.0f, 0.0f);
}

TEST_F(DcRemoval, HasThePlainFiltersBitsWhereOneChannelHasSunkAndTheOtherSounds) {
    play(2000, 1.0f, 1.0f);
    play(60000, 0.5f, 0.0f);
    play(60000, 0.0f, 0.5f);
    play(2000, 1.0f, 1.0f);
}

TEST_F(DcRemoval, HasThePlainFiltersBitsForSoundsAmongTheSubnormals) {
    for (const float level : {1e-30f, 1e-36f, 1e-38f, 1e-40f, 1e-43f}) {
        play(3000, level, 1.0f);
        play(3000, level, level);
        play(3000, 0.0f, level);
    }
}

TEST_F(DcRemoval, HasThePlainFiltersBitsAtAnyRate) {
    for (const float rate : {1.0f, 100.0f, 8000.0f, 192000.0f, 1e9f, 1e30f}) {
        radiansPerSample_ = 6.28319f / rate;
        play(300, 1.0f, 1e-39f);
        play(3000, 0.0f, 0.0f);
    }
}

TEST_F(DcRemoval, TakesNegativeZerosAsTheyAre) {
    StereoRow wet{}, removed{};
    wet.left.fill(-0.0f);
    DcRemover remover;
    remover.process(wet, removed, radiansPerSample_, kSubBlockFrames);
    PlainFilter plain;
    for (const float sample : removed.left)
        EXPECT_EQ(std::bit_cast<std::uint32_t>(sample),
                  std::bit_cast<std::uint32_t>(plain.process(-0.0f, radiansPerSample_)));
}

} // namespace
