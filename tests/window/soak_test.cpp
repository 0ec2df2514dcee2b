// The whole product at once, for as long as one likes: audio on a thread of its own, a hand on the knobs,
// programs by MIDI, projects saved and loaded, the window opened and closed. QUILLON_SOAK_SECONDS=300 makes
// it five minutes; without it a few rounds show that it runs at all.
#include "support/shown_editor.h"

#include "../platform/child_process.h"

#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <random>
#include <thread>
#include <unistd.h>

namespace {

using namespace test;
using namespace vst2;

/// Memory that this process really uses, in bytes.
std::size_t memoryInUse() {
    std::ifstream numbers("/proc/self/statm");
    std::size_t total = 0, resident = 0;
    numbers >> total >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

class Soak : public EditorOnScreen {
  protected:
    static bool goesOn(int round) {
        static const char* const seconds = std::getenv("QUILLON_SOAK_SECONDS");
        static const auto start = std::chrono::steady_clock::now();
        if (!seconds)
            return round < 12;
        return std::chrono::steady_clock::now() - start < std::chrono::seconds(std::atoi(seconds));
    }
};

TEST_F(Soak, StandsAWholeEveningOnStage) {
    auto& editor = show();
    std::atomic<bool> plays = true;
    std::atomic<bool> isFinite = true;
    std::thread audio([&] {
        std::vector<float> left(256), right(256);
        float* buffers[] = {left.data(), right.data()};
        for (int frame = 0; plays; frame += 256) {
            for (std::size_t i = 0; i < left.size(); ++i)
                left[i] = right[i] = std::sin(static_cast<float>(frame + static_cast<int>(i)) * 0.05f);
            editor.plugin().process(buffers, buffers, 256);
            for (const float sample : left)
                isFinite = isFinite && std::isfinite(sample);
        }
    });

    std::mt19937 random(20261121);
    const auto upTo = [&random](int limit) {
        return static_cast<int>(random() % static_cast<unsigned>(limit));
    };
    std::size_t memoryAfterWarmUp = 0;
    int rounds = 0;
    for (; goesOn(rounds); ++rounds) {
        const float before = editor.value(6);
        editor.drag(30, 30, 30 + upTo(60) - 30, before < 0.5f ? -30 : 90,
                    [&] { return editor.value(6) != before; });
        editor.click(218, 18);
        editor.click(300, 18);
        editor.plugin().setParameter(upTo(17), static_cast<float>(upTo(101)) / 100.0f);
        const unsigned char message[] = {0xC0, static_cast<unsigned char>(upTo(128)), 0};
        host::MidiMessage programChange;
        std::copy(std::begin(message), std::end(message), programChange.bytes);
        editor.plugin().sendMidi({&programChange, 1});
        editor.plugin().setChunk(editor.plugin().getChunk(false), false);
        editor.plugin().setChunk(editor.plugin().getChunk(true), true);
        for (int i = 0; i < 20; ++i)
            editor.serve();
        if (rounds % 3 == 2) {
            editor.close();
            ASSERT_TRUE(editor.open());
            ASSERT_TRUE(editor.showsPixel(kSkinWidth - 2, 2, kGrey));
        }
        editor.plugin().clearCalls();
        if (rounds == 8)
            memoryAfterWarmUp = memoryInUse();
    }
    const std::size_t memoryAtTheEnd = memoryInUse();
    plays = false;
    audio.join();
    EXPECT_TRUE(isFinite);
    RecordProperty("rounds", rounds);
    RecordProperty("memory", std::to_string(memoryAfterWarmUp) + " to " + std::to_string(memoryAtTheEnd));
    // The sanitizers keep what is freed for a while.
    const std::size_t mayGrow = QUILLON_SANITIZED ? std::size_t{1} << 40 : std::size_t{8} << 20;
    EXPECT_LT(memoryAtTheEnd, memoryAfterWarmUp + mayGrow);
}

} // namespace
