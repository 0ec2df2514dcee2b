// Two instances with both windows open and all of a host's threads at work: each instance has an audio thread
// with MIDI, an automation thread and one that saves and loads, while a hand drags a knob of the one window
// and the other in turn. For the thread sanitizer most of all. QUILLON_SOAK_SECONDS=600 makes it ten minutes;
// without it a few rounds show that it runs at all.
//
// Everything that the threads share here is relaxed atomics. Anything more would put the plug-in's accesses
// in an order that it does not have by itself.
#include "support/shown_editor.h"

#include "child_process.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace test;
using namespace vst2;
using namespace conversation;
using namespace std::chrono_literals;

constexpr std::int32_t kKnob = kFeedback;
constexpr std::int32_t kLongestBlock = 256;

/// How often something has happened, for any thread.
class Count {
  public:
    void add() { count_.fetch_add(1, std::memory_order_relaxed); }
    int now() const { return count_.load(std::memory_order_relaxed); }

  private:
    std::atomic<int> count_ = 0;
};

class Chance {
  public:
    explicit Chance(std::uint32_t seed) : random_(seed) {}
    int upTo(int most) { return std::uniform_int_distribution(0, most)(random_); }
    float value() { return std::uniform_real_distribution(0.0f, 1.0f)(random_); }

  private:
    std::mt19937 random_;
};

/// One instance, its window and the threads that a host has for it.
class Track {
  public:
    Track(host::Library& library, VirtualScreen& screen, int x, std::uint32_t seed)
        : editor(library, screen, x), seed_(seed) {
        // The record of calls is kept under a lock.
        editor.plugin().behaviour().record = false;
        editor.plugin().behaviour().answer = [this](const host::HostCall& call, void*) {
            if (call.index == kKnob && call.opcode == audioMasterBeginEdit)
                gesturesBegun.add();
            if (call.index == kKnob && call.opcode == audioMasterEndEdit)
                gesturesEnded.add();
            return std::nullopt;
        };
    }
    ~Track() { stop(); }
    Track(const Track&) = delete;
    Track& operator=(const Track&) = delete;

    void start() {
        threads_.emplace_back([this] { play(); });
        threads_.emplace_back([this] { automate(); });
        threads_.emplace_back([this] { saveAndLoad(); });
    }
    void stop() {
        goesOn_.store(false, std::memory_order_relaxed);
        for (std::thread& thread : std::exchange(threads_, {}))
            thread.join();
    }

    ShownEditor editor;
    Count gesturesBegun, gesturesEnded, blocks, changes, messages, loads;

  private:
    bool goesOn() const { return goesOn_.load(std::memory_order_relaxed); }

    /// Blocks of all lengths, at about the pace of a sound card.
    void play() {
        Chance chance(seed_);
        std::array<float, kLongestBlock> left = {}, right = {};
        float* buffers[] = {left.data(), right.data()};
        while (goesOn()) {
            left[0] = right[0] = chance.value();
            sendMidi(chance);
            editor.plugin().process(buffers, buffers, chance.upTo(kLongestBlock));
            blocks.add();
            std::this_thread::sleep_for(3ms);
        }
    }

    /// A bound controller, an unbound one, a note or a change of program.
    void sendMidi(Chance& chance) {
        static constexpr unsigned char kKinds[][2] = {{0xB0, 16}, {0xB0, 17}, {0xB0, 99}, {0x90, 60}};
        const auto [status, first] = kKinds[chance.upTo(3)];
        host::MidiMessage message = {0, {status, first, static_cast<unsigned char>(chance.upTo(127))}};
        if (chance.upTo(50) == 0)
            message = {0, {0xC0, static_cast<unsigned char>(chance.upTo(127)), 0}};
        editor.plugin().sendMidi({&message, 1});
        messages.add();
    }

    /// All parameters, a hundred times a second.
    void automate() {
        Chance chance(seed_ + 1);
        while (goesOn()) {
            for (std::int32_t id = -1; id <= editor.plugin().numParams(); ++id) {
                // Few taps, so that the sanitizer leaves time for the other threads.
                editor.plugin().setParameter(id, id == kTaps ? 0.1f * chance.value() : chance.value());
                editor.plugin().getParameter(id);
                changes.add();
            }
            std::this_thread::sleep_for(10ms);
        }
    }

