#include "Linux/Bus/KeepReading.h"
#include "Linux/Log/JournalLog.h"
#include "Linux/Log/LineLimit.h"
#include "Linux/Loop/Paced.h"
#include "Linux/Remote/CallBudget.h"
#include "support/PrivateBus.h"
#include "support/StandInService.h"
#include "support/Waiting.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QElapsedTimer>
#include <QThread>

#include <gtest/gtest.h>

namespace velmorquit {
namespace {

constexpr Uptime start{1h};

TEST(Limits, TheLogTakesABurstAndThenALineAMinuteAndSaysWhatItLost) {
    LineLimit limit;
    int taken = 0;
    for (int line = 0; line < 1000; ++line)
        taken += limit.takes(start) ? 1 : 0;
    EXPECT_EQ(taken, LineLimit::most);
    EXPECT_TRUE(limit.takes(start + 1min));
    EXPECT_FALSE(limit.takes(start + 1min));
    EXPECT_EQ(limit.takeLost(), 941U);
    EXPECT_EQ(limit.takeLost(), 0U);
}

TEST(Limits, TheJournalHasOneLineWhateverIsInIt) {
    testing::internal::CaptureStderr();
    JournalLog().write("Velmor Quit: aspetto a\nVelmor Quit: b\x1b[31m\xff");
    JournalLog().write(std::string(1 << 20, 'x'));
    const std::string written = testing::internal::GetCapturedStderr();
    const std::size_t end = written.find('\n');
    EXPECT_EQ(written.substr(0, end), "Velmor Quit: aspetto a Velmor Quit: b [31m\ufffd");
    EXPECT_LT(written.size(), 2100U);
    EXPECT_TRUE(written.ends_with("…\n"));
}

TEST(Limits, WhoCallsWithoutEndIsRefusedWhileOthersAreServed) {
    CallBudget budget;
    Uptime now = start;
    Duration spent{};
    for (; now < start + 20s; now = now + 10ms) {
        if (budget.allows("flood", now)) {
            budget.charge("flood", now, 50ms);
            spent += 50ms;
        }
        EXPECT_TRUE(budget.allows("other", now));
    }
    EXPECT_GT(spent, 2s);
    EXPECT_LT(spent, 4s);
    // Many together get no more than a quarter.
    for (int caller = 0; caller < 1000; ++caller) {
        if (budget.allows(std::to_string(caller), now))
            budget.charge(std::to_string(caller), now, 50ms);
    }
    EXPECT_FALSE(budget.allows("other", now));
    EXPECT_TRUE(budget.allows("other", now + 4s));
}

TEST(Limits, WorkIsDoneOnceForABurstAndRestsInProportion) {
    int times = 0;
    Paced work({}, [&times] {
        ++times;
        QThread::msleep(40);
    });
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(waitUntil([&] {
        for (int reason = 0; reason < 100; ++reason)
            work.ask();
        return times == 3;
    }));
    EXPECT_GE(timer.elapsed(), 2 * 5 * 40);
}

// Without the care that is taken it would answer nothing any more.
TEST(Limits, AConnectionThatWasFloodedWhileNobodyLookedStillHears) {
    PrivateBus bus;
    QDBusConnection flooded = bus.connect();
    QDBusConnection flooder = bus.connect();
    keepReading(flooded);
    //  What nobody has registered Qt would answer on its own thread.
    StandInService object(flooded);
    object.says[""] = QVariantList();
    QDBusMessage message =
        QDBusMessage::createMethodCall(flooded.baseService(), "/", "org.test", "Flood");
    message.setArguments({QByteArray(8 << 20, 'x')});
    for (int count = 0; count < 12; ++count)
        flooder.send(message);
    QThread::sleep(3);
    linger(500);
    message.setArguments({});
    const QDBusPendingCall call = flooder.asyncCall(message);
    EXPECT_TRUE(waitUntil([&] { return call.isFinished(); }, 5000));
    EXPECT_FALSE(call.isError()) << call.error().message().toStdString();
}

} // namespace
} // namespace velmorquit
