#include "Linux/DBus/BusNotice.h"
#include "Linux/DBus/NotifierItems.h"
#include "Linux/DBus/NotifierWatcher.h"
#include "Linux/DBus/PortalSettings.h"
#include "Linux/Session/BusEndService.h"
#include "Linux/Session/BusSleepHolds.h"
#include "Linux/Session/PowerBus.h"
#include "Linux/Volumes/UDisksVolumes.h"
#include "Simulated/SimulatedPorts.h"
#include "Simulated/VirtualLoop.h"
#include "support/PrivateBus.h"

#include <QDBusObjectPath>
#include <QDBusServiceWatcher>
#include <QDBusVirtualObject>

#include <gtest/gtest.h>

namespace velmorquit {
namespace {

const QString busName = QStringLiteral("org.freedesktop.DBus");
const QString busPath = QStringLiteral("/org/freedesktop/DBus");
const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");

/// Has all the names that the adapters ask for, and counts what it is asked.
class Services final : public QDBusVirtualObject {
public:
    explicit Services(QDBusConnection connection) : bus(std::move(connection)) {
        EXPECT_TRUE(bus.registerVirtualObject("/", this, QDBusConnection::SubPath));
        for (const char* name :
             {"org.freedesktop.Notifications", "org.kde.StatusNotifierWatcher",
              "org.freedesktop.portal.Desktop", "org.freedesktop.UDisks2", "org.lxqt.session",
              "org.freedesktop.login1", "org.gnome.SessionManager"})
            EXPECT_TRUE(bus.registerService(name)) << name;
    }
    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& call, const QDBusConnection&) override {
        ++asked;
        QVariant answer = 7U;
        if (call.member() == "Get" && call.arguments().value(1) == "IsStatusNotifierHostRegistered")
            answer = QVariant::fromValue(QDBusVariant(true));
        else if (call.member() == "Get")
            answer = QVariant::fromValue(QDBusVariant(QStringList{bus.baseService()}));
        bus.send(call.createReply(answer));
        return true;
    }

    QDBusConnection bus;
    int asked = 0;
};

struct Forgery {
    const char* path;
    QString interface;
    const char* member;
    QVariantList arguments;
};

QVariantList ownerChange(const char* name, const QString& before, const QString& after) {
    return {QString(name), before, after};
}

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

    const std::vector<Forgery> forgeries{
        {"/org/freedesktop/Notifications",
         "org.freedesktop.Notifications",
         "ActionInvoked",
         {7U, "force"}},
        {"/org/freedesktop/Notifications",
         "org.freedesktop.Notifications",
         "NotificationClosed",
         {7U, 2U}},
        {"/StatusNotifierWatcher",
         "org.kde.StatusNotifierWatcher",
         "StatusNotifierHostRegistered",
         {}},
        {"/StatusNotifierWatcher",
         "org.kde.StatusNotifierWatcher",
         "StatusNotifierHostUnregistered",
         {}},
        {"/StatusNotifierWatcher",
         "org.kde.StatusNotifierWatcher",
         "StatusNotifierItemRegistered",
         {stranger.baseService()}},
        {"/StatusNotifierWatcher",
         "org.kde.StatusNotifierWatcher",
         "StatusNotifierItemUnregistered",
         {owner}},
        {"/org/freedesktop/portal/desktop",
         "org.freedesktop.portal.Settings",
         "SettingChanged",
         {"org.freedesktop.appearance", "color-scheme", QVariant::fromValue(QDBusVariant(1U))}},
        {"/org/freedesktop/UDisks2",
         "org.freedesktop.DBus.ObjectManager",
         "InterfacesRemoved",
         {QVariant::fromValue(QDBusObjectPath("/a")), QStringList{"b"}}},
        {"/a",
         properties,
         "PropertiesChanged",
         {"org.freedesktop.UDisks2.Drive", QVariantMap(), QStringList{"a"}}},
        {"/org/freedesktop/DBus", busName, "NameOwnerChanged",
         ownerChange("org.freedesktop.Notifications", owner, "")},
        {"/org/freedesktop/DBus", busName, "NameOwnerChanged",
         ownerChange("org.kde.StatusNotifierWatcher", owner, "")},
        {"/org/freedesktop/DBus", busName, "NameOwnerChanged",
         ownerChange("org.freedesktop.portal.Desktop", owner, stranger.baseService())},
        {"/org/freedesktop/DBus", busName, "NameOwnerChanged",
         ownerChange("org.freedesktop.UDisks2", owner, "")},
        {"/org/freedesktop/DBus", busName, "NameOwnerChanged",
         ownerChange("org.lxqt.session", owner, "")},
        {"/org/freedesktop/DBus", busName, "NameOwnerChanged",
         ownerChange("org.gnome.SessionManager", "", stranger.baseService())},
        {"/org/freedesktop/DBus", busName, "NameOwnerChanged",
         ownerChange("org.freedesktop.login1", "", stranger.baseService())},
    };
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
