#include "Linux/Tray/TrayOwners.h"
#include "Linux/X11/X11Tray.h"
#include "X11/FaceTest.h"
#include "support/StandInWatcher.h"

#include <unistd.h>

namespace velmorquit {
namespace {

using Ids = std::set<ProcessId>;

class TrayOwnersTest : public FaceTest {
protected:
    static ProcessId pidOf(const Child& child) { return static_cast<ProcessId>(child.id()); }

    X11Tray tray{events};

    TrayOwners makeOwners(ProcessId own = ::getpid()) {
        return TrayOwners(QDBusConnection::sessionBus(), &tray, own);
    }
};

TEST_F(TrayOwnersTest, AreThoseWhoseWindowsTheTrayHasTakenIn) {
    TrayOwners owners = makeOwners();
    EXPECT_EQ(owners.processes(), Ids());
    openRude({"--class", "Ordinary", "--windows", "120"});
    Child& one = openRude({"--tray"});
    const Child& two = openRude({"--tray", "--windows", "2"});
    EXPECT_TRUE(waitUntil([&] { return owners.processes() == Ids{pidOf(one), pidOf(two)}; }));
    TrayOwners ofOthers = makeOwners(pidOf(one));
    EXPECT_EQ(ofOthers.processes(), Ids{pidOf(two)}) << "who asks is left out";
    EXPECT_TRUE(owners.click(pidOf(one)));
    EXPECT_TRUE(waitUntil([&] { return one.output().find("clicked") != std::string::npos; }));
    EXPECT_FALSE(owners.click(::getpid()));
    one.send(SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return owners.processes() == Ids{pidOf(two)}; }));
    killOwnerOf(ownerOf("_NET_SYSTEM_TRAY_S0"));
    EXPECT_TRUE(waitUntil([&] { return owners.processes().empty(); }));
}

TEST_F(TrayOwnersTest, ATrayThatHoldsTheWindowsOfProgramsAsWellTellsThemFromIcons) {
    killWindowManager();
    killOwnerOf(ownerOf("_NET_SYSTEM_TRAY_S0"));
    OwnWindow tray;
    tray.take("_NET_SYSTEM_TRAY_S0");
    Child& ordinary = openRude();
    const auto window = static_cast<xcb_window_t>(
        std::stoul(ordinary.output().substr(ordinary.output().rfind(' '))));
    xcb_reparent_window(tray.connection.get(), window, tray.window, 0, 0);
    xcb_flush(tray.connection.get());
    TrayOwners owners = makeOwners();
    EXPECT_TRUE(waitUntil([&] { return owners.processes() == Ids{pidOf(ordinary)}; }));
    const std::uint32_t normal[] = {1, XCB_WINDOW_NONE};
    xcb_change_property(tray.connection.get(), XCB_PROP_MODE_REPLACE, window,
                        tray.connection.atom("WM_STATE"), tray.connection.atom("WM_STATE"), 32, 2,
                        normal);
    xcb_flush(tray.connection.get());
    EXPECT_TRUE(waitUntil([&] { return owners.processes().empty(); }));
}

TEST_F(TrayOwnersTest, AreThoseOnTheNotifiersListToo) {
    StandInWatcher watcher{
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, "stand-in watcher")};
    watcher.items = QStringList{"org.freedesktop.DBus", watcher.bus.baseService()};
    watcher.appear();
    TrayOwners owners = makeOwners();
    const Child& embedded = openRude({"--tray"});
    EXPECT_TRUE(waitUntil([&] { return owners.processes().size() == 2; }));
    EXPECT_TRUE(owners.processes().contains(pidOf(embedded)));
    EXPECT_FALSE(owners.processes().contains(::getpid()));
}

} // namespace
} // namespace velmorquit
