// Which of a host's values are shown: those that are news, and never one that would pull a control out of the
// hand or back to where it was.
#include "doors/lv2_window/echo_filter.h"

#include <gtest/gtest.h>

namespace {

using lv2_window::EchoFilter;

using Shown = std::optional<float>;
constexpr Shown kNothing = std::nullopt;

class Echoes : public testing::Test {
  protected:
    /// A drag from 0.5 to 0.8, still held.
    void drag() {
        filter.beginEdit(0.5f);
        for (const float value : {0.6f, 0.7f, 0.8f})
            filter.written(value);
    }
    /// What the idle rounds show until echoes have settled.
    std::vector<float> shownWhileIdle() {
        std::vector<float> shown;
        for (int i = 0; i < 2 * EchoFilter::kIdlesToSettle; ++i)
            if (const Shown late = filter.idle())
                shown.push_back(*late);
        return shown;
    }

    EchoFilter filter;
};

TEST_F(Echoes, LeaveValuesOfTheHostAloneWithoutAGesture) {
    EXPECT_EQ(filter.received(0.25f), 0.25f);
    EXPECT_EQ(filter.received(0.0f), 0.0f);
    EXPECT_EQ(filter.idle(), kNothing);
}

TEST_F(Echoes, AreNotShownWhileTheControlIsHeld) {
    drag();
    for (const float value : {0.5f, 0.6f, 0.8f, 0.1f})
        EXPECT_EQ(filter.received(value), kNothing) << value;
    EXPECT_EQ(shownWhileIdle(), std::vector<float>{});
}

TEST_F(Echoes, DoNotMoveAControlThatWasJustLetGo) {
    drag();
    EXPECT_EQ(filter.received(0.6f), kNothing);
    EXPECT_EQ(filter.endEdit(), kNothing);
    EXPECT_EQ(filter.received(0.7f), kNothing);
    EXPECT_EQ(filter.received(0.8f), kNothing);
    EXPECT_EQ(filter.received(0.5f), kNothing) << "older than the gesture";
    EXPECT_EQ(filter.received(0.8f), kNothing);
    EXPECT_EQ(shownWhileIdle(), std::vector<float>{0.8f}) << "where it stands";
}

TEST_F(Echoes, CountInTheEndIfTheyAreTheHostsLastWord) {
    drag();
    filter.endEdit();
    EXPECT_EQ(filter.received(0.6f), kNothing);
    EXPECT_EQ(shownWhileIdle(), std::vector<float>{0.6f});
}

TEST_F(Echoes, AreNoLongerExpectedOnceTheyHaveSettled) {
    drag();
    filter.endEdit();
    EXPECT_EQ(shownWhileIdle(), std::vector<float>{});
    EXPECT_EQ(filter.received(0.6f), 0.6f);
}

TEST_F(Echoes, AreNotTakenForAutomation) {
    drag();
    EXPECT_EQ(filter.received(0.1f), kNothing) << "automation in the hand";
    EXPECT_EQ(filter.endEdit(), 0.1f) << "counts at once";
    EXPECT_EQ(filter.received(0.12f), 0.12f) << "and goes on";
    EXPECT_EQ(filter.received(0.7f), kNothing) << "a late echo in between";
    EXPECT_EQ(filter.received(0.14f), 0.14f);
    EXPECT_EQ(shownWhileIdle(), std::vector<float>{});
}

TEST_F(Echoes, YieldToWhatTheHandWritesLater) {
    filter.beginEdit(0.5f);
    EXPECT_EQ(filter.received(0.1f), kNothing);
    filter.written(0.6f);
    EXPECT_EQ(filter.endEdit(), kNothing);
    EXPECT_EQ(shownWhileIdle(), std::vector<float>{});
}

TEST_F(Echoes, AreExpectedOfAWriteWithoutAGesture) {
    filter.written(0.3f);
    filter.written(0.4f);
    EXPECT_EQ(filter.received(0.3f), kNothing);
    EXPECT_EQ(filter.received(0.4f), kNothing);
    EXPECT_EQ(filter.received(0.9f), 0.9f);
}

TEST_F(Echoes, WaitForTheLastOfSeveralHands) {
    filter.beginEdit(0.5f);
    filter.beginEdit(0.5f);
    EXPECT_EQ(filter.endEdit(), kNothing);
    EXPECT_TRUE(filter.isHeld());
    EXPECT_EQ(filter.received(0.1f), kNothing);
    EXPECT_EQ(filter.endEdit(), 0.1f);
    EXPECT_FALSE(filter.isHeld());
}

TEST_F(Echoes, DoNotMindAnEndWithoutABeginning) {
    EXPECT_EQ(filter.endEdit(), kNothing);
    EXPECT_FALSE(filter.isHeld());
    EXPECT_EQ(filter.received(0.2f), 0.2f);
}

TEST_F(Echoes, AreKnownOfALongDragAsFarAsTheyCanStillCome) {
    filter.beginEdit(0.0f);
    for (int step = 1; step <= 1000; ++step)
        filter.written(static_cast<float>(step) / 1000.0f);
    filter.endEdit();
    EXPECT_EQ(filter.received(0.9f), kNothing);
    EXPECT_EQ(filter.received(0.001f), 0.001f);
}

} // namespace
