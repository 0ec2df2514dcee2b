// What a host gets when memory runs out inside one of its calls, at each place where that can happen: an
// answer, and an effect that works on.
#include "short_of_memory.h"

#include <cstring>
#include <vector>

namespace {

using namespace vst2;
using test::dispatch;
using test::ShortOfMemory;
using test::WindowShortOfMemory;

TEST_F(ShortOfMemory, AnEffectIsMadeOrNot) {
    const auto make = [] {
        try {
            dispatch(ShortOfMemory::make(), effClose);
        } catch (const std::bad_alloc&) {
        }
    };
    make();
    const long before = test::livingAllocations();
    const long shortages = atEveryAllocation(make, [] {});
    EXPECT_GT(shortages, 0);
    EXPECT_LE(test::livingAllocations(), before + shortages) << "the toolkit loses a little";
}

TEST_F(ShortOfMemory, AnEffectThatIsNotMadeWritesNoControllerMap) {
    const char* const map = "Pluginccmap.bin";
    bool isMade = false;
    const auto make = [&] {
        try {
            dispatch(ShortOfMemory::make(), effClose);
            isMade = true;
        } catch (const std::bad_alloc&) {
            isMade = false;
        }
    };
    atEveryAllocation(make, [&] {
        EXPECT_TRUE(isMade || !std::filesystem::exists(map));
        std::filesystem::remove(map);
    });
    make();
    EXPECT_TRUE(std::filesystem::exists(map));
}

TEST_F(WindowShortOfMemory, OpensNextTime) {
    expectToOpen();
    close();
    const long before = test::livingAllocations();
    const long shortages = atEveryAllocation([this] { open(); },
                                             [this] {
                                                 expectToOpen();
                                                 close();
                                             });
    EXPECT_GT(shortages, 100);
    EXPECT_LE(test::livingAllocations(), before + shortages) << "the toolkit loses a little, and no window";
}

TEST_F(WindowShortOfMemory, CloseAndOpenAgain) {
    expectToOpen();
    // What the test's own library allocates with its first trace is not counted.
    atEveryAllocation([] {}, [] {});
    dispatch(effect, effEditIdle);
    expectToOpen();
    const long before = test::livingAllocations();
    atEveryAllocation([this] { close(); },
                      [this] {
                          // What a closing had no memory for is done in the next turn.
                          dispatch(effect, effEditIdle);
                          expectToOpen();
                      });
    EXPECT_EQ(test::livingAllocations(), before);
}

TEST_F(WindowShortOfMemory, AreServed) {
    expectToOpen();
    const long shortages = atEveryAllocation(
        [this] {
            effect->setParameter(effect, -1, 0.0f);
            dispatch(effect, effSetProgram, 0, 1);
            dispatch(effect, effEditIdle);
        },
        [] {});
    EXPECT_GT(shortages, 0);
}

TEST_F(WindowShortOfMemory, TakeKeys) {
    expectToOpen();
    atEveryAllocation(
        [this] {
            dispatch(effect, effEditKeyDown, 'a');
            dispatch(effect, effEditKeyUp, 'a');
        },
        [] {});
}

TEST_F(WindowShortOfMemory, KeepWhatAHostSets) {
    expectToOpen();
    float value = 0.0f;
    const long shortages = atEveryAllocation(
        [&] {
            value = value < 0.5f ? 0.75f : 0.25f;
            for (std::int32_t id = 0; id < parameters::kNumLiveParameters; ++id)
                effect->setParameter(effect, id, value);
        },
        [&] { EXPECT_EQ(effect->getParameter(effect, parameters::kFeedback), value); });
    EXPECT_GT(shortages, 0);
}

TEST_F(WindowShortOfMemory, TakeAndGiveChunks) {
    expectToOpen();
    void* data = nullptr;
    const std::intptr_t size = dispatch(effect, effGetChunk, 0, 0, &data);
    std::vector<char> bank(static_cast<char*>(data), static_cast<char*>(data) + size);
    std::intptr_t answer = 0, given = 0;
    const long shortages = atEveryAllocation(
        [&] {
            effect->setParameter(effect, parameters::kFeedback, 0.125f);
            answer = dispatch(effect, effSetChunk, 0, size, bank.data());
            dispatch(effect, effSetChunk, 0, 7, bank.data());
            given = dispatch(effect, effGetChunk, 0, 0, &data);
        },
        [&] {
            EXPECT_EQ(answer, 1);
            ASSERT_EQ(given, size);
            EXPECT_EQ(std::memcmp(data, bank.data(), bank.size()), 0);
        });
    EXPECT_GT(shortages, 0);
}

} // namespace
