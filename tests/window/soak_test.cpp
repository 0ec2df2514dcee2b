// The whole product at once, for as long as one likes: audio on a thread of its own, a hand on knobs, menus
// and the about box, programs by MIDI, projects saved and loaded, skins changed, windows and instances opened
// and closed. QUILLON_SOAK_SECONDS=3600 makes it an hour, with a line about memory each minute; without it a
// few rounds show that it runs at all.
//
// Memory is measured after each round, with the window closed. Of an hour the first ten minutes are warm-up;
// after them the heap may grow by 16 KB, since freed blocks that the allocator keeps at hand count as in use,
// and by 16 bytes a round: one block that is lost in every round is found after some 1000 rounds. To see the
// heap to a few bytes, set GLIBC_TUNABLES=glibc.malloc.tcache_count=0. The few rounds of the short form find
// no less than 16 KB; what they miss of motions and menus, tests of their own find.
#include "desk/message_watch.h"
#include "support/shown_editor.h"

#include "child_process.h"

#include <X11/keysym.h>
#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <limits>
#include <malloc.h>
#include <random>
#include <thread>
#include <unistd.h>

namespace {

using namespace test;
using namespace vst2;
using std::chrono::steady_clock;

constexpr std::int32_t kKnob = 6, kLamp = 16, kMenu = 5;
constexpr std::uint8_t kController = 20;
constexpr int kBlueWidth = 160;
constexpr char kGreySkin[] = "Quillon Skin", kBlueSkin[] = "blue";

constexpr int kShortRounds = 4;
/// Of a long run the first sixth, and ten minutes at the most.
constexpr int kWarmUpShare = 6;
constexpr std::chrono::minutes kLongestWarmUp{10};

/// In bytes.
struct Memory {
    std::size_t resident = 0; ///< of this process, in real memory
    std::size_t heap = 0;     ///< of this process, allocated and not freed
    std::size_t display = 0;  ///< of the X server, in real memory
};

std::size_t residentOf(const std::string& process) {
    std::ifstream numbers("/proc/" + process + "/statm");
    std::size_t total = 0, resident = 0;
    numbers >> total >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

Memory memoryInUse(const VirtualScreen& screen) {
    const auto heap = mallinfo2();
    return {residentOf("self"), heap.uordblks + heap.hblkhd, residentOf(std::to_string(screen.server()))};
}

std::string describe(const Memory& memory) {
    return "resident " + std::to_string(memory.resident) + ", heap " + std::to_string(memory.heap) +
           ", display " + std::to_string(memory.display);
}

/// Half of the heap's smallest block, in bytes.
constexpr std::size_t kHalfABlock = 16;

/// That `times` rounds have left nothing behind in each.
void expectNoGrowth(const Memory& before, const Memory& after, int times) {
    testing::Test::RecordProperty("before", describe(before));
    testing::Test::RecordProperty("after", describe(after));
    testing::Test::RecordProperty("times", times);
    // The sanitizers have a heap of their own and keep what is freed for a while.
    if (QUILLON_SANITIZED)
        return;
    constexpr std::size_t kSlack = 16384, kMayGrow = std::size_t{8} << 20;
    EXPECT_LE(after.heap, before.heap + kSlack + kHalfABlock * static_cast<std::size_t>(times))
        << "was " << before.heap << ", in " << times << " times";
    EXPECT_LE(after.resident, before.resident + kMayGrow);
    EXPECT_LE(after.display, before.display + kMayGrow);
}

/// How long the soak goes on, and when its warm-up is over.
class Duration {
  public:
    bool goesOn(int rounds) const { return seconds_ ? elapsed() < length() : rounds < kShortRounds; }
    bool isWarm(int rounds) const {
        const bool isLongAgo = elapsed() >= kLongestWarmUp || elapsed() * kWarmUpShare >= length();
        return seconds_ ? isLongAgo : rounds >= kShortRounds / 2;
    }
    bool isLong() const { return seconds_; }
    int minutes() const {
        return static_cast<int>(std::chrono::duration_cast<std::chrono::minutes>(elapsed()).count());
    }

  private:
    steady_clock::duration elapsed() const { return steady_clock::now() - start_; }
    steady_clock::duration length() const { return std::chrono::seconds(seconds_ ? std::atoi(seconds_) : 0); }

    const char* seconds_ = std::getenv("QUILLON_SOAK_SECONDS");
    steady_clock::time_point start_ = steady_clock::now();
};

class Soak : public EditorOnScreen {
  protected:
    Soak() {
        // The blue skin has no controls: no way back.
        std::ofstream(module.beside(kBlueSkin) + "/skin.xml")
            << "<GUI><background filename=\"background.png\"/>"
               "<skinselector x=\"10\" y=\"10\" w=\"70\" h=\"20\"/></GUI>";
        writeControllerMap();
    }

    /// Serves until the window has been drawn: longer than the toolkit waits before it draws.
    static void settle(ShownEditor& editor) {
        const auto end = steady_clock::now() + std::chrono::milliseconds(25);
        ASSERT_TRUE(editor.serveUntil([&] { return steady_clock::now() >= end; }));
    }

    /// A click on the lamp, whose effect tells that all before it has been worked off and no menu is open.
    static void serveAll(ShownEditor& editor) {
        const float next = editor.value(kLamp) >= 0.5f ? 0.0f : 1.0f;
        editor.click(218, 18);
        ASSERT_TRUE(editor.becomes(kLamp, next));
    }

    static void openMenu(ShownEditor& editor, int x, int y, unsigned button) {
        settle(editor);
        const auto before = editor.part(x + 2, y + 14, 30, 20);
        editor.click(x, y, button);
        ASSERT_TRUE(editor.changes(before, x + 2, y + 14, 30, 20));
    }

    static void useOptionMenu(ShownEditor& editor) {
        editor.plugin().setParameter(kMenu, 0.0f);
        openMenu(editor, 50, 80, kLeft);
        editor.click(50, 120); // the second entry
        ASSERT_TRUE(editor.becomes(kMenu, 0.5f)) << editor.value(kMenu);
        openMenu(editor, 50, 80, kLeft);
        editor.typeKey(XK_Escape);
        serveAll(editor);
        EXPECT_EQ(editor.value(kMenu), 0.5f);
    }

    /// Leaves the menu, sets the knob by it and by its controller, and forgets the controller.
    static void useLearnMenu(ShownEditor& editor) {
        openMenu(editor, 30, 30, kRight);
        editor.typeKey(XK_Escape);
        serveAll(editor);
        editor.plugin().setParameter(kKnob, 0.25f);
        chooseLearnEntry(editor, 1);
        ASSERT_TRUE(editor.becomes(kKnob, 1.0f));
        sendMidi(editor, {0xB0, kController, 0});
        ASSERT_EQ(editor.value(kKnob), 0.0f);
        chooseLearnEntry(editor, 2);
        ASSERT_TRUE(editor.becomes(kKnob, -1.0f));
        editor.plugin().setParameter(kKnob, 0.25f);
    }

    static void chooseLearnEntry(ShownEditor& editor, int entry) {
        openMenu(editor, 30, 30, kRight);
        for (int i = 0; i < entry; ++i)
            editor.typeKey(XK_Down);
        editor.typeKey(XK_Return);
    }

    /// What the next instance takes over for all of them.
    void writeControllerMap() const {
        std::vector<std::uint8_t> map(84, 0xFF);
        const std::uint8_t controller[] = {kController, 0, 0, 0};
        std::ranges::copy(controller, map.begin() + 4 * kKnob);
        conversation::writeFile(here(conversation::kMapFile), map);
    }

    static void readAboutAndHelp(ShownEditor& editor) {
        settle(editor);
        const int x = kSkinWidth / 2 - 48, y = kSkinHeight / 2 + 28;
        editor.click(270, 180);
        ASSERT_TRUE(editor.showsPixel(x, y, kAboutBlue));
        editor.click(x, y);
        ASSERT_TRUE(editor.serveUntil([&] { return editor.pixel(x, y) != kAboutBlue; }));
        settle(editor);
        for (const unsigned button : {kRight, kRight, kLeft}) { // two pages of help, and back
            const auto before = editor.part(10, 110, 200, 60);
            editor.click(100, 140, button);
            ASSERT_TRUE(editor.changes(before, 10, 110, 200, 60));
            settle(editor);
        }
    }

    static void sendMidi(ShownEditor& editor, std::array<unsigned char, 3> bytes) {
        host::MidiMessage message;
        std::ranges::copy(bytes, message.bytes);
        editor.plugin().sendMidi({&message, 1});
    }

    void play(ShownEditor& editor) {
        const float before = editor.value(kKnob);
        ASSERT_TRUE(editor.drag(30, 30, 30 + upTo(60) - 30, before < 0.5f ? -30 : 90,
                                [&] { return editor.value(kKnob) != before; }));
        editor.click(218, 18);
        editor.click(300, 18);
        editor.plugin().setParameter(upTo(17), static_cast<float>(upTo(101)) / 100.0f);
        sendMidi(editor, {0xC0, static_cast<unsigned char>(upTo(128)), 0});
        editor.plugin().setChunk(editor.plugin().getChunk(false), false);
        editor.plugin().setChunk(editor.plugin().getChunk(true), true);
        settle(editor);
    }

    /// Chooses a skin from the skin menu at (`x`, `y`) and waits until its message has been closed.
    void chooseSkin(ShownEditor& editor, int x, int y, const std::string& skin) {
        const int messagesBefore = messages;
        openMenu(editor, x, y, kLeft);
        // They stand in the order of the file system.
        for (const auto& entry : std::filesystem::directory_iterator(module.folder())) {
            if (!entry.is_directory())
                continue;
            editor.typeKey(XK_Down);
            if (entry.path().filename() == skin)
                break;
        }
        editor.typeKey(XK_Return);
        ASSERT_TRUE(editor.serveUntil([&] { return messages == messagesBefore + 1; }));
        EXPECT_EQ(chosenSkin(), "SkinName=" + skin + "\n");
    }

    static std::string chosenSkin() {
        std::ifstream file(std::string(std::getenv("XDG_CONFIG_HOME")) +
                           "/Quillon Software/Quillon Multitap Delay.conf");
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    /// To the blue skin and back to the grey one, which a new instance chooses. Leaves the window closed.
    void changeSkins(ShownEditor& editor) {
        ASSERT_NO_FATAL_FAILURE(chooseSkin(editor, 135, 80, kBlueSkin));
        editor.close();
        ASSERT_TRUE(editor.open());
        ASSERT_TRUE(editor.showsPixel(100, 100, kBlue));
        writeControllerMap();
        {
            ShownEditor next(library(), screen(), 500, 400);
            ASSERT_EQ(next.width(), kBlueWidth);
            ASSERT_TRUE(next.open());
            ASSERT_TRUE(next.showsPixel(100, 100, kBlue));
            ASSERT_NO_FATAL_FAILURE(chooseSkin(next, 30, 20, kGreySkin));
        }
        editor.close();
    }

    void playARound(ShownEditor& editor) {
        ASSERT_TRUE(editor.open());
        ASSERT_TRUE(editor.showsPixel(kSkinWidth - 2, 2, kGrey));
        ASSERT_NO_FATAL_FAILURE(useOptionMenu(editor));
        ASSERT_NO_FATAL_FAILURE(useLearnMenu(editor));
        ASSERT_NO_FATAL_FAILURE(readAboutAndHelp(editor));
        ASSERT_NO_FATAL_FAILURE(play(editor));
        ASSERT_NO_FATAL_FAILURE(changeSkins(editor));
        editor.plugin().clearCalls();
    }

    /// Does `action` six times `times` times. What it leaves behind makes each of the six batches grow,
    /// what only fills caches does not: the least growth counts.
    void expectNothingKept(int times, const std::function<void()>& action) {
        std::ptrdiff_t leastGrowth = std::numeric_limits<std::ptrdiff_t>::max();
        for (int batch = 0; batch < 6; ++batch) {
            const std::size_t before = memoryInUse(screen()).heap;
            for (int i = 0; i < times; ++i)
                action();
            const std::size_t after = memoryInUse(screen()).heap;
            leastGrowth = std::min(leastGrowth, static_cast<std::ptrdiff_t>(after - before));
        }
        RecordProperty("growth", std::to_string(leastGrowth));
        // The sanitizers have a heap of their own.
        if (QUILLON_SANITIZED)
            return;
        EXPECT_LE(leastGrowth, static_cast<std::ptrdiff_t>(kHalfABlock) * times);
    }

    int upTo(int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); }

    std::mt19937 random{20261121};
    std::atomic<int> messages = 0;
};

/// Processes blocks on a thread of its own while it lives, about as fast as they are heard.
class AudioThread {
  public:
    explicit AudioThread(host::Plugin& plugin) : thread_([this, &plugin] { play(plugin); }) {}
    ~AudioThread() {
        plays_ = false;
        thread_.join();
    }
    AudioThread(const AudioThread&) = delete;
    AudioThread& operator=(const AudioThread&) = delete;

    bool isFinite() const { return isFinite_; }

  private:
    static constexpr std::chrono::milliseconds kBlockTime{5}; ///< 256 frames at 44.1 kHz take 5.8

    void play(host::Plugin& plugin) {
        std::vector<float> left(256), right(256);
        float* buffers[] = {left.data(), right.data()};
        for (int frame = 0; plays_; frame += 256) {
            for (std::size_t i = 0; i < left.size(); ++i)
                left[i] = right[i] = std::sin(static_cast<float>(frame + static_cast<int>(i)) * 0.05f);
            plugin.process(buffers, buffers, 256);
            for (const float sample : left)
                isFinite_ = isFinite_ && std::isfinite(sample);
            std::this_thread::sleep_for(kBlockTime);
        }
    }

    std::atomic<bool> plays_ = true;
    std::atomic<bool> isFinite_ = true;
    std::thread thread_;
};

TEST_F(Soak, StandsAWholeEveningOnStage) {
    ShownEditor& editor = show();
    editor.close();
    const desk::MessageWatch watch([this](const desk::ShownMessage&) { ++messages; }, [] { return true; });
    const AudioThread audio(editor.plugin());
    const Duration duration;
    Memory base, last;
    int rounds = 0, baseRound = 0, minute = -1;
    for (; duration.goesOn(rounds); ++rounds) {
        ASSERT_NO_FATAL_FAILURE(playARound(editor)) << "round " << rounds;
        last = memoryInUse(screen());
        if (baseRound == 0 && duration.isWarm(rounds + 1)) {
            base = last;
            baseRound = rounds + 1;
        }
        if (duration.isLong() && duration.minutes() != minute) {
            minute = duration.minutes();
            std::cout << "minute " << minute << ": round " << rounds + 1 << ", " << describe(last)
                      << std::endl;
        }
    }
    EXPECT_TRUE(audio.isFinite());
    RecordProperty("rounds", rounds);
    if (duration.isLong())
        std::cout << "end: round " << rounds << ", " << describe(last) << "\nwarm: round " << baseRound
                  << ", " << describe(base) << std::endl;
    expectNoGrowth(base, last, rounds - baseRound);
}

TEST_F(Soak, KeepsNothingOfMotionsOfThePointer) {
    ShownEditor& editor = show();
    int x = 0;
    expectNothingKept(200, [&] {
        editor.point(20 + ++x % 200, 100);
        editor.serve();
    });
}

TEST_F(Soak, KeepsNothingOfAMenu) {
    ShownEditor& editor = show();
    expectNothingKept(10, [&] {
        ASSERT_NO_FATAL_FAILURE(openMenu(editor, 50, 80, kLeft));
        editor.typeKey(XK_Escape);
        serveAll(editor);
        editor.plugin().clearCalls();
    });
}

} // namespace
