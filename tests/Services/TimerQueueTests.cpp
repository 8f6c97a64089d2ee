#include "Simulated/VirtualLoop.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

namespace velmorquit {
namespace {

class TimerQueueTest : public testing::Test {
protected:
    auto note(std::string what) {
        return [this, what] {
            log += what + '@' + std::to_string(loop.uptime().sinceStart / 1ms) + ' ';
        };
    }
    /// What has been noted after that time.
    std::string after(Duration time) {
        loop.advance(time);
        return std::exchange(log, {});
    }

    VirtualLoop loop;
    std::string log;
};

TEST_F(TimerQueueTest, RunsTimersInTheOrderOfTheirInstantsThenOfTheirArming) {
    const Handle late = loop.after(2s, note("late"));
    const Handle every = loop.every(500ms, note("every"));
    const Handle first = loop.after(1s, note("first"));
    const Handle second = loop.after(1s, note("second"));
    EXPECT_EQ(after(1s), "every@500 every@1000 first@1000 second@1000 ");
}

TEST_F(TimerQueueTest, AHandleEndsItsTimerAlsoFromWithinAndAfterTheLoopHasGone) {
    Handle once = loop.after(1s, note("once"));
    once.reset();
    Handle repeating;
    repeating = loop.every(1s, [&] {
        note("repeating")();
        if (loop.uptime() == Uptime{3s})
            repeating.reset();
    });
    Handle moved = loop.after(1s, note("moved"));
    const Handle kept = std::move(moved);
    moved.reset();
    EXPECT_EQ(after(10s), "repeating@1000 moved@1000 repeating@2000 repeating@3000 ");
    EXPECT_FALSE(repeating.isSet());
    Handle orphan = std::make_unique<VirtualLoop>()->after(1s, note("never"));
    orphan.reset();
}

TEST_F(TimerQueueTest, ARepeatingTimerKeepsToItsMultiplesAndMayArmItsSuccessor) {
    Handle timer = loop.every(1s, [&] {
        note("old")();
        timer = loop.every(300ms, note("new"));
    });
    EXPECT_EQ(after(1700ms), "old@1000 new@1300 new@1600 ");
}

TEST_F(TimerQueueTest, ATimerThatWasHeldUpIsCalledOnceForAllItMissed) {
    TimerQueue queue;
    const Handle timer = queue.addRepeating(Uptime{}, 100ms, note("tick"));
    while (queue.fireNext(Uptime{1050ms})) {
    }
    EXPECT_EQ(log, "tick@0 ");
    EXPECT_EQ(queue.nextDue(), Uptime{1100ms});
}

} // namespace
} // namespace velmorquit
