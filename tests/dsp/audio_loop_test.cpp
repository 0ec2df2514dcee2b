// The audio loop with its assertions on, whatever the build.
#include "dsp/delay_engine.h"
#include "dsp/single_entry.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <thread>
#include <vector>

namespace {

/// Renders blocks for at most half a minute.
void renderForLong(dsp::AudioLoop& loop, dsp::EngineControls& controls) {
    constexpr std::int32_t frames = 4096;
    std::vector<float> left(frames), right(frames);
    float* const buffers[] = {left.data(), right.data()};
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (std::chrono::steady_clock::now() < end)
        loop.processReplacing(controls, buffers, buffers, frames);
}

void renderOnTwoThreads() {
    const auto loop = std::make_unique<dsp::AudioLoop>();
    dsp::EngineControls controls;
    controls.reset();
    std::thread other([&] { renderForLong(*loop, controls); });
    renderForLong(*loop, controls);
    other.join();
}

TEST(AudioLoopDeathTest, EndsADebugBuildWhereTwoThreadsRenderAtOnce) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(renderOnTwoThreads(), "two threads render at once");
}

TEST(SingleEntry, LetsOneInAtATime) {
    dsp::SingleEntry entry;
    EXPECT_TRUE(entry.enter());
    EXPECT_FALSE(entry.enter());
    EXPECT_TRUE(entry.leave());
    EXPECT_TRUE(entry.enter());
}

} // namespace
