#include "Linux/Tray/NotifierItems.h"
#include "support/PrivateBus.h"
#include "support/StandInWatcher.h"
#include "support/Waiting.h"

#include <QDBusConnectionInterface>

#include <memory>

#include <unistd.h>

namespace velmorquit {
namespace {

using Ids = std::set<ProcessId>;

/// Icons of two processes: of this one, and of the bus itself, which has a name on it too.
class NotifierItemsTest : public testing::Test {
protected:
    /// An icon passes from the list to its process by more messages than are let arrive at once.
    Ids processes() {
        // The list is asked for only so often.
        linger(150);
        for (int round = 0; round < 3; ++round)
            settle({session, watcher.bus});
        return items->processes();
    }

    PrivateBus bus;
    QDBusConnection session = bus.connect();
    StandInWatcher watcher{bus.connect()};
    const QString busEntry = QStringLiteral("org.freedesktop.DBus/StatusNotifierItem");
    const ProcessId busProcess =
        static_cast<ProcessId>(session.interface()->servicePid("org.freedesktop.DBus"));
    std::unique_ptr<NotifierItems> items;
};

TEST_F(NotifierItemsTest, UnderstandsTheEntriesOfAllWatchersAndFollowsThem) {
    QDBusConnection program = bus.connect();
    ASSERT_TRUE(program.registerService("org.kde.StatusNotifierItem-123-1"));
    items = std::make_unique<NotifierItems>(session);
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
    items = std::make_unique<NotifierItems>(session);
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
    items = std::make_unique<NotifierItems>(session);
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

} // namespace
} // namespace velmorquit
