// All of a host's threads at once, as they come: audio with MIDI, automation, the loading thread and a window
// that reads what it shows. Nothing may crash, and under the thread sanitizer nothing may be touched but by
// atomic accesses.
#include "support/plugin_folder.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <functional>
#include <latch>
#include <memory>
#include <random>
#include <thread>
#include <vector>

namespace realtime {
namespace {

using namespace vst2;
using namespace conversation;

constexpr std::int32_t kLongestBlock = 256;
constexpr int kTurns = QUILLON_FILTER_TURNS;

/// Its own random numbers for each thread.
class Chance {
  public:
    explicit Chance(std::uint32_t seed) : random_(seed) {}
    std::int32_t number(std::int32_t low, std::int32_t high) {
        return std::uniform_int_distribution<std::int32_t>(low, high)(random_);
    }
    float value() { return std::uniform_real_distribution<float>(0.0f, 1.0f)(random_); }

  private:
    std::mt19937 random_;
};

class HostThreads : public QuietPlugin {
  protected:
    HostThreads() {
        BankImage map(Bytes(84, 0xFF));
        writeFile(here(kMapFile),
                  map.littleEndian(4 * kBaseLength, 16).littleEndian(4 * kStereo, 17).bytes());
        // Few taps, so that the sanitizers get through many changes.
        Programs programs = distinctPrograms();
        for (ProgramRecord& program : programs)
            program.values[kTaps] *= 0.1f;
        writeFile(module.beside(kBankFile), chunkBank(programs));
        host::HostBehaviour silent;
        silent.record = false;
        plugin = std::make_unique<host::Plugin>(library(), silent);
        plugin->start(48000.0f, kLongestBlock);
    }

    /// Runs all of them from one common start to their ends.
    static void together(const std::vector<std::function<void()>>& works) {
        std::latch start(static_cast<std::ptrdiff_t>(works.size()));
        std::vector<std::thread> threads;
        for (const auto& work : works)
            threads.emplace_back([&start, &work] {
                start.arrive_and_wait();
                work();
            });
        for (std::thread& thread : threads)
            thread.join();
    }

    /// Plays noise in blocks of all lengths and counts the samples that come out as no number.
    void playAudio(int blocks, const std::function<void(Chance&)>& beforeBlock) {
        Chance chance(1);
        std::array<float, kLongestBlock> inLeft, inRight, outLeft = {}, outRight = {};
        float *inputs[] = {inLeft.data(), inRight.data()}, *outputs[] = {outLeft.data(), outRight.data()};
        for (int block = 0; block < blocks; ++block) {
            for (std::size_t i = 0; i < kLongestBlock; ++i) {
                inLeft[i] = chance.value() - 0.5f;
                inRight[i] = chance.value() - 0.5f;
            }
            beforeBlock(chance);
            const std::int32_t frames = chance.number(0, kLongestBlock);
            plugin->process(inputs, outputs, frames);
            for (std::size_t i = 0; i < static_cast<std::size_t>(frames); ++i) {
                notFinite += !std::isfinite(outLeft[i]) + !std::isfinite(outRight[i]);
                loudest = std::max({loudest, std::fabs(outLeft[i]), std::fabs(outRight[i])});
            }
            blocksPlayed.fetch_add(1, std::memory_order_relaxed);
        }
    }

    void sendMidi(Chance& chance, unsigned char status, int first) {
        const host::MidiMessage message = {
            0,
            {status, static_cast<unsigned char>(first), static_cast<unsigned char>(chance.number(0, 127))}};
        plugin->sendMidi({&message, 1});
    }

    /// Moves parameters between 0 and 1; the filters' only where they are allowed to.
    void automate(int changes, std::uint32_t seed, bool filtersToo) {
        Chance chance(seed);
        for (int i = 0; i < changes; ++i) {
            const std::int32_t id = chance.number(-1, 21);
            if (filtersToo || (id != kPreLowPass && id != kPreHighPass))
                plugin->setParameter(id, id == kTaps ? 0.1f * chance.value() : chance.value());
            plugin->getParameter(chance.number(-1, 21));
        }
    }

    /// What a generic editor of the host asks, again and again.
    void watchParameters(int looks) {
        std::array<char, 256> text;
        Chance chance(4);
        for (int i = 0; i < looks; ++i) {
            const std::int32_t id = chance.number(-1, 21);
            plugin->dispatch(effGetParamDisplay, id, 0, text.data());
            plugin->dispatch(effGetParamName, id, 0, text.data());
            plugin->getParameter(id);
        }
    }

