// What a host's audio thread may call must never wait for anything: it allocates nothing, locks nothing and
// enters no system call, from the very first block on.
#include "desk/measuring.h"
#include "support/plugin_folder.h"
#include "system_call_trap.h"
#include "watched_calls.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <random>
#include <string>

namespace realtime {
namespace {

using namespace vst2;
using namespace conversation;

using Work = std::function<void()>;

/// The allocations and locks of a piece of work, in words; empty where there are none.
std::string callsIn(const Work& work) {
    startWatchingCalls();
    work();
    const WatchedCalls calls = stopWatchingCalls();
    return calls.count == 0 ? "" : std::to_string(calls.count) + " calls, the first of " + calls.first;
}

std::intptr_t hostOf2400(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void*, float) {
    return opcode == audioMasterVersion ? kVstVersion : 0;
}

volatile std::size_t someSize = 100;
volatile bool never = false;
void* volatile lastBlock = nullptr;

/// Gives a block back. It passes through a place that the compiler may not reason about: a block that nobody
/// can see would never be asked for in the first place.
void release(void* block) {
    lastBlock = block;
    std::free(lastBlock);
}

class Detector : public ::testing::Test {};

TEST_F(Detector, SeesEveryWayToAllocate) {
    EXPECT_EQ(callsIn([] { release(std::malloc(someSize)); }), "2 calls, the first of malloc");
    EXPECT_EQ(callsIn([] { release(std::calloc(someSize, 2)); }), "2 calls, the first of calloc");
    void* grown = std::malloc(someSize);
    EXPECT_EQ(callsIn([&] { release(std::realloc(grown, 2 * someSize)); }), "2 calls, the first of realloc");
    EXPECT_EQ(callsIn([] { release(std::aligned_alloc(64, 64 * someSize)); }),
              "2 calls, the first of aligned_alloc");
    EXPECT_EQ(callsIn([] {
                  void* block = nullptr;
                  if (posix_memalign(&block, 64, someSize) == 0)
                      release(block);
              }),
              "2 calls, the first of posix_memalign");
}

TEST_F(Detector, SeesNewAndDelete) {
    std::unique_ptr<int[]> array;
    EXPECT_EQ(callsIn([&] { array = std::make_unique<int[]>(someSize); }), "1 calls, the first of malloc");
    EXPECT_EQ(callsIn([&] { array.reset(); }), "1 calls, the first of free");
}

TEST_F(Detector, SeesALock) {
    std::mutex mutex;
    EXPECT_EQ(callsIn([&] { const std::lock_guard guard(mutex); }),
              "2 calls, the first of pthread_mutex_lock");
}

TEST_F(Detector, SeesTheGuardOfAStaticObject) {
    EXPECT_EQ(callsIn([] {
                  static const int size = static_cast<int>(someSize);
                  if (size == 0)
                      std::abort();
              }),
              "1 calls, the first of __cxa_guard_acquire");
}

class DetectorInTheLibrary : public QuietPlugin {};

TEST_F(DetectorInTheLibrary, SeesTheAllocationsOfAnInstanceThatComesAndGoes) {
    const host::Library& loaded = library();
    AEffect* effect = nullptr;
    EXPECT_NE(callsIn([&] { effect = loaded.entryPoint()(hostOf2400); }), "");
    EXPECT_NE(callsIn([&] { effect->dispatcher(effect, effClose, 0, 0, nullptr, 0.0f); }), "");
}

TEST_F(Detector, IsQuietWhereNothingHappens) {
    EXPECT_EQ(callsIn([] { someSize = someSize + 1; }), "");
    EXPECT_EQ(callsIn([] {
                  if (never)
                      release(std::malloc(1));
              }),
              "");
}

TEST_F(Detector, SeesASystemCall) {
    const TrappedWork end = runWithoutSystemCalls([] { syscall(SYS_getppid); });
    if (!end.possible)
        GTEST_SKIP() << "this system has no filters for system calls";
    EXPECT_FALSE(end.finished);
    EXPECT_EQ(end.systemCall, SYS_getppid);
}

TEST_F(Detector, SeesTheSystemCallOfALargeAllocation) {
    const TrappedWork end = runWithoutSystemCalls([] { release(std::malloc(someSize * 10000000)); });
    if (!end.possible)
        GTEST_SKIP() << "this system has no filters for system calls";
    EXPECT_EQ(end.systemCall, SYS_mmap);
}

TEST_F(Detector, LetsWorkWithoutSystemCallsFinish) {
    const TrappedWork end = runWithoutSystemCalls([] { someSize = someSize + 1; });
    if (!end.possible)
        GTEST_SKIP() << "this system has no filters for system calls";
    EXPECT_TRUE(end.finished);
    EXPECT_FALSE(end.systemCall);
}

/// A fresh instance of the library, a host that keeps no records, and buffers that are in memory already.
class AudioPath : public QuietPlugin {
  protected:
    static constexpr std::int32_t kLongestBlock = 4096;

