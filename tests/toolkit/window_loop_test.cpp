#include "toolkit/linux/window_loop.h"

#include "platform/clock.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

using toolkit::WindowLoop;

class EventHandler final : public VSTGUI::X11::IEventHandler {
  public:
    void onEvent() override {
        ++calls;
        if (action)
            action();
    }

    int calls = 0;
    std::function<void()> action;
};

class TimerHandler final : public VSTGUI::X11::ITimerHandler {
  public:
    void onTimer() override {
        ++calls;
        if (action)
            action();
    }

    int calls = 0;
    std::function<void()> action;
};

class Hands final : public platform::Clock {
  public:
    std::uint32_t milliseconds() override { return now; }
    void sleepMilliseconds(std::uint32_t duration) override { now += duration; }

    std::uint32_t now = 1000;
};

/// A loop of its own and a clock that stands still.
class Loop : public testing::Test {
  protected:
    Loop() { platform::replaceClock(&clock); }
    ~Loop() override { platform::replaceClock(nullptr); }

    void advance(std::uint32_t time) {
        clock.now += time;
        loop.serve();
    }

    Hands clock;
    WindowLoop loop;
};

TEST_F(Loop, IsOneForTheProcess) {
    EXPECT_EQ(&WindowLoop::shared(), &WindowLoop::shared());
}

TEST_F(Loop, CallsEveryHandlerThoughNothingIsReadable) {
    EventHandler first, second;
    EXPECT_TRUE(loop.registerEventHandler(-1, &first));
    EXPECT_TRUE(loop.registerEventHandler(-1, &second));
    EXPECT_EQ(first.calls, 0) << "nothing happens without a turn";
    loop.serve();
    loop.serve();
    EXPECT_EQ(first.calls, 2);
    EXPECT_EQ(second.calls, 2);
}

TEST_F(Loop, CallsNobodyWhoHasLeft) {
    EventHandler stays, leaves;
    loop.registerEventHandler(-1, &stays);
    loop.registerEventHandler(-1, &leaves);
    EXPECT_TRUE(loop.unregisterEventHandler(&leaves));
    EXPECT_FALSE(loop.unregisterEventHandler(&leaves));
    EXPECT_FALSE(loop.unregisterEventHandler(nullptr));
    loop.serve();
    EXPECT_EQ(leaves.calls, 0);
    EXPECT_EQ(stays.calls, 1);
}

TEST_F(Loop, SurvivesHandlersThatLeaveWhileTheyAreServed) {
    EventHandler first, second, third;
    loop.registerEventHandler(-1, &first);
    loop.registerEventHandler(-1, &second);
    loop.registerEventHandler(-1, &third);
    first.action = [&] {
        loop.unregisterEventHandler(&first);
        loop.unregisterEventHandler(&second);
    };
    loop.serve();
    EXPECT_EQ(second.calls, 0) << "gone before its turn";
    EXPECT_EQ(third.calls, 1) << "not passed over";
    loop.serve();
    EXPECT_EQ(first.calls, 1);
    EXPECT_EQ(third.calls, 2);
}

TEST_F(Loop, ServesANewcomerFromTheNextTurnOn) {
    EventHandler first, newcomer;
    loop.registerEventHandler(-1, &first);
    first.action = [&] {
        if (first.calls == 1)
            loop.registerEventHandler(-1, &newcomer);
    };
    loop.serve();
    EXPECT_EQ(newcomer.calls, 0);
    loop.serve();
    EXPECT_EQ(newcomer.calls, 1);
}

TEST_F(Loop, CallsATimerWhenItsTimeHasCome) {
    TimerHandler timer;
    EXPECT_TRUE(loop.registerTimer(16, &timer));
    loop.serve();
    advance(15);
    EXPECT_EQ(timer.calls, 0);
    advance(1);
    EXPECT_EQ(timer.calls, 1);
    loop.serve();
    EXPECT_EQ(timer.calls, 1);
    advance(16);
    EXPECT_EQ(timer.calls, 2);
}

TEST_F(Loop, CallsALateTimerOnceAndNotForEachTimeThatWasMissed) {
    TimerHandler timer;
    loop.registerTimer(16, &timer);
    advance(1000);
    EXPECT_EQ(timer.calls, 1);
    advance(15);
    EXPECT_EQ(timer.calls, 1);
    advance(1);
    EXPECT_EQ(timer.calls, 2);
}

TEST_F(Loop, CallsATimerWithoutAnIntervalInEveryTurn) {
    TimerHandler timer;
    loop.registerTimer(0, &timer);
    loop.serve();
    loop.serve();
    EXPECT_EQ(timer.calls, 2);
}

TEST_F(Loop, CountsOnWhenTheClockBeginsAnew) {
    clock.now = 0xFFFFFFF8;
    TimerHandler timer;
    loop.registerTimer(16, &timer);
    advance(15);
    EXPECT_EQ(timer.calls, 0);
    advance(1);
    EXPECT_EQ(clock.now, 8U);
    EXPECT_EQ(timer.calls, 1);
}

