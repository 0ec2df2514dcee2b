// Two windows that are dragged, fed and reopened beside two instances that play on threads of their own.
#include "window_host.h"

#include "instance.h"

#include <atomic>
#include <filesystem>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

using lv2_test::Instance;
using lv2_test::WindowHost;

constexpr char kWindowModule[] = "QuillonMultitapDelayWindow.so";

/// An instance, its window, and the ports between the two as a host keeps them.
class Track {
  public:
    Track(const LV2_Descriptor& delay, test::VirtualScreen& screen, const std::string& module, int x)
        : window(screen, module, x), instance_(delay, 44100.0) {
        for (std::size_t id = 0; id < ports_.size(); ++id)
            ports_[id].store(instance_.controls[id], std::memory_order_relaxed);
        window.whenWritten = [this](lv2_test::Write written) {
            ports_[written.port - lv2_door::kFirstControl].store(written.value, std::memory_order_relaxed);
        };
        instance_.activate();
        audio_ = std::thread([this] { play(); });
    }
    ~Track() {
        goesOn_.store(false, std::memory_order_relaxed);
        audio_.join();
    }
    Track(const Track&) = delete;
    Track& operator=(const Track&) = delete;

    /// Sends what the ports hold to the window.
    void feed() {
        for (std::size_t id = 0; id < ports_.size(); ++id)
            window.sendParameter(static_cast<std::int32_t>(id), ports_[id].load(std::memory_order_relaxed));
    }
    int blocks() const { return blocks_.load(std::memory_order_relaxed); }

    WindowHost window;

  private:
    void play() {
        std::vector<float> left(64, 0.5f), right(64, -0.5f);
        float* const channels[] = {left.data(), right.data()};
        while (goesOn_.load(std::memory_order_relaxed)) {
            for (std::size_t id = 0; id < ports_.size(); ++id)
                instance_.controls[id] = ports_[id].load(std::memory_order_relaxed);
            instance_.process(channels, channels, 64);
            blocks_.fetch_add(1, std::memory_order_relaxed);
            std::this_thread::yield();
        }
    }

    Instance instance_;
    std::array<std::atomic<float>, parameters::kNumLiveParameters> ports_;
    std::atomic<int> blocks_ = 0;
    std::atomic<bool> goesOn_ = true;
    std::thread audio_;
};

class LV2Windows : public test::EditorOnScreen {};

TEST_F(LV2Windows, AreDraggedAndFedBesideInstancesThatPlay) {
    std::filesystem::copy_file(std::string(QUILLON_LV2_BUNDLE "/") + kWindowModule,
                               module.beside(kWindowModule));
    const lv2_test::Module delay;
    std::vector<std::unique_ptr<Track>> tracks;
    for (const int x : {40, 500}) {
        tracks.push_back(
            std::make_unique<Track>(*delay.descriptor(), screen(), module.beside(kWindowModule), x));
        ASSERT_TRUE(tracks.back()->window.open());
    }
    for (int round = 0; round < 4; ++round)
        for (const auto& track : tracks) {
            WindowHost& window = track->window;
            const std::size_t touches = window.touches.size(), writes = window.writes.size();
            window.point(30, 30);
            window.serve();
            window.press();
            EXPECT_TRUE(window.moveUntil(30, round % 2 ? 10 : 50, [&] {
                for (const auto& each : tracks)
                    each->feed();
                return window.writes.size() > writes;
            }));
            window.release();
            EXPECT_TRUE(window.serveUntil([&] { return window.touches.size() == touches + 2; }));
            if (round == 2) {
                window.close();
                EXPECT_TRUE(window.open());
            }
        }
    for (const auto& track : tracks)
        EXPECT_GT(track->blocks(), 0);
}

} // namespace