    void saveAndLoad() {
        Chance chance(seed_ + 2);
        const Bytes bank = bytesOf(distinctPrograms()), program = bytesOf(defaultProgram());
        while (goesOn()) {
            saveOrLoad(chance.upTo(8), bank, program, chance);
            loads.add();
            std::this_thread::sleep_for(5ms);
        }
    }

    void saveOrLoad(int kind, const Bytes& bank, const Bytes& program, Chance& chance) {
        host::Plugin& plugin = editor.plugin();
        switch (kind) {
        case 0:
            plugin.setChunk(bank, false);
            break;
        case 1:
            plugin.setChunk(program, true);
            break;
        case 2:
            plugin.setChunk(plugin.getChunk(false), false);
            break;
        case 3:
            plugin.setChunk(plugin.getChunk(true), true);
            break;
        case 4:
            plugin.setProgramName("Renamed");
            plugin.programName();
            break;
        case 5:
            plugin.suspend();
            plugin.setSampleRate(chance.upTo(1) ? 48000.0f : 96000.0f);
            plugin.resume();
            break;
        default:
            plugin.setProgram(chance.upTo(127));
        }
    }

    std::uint32_t seed_;
    std::atomic<bool> goesOn_ = true;
    std::vector<std::thread> threads_;
};

class TwoInstances : public EditorOnScreen {
  protected:
    TwoInstances() {
        BankImage map(Bytes(84, 0xFF));
        writeFile(here(kMapFile),
                  map.littleEndian(4 * kBaseLength, 16).littleEndian(4 * kStereo, 17).bytes());
        for (const int x : {40, 500}) {
            tracks_.push_back(std::make_unique<Track>(library(), screen(), x, static_cast<unsigned>(x)));
            EXPECT_TRUE(tracks_.back()->editor.open());
        }
    }

    static bool goesOn(int round) {
        static const char* const seconds = std::getenv("QUILLON_SOAK_SECONDS");
        static const auto start = std::chrono::steady_clock::now();
        if (!seconds)
            return round < 6;
        return std::chrono::steady_clock::now() - start < std::chrono::seconds(std::atoi(seconds));
    }

    void serveBoth() {
        for (const auto& track : tracks_)
            track->editor.serve();
    }
    bool serveBothUntil(const std::function<bool()>& condition) {
        return waitUntil([&] {
            serveBoth();
            return condition();
        });
    }

    /// From the press to the host's being told of the end, with both windows drawn at every step.
    void dragKnob(Track& track) {
        const int begun = track.gesturesBegun.now(), ended = track.gesturesEnded.now();
        track.editor.point(30, 30);
        serveBoth();
        track.editor.press(kLeft);
        EXPECT_TRUE(serveBothUntil([&] { return track.gesturesBegun.now() > begun; }));
        for (int step = 0; step < 30; ++step) {
            track.editor.point(30, 30 - step);
            serveBoth();
        }
        track.editor.release(kLeft);
        EXPECT_TRUE(serveBothUntil([&] { return track.gesturesEnded.now() > ended; }));
    }

    std::vector<std::unique_ptr<Track>> tracks_;
};

TEST_F(TwoInstances, AreDraggedAndAutomatedWhileBothPlayAndLoad) {
    for (const auto& track : tracks_)
        track->start();
    int drags = 0;
    for (int round = 0; goesOn(round) && !HasFailure(); ++round) {
        for (const auto& track : tracks_) {
            dragKnob(*track);
            ++drags;
        }
        if (round % 5 == 4) {
            ShownEditor& reopened = tracks_[static_cast<std::size_t>(round / 5 % 2)]->editor;
            reopened.close();
            serveBoth();
            EXPECT_TRUE(reopened.open());
        }
    }
    for (const auto& track : tracks_)
        track->stop();

    for (const auto& track : tracks_) {
        std::printf("%d blocks, %d messages, %d parameter changes, %d saves and loads, %d drags\n",
                    track->blocks.now(), track->messages.now(), track->changes.now(), track->loads.now(),
                    track->gesturesEnded.now());
        EXPECT_GE(track->gesturesEnded.now(), drags / 2);
        // What is set now is what is found, played and saved.
        host::Plugin& plugin = track->editor.plugin();
        plugin.setChunk(bytesOf(distinctPrograms()), false);
        plugin.setProgram(33);
        EXPECT_EQ(plugin.getChunk(false), bytesOf(distinctPrograms()));
        EXPECT_TRUE(track->editor.becomes(kKnob, distinctPrograms()[33].values[kKnob]));
    }
}

} // namespace