    AudioPath() {
        BankImage map(Bytes(84, 0xFF));
        writeFile(here(kMapFile), map.littleEndian(4 * kBaseLength, 16).littleEndian(4 * kCurve, 17).bytes());
        host::HostBehaviour silent;
        silent.record = false;
        plugin = std::make_unique<host::Plugin>(library(), silent);
        std::mt19937 random(1);
        std::uniform_real_distribution<float> values(-1.0f, 1.0f);
        for (std::size_t i = 0; i < kLongestBlock; ++i) {
            noise[i] = values(random);
            left[i] = right[i] = 1.0f;
        }
    }

    AEffect* effect() { return plugin->effect(); }

    /// EXPECTs that the work neither allocates nor locks nor enters the system. It is done twice: in a copy
    /// of the process, where it may not do the last, and here.
    void expectNoWaiting(const std::string& what, const Work& work) {
        const TrappedWork end = runWithoutSystemCalls(work);
        if (end.possible) {
            EXPECT_FALSE(end.systemCall) << what << ": system call " << end.systemCall.value_or(-1);
            EXPECT_TRUE(end.finished) << what << " did not finish";
        }
        EXPECT_EQ(callsIn(work), "") << what;
    }

    void process(std::int32_t frames) {
        float *inputs[] = {noise.data(), noise.data()}, *outputs[] = {left.data(), right.data()};
        effect()->processReplacing(effect(), inputs, outputs, frames);
    }

    std::unique_ptr<host::Plugin> plugin;
    std::array<float, kLongestBlock> noise, left, right;
};

TEST_F(AudioPath, DoesNotWaitInItsFirstBlock) {
    expectNoWaiting("the first block", [this] { process(512); });
}

TEST_F(AudioPath, DoesNotWaitInAnyModeWithAnyNumberOfTaps) {
    plugin->start(44100.0f, 512);
    for (const float set : {0.0f, 0.5f, 1.0f})
        for (const int taps : {1, 2, 39, 101, 102, 128}) {
            plugin->setParameter(kSet, set);
            plugin->setParameter(kTaps, (static_cast<float>(taps) - 0.5f) / 127.0f);
            expectNoWaiting(std::to_string(taps) + " taps with \"Set\" at " + std::to_string(set), [this] {
                for (const std::int32_t frames : {0, -1, 1, 3, 64, 65, 512, 4096})
                    process(frames);
            });
        }
}

TEST_F(AudioPath, DoesNotWaitWhenBuffersAreShared) {
    expectNoWaiting("processing in place", [this] {
        float *straight[] = {left.data(), right.data()}, *crossed[] = {right.data(), left.data()};
        effect()->processReplacing(effect(), straight, straight, 512);
        effect()->processReplacing(effect(), straight, crossed, 512);
    });
}

TEST_F(AudioPath, DoesNotWaitWhileTheMemoryWrapsAround) {
    plugin->start(44100.0f, 512);
    plugin->setParameter(kTaps, 0.0f);
    plugin->setParameter(kSet, 0.0f);
    expectNoWaiting("more than the memory holds", [this] {
        for (int block = 0; block < 1100; ++block)
            process(kLongestBlock);
    });
}

TEST_F(AudioPath, DoesNotWaitWhenParametersChange) {
    plugin->start(44100.0f, 512);
    for (std::int32_t id = -1; id <= kParameters; ++id)
        expectNoWaiting("parameter " + std::to_string(id), [this, id] {
            for (const float value :
                 {0.0f, 0.25f, 1.0f, -1.0f, 1e30f, std::numeric_limits<float>::quiet_NaN()}) {
                effect()->setParameter(effect(), id, value);
                effect()->getParameter(effect(), id);
                process(64);
            }
        });
}

/// An event list as a host has it ready.
struct EventList {
    explicit EventList(unsigned char status, unsigned char first, unsigned char second) {
        event.type = kVstMidiType;
        event.byteSize = 24;
        event.midiData[0] = static_cast<char>(status);
        event.midiData[1] = static_cast<char>(first);
        event.midiData[2] = static_cast<char>(second);
        list.numEvents = 1;
        list.events[0] = reinterpret_cast<VstEvent*>(&event);
    }
    VstMidiEvent event = {};
    VstEvents list = {};
};

TEST_F(AudioPath, DoesNotWaitForMidi) {
    plugin->start(44100.0f, 512);
    for (const unsigned status : {0x80u, 0x90u, 0xA0u, 0xB0u, 0xC0u, 0xD0u, 0xE0u, 0xF0u})
        for (const unsigned first : {0u, 16u, 17u, 127u, 128u, 255u}) {
            EventList events(static_cast<unsigned char>(status), static_cast<unsigned char>(first), 64);
            expectNoWaiting("MIDI " + std::to_string(status) + " " + std::to_string(first), [&] {
                effect()->dispatcher(effect(), effProcessEvents, 0, 0, &events.list, 0.0f);
                process(64);
            });
        }
}

TEST_F(AudioPath, DoesNotWaitWhenTheProgramChanges) {
    plugin->start(44100.0f, 512);
    process(4096);
    for (const std::int32_t program : {0, 1, 127, 128, -1})
        expectNoWaiting("program " + std::to_string(program), [this, program] {
            effect()->dispatcher(effect(), effSetProgram, 0, program, nullptr, 0.0f);
            process(64);
        });
}

TEST_F(AudioPath, DoesNotWaitWhenTheEffectIsSwitchedOrToldItsRate) {
    process(4096);
    const auto send = [this](std::int32_t opcode, std::intptr_t value, float opt) {
        effect()->dispatcher(effect(), opcode, 0, value, nullptr, opt);
    };
    expectNoWaiting("open", [&] { send(effOpen, 0, 0.0f); });
    expectNoWaiting("sample rate", [&] { send(effSetSampleRate, 0, 96000.0f); });
    expectNoWaiting("block size", [&] { send(effSetBlockSize, 4096, 0.0f); });
    expectNoWaiting("on", [&] { send(effMainsChanged, 1, 0.0f); });
    expectNoWaiting("a block after that", [this] { process(512); });
    expectNoWaiting("off", [&] { send(effMainsChanged, 0, 0.0f); });
}

TEST_F(AudioPath, NeedsNoMemoryForChunksAndNames) {
    Bytes bank = bytesOf(distinctPrograms());
    std::array<char, 64> text = {'N', 'e', 'w'};
    void* data = nullptr;
    const auto send = [this](std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr) {
        effect()->dispatcher(effect(), opcode, index, value, ptr, 0.0f);
    };
    EXPECT_EQ(callsIn([&] {
                  send(effSetChunk, 0, 14336, bank.data());
                  send(effSetChunk, 1, 112, bank.data());
                  send(effGetChunk, 0, 0, &data);
                  send(effGetChunk, 1, 0, &data);
                  send(effSetProgramName, 0, 0, text.data());
                  send(effGetProgramName, 0, 0, text.data());
                  send(effGetProgramNameIndexed, 9, 0, text.data());
              }),
              "");
}

TEST_F(AudioPath, FindsAllOfItsMemoryInPlace) {
    plugin->start(44100.0f, 512);
    plugin->setParameter(kTaps, 0.0f);
    plugin->setParameter(kSet, 0.0f);
    process(kLongestBlock); // brings the code itself in
    rusage before = {}, after = {};
    getrusage(RUSAGE_THREAD, &before);
    for (int block = 0; block < 1100; ++block)
        process(kLongestBlock);
    getrusage(RUSAGE_THREAD, &after);
    // The memory has 4096 pages; the few that the system moves about meanwhile are not the effect's doing.
    EXPECT_LT(after.ru_minflt - before.ru_minflt, 400);
}

/// New instances whose memory comes from the system untouched, in pages of the smallest size.
class NewInstance : public AudioPath {
  protected:
    NewInstance() {
        desk::takeLargeBlocksFresh();
        prctl(PR_SET_THP_DISABLE, 1, 0, 0, 0);
    }

