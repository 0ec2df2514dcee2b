// What a host may do at once: instances that play on threads of their own while others come and go.
#include "instance.h"

#include <cstddef>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

using lv2_test::Instance;

constexpr int kBlocks = 300;
constexpr std::uint32_t kFrames = 64;

void play(Instance& instance, float step) {
    std::vector<float> left(kFrames, 0.5f), right(kFrames, -0.5f);
    float* const channels[] = {left.data(), right.data()};
    for (int block = 0; block < kBlocks; ++block) {
        float& control = instance.controls[static_cast<std::size_t>(block) % instance.controls.size()];
        control = control > 0.9f ? 0.0f : control + step;
        instance.process(channels, channels, kFrames);
    }
}

TEST(DoorsThreads, PlayWhileInstancesComeAndGo) {
    const lv2_test::Module module;
    const LV2_Descriptor& delay = *module.descriptor();
    Instance first(delay, 44100.0), second(delay, 96000.0);
    first.activate();
    second.activate();
    std::thread audio([&] { play(first, 0.05f); });
    std::thread otherAudio([&] { play(second, 0.07f); });
    for (int i = 0; i < 10; ++i) {
        Instance passing(delay, 48000.0);
        passing.activate();
        passing.run(0);
    }
    audio.join();
    otherAudio.join();
    first.deactivate();
    first.activate();
    play(first, 0.05f);
}

} // namespace