TEST_F(Loop, DoesNotCallATimerOfAnEndlessInterval) {
    TimerHandler timer;
    loop.registerTimer(~std::uint64_t{0}, &timer);
    advance(0x7FFFFFFE);
    EXPECT_EQ(timer.calls, 0);
}

TEST_F(Loop, GivesATimerThatIsRegisteredAgainItsNewInterval) {
    TimerHandler timer;
    loop.registerTimer(16, &timer);
    loop.registerTimer(100, &timer);
    advance(99);
    EXPECT_EQ(timer.calls, 0);
    advance(1);
    EXPECT_EQ(timer.calls, 1);
}

TEST_F(Loop, SurvivesTimersThatLeaveAndComeWhileTheyAreServed) {
    TimerHandler first, second, third, newcomer;
    loop.registerTimer(10, &first);
    loop.registerTimer(10, &second);
    loop.registerTimer(10, &third);
    first.action = [&] {
        loop.unregisterTimer(&first);
        loop.unregisterTimer(&second);
        for (int i = 0; i < 100; ++i)
            loop.registerTimer(0, &newcomer);
    };
    advance(10);
    EXPECT_EQ(first.calls, 1);
    EXPECT_EQ(second.calls, 0);
    EXPECT_EQ(third.calls, 1);
    EXPECT_EQ(newcomer.calls, 0);
    advance(10);
    EXPECT_EQ(first.calls, 1);
    EXPECT_EQ(third.calls, 2);
    EXPECT_EQ(newcomer.calls, 1);
    EXPECT_TRUE(loop.unregisterTimer(&third));
    EXPECT_FALSE(loop.unregisterTimer(&third));
    EXPECT_FALSE(loop.unregisterTimer(nullptr));
}

TEST_F(Loop, LetsATimerDeleteItself) {
    auto* timer = new TimerHandler;
    EventHandler other;
    loop.registerTimer(0, timer);
    loop.registerEventHandler(-1, &other);
    timer->action = [this, timer] {
        loop.unregisterTimer(timer);
        delete timer;
    };
    loop.serve();
    loop.serve();
    EXPECT_EQ(other.calls, 2);
}

TEST_F(Loop, DropsTheTimersWithTheLastConnection) {
    EventHandler first, second;
    TimerHandler timer;
    loop.registerEventHandler(-1, &first);
    loop.registerEventHandler(-1, &second);
    loop.registerTimer(0, &timer);
    loop.unregisterEventHandler(&first);
    loop.serve();
    EXPECT_EQ(timer.calls, 1);
    loop.unregisterEventHandler(&second);
    loop.serve();
    EXPECT_EQ(timer.calls, 1);
}

TEST_F(Loop, InsideATurnServesTimersAndNoEvents) {
    EventHandler events;
    TimerHandler timer;
    loop.registerEventHandler(-1, &events);
    loop.registerTimer(0, &timer);
    events.action = [&] {
        if (events.calls == 1)
            loop.serve();
    };
    loop.serve();
    EXPECT_EQ(events.calls, 1);
    EXPECT_EQ(timer.calls, 2) << "once inside, once after the events";
}

TEST_F(Loop, DoesNotCallATimerThatIsJustRunning) {
    TimerHandler timer;
    loop.registerTimer(0, &timer);
    timer.action = [&] {
        clock.now += 1000;
        loop.serveTimers();
    };
    loop.serve();
    EXPECT_EQ(timer.calls, 1);
    loop.serve();
    EXPECT_EQ(timer.calls, 2) << "and goes on calling it afterwards";
}

TEST_F(Loop, ServingTimersTakesNoEvents) {
    EventHandler events;
    TimerHandler timer;
    loop.registerEventHandler(-1, &events);
    loop.registerTimer(0, &timer);
    loop.serveTimers();
    EXPECT_EQ(events.calls, 0);
    EXPECT_EQ(timer.calls, 1);
}

TEST_F(Loop, RunsAJobAtOnceWhenItStandsStill) {
    bool done = false;
    loop.afterServing([&] { done = true; });
    EXPECT_TRUE(done);
}

TEST_F(Loop, RunsAJobWhenTheOutermostTurnIsOver) {
    EventHandler events, last;
    std::string order;
    loop.registerEventHandler(-1, &events);
    loop.registerEventHandler(-1, &last);
    events.action = [&] {
        loop.afterServing([&] {
            EXPECT_FALSE(loop.isServing());
            order += "first job, ";
            loop.afterServing([&] { order += "its own, "; });
        });
        loop.afterServing([&] { order += "second job"; });
        loop.serve();
        order += "event, ";
    };
    last.action = [&] { order += "last event, "; };
    loop.serve();
    EXPECT_EQ(order, "event, last event, first job, its own, second job");
}

TEST_F(Loop, RunsAJobOnce) {
    EventHandler events;
    int jobs = 0;
    loop.registerEventHandler(-1, &events);
    events.action = [&] {
        if (events.calls == 1)
            loop.afterServing([&] { ++jobs; });
    };
    loop.serve();
    loop.serve();
    EXPECT_EQ(jobs, 1);
}

} // namespace
