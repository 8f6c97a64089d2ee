#include "Linux/Tray/NotifierWatcher.h"
#include "Simulated/VirtualLoop.h"
#include "support/PrivateBus.h"
#include "support/StandInWatcher.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <memory>

namespace velmorquit {
namespace {

class NotifierWatcherTest : public testing::Test {
protected:
    void begin() {
        notifier = std::make_unique<NotifierWatcher>(loop, session, [this] { ++changes; });
    }
    void settleAll() {
        // The watcher is asked only so often.
        linger(150);
        settle({session, watcher.bus});
    }
    /// Whether somebody is there who draws icons, when there is nothing more to hear.
    bool isPresent() {
        settleAll();
        const QString present = notifier->presentOne();
        EXPECT_TRUE(present.isEmpty() || present == watcher.bus.baseService());
        return !present.isEmpty();
    }

    PrivateBus bus;
    VirtualLoop loop;
    QDBusConnection session = bus.connect();
    StandInWatcher watcher{bus.connect()};
    int changes = 0;
    std::unique_ptr<NotifierWatcher> notifier;
};

TEST_F(NotifierWatcherTest, OneThatIsThereCountsAtOnceAndNoLongerWhenNobodyDraws) {
    watcher.hosts = 0;
    watcher.appear();
    settleAll();
    begin();
    EXPECT_EQ(notifier->presentOne(), watcher.bus.baseService());
    EXPECT_FALSE(isPresent());
    EXPECT_EQ(changes, 1);
    watcher.setHosts(1);
    EXPECT_TRUE(isPresent());
    watcher.setHosts(2);
    EXPECT_TRUE(isPresent());
    watcher.setHosts(1);
    EXPECT_TRUE(isPresent()) << "one of two has gone";
    EXPECT_EQ(changes, 2);
    watcher.setHosts(0);
    EXPECT_FALSE(isPresent());
    EXPECT_EQ(changes, 3);
}

TEST_F(NotifierWatcherTest, OneThatSaysNothingIsBelievedForAWhileAndHeardWhenItSpeaks) {
    watcher.isSlow = true;
    watcher.appear();
    settleAll();
    begin();
    EXPECT_TRUE(isPresent());
    loop.advance(NotifierWatcher::patience - 1ms);
    EXPECT_TRUE(isPresent());
    loop.advance(1ms);
    EXPECT_FALSE(isPresent());
    EXPECT_EQ(changes, 1);
    watcher.answer();
    EXPECT_TRUE(isPresent());
    EXPECT_EQ(changes, 2);
    loop.advance(1h);
    EXPECT_TRUE(isPresent());
}

TEST_F(NotifierWatcherTest, OneThatComesLaterOrTakesOverCountsFromItsAnswerOn) {
    begin();
    EXPECT_FALSE(isPresent());
    watcher.isSlow = true;
    watcher.appear();
    EXPECT_FALSE(isPresent());
    watcher.answer();
    EXPECT_TRUE(isPresent());
    EXPECT_EQ(changes, 1);

    // It goes while it is asked something; what it answers then says nothing of the next one.
    watcher.setHosts(2);
    settleAll();
    watcher.disappear();
    EXPECT_FALSE(isPresent());
    StandInWatcher next(bus.connect());
    next.hosts = 0;
    next.appear();
    settleAll();
    watcher.answer();
    EXPECT_FALSE(isPresent());
    StandInWatcher::tell(watcher.bus, "StatusNotifierHostRegistered");
    EXPECT_FALSE(isPresent()) << "whoever says so, it is the watcher that counts";
    next.setHosts(1);
    settleAll();
    settle({session, next.bus});
    EXPECT_EQ(notifier->presentOne(), next.bus.baseService());
    EXPECT_EQ(changes, 3);
}

} // namespace
} // namespace velmorquit
