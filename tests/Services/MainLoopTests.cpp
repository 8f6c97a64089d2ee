#include "Simulated/VirtualLoop.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace velmorquit {
namespace {

class MainLoopTest : public testing::Test {
protected:
    auto note(std::string what) {
        return [this, what] {
            log += what + '@' +
                   std::to_string(loop.uptime().sinceStart / std::chrono::milliseconds(1)) + ' ';
        };
    }

    VirtualLoop loop;
    std::string log;
};

TEST_F(MainLoopTest, RunsTimersInTheOrderOfTheirInstantsThenOfTheirArming) {
    const Handle late = loop.after(2s, note("late"));
    const Handle every = loop.every(500ms, note("every"));
    const Handle first = loop.after(1s, note("first"));
    const Handle second = loop.after(1s, note("second"));
    loop.advance(1s);
    EXPECT_EQ(log, "every@500 every@1000 first@1000 second@1000 ");
}

TEST_F(MainLoopTest, RunsWhatIsPostedBeforeTheNextTimerAndInOrder) {
    const Handle timer = loop.after(0s, note("timer"));
    loop.post([this] {
        note("a")();
        loop.post(note("c"));
    });
    loop.post(note("b"));
    EXPECT_EQ(log, "");
    loop.settle();
    EXPECT_EQ(log, "a@0 b@0 c@0 timer@0 ");
}

TEST_F(MainLoopTest, AHandleEndsItsTimerAlsoFromWithinAndAfterTheLoopHasGone) {
    Handle once = loop.after(1s, note("once"));
    once.reset();
    int calls = 0;
    Handle repeating;
    repeating = loop.every(1s, [&] {
        if (++calls == 3)
            repeating.reset();
    });
    Handle moved = loop.after(1s, note("moved"));
    const Handle kept = std::move(moved);
    moved.reset();
    loop.advance(10s);
    EXPECT_EQ(calls, 3);
    EXPECT_EQ(log, "moved@1000 ");
    EXPECT_FALSE(repeating.isSet());

    Handle orphan;
    {
        VirtualLoop other;
        orphan = other.after(1s, note("never"));
    }
    orphan.reset();
}

TEST_F(MainLoopTest, ARepeatingTimerKeepsToItsMultiplesAndMayArmItsSuccessor) {
    Handle timer = loop.every(1s, [&] {
        note("old")();
        timer = loop.every(300ms, note("new"));
    });
    loop.advance(1700ms);
    EXPECT_EQ(log, "old@1000 new@1300 new@1600 ");
}

TEST_F(MainLoopTest, ATimerThatWasHeldUpIsCalledOnceForAllItMissed) {
    TimerQueue queue;
    const Handle timer = queue.addRepeating(Uptime{}, 100ms, note("tick"));
    while (queue.fireNext(Uptime{1050ms})) {
    }
    EXPECT_EQ(log, "tick@0 ");
    EXPECT_EQ(queue.nextDue(), Uptime{1100ms});
}

TEST_F(MainLoopTest, WorkElsewhereReportsInALaterTurnUnlessItsHandleIsGone) {
    const Handle wanted = loop.background(note("work"), note("done"));
    Handle unwanted = loop.background(note("work2"), note("never"));
    unwanted.reset();
    EXPECT_EQ(log, "");
    loop.settle();
    EXPECT_EQ(log, "work@0 work2@0 done@0 ");
}

TEST_F(MainLoopTest, ACorrectedClockMovesDatesAndNoWaits) {
    const WallTime before = loop.now();
    const Handle timer = loop.after(1s, note("timer"));
    loop.moveWallClock(-1h);
    EXPECT_EQ(loop.now(), before - 1h);
    loop.advance(1s);
    EXPECT_EQ(log, "timer@1000 ");
}

} // namespace
} // namespace velmorquit