    /// The fewest page faults of some work on a new instance: now and then the system adds some of its own.
    std::int64_t pageFaultsOf(const Work& prepare, const Work& work) {
        std::int64_t fewest = std::numeric_limits<std::int64_t>::max();
        for (int instance = 0; instance < 4; ++instance) {
            host::HostBehaviour silent;
            silent.record = false;
            plugin = std::make_unique<host::Plugin>(library(), silent);
            plugin->start(44100.0f, 512);
            prepare();
            const std::int64_t before = desk::pageFaultsOfThisThread();
            work();
            fewest = std::min(fewest, desk::pageFaultsOfThisThread() - before);
        }
        return fewest;
    }
};

TEST_F(NewInstance, IsSeenToTakePageFaultsOnUntouchedMemory) {
    std::unique_ptr<std::array<char, 1 << 22>> block;
    const auto take = [&] { block = std::make_unique_for_overwrite<std::array<char, 1 << 22>>(); };
    EXPECT_GT(pageFaultsOf(take, [&] { (*block)[someSize * 10000] = 1; }), 0);
}

TEST_F(NewInstance, TakesNoPageFaultInItsFirstBlock) {
    for (const float set : {0.0f, 0.5f, 1.0f})
        EXPECT_EQ(pageFaultsOf([&] { plugin->setParameter(kSet, set); }, [this] { process(512); }), 0) << set;
}

TEST_F(NewInstance, TakesNoPageFaultInItsFirstShortBlocks) {
    EXPECT_EQ(pageFaultsOf([] {},
                           [this] {
                               process(1);
                               process(7);
                           }),
              0);
}

TEST_F(NewInstance, TakesNoPageFaultWhenManyTapsBeginToGlide) {
    const auto playFewTaps = [this] {
        plugin->setParameter(kSet, 1.0f);
        plugin->setParameter(kTaps, 0.0f);
        process(512);
    };
    const auto glide = [this] {
        plugin->setParameter(kTaps, 99.5f / 127.0f);
        plugin->setParameter(kBaseLength, 0.9f);
        process(512);
    };
    EXPECT_EQ(pageFaultsOf(playFewTaps, glide), 0);
}

} // namespace
} // namespace realtime