    std::unique_ptr<host::Plugin> plugin;
    int notFinite = 0;
    float loudest = 0.0f;
    std::atomic<int> blocksPlayed = 0;
};

TEST_F(HostThreads, MayAutomateWhileAudioRunsAndTheSoundStaysFinite) {
    together({[this] {
                  playAudio(1500, [this](Chance& chance) {
                      if (chance.number(0, 3) == 0)
                          sendMidi(chance, 0xB0, chance.number(16, 17));
                  });
              },
              [this] { automate(8000, 2, false); }, [this] { automate(8000, 3, false); },
              [this] { watchParameters(8000); }});
    EXPECT_EQ(notFinite, 0);
    EXPECT_EQ(blocksPlayed, 1500);
}

TEST_F(HostThreads, MayTurnTheFiltersInAStormAndTheSoundStaysFinite) {
    // A filter of two settings' coefficients can be an unstable one: it would grow within a sub-block.
    plugin->setParameter(kBaseLength, 0.05f);
    plugin->setParameter(kTaps, 0.02f);
    plugin->setParameter(kFeedback, 0.5f);
    std::atomic<int> turning = 2;
    const auto turn = [&](std::uint32_t seed) {
        Chance chance(seed);
        for (int i = 0; i < kTurns; ++i)
            plugin->setParameter(chance.number(0, 9) == 0 ? kPreHighPass : kPreLowPass, chance.value());
        --turning;
    };
    together({[&] {
                  while (turning > 0)
                      playAudio(100, [](Chance&) {});
              },
              [&] { turn(2); }, [&] { turn(3); }});
    EXPECT_EQ(notFinite, 0);
    EXPECT_LT(loudest, 100.0f);
}

TEST_F(HostThreads, MaySaveTheStateWhileAudioAndAutomationRun) {
    std::size_t bytesSaved = 0;
    together({[this] { playAudio(1000, [](Chance&) {}); }, [this] { automate(8000, 2, false); },
              [&] {
                  for (int i = 0; i < 400; ++i) {
                      bytesSaved += plugin->getChunk(i % 2 == 0).size();
                      plugin->setProgramName("Name " + std::to_string(i));
                      bytesSaved += plugin->programName().size() > 0;
                      plugin->programName(i % 130);
                  }
              }});
    EXPECT_EQ(bytesSaved, 200 * (kBankSize + kProgramSize) + 400);
    EXPECT_EQ(notFinite, 0);
}

/// The loading thread's whole repertoire, beside everything else.
void reorganise(host::Plugin& plugin, int steps) {
    Chance chance(5);
    const Bytes bank = bytesOf(distinctPrograms()), program = bytesOf(defaultProgram());
    for (int i = 0; i < steps; ++i) {
        switch (chance.number(0, 8)) {
        case 0:
            plugin.suspend();
            plugin.resume();
            break;
        case 1:
            plugin.setSampleRate(chance.number(0, 1) ? 48000.0f : 96000.0f);
            plugin.resume();
            break;
        case 2:
            plugin.setBlockSize(chance.number(1, 4096));
            break;
        case 3:
            plugin.setChunk(bank, false);
            break;
        case 4:
            plugin.setChunk(program, true);
            break;
        case 5:
            plugin.getChunk(chance.number(0, 1) == 0);
            break;
        case 6:
            plugin.setProgramName("Renamed");
            plugin.programName();
            break;
        default:
            plugin.setProgram(chance.number(-1, 128));
        }
    }
}

TEST_F(HostThreads, MayDoEverythingAtOnceAndTheInstanceComesThroughIt) {
    // The filters are redesigned here under the audio thread's hands, so that what comes out is not looked
    // at; what must hold is that nothing crashes, waits for ever or is left in disorder.
    together({[this] {
                  playAudio(1500, [this](Chance& chance) {
                      if (chance.number(0, 3) == 0)
                          sendMidi(chance, 0xB0, chance.number(16, 17));
                      if (chance.number(0, 20) == 0)
                          sendMidi(chance, 0xC0, chance.number(0, 255));
                  });
              },
              [this] { automate(8000, 2, true); }, [this] { automate(8000, 3, true); },
              [this] { watchParameters(8000); }, [this] { reorganise(*plugin, 1500); }});
    EXPECT_EQ(blocksPlayed, 1500);

    plugin->setChunk(bytesOf(distinctPrograms()), false);
    plugin->setProgram(33);
    EXPECT_EQ(plugin->getChunk(false), bytesOf(distinctPrograms()));
    for (std::int32_t id = 0; id < kLiveParameters; ++id)
        if (id != kPreGain) {
            EXPECT_EQ(plugin->getParameter(id), distinctPrograms()[33].values[static_cast<std::size_t>(id)]);
        }
}

TEST_F(HostThreads, MayEachHaveAnInstanceOfTheirOwn) {
    // Instances share the controller map and nothing else.
    std::vector<std::unique_ptr<host::Plugin>> instances;
    std::vector<std::function<void()>> works;
    for (int i = 0; i < 3; ++i) {
        host::Plugin& own = *instances.emplace_back(std::make_unique<host::Plugin>(library()));
        works.emplace_back([&own] {
            std::array<float, kLongestBlock> left = {}, right = {};
            float* buffers[] = {left.data(), right.data()};
            own.start(44100.0f, kLongestBlock);
            for (int block = 0; block < 200; ++block) {
                own.setParameter(block % 21, 0.5f);
                own.process(buffers, buffers, kLongestBlock);
                const host::MidiMessage message = {0, {0xB0, 16, 64}};
                own.sendMidi({&message, 1});
            }
        });
    }
    together(works);
    for (const auto& instance : instances)
        EXPECT_EQ(instance->getParameter(kBaseLength), 64 * 0.007874015718698502f);
}

TEST_F(HostThreads, MayEachMakeAndCloseInstances) {
    // Hosts that scan or load projects in parallel do so; each construction reads the skin for its size.
    std::vector<std::function<void()>> works;
    std::atomic<int> made = 0;
    for (int i = 0; i < 3; ++i)
        works.emplace_back([this, &made] {
            for (int round = 0; round < 4; ++round) {
                host::Plugin own(library());
                own.start(44100.0f, kLongestBlock);
                made += own.dispatch(effSetEditKnobMode, 0, 2) == 1;
            }
        });
    together(works);
    EXPECT_EQ(made, 12);
}

} // namespace
} // namespace realtime
