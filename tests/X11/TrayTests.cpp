#include "Linux/Tray/DesktopTrayHosts.h"
#include "Linux/Tray/TrayOwners.h"
#include "Linux/X11/X11Tray.h"
#include "X11/FaceTest.h"
#include "support/StandInWatcher.h"

#include <unistd.h>

namespace velmorquit {
namespace {

using TrayHostsTest = FaceTest;

TEST_F(TrayHostsTest, ANotifierGoesBeforeWhoTakesWindowsInAndEachIsNoticedAtOnce) {
    constexpr const char* tray = "_NET_SYSTEM_TRAY_S0";
    X11Tray embedding{events};
    const QDBusConnection bus = QDBusConnection::sessionBus();
    StandInWatcher watcher{
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, "stand-in watcher")};
    DesktopTrayHosts hosts(loop, bus, &embedding);
    int changes = 0;
    const Handle watch = hosts.observe([&] { ++changes; });
    const auto expectChange = [&](int count, TrayHost present) {
        EXPECT_TRUE(waitUntil([&] { return changes == count; })) << count;
        EXPECT_EQ(hosts.present(), present) << count;
    };
    expectChange(0, TrayHost::embedding);
    killOwnerOf(ownerOf(tray));
    expectChange(1, TrayHost::none);
    OwnWindow first;
    first.take(tray);
    expectChange(2, TrayHost::embedding);
    OwnWindow second;
    second.take(tray);
    expectChange(3, TrayHost::embedding);

    watcher.appear();
    EXPECT_EQ(DesktopTrayHosts(loop, bus, &embedding).present(), TrayHost::notifier)
        << "before anything could be waited for";
    expectChange(4, TrayHost::notifier);
    first.take(tray);
    linger(100);
    expectChange(4, TrayHost::notifier); // those who take windows in make no difference beside it
    watcher.disappear();
    expectChange(5, TrayHost::embedding);
}

using Ids = std::set<ProcessId>;

class TrayOwnersTest : public FaceTest {
protected:
    TrayOwners makeOwners(ProcessId own = ::getpid()) {
        return TrayOwners(QDBusConnection::sessionBus(), &tray, own);
    }

    X11Tray tray{events};
};

TEST_F(TrayOwnersTest, AreThoseWhoseWindowsTheTrayHasTakenInAndThoseOnTheNotifiersList) {
    TrayOwners owners = makeOwners();
    EXPECT_EQ(owners.processes(), Ids());
    start({"--class", "Ordinary", "--windows", "120"});
    Child& one = start({"--tray"});
    const ProcessId two = start({"--tray", "--windows", "2"}).id();
    EXPECT_TRUE(waitUntil([&] { return owners.processes() == Ids{one.id(), two}; }));
    TrayOwners ofOthers = makeOwners(one.id());
    EXPECT_EQ(ofOthers.processes(), Ids{two}) << "who asks is left out";
    EXPECT_TRUE(owners.click(one.id()));
    EXPECT_TRUE(waitUntil([&] { return one.output().find("clicked") != std::string::npos; }));
    EXPECT_FALSE(owners.click(::getpid()));
    StandInWatcher watcher{
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, "stand-in watcher")};
    watcher.items = QStringList{"org.freedesktop.DBus", watcher.bus.baseService()};
    watcher.appear();
    EXPECT_TRUE(waitUntil([&] { return owners.processes().size() == 3; }));
    EXPECT_FALSE(owners.processes().contains(::getpid()));
    watcher.disappear();
    one.send(SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return owners.processes() == Ids{two}; }));
    killOwnerOf(ownerOf("_NET_SYSTEM_TRAY_S0"));
    EXPECT_TRUE(waitUntil([&] { return owners.processes().empty(); }));
}

TEST_F(TrayOwnersTest, ATrayThatHoldsTheWindowsOfProgramsAsWellTellsThemFromIcons) {
    killWindowManager();
    killOwnerOf(ownerOf("_NET_SYSTEM_TRAY_S0"));
    OwnWindow tray;
    tray.take("_NET_SYSTEM_TRAY_S0");
    Child& ordinary = start();
    const xcb_window_t window = windowOf(ordinary);
    xcb_reparent_window(tray.connection.get(), window, tray.window, 0, 0);
    xcb_flush(tray.connection.get());
    TrayOwners owners = makeOwners();
    EXPECT_TRUE(waitUntil([&] { return owners.processes() == Ids{ordinary.id()}; }));
    const std::uint32_t normal[] = {1, XCB_WINDOW_NONE};
    const xcb_atom_t state = tray.connection.atom("WM_STATE");
    xcb_change_property(tray.connection.get(), XCB_PROP_MODE_REPLACE, window, state, state, 32, 2,
                        normal);
    xcb_flush(tray.connection.get());
    EXPECT_TRUE(waitUntil([&] { return owners.processes().empty(); }));
}

} // namespace
} // namespace velmorquit
