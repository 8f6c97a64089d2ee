#include "Linux/Tray/NotifierItems.h"
#include "Linux/Tray/NotifierWatcher.h"
#include "Simulated/VirtualLoop.h"
#include "support/PrivateBus.h"
#include "support/StandInWatcher.h"
#include "support/Waiting.h"

#include <QDBusConnectionInterface>

#include <memory>

#include <unistd.h>

namespace velmorquit {
namespace {

using Ids = std::set<ProcessId>;

class NotifierTest : public testing::Test {
protected:
    /// An icon passes from the list to its process by more messages than are let arrive at once,
    /// and the watcher is asked only so often.
    void settleAll() {
        linger(150);
        for (int round = 0; round < 3; ++round)
            settle({session, watcher.bus});
    }

    PrivateBus bus;
    QDBusConnection session = bus.connect();
    StandInWatcher watcher{bus.connect()};
};

/// Icons of two processes: of this one, and of the bus itself, which has a name on it too.
class NotifierItemsTest : public NotifierTest {
protected:
    Ids processes() {
        settleAll();
        return items->processes();
    }

    const QString busEntry = QStringLiteral("org.freedesktop.DBus/StatusNotifierItem");
    const ProcessId busProcess =
        static_cast<ProcessId>(session.interface()->servicePid("org.freedesktop.DBus"));
    std::unique_ptr<NotifierItems> items = std::make_unique<NotifierItems>(session);
};

TEST_F(NotifierItemsTest, UnderstandsTheEntriesOfAllWatchersAndFollowsThem) {
    QDBusConnection program = bus.connect();
    ASSERT_TRUE(program.registerService("org.kde.StatusNotifierItem-123-1"));
    EXPECT_EQ(processes(), Ids());
    watcher.appear();
    for (const QString& entry :
         {program.baseService() + "/StatusNotifierItem", program.baseService() + "@/some/path",
          program.baseService(), QStringLiteral("org.kde.StatusNotifierItem-123-1"),
          QStringLiteral("org.kde.StatusNotifierItem-123-1/org/item")}) {
        watcher.setItems({entry, ":1.99999/gone", "org.example.Gone", "", "/StatusNotifierItem"});
        EXPECT_EQ(processes(), Ids{::getpid()}) << entry.toStdString();
        watcher.setItems({});
        EXPECT_EQ(processes(), Ids());
    }
    watcher.setItems({session.baseService(), busEntry});
    EXPECT_EQ(processes(), (Ids{::getpid(), busProcess}));
    watcher.disappear();
    EXPECT_EQ(processes(), Ids());
    watcher.appear();
    EXPECT_EQ(processes(), (Ids{::getpid(), busProcess}));
}

TEST_F(NotifierItemsTest, AsksASlowWatcherOnceMoreHoweverMuchChangesMeanwhile) {
    watcher.isSlow = true;
    watcher.appear();
    EXPECT_EQ(processes(), Ids());
    EXPECT_EQ(watcher.calls.size(), 1);
    for (int count = 0; count < 5; ++count)
        watcher.setItems({busEntry});
    EXPECT_EQ(processes(), Ids());
    EXPECT_EQ(watcher.calls.size(), 1);
    watcher.answer();
    EXPECT_EQ(processes(), Ids{busProcess});
    EXPECT_EQ(watcher.calls.size(), 2);
    watcher.answer();
    EXPECT_EQ(processes(), Ids{busProcess});

    // What one says that has gone is nothing to the next one.
    watcher.setItems({});
    settle({session, watcher.bus});
    watcher.disappear();
    StandInWatcher next(bus.connect());
    next.items = QStringList{busEntry};
    next.appear();
    settle({session, next.bus});
    watcher.answer();
    EXPECT_EQ(processes(), Ids{busProcess});
}

TEST_F(NotifierItemsTest, NeitherALongListNorOneThatChangesAllTheTimeKeepsItBusy) {
    watcher.appear();
    EXPECT_EQ(processes(), Ids());
    QStringList list;
    for (std::size_t number = 0; number < NotifierItems::mostItems; ++number)
        list << QStringLiteral(":1.%1").arg(number + 10'000);
    list << session.baseService();
    watcher.setItems(list);
    EXPECT_EQ(processes(), Ids());
    const int before = watcher.calls.size();
    for (int count = 0; count < 500; ++count)
        watcher.setItems(list);
    watcher.setItems({session.baseService()});
    EXPECT_EQ(processes(), Ids{::getpid()});
    EXPECT_LE(watcher.calls.size() - before, 3);
}

class NotifierWatcherTest : public NotifierTest {
protected:
    void begin() {
        notifier = std::make_unique<NotifierWatcher>(loop, session, [this] { ++changes; });
    }
    /// Who is there for icons, when there is nothing more to hear.
    QString present() {
        settleAll();
        return notifier->presentOne();
    }

    VirtualLoop loop;
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
    loop.advance(NotifierWatcher::patience);
    EXPECT_EQ(present(), "");
    watcher.answer();
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
