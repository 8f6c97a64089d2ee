#include "Linux/Appearance/PortalSettings.h"
#include "Linux/Notices/BusNotice.h"
#include "Linux/Power/BusSleepHolds.h"
#include "Linux/Power/PowerBus.h"
#include "Linux/Session/BusEndService.h"
#include "Linux/Tray/NotifierItems.h"
#include "Linux/Tray/NotifierWatcher.h"
#include "Linux/Volumes/UDisksVolumes.h"
#include "Simulated/SimulatedPorts.h"
#include "Simulated/VirtualLoop.h"
#include "support/PrivateBus.h"
#include "support/StandInPortal.h"

#include <QDBusObjectPath>
#include <QDBusServiceWatcher>

#include <gtest/gtest.h>

namespace velmorquit {
namespace {

struct Forgery {
    const char* path;
    QString interface;
    const char* member;
    QVariantList arguments;
};

// Each signal has the right path and interface, and comes from a process that owns none of the
// names: to everybody, and to the one connection alone.
TEST(Strangers, NobodyIsHeardWhoHasNotTheName) {
    PrivateBus bus;
    StandInService services(bus.connect());
    qDBusRegisterMetaType<StandInPortal::Groups>();
    const QString look = "org.freedesktop.appearance";
    services.says = {
        {"", 7U},
        {"ReadAll", QVariant::fromValue(StandInPortal::Groups{{look, {{"color-scheme", 2U}}}})},
        {"Get IsStatusNotifierHostRegistered", inVariant(true)},
        {"Get RegisteredStatusNotifierItems", inVariant(QStringList{services.bus.baseService()})}};
    const std::array names{"org.freedesktop.Notifications",
                           "org.kde.StatusNotifierWatcher",
                           "org.freedesktop.portal.Desktop",
                           "org.freedesktop.UDisks2",
                           "org.lxqt.session",
                           "org.freedesktop.login1",
                           "org.gnome.SessionManager"};
    for (const char* name : names)
        services.own(name);
    QDBusConnection stranger = bus.connect();
    VirtualLoop loop;
    SimulatedSystemLog log;
    const PowerBus session = PowerBus::standIn(bus.address(), bus.folder());
    const QDBusConnection& own = session.connection();
    settle({own, services.bus});

    BusNotice notice(own);
    int pressed = 0;
    notice.onButton = [&](const std::string&) { ++pressed; };
    notice.show({.title = "A", .text = "B", .buttons = {{"force", "Force"}}, .stays = true});
    int changes = 0;
    NotifierWatcher watcher(loop, own, [&] { ++changes; });
    NotifierItems items(own);
    PortalSettings settings(own, {"org.freedesktop.appearance color-scheme"}, [&] { ++changes; });
    UDisksVolumes volumes(loop, log, own);
    BusEndService end(session, session, {});
    BusSleepHolds holds(session, session);
    const Handle hold = holds.begin("test");
    QDBusServiceWatcher plain("org.lxqt.session", own);
    QObject::connect(&plain, &QDBusServiceWatcher::serviceOwnerChanged, &plain, [&] { ++changes; });
    for (int round = 0; round < 3; ++round)
        settle({own, services.bus});
    ASSERT_TRUE(end.isReady());
    const QString owner = services.bus.baseService();
    const auto obstacle = end.obstacle(LoginRequest::logOut, EndForm::direct);
    ASSERT_EQ(watcher.presentOne(), owner);
    ASSERT_EQ(items.processes().size(), 1U);
    ASSERT_EQ(settings.values().size(), 1U);
    changes = 0;

    const char* const notices = "/org/freedesktop/Notifications";
    const char* const icons = "/StatusNotifierWatcher";
    const QString ofNotices = "org.freedesktop.Notifications";
    const QString ofIcons = "org.kde.StatusNotifierWatcher";
    const QVariant dark = QVariant::fromValue(QDBusVariant(1U));
    const QVariant object = QVariant::fromValue(QDBusObjectPath("/a"));
    std::vector<Forgery> forgeries{
        {notices, ofNotices, "ActionInvoked", {7U, "force"}},
        {notices, ofNotices, "NotificationClosed", {7U, 2U}},
        {icons, ofIcons, "StatusNotifierHostRegistered", {}},
        {icons, ofIcons, "StatusNotifierHostUnregistered", {}},
        {icons, ofIcons, "StatusNotifierItemRegistered", {stranger.baseService()}},
        {icons, ofIcons, "StatusNotifierItemUnregistered", {owner}},
        {"/org/freedesktop/portal/desktop",
         "org.freedesktop.portal.Settings",
         "SettingChanged",
         {look, "color-scheme", dark}},
        {"/org/freedesktop/UDisks2",
         "org.freedesktop.DBus.ObjectManager",
         "InterfacesRemoved",
         {object, QStringList{"b"}}},
        {"/a",
         "org.freedesktop.DBus.Properties",
         "PropertiesChanged",
         {"org.freedesktop.UDisks2.Drive", QVariantMap(), QStringList{"a"}}}};
    for (const char* name : names) {
        for (const QString& before : {owner, QString()})
            forgeries.push_back({"/org/freedesktop/DBus",
                                 "org.freedesktop.DBus",
                                 "NameOwnerChanged",
                                 {QString(name), before, stranger.baseService()}});
    }
    for (const Forgery& forgery : forgeries) {
        for (const bool isDirect : {false, true}) {
            const auto asked = services.calls.size();
            QDBusMessage signal =
                isDirect
                    ? QDBusMessage::createTargetedSignal(own.baseService(), forgery.path,
                                                         forgery.interface, forgery.member)
                    : QDBusMessage::createSignal(forgery.path, forgery.interface, forgery.member);
            signal.setArguments(forgery.arguments);
            EXPECT_TRUE(stranger.send(signal));
            settle({stranger, own, services.bus});
            SCOPED_TRACE(std::string(forgery.member) + ' ' +
                         forgery.arguments.value(0).toString().toStdString() +
                         (isDirect ? " directly" : ""));
            EXPECT_EQ(pressed, 0);
            EXPECT_EQ(changes, 0);
            EXPECT_EQ(services.calls.size(), asked);
            EXPECT_EQ(watcher.presentOne(), owner);
            EXPECT_EQ(items.processes().size(), 1U);
            EXPECT_EQ(end.obstacle(LoginRequest::logOut, EndForm::direct), obstacle);
        }
    }
}

} // namespace
} // namespace velmorquit
