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
#include "support/StandInService.h"

#include <QDBusObjectPath>
#include <QDBusServiceWatcher>

#include <gtest/gtest.h>

namespace velmorquit {
namespace {

/// Has all the names that the adapters ask for, and counts what it is asked.
class Services final : public StandInService {
public:
    explicit Services(const QDBusConnection& connection)
        : StandInService(connection,
                         {"org.freedesktop.Notifications", "org.kde.StatusNotifierWatcher",
                          "org.freedesktop.portal.Desktop", "org.freedesktop.UDisks2",
                          "org.lxqt.session", "org.freedesktop.login1",
                          "org.gnome.SessionManager"}) {}

    void hear(const QDBusMessage& call) override {
        ++asked;
        QVariant answer = 7U;
        if (call.member() == "Get" && call.arguments().value(1) == "IsStatusNotifierHostRegistered")
            answer = QVariant::fromValue(QDBusVariant(true));
        else if (call.member() == "Get")
            answer = QVariant::fromValue(QDBusVariant(QStringList{bus.baseService()}));
        bus.send(call.createReply(answer));
    }

    int asked = 0;
};

struct Forgery {
    const char* path;
    QString interface;
    const char* member;
    QVariantList arguments;
};

// Each signal has the right path and interface, and comes from a process that owns none of the
// names: to everybody, and to the one connection alone.
TEST(Strangers, NobodyIsHeardWhoHasNotTheName) {
    const PrivateBus bus;
    PrivateBus& open = const_cast<PrivateBus&>(bus);
    Services services(open.connect());
    QDBusConnection stranger = open.connect();
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
         {"org.freedesktop.appearance", "color-scheme", dark}},
        {"/org/freedesktop/UDisks2",
         "org.freedesktop.DBus.ObjectManager",
         "InterfacesRemoved",
         {object, QStringList{"b"}}},
        {"/a",
         "org.freedesktop.DBus.Properties",
         "PropertiesChanged",
         {"org.freedesktop.UDisks2.Drive", QVariantMap(), QStringList{"a"}}}};
    for (const char* name :
         {"org.freedesktop.Notifications", "org.kde.StatusNotifierWatcher",
          "org.freedesktop.portal.Desktop", "org.freedesktop.UDisks2", "org.lxqt.session",
          "org.gnome.SessionManager", "org.freedesktop.login1"})
        for (const QString& before : {owner, QString()})
            forgeries.push_back({"/org/freedesktop/DBus",
                                 "org.freedesktop.DBus",
                                 "NameOwnerChanged",
                                 {QString(name), before, stranger.baseService()}});
    for (const Forgery& forgery : forgeries) {
        for (const bool isDirect : {false, true}) {
            const int asked = services.asked;
            QDBusMessage signal =
                isDirect
                    ? QDBusMessage::createTargetedSignal(own.baseService(), forgery.path,
                                                         forgery.interface, forgery.member)
                    : QDBusMessage::createSignal(forgery.path, forgery.interface, forgery.member);
            signal.setArguments(forgery.arguments);
            EXPECT_TRUE(stranger.send(signal));
            settle({stranger, own, services.bus});
            const std::string what = std::string(forgery.member) + ' ' +
                                     forgery.arguments.value(0).toString().toStdString() +
                                     (isDirect ? " directly" : "");
            EXPECT_EQ(pressed, 0) << what;
            EXPECT_EQ(changes, 0) << what;
            EXPECT_EQ(services.asked, asked) << what;
            EXPECT_EQ(watcher.presentOne(), owner) << what;
            EXPECT_EQ(items.processes().size(), 1U) << what;
            EXPECT_EQ(end.obstacle(LoginRequest::logOut, EndForm::direct), obstacle) << what;
            changes = 0;
        }
    }
}

} // namespace
} // namespace velmorquit
