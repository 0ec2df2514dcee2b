// What a host may do at once: instances that play while others come and go, and questions, states and values
// from the main thread while one plays.
#include "clap_module.h"

#include "desk/private_folder.h"

#include <atomic>
#include <cstddef>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace clap_test;

constexpr int kBlocks = 300;
constexpr std::uint32_t kFrames = 64;
constexpr clap_id kProgram = 1000;
/// Its threads are more than it could tell apart.
constexpr unsigned kOffers = Host::kLog | Host::kParameters;

void play(Instance& instance, double step) {
    std::vector<float> left(kFrames, 0.5f), right(kFrames, -0.5f);
    float* const channels[] = {left.data(), right.data()};
    for (int block = 0; block < kBlocks; ++block) {
        Events events;
        events.value(static_cast<clap_id>(block % 17), block * step - static_cast<int>(block * step), 7);
        if (block % 40 == 0)
            events.midi(0xC0, static_cast<std::uint8_t>(block / 40), 0, 9);
        ToldEvents told;
        instance.process(channels, channels, kFrames, &events, &told);
    }
}

TEST(DoorsThreads, PlayWhileInstancesComeAndGo) {
    const desk::PrivateFolder folder;
    const Module module;
    Host hosts[3] = {Host(kOffers), Host(kOffers), Host(kOffers)};
    Instance first(module.entry(), hosts[0]), second(module.entry(), hosts[1]);
    first.activate();
    second.activate(96000.0);
    std::thread audio([&] { play(first, 0.05); });
    std::thread otherAudio([&] { play(second, 0.07); });
    for (int i = 0; i < 10; ++i) {
        Instance passing(module.entry(), hosts[2]);
        passing.activate(48000.0);
    }
    audio.join();
    otherAudio.join();
}

TEST(DoorsThreads, AnswerLoadAndSetWhileOneOfThemPlays) {
    const desk::PrivateFolder folder;
    const Module module;
    Host host(kOffers);
    Instance instance(module.entry(), host);
    instance.activate();
    std::atomic<bool> isOver = false;
    std::thread audio([&] {
        play(instance, 0.05);
        isOver = true;
    });
    int rounds = 0;
    do {
        const Bytes state = instance.save().value();
        for (clap_id id = 0; id < 17; ++id)
            EXPECT_GE(instance.value(id), 0.0);
        EXPECT_NE(instance.text(kProgram, instance.value(kProgram)), "");
        EXPECT_TRUE(instance.load(state));
        // Some hosts flush in the middle of a block.
        Events events;
        ToldEvents told;
        instance.parameters().flush(instance.plugin(),
                                    events.value(3, 0.5).value(kProgram, rounds % 128).list(), told.list());
        ++rounds;
    } while (!isOver);
    audio.join();
    EXPECT_TRUE(instance.load(instance.save().value()));
}

TEST(DoorsThreads, LeaveTheProgramsOfAStateAsTheyAreWhileOthersAreSelected) {
    const desk::PrivateFolder folder;
    const Module module;
    Host host(kOffers);
    Instance instance(module.entry(), host);
    instance.activate();
    instance.set(kProgram, 5);
    for (clap_id id = 0; id < 17; ++id)
        instance.set(id, 0.05 * id);
    const Bytes state = instance.save().value();
    std::atomic<bool> isOver = false;
    std::thread audio([&] {
        std::vector<float> row(kFrames);
        float* const channels[] = {row.data(), row.data()};
        for (int block = 0; !isOver; ++block) {
            Events events;
            instance.process(channels, channels, kFrames, &events.value(kProgram, block % 128));
            instance.reset();
        }
    });
    const auto bankOf = [](const Bytes& from) { return Bytes(from.begin() + 12 + 17 * 4, from.end()); };
    for (int round = 0; round < 300 && !testing::Test::HasFailure(); ++round) {
        EXPECT_TRUE(instance.load(state));
        EXPECT_TRUE(bankOf(instance.save().value()) == bankOf(state)) << round;
    }
    isOver = true;
    audio.join();
}

} // namespace
