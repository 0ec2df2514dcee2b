// Two windows that are dragged and reopened beside two instances that play on threads of their own, fed with
// values, programs and states, and ask what has changed at each block.
#include "window_host.h"

#include "parameters/parameter_table.h"

#include <array>
#include <atomic>
#include <filesystem>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace clap_test;

constexpr char kFile[] = "QuillonMultitapDelay.clap";
/// Its threads are more than it could tell apart.
constexpr unsigned kOffers = Host::kEverything & ~Host::kThreadCheck;

/// An instance that plays, and its window.
class Track {
  public:
    Track(test::VirtualScreen& screen, const Module& module, int x) : window(screen, module, kOffers, x) {
        window.instance.activate();
        audio_ = std::thread([this] { play(); });
    }
    ~Track() { stop(); }
    Track(const Track&) = delete;
    Track& operator=(const Track&) = delete;

    void stop() {
        goesOn_ = false;
        if (audio_.joinable())
            audio_.join();
    }
    int blocks() const { return blocks_; }
    /// So far, of "Feedback".
    int gestures() const { return gestures_; }

    /// In which each gesture has a value between its begin and its end. Once it has been stopped.
    void expectOrderedGestures() const {
        std::array<bool, 17> isHeld = {}, hasValue = {};
        for (const ToldEvents::Told& told : told_) {
            if (told.type == CLAP_EVENT_PARAM_VALUE) {
                if (told.id < hasValue.size())
                    hasValue[told.id] = true;
                continue;
            }
            const bool isBegin = told.type == CLAP_EVENT_PARAM_GESTURE_BEGIN;
            ASSERT_LT(told.id, isHeld.size());
            EXPECT_NE(isHeld[told.id], isBegin) << "two of a kind";
            if (isBegin) {
                hasValue[told.id] = false;
            } else {
                EXPECT_TRUE(hasValue[told.id]);
            }
            isHeld[told.id] = isBegin;
        }
        for (const bool held : isHeld)
            EXPECT_FALSE(held);
    }

    WindowHost window;

  private:
    void play() {
        std::vector<float> left(64, 0.5f), right(64, -0.5f);
        float* const channels[] = {left.data(), right.data()};
        for (int block = 0; goesOn_; ++block) {
            Events events;
            // All but "Feedback", which is the hand's.
            if (const int id = block % 17; id != parameters::kFeedback)
                events.value(static_cast<clap_id>(id), block % 10 / 10.0, 7);
            if (block % 400 == 399)
                events.midi(0xC0, static_cast<std::uint8_t>(block / 400 % 128), 0, 9);
            ToldEvents told;
            window.instance.process(channels, channels, 64, &events, &told);
            for (const ToldEvents::Told& event : told.order)
                if (event == ToldEvents::Told{CLAP_EVENT_PARAM_GESTURE_END, parameters::kFeedback})
                    ++gestures_;
            told_.insert(told_.end(), told.order.begin(), told.order.end());
            ++blocks_;
            std::this_thread::yield();
        }
    }

    std::vector<ToldEvents::Told> told_;
    std::atomic<int> blocks_ = 0, gestures_ = 0;
    std::atomic<bool> goesOn_ = true;
    std::thread audio_;
};

class ClapWindows : public test::EditorOnScreen {};

TEST_F(ClapWindows, AreDraggedAndReopenedBesideInstancesThatPlay) {
    std::filesystem::copy_file(kModule, module.beside(kFile));
    const Module clap(module.beside(kFile));
    std::vector<std::unique_ptr<Track>> tracks;
    for (const int x : {40, 500}) {
        tracks.push_back(std::make_unique<Track>(screen(), clap, x));
        ASSERT_TRUE(tracks.back()->window.open());
        ASSERT_TRUE(tracks.back()->window.showsPixel(test::kSkinWidth - 2, 2, test::kGrey));
    }
    for (int round = 0; round < 4; ++round)
        for (const auto& track : tracks) {
            WindowHost& window = track->window;
            const int before = track->gestures(), asked = window.host.flushRequests;
            window.point(30, 30);
            window.press();
            EXPECT_TRUE(window.moveUntil(30, round % 2 ? 10 : 50,
                                         [&] { return window.host.flushRequests > asked + 1; }));
            if (round == 2) // in the hand
                window.destroy();
            window.release();
            EXPECT_TRUE(window.serveUntil([&] { return track->gestures() > before; }));
            if (round == 2) {
                EXPECT_TRUE(window.open());
                EXPECT_TRUE(window.showsPixel(test::kSkinWidth - 2, 2, test::kGrey));
            }
            EXPECT_TRUE(window.instance.load(window.instance.save().value()));
        }
    for (const auto& track : tracks) {
        track->stop();
        EXPECT_GT(track->blocks(), 0);
        track->expectOrderedGestures();
    }
}

} // namespace
