#include "Linux/Tray/NotifierWatcher.h"
#include "Simulated/VirtualLoop.h"
#include "support/PrivateBus.h"
#include "support/StandInWatcher.h"
#include "support/Waiting.h"

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
        settle({session, watcher.bus});
    }
    /// Who is there for icons, when there is nothing more to hear.
    QString present() {
        settleAll();
        return notifier->presentOne();
    }

    PrivateBus bus;
    VirtualLoop loop;
    QDBusConnection session = bus.connect();
    StandInWatcher watcher{bus.connect()};
    const QString its = watcher.bus.baseService();
    int changes = 0;
    std::unique_ptr<NotifierWatcher> notifier;
};

TEST_F(NotifierWatcherTest, OneThatIsThereCountsAtOnceAndNoLongerWhenNobodyDraws) {
    watcher.hosts = 0;
    watcher.appear();
    begin();
    EXPECT_EQ(notifier->presentOne(), its);
    EXPECT_EQ(present(), "");
    EXPECT_EQ(changes, 1);
    for (const int hosts : {1, 2, 1}) { // one of two goes at last
        watcher.setHosts(hosts);
        EXPECT_EQ(present(), its);
    }
    EXPECT_EQ(changes, 2);
    watcher.setHosts(0);
    EXPECT_EQ(present(), "");
    EXPECT_EQ(changes, 3);
}

TEST_F(NotifierWatcherTest, OneThatSaysNothingIsBelievedForAWhileAndHeardWhenItSpeaks) {
    watcher.isSlow = true;
    watcher.appear();
    begin();
    EXPECT_EQ(present(), its);
    loop.advance(NotifierWatcher::patience - 1ms);
    EXPECT_EQ(present(), its);
    loop.advance(1ms);
    EXPECT_EQ(present(), "");
    EXPECT_EQ(changes, 1);
    watcher.answer();
    EXPECT_EQ(present(), its);
    EXPECT_EQ(changes, 2);
    loop.advance(1h);
    EXPECT_EQ(present(), its);
}

TEST_F(NotifierWatcherTest, OneThatComesLaterOrTakesOverCountsFromItsAnswerOn) {
    begin();
    EXPECT_EQ(present(), "");
    watcher.isSlow = true;
    watcher.appear();
    EXPECT_EQ(present(), "");
    watcher.answer();
    EXPECT_EQ(present(), its);
    EXPECT_EQ(changes, 1);

    // It goes while it is asked something; what it answers then says nothing of the next one.
    watcher.setHosts(2);
    settleAll();
    watcher.disappear();
    EXPECT_EQ(present(), "");
    StandInWatcher next(bus.connect());
    next.hosts = 0;
    next.appear();
    settleAll();
    watcher.answer();
    EXPECT_EQ(present(), "");
    watcher.tell("StatusNotifierHostRegistered");
    EXPECT_EQ(present(), "") << "whoever says so, it is the watcher that counts";
    next.setHosts(1);
    EXPECT_EQ(present(), next.bus.baseService());
    EXPECT_EQ(changes, 3);
}

} // namespace
} // namespace velmorquit
