#include "Linux/Tray/DesktopTrayHosts.h"
#include "Linux/X11/X11Tray.h"
#include "X11/FaceTest.h"
#include "support/StandInWatcher.h"

namespace velmorquit {
namespace {

constexpr const char* tray = "_NET_SYSTEM_TRAY_S0";

class TrayHostsTest : public FaceTest {
protected:
    static QDBusConnection sessionBus() { return QDBusConnection::sessionBus(); }

    std::unique_ptr<DesktopTrayHosts> makeHosts() {
        auto made = std::make_unique<DesktopTrayHosts>(loop, sessionBus(), &embedding);
        watch = made->observe([this] { ++changes; });
        return made;
    }

    X11Tray embedding{events};
    StandInWatcher watcher{
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, "stand-in watcher")};
    int changes = 0;
    Handle watch;
};

TEST_F(TrayHostsTest, KnowsAtOnceWhoTakesWindowsInAndNoticesWhenItGoesOrIsReplaced) {
    const auto hosts = makeHosts();
    EXPECT_EQ(hosts->present(), TrayHost::embedding);
    killOwnerOf(ownerOf(tray));
    EXPECT_TRUE(waitUntil([&] { return changes == 1; }));
    EXPECT_EQ(hosts->present(), TrayHost::none);
    OwnWindow first;
    first.take(tray);
    EXPECT_TRUE(waitUntil([&] { return changes == 2; }));
    EXPECT_EQ(hosts->present(), TrayHost::embedding);
    OwnWindow second;
    second.take(tray);
    EXPECT_TRUE(waitUntil([&] { return changes == 3; }));
    EXPECT_EQ(hosts->present(), TrayHost::embedding);
}

TEST_F(TrayHostsTest, PrefersANotifierFromTheStartOn) {
    watcher.appear();
    const auto hosts = makeHosts();
    EXPECT_EQ(hosts->present(), TrayHost::notifier) << "before anything could be waited for";
    linger(50);
    EXPECT_EQ(hosts->present(), TrayHost::notifier);
    killOwnerOf(ownerOf(tray));
    linger(100);
    EXPECT_EQ(changes, 0) << "whoever takes windows in makes no difference beside it";
    OwnWindow other;
    other.take(tray);
    watcher.disappear();
    EXPECT_TRUE(waitUntil([&] { return changes == 1; }));
    EXPECT_EQ(hosts->present(), TrayHost::embedding);
    watcher.appear();
    EXPECT_TRUE(waitUntil([&] { return hosts->present() == TrayHost::notifier; }));
    EXPECT_TRUE(waitUntil([&] { return changes == 2; }));
}

} // namespace
} // namespace velmorquit
