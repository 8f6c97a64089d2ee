#include "Linux/Loop/ClockWatch.h"
#include "Linux/Loop/QtMainLoop.h"
#include "support/Waiting.h"

#include <QThread>

#include <gtest/gtest.h>

#include <string>

namespace velmorquit {
namespace {

class QtMainLoopTest : public testing::Test {
protected:
    auto note(std::string what) {
        return [this, what] { log += what + ' '; };
    }

    std::string log;
    QtMainLoop loop;
};

TEST_F(QtMainLoopTest, NeverRunsATimerEarlyAndKeepsTheirOrder) {
    const Uptime start = loop.uptime();
    Duration reached{};
    const Handle second = loop.after(30ms, [&] {
        reached = loop.uptime() - start;
        note("second")();
    });
    const Handle first = loop.after(20ms, note("first"));
    loop.post(note("posted"));
    EXPECT_EQ(log, "");
    EXPECT_TRUE(waitUntil([&] { return log.size() > 18; }));
    EXPECT_EQ(log, "posted first second ");
    EXPECT_GE(reached, Duration(30ms));
}

TEST_F(QtMainLoopTest, ACallbackMayRunAnEventLoopLongerThanTheInterval) {
    const Handle inner = loop.after(20ms, note("inner"));
    int calls = 0;
    const Handle timer = loop.every(5ms, [&] {
        if (++calls > 1)
            return;
        note("begin")();
        EXPECT_TRUE(waitUntil([&] { return calls >= 4 && log == "begin inner "; }));
        note("end")();
    });
    EXPECT_TRUE(waitUntil([&] { return calls >= 8 && log == "begin inner end "; }));
}

TEST_F(QtMainLoopTest, DoesWorkElsewhereAndReportsHereUnlessNobodyWaits) {
    QThread* worker = nullptr;
    bool isDone = false;
    const Handle work =
        loop.background([&] { worker = QThread::currentThread(); },
                        [&] { isDone = QThread::currentThread() == qApp->thread(); });
    EXPECT_TRUE(waitUntil([&] { return isDone; }));
    EXPECT_NE(worker, qApp->thread());
    Handle unwanted = loop.background([] { QThread::msleep(20); }, note("never"));
    unwanted.reset();
    linger(60);
    EXPECT_EQ(log, "");

    // The loop may go first.
    auto other = std::make_unique<QtMainLoop>();
    const Handle timer = other->every(5ms, note("tick"));
    unwanted = other->background([] { QThread::msleep(30); }, note("never"));
    linger(20);
    other.reset();
    log.clear();
    linger(40);
    EXPECT_EQ(log, "");
}

TEST(ClockWatchTest, TellsOfASleepOnceAndBeforeWhatWasDueInIt) {
    Duration slept = 5h;
    std::string told;
    ClockWatch watch([&] { return slept; });
    const Handle woke = watch.observe(ClockEvent::woke, [&] { told += "woke "; });
    const Handle set = watch.observe(ClockEvent::corrected, [&] { told += "set "; });
    watch.look();
    slept += 499ms;
    watch.look();
    EXPECT_EQ(told, "") << "two clocks are never read at the same instant";
    slept += 1ms;
    watch.look();
    watch.look();
    EXPECT_EQ(told, "woke ");
    slept += 9h;
    watch.look();
    EXPECT_EQ(told, "woke woke ");
}

} // namespace
} // namespace velmorquit
