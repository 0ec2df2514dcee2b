// What an LV2 host's audio thread calls waits for nothing: no allocation, no lock, no system call, from the
// first block on and whatever the controls do.
#include "doors/lv2/instance.h"
#include "system_call_trap.h"
#include "watched_calls.h"

#include <sys/resource.h>

#include <array>
#include <functional>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace realtime {
namespace {

using namespace parameters;

constexpr std::uint32_t kLongestBlock = 4096;

/// A fresh instance, and buffers that are in memory already.
class Lv2AudioPath : public testing::Test {
  protected:
    Lv2AudioPath() {
        std::mt19937 random(1);
        for (std::size_t i = 0; i < kLongestBlock; ++i) {
            noise[i] = static_cast<float>(random() >> 8) * 0x1p-23f - 1.0f;
            left[i] = right[i] = 1.0f;
        }
        instance.activate();
    }

    void process(std::uint32_t frames) {
        float *inputs[] = {noise.data(), noise.data()}, *outputs[] = {left.data(), right.data()};
        instance.process(inputs, outputs, frames);
    }

    /// The work is done twice: in a copy of the process that may not enter the system, and here.
    void expectNoWaiting(const std::string& what, const std::function<void()>& work) {
        const TrappedWork end = runWithoutSystemCalls(work);
        if (end.possible) {
            EXPECT_FALSE(end.systemCall) << what << ": system call " << end.systemCall.value_or(-1);
            EXPECT_TRUE(end.finished) << what << " did not finish";
        }
        startWatchingCalls();
        work();
        const WatchedCalls calls = stopWatchingCalls();
        EXPECT_EQ(calls.count, 0) << what << ": first " << (calls.first ? calls.first : "");
    }

    const lv2_test::Module module;
    lv2_test::Instance instance{*module.descriptor(), 44100.0};
    std::array<float, kLongestBlock> noise, left, right;
};

TEST_F(Lv2AudioPath, SeesTheAllocationsOfAnInstanceThatComesAndGoes) {
    startWatchingCalls();
    {
        lv2_test::Instance other(*module.descriptor(), 44100.0);
    }
    EXPECT_GT(stopWatchingCalls().count, 0);
}

TEST_F(Lv2AudioPath, DoesNotWaitInItsFirstBlock) {
    expectNoWaiting("the first block", [this] { process(512); });
}

TEST_F(Lv2AudioPath, DoesNotWaitForBlocksOfAnyLength) {
    process(512);
    expectNoWaiting("blocks", [this] {
        for (const std::uint32_t frames : {0u, 1u, 3u, 64u, 65u, 512u, 4096u})
            process(frames);
    });
}

TEST_F(Lv2AudioPath, DoesNotWaitWhenControlsChange) {
    for (std::size_t id = 0; id < kNumLiveParameters; ++id)
        expectNoWaiting("control " + std::to_string(id), [this, id] {
            for (const float value :
                 {0.0f, 0.25f, 1.0f, -1.0f, 1e30f, std::numeric_limits<float>::quiet_NaN()}) {
                instance.controls[id] = value;
                process(64);
            }
        });
}

TEST_F(Lv2AudioPath, DoesNotWaitWherePortsAreMissing) {
    for (std::uint32_t port = 0; port < lv2_door::kNumPorts; ++port)
        instance.connect(port, nullptr);
    expectNoWaiting("a block with no port", [this] { instance.run(5000); });
}

TEST_F(Lv2AudioPath, DoesNotWaitWhenItIsActivatedBetweenBlocks) {
    process(4096);
    expectNoWaiting("activation", [this] {
        instance.deactivate();
        instance.activate();
        process(512);
    });
}

TEST_F(Lv2AudioPath, FindsAllOfItsMemoryInPlace) {
    instance.controls[kTaps] = instance.controls[kSet] = 0.0f;
    process(kLongestBlock); // brings the code itself in
    rusage before = {}, after = {};
    getrusage(RUSAGE_THREAD, &before);
    for (int block = 0; block < 1100; ++block)
        process(kLongestBlock);
    getrusage(RUSAGE_THREAD, &after);
    // The memory has 4096 pages; the few that the system moves about meanwhile are not the effect's doing.
    EXPECT_LT(after.ru_minflt - before.ru_minflt, 400);
}

} // namespace
} // namespace realtime
