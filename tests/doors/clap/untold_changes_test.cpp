// In which order a host hears of values and gestures, whenever it asks.
#include "doors/clap/untold_changes.h"

#include <atomic>
#include <cstddef>
#include <string>
#include <thread>

#include <gtest/gtest.h>

namespace {

using namespace clap_door;
using Kind = UntoldChange::Kind;

/// What is told, in letters: "[" and "]" for a gesture, "v" for a value of the hand, "e" for one of the
/// effect. At most `room` of them.
std::string told(UntoldChanges& changes, std::size_t room = ~std::size_t{0}) {
    std::string letters;
    changes.tell([&](const UntoldChange& change) {
        if (letters.size() == room)
            return false;
        letters += change.kind == Kind::gestureBegin ? '['
                   : change.kind == Kind::gestureEnd ? ']'
                   : change.isByHand                 ? 'v'
                                                     : 'e';
        return true;
    });
    return letters;
}

class ChangesOfAParameter : public testing::Test {
  protected:
    /// In the letters of told(), "[" and "]" being turns of the hand.
    void note(const std::string& letters) {
        for (const char letter : letters)
            if (letter == 'v')
                changes.noteMoved(6);
            else if (letter == 'e')
                changes.note(6);
            else
                changes.noteGesture(6);
    }

    UntoldChanges changes;
};

TEST_F(ChangesOfAParameter, AreToldOnceAndValuesTogether) {
    note("vvv");
    EXPECT_EQ(told(changes), "v");
    EXPECT_EQ(told(changes), "");
    note("ee");
    EXPECT_EQ(told(changes), "e");
    note("ev");
    EXPECT_EQ(told(changes), "v") << "to be recorded";
    note("e");
    changes.forgetValues();
    EXPECT_EQ(told(changes), "");
}

TEST_F(ChangesOfAParameter, HaveAValueInEachGesture) {
    note("[v]");
    EXPECT_EQ(told(changes), "[v]");
    note("[]");
    EXPECT_EQ(told(changes), "[v]");
    note("v[vv]v");
    EXPECT_EQ(told(changes), "[v]");
    EXPECT_EQ(told(changes), "");
}

TEST_F(ChangesOfAParameter, AreToldInTheOrderOfWhatHappens) {
    note("[");
    EXPECT_EQ(told(changes), "[v");
    note("v");
    EXPECT_EQ(told(changes), "v");
    note("v]");
    EXPECT_EQ(told(changes), "v]");
    note("[");
    EXPECT_EQ(told(changes), "[v");
    note("]");
    EXPECT_EQ(told(changes), "]");
}

TEST_F(ChangesOfAParameter, AreToldOfTheLastGestureWhereTheHostWasAway) {
    note("[v][v][v]");
    EXPECT_EQ(told(changes), "[v]");
    note("[v][v][");
    EXPECT_EQ(told(changes), "[v");
    note("v][v][v]");
    EXPECT_EQ(told(changes), "v]");
    note("[");
    EXPECT_EQ(told(changes), "[v");
    note("][");
    EXPECT_EQ(told(changes), "][v");
    note("][][");
    EXPECT_EQ(told(changes), "][v");
}

TEST_F(ChangesOfAParameter, WaitWhereTheHostHasNoRoom) {
    note("[v]");
    EXPECT_EQ(told(changes, 0), "");
    EXPECT_EQ(told(changes, 1), "[");
    EXPECT_EQ(told(changes, 1), "v");
    EXPECT_EQ(told(changes, 0), "");
    EXPECT_EQ(told(changes, 1), "]");
    EXPECT_EQ(told(changes, 1), "");
    note("e");
    EXPECT_EQ(told(changes, 0), "");
    EXPECT_EQ(told(changes), "e");
}

TEST_F(ChangesOfAParameter, WaitForWhoeverIsTellingAlready) {
    note("[v");
    std::string inside = "nothing";
    changes.tell([&](const UntoldChange&) {
        inside = told(changes);
        return true;
    });
    EXPECT_EQ(inside, "");
    note("]");
    EXPECT_EQ(told(changes), "]");
}

TEST(Changes, AreToldInTheOrderOfTheList) {
    UntoldChanges changes;
    changes.noteAll();
    std::uint32_t next = 0;
    changes.tell([&](const UntoldChange& change) { return change.index == next++; });
    EXPECT_EQ(next, kNumListed);
}

/// One thread is the hand, and two ask.
TEST(ChangesThreads, HaveAValueInEachGestureAndLoseNone) {
    constexpr std::uint32_t kGestures = 200000;
    UntoldChanges changes;
    std::atomic<std::uint32_t> set = 0; // by the hand
    std::atomic<bool> isOver = false;
    // Whoever tells.
    bool isHeld = false, hasValue = false;
    std::uint32_t faults = 0, last = 0;
    const auto tellAll = [&] {
        changes.tell([&](const UntoldChange& change) {
            if (change.kind == Kind::value) {
                // The hand sets none but within a gesture.
                if (!isHeld)
                    ++faults;
                hasValue = true;
                last = set;
                return true;
            }
            const bool isBegin = change.kind == Kind::gestureBegin;
            if (isBegin == isHeld || (!isBegin && !hasValue))
                ++faults;
            isHeld = isBegin;
            hasValue = false;
            return true;
        });
    };
    const auto ask = [&] {
        while (!isOver)
            tellAll();
    };
    std::thread one(ask), other(ask);
    for (std::uint32_t gesture = 0; gesture < kGestures; ++gesture) {
        changes.noteGesture(6);
        ++set;
        changes.noteMoved(6);
        changes.noteGesture(6);
    }
    isOver = true;
    one.join();
    other.join();
    tellAll();
    EXPECT_EQ(faults, 0u);
    EXPECT_FALSE(isHeld);
    EXPECT_EQ(last, kGestures);
}

} // namespace
