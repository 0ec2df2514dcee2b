// What a CLAP host's audio thread calls waits for nothing: no allocation, no lock, no system call, from the
// first block on and whatever the events are.
#include "clap_module.h"
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

using clap_test::Events;
using clap_test::Host;
using clap_test::Instance;
using clap_test::Module;

constexpr std::uint32_t kLongestBlock = 4096;
constexpr clap_id kProgram = 1000;
constexpr clap_id kTaps = 1, kSet = 8;

/// A fresh instance, and buffers that are in memory already.
class ClapAudioPath : public testing::Test {
  protected:
    ClapAudioPath() {
        std::mt19937 random(1);
        for (std::size_t i = 0; i < kLongestBlock; ++i) {
            noise[i] = static_cast<float>(random() >> 8) * 0x1p-23f - 1.0f;
            left[i] = right[i] = 1.0f;
        }
        instance.activate();
    }

    void process(std::uint32_t frames, const clap_input_events_t* events = nullptr) {
        float *inputs[] = {noise.data(), noise.data()}, *outputs[] = {left.data(), right.data()};
        clap_audio_buffer_t in = {inputs, nullptr, 2, 0, 0}, out = {outputs, nullptr, 2, 0, 0};
        const clap_output_events_t told = {this,
                                           [](const clap_output_events_t* self, const clap_event_header_t*) {
                                               ++static_cast<ClapAudioPath*>(self->ctx)->numTold;
                                               return true;
                                           }};
        instance.process({-1, frames, nullptr, &in, &out, 1, 1, events, &told});
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

    const Module module;
    Host host;
    Instance instance{module.entry(), host};
    std::array<float, kLongestBlock> noise, left, right;
    int numTold = 0;
};

TEST_F(ClapAudioPath, SeesTheAllocationsOfAnInstanceThatComesAndGoes) {
    startWatchingCalls();
    {
        Instance other(module.entry(), host);
    }
    EXPECT_GT(stopWatchingCalls().count, 0);
}

TEST_F(ClapAudioPath, DoesNotWaitInItsFirstBlock) {
    expectNoWaiting("the first block", [this] { process(512); });
}

TEST_F(ClapAudioPath, DoesNotWaitForBlocksOfAnyLength) {
    process(512);
    expectNoWaiting("blocks", [this] {
        for (const std::uint32_t frames : {0u, 1u, 3u, 64u, 65u, 512u, 4096u})
            process(frames);
    });
}

TEST_F(ClapAudioPath, DoesNotWaitForValues) {
    for (clap_id id = 0; id < 17; ++id) {
        Events events;
        std::uint32_t time = 0;
        for (const double value : {0.0, 0.25, 1.0, -1.0, 1e300, std::numeric_limits<double>::quiet_NaN()})
            events.value(id, value, time += 9);
        const clap_input_events_t* const list = events.list();
        expectNoWaiting("values of " + std::to_string(id), [this, list] { process(64, list); });
    }
}

TEST_F(ClapAudioPath, DoesNotWaitForProgramsAndControllers) {
    Events events;
    events.value(kProgram, 5.0, 10).midi(0xC0, 9, 0, 20).midi(0xC0, 0x85, 0, 20);
    for (int controller = 0; controller < 256; ++controller)
        events.midi(0xB0, static_cast<std::uint8_t>(controller), 99, 30);
    events.midi(0x90, 60, 100, 40).value(kProgram, 7.0, 5);
    const clap_input_events_t* const list = events.list();
    numTold = 0;
    expectNoWaiting("programs and controllers", [this, list] { process(64, list); });
    EXPECT_GE(numTold, 3 * 18);
}

TEST_F(ClapAudioPath, DoesNotWaitInAFlush) {
    Events events;
    events.value(kTaps, 0.5).value(kProgram, 3.0);
    const clap_input_events_t* const list = events.list();
    const clap_output_events_t told = {
        nullptr, [](const clap_output_events_t*, const clap_event_header_t*) { return true; }};
    expectNoWaiting("a flush", [&] { instance.flush(list, &told); });
}

TEST_F(ClapAudioPath, DoesNotWaitWhereAWindowHasBeenMade) {
    ASSERT_TRUE(instance.window().create(instance.plugin(), instance.windowApi(), false));
    Events events;
    for (clap_id id = 0; id < 17; ++id)
        events.value(id, 0.3, id);
    events.value(kProgram, 5.0, 20).midi(0xC0, 9, 0, 30);
    const clap_input_events_t* const list = events.list();
    expectNoWaiting("values beside a window", [this, list] { process(64, list); });
    instance.window().destroy(instance.plugin());
    expectNoWaiting("values behind a window", [this, list] { process(64, list); });
}

TEST_F(ClapAudioPath, DoesNotWaitWherePortsAreMissing) {
    clap_process_t block = {};
    block.frames_count = 5000;
    expectNoWaiting("a block with no port", [&] { instance.process(block); });
}

TEST_F(ClapAudioPath, DoesNotWaitWhenItIsResetBetweenBlocks) {
    process(4096);
    expectNoWaiting("a reset", [this] {
        instance.reset();
        process(512);
    });
}

TEST_F(ClapAudioPath, FindsAllOfItsMemoryInPlace) {
    instance.set(kTaps, 0.0);
    instance.set(kSet, 0.0);
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
