#include "Linux/Appearance/PortalSettings.h"
#include "Linux/Notices/BusNotice.h"
#include "Linux/Power/BusSleepHold.h"
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
#include "support/Waiting.h"

#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusServiceWatcher>

#include <functional>
#include <memory>

namespace velmorquit {
namespace {

/// May answer more than once, and differently.
class Rude final : public StandInService {
public:
    using StandInService::StandInService;

    bool isChatty = false;

protected:
    void reply(const QDBusMessage& call) override {
        StandInService::reply(call);
        if (isChatty) {
            send(call, QVariantMap{{"a", 1}});
            send(call, Refusal{"org.test.No", "after all"});
        }
    }
};

/// What an adapter needs, and what it has come to.
struct Stage {
    PrivateBus bus;
    PowerBus session = PowerBus::standIn(bus.address(), bus.folder());
    VirtualLoop loop;
    bool isUnanswerable = false;
};

/// Begins anew with what it knows; the text that it gives is what that comes to.
using State = std::function<std::string()>;

struct Adapter {
    const char* service;
    QVariant right;
    std::function<State(Stage&)> make;
    std::string neutral;
    std::string good;
};

std::vector<Adapter> adapters() {
    qDBusRegisterMetaType<StandInPortal::Groups>();
    const QVariantMap dark{{"color-scheme", 1U}};
    return {
        {"org.kde.StatusNotifierWatcher", inVariant(true),
         [](Stage& stage) -> State {
             const auto made =
                 std::make_shared<NotifierWatcher>(stage.loop, stage.session.connection(), [] {});
             return [&stage, made] {
                 stage.loop.advance(1min);
                 return made->presentOne().isEmpty() ? "no watcher" : "a watcher";
             };
         },
         "no watcher", "a watcher"},
        {"org.kde.StatusNotifierWatcher", inVariant(QStringList{":1.0"}),
         [](Stage& stage) -> State {
             const auto made = std::make_shared<NotifierItems>(stage.session.connection());
             return [made] { return std::to_string(made->processes().size()); };
         },
         "0", "1"},
        {"org.freedesktop.portal.Desktop",
         QVariant::fromValue(StandInPortal::Groups{{"org.freedesktop.appearance", dark}}),
         [](Stage& stage) -> State {
             const auto made = std::make_shared<PortalSettings>(
                 stage.session.connection(),
                 std::set<std::string>{"org.freedesktop.appearance color-scheme"}, [] {});
             return [made] { return std::to_string(made->values().size()); };
         },
         "0", "1"},
        {"org.freedesktop.Notifications", 7U,
         [](Stage& stage) -> State {
             const auto made = std::make_shared<BusNotice>(stage.session.connection(), 100);
             made->onUnanswerable = [&stage] { stage.isUnanswerable = true; };
             const auto show = [made] {
                 made->show({.title = "A", .text = "B", .buttons = {{"c", "C"}}, .stays = true});
             };
             show();
             return [&stage, made, show] {
                 linger(150);
                 show();
                 return std::exchange(stage.isUnanswerable, false) ? "panel" : "notice";
             };
         },
         "panel", "notice"},
        {"org.gnome.SessionManager", 7U,
         [](Stage& stage) -> State {
             const auto made = std::make_shared<BusSleepHold>(stage.session, stage.session, 50);
             return [made] {
                 made->begin("A", BusSleepHold::Against::anySleep);
                 linger(100);
                 return made->isHeldBySession() ? "held" : "not held";
             };
         },
         "not held", "held"},
    };
}

// Whatever comes back, nothing is made of it; nothing waits for ever, and the next service that
// answers well is believed.
TEST(Misbehaviour, OfAServiceIsNeitherBelievedNorWaitedFor) {
    const QVariantList wrongAnswers{QVariant(), QVariant(QVariantList()), inVariant(-1.5),
                                    QVariantList{QVariantMap{{"a", 1}, {"b", QVariantMap()}}, "x"},
                                    Refusal{"org.test.No"}};
    for (const Adapter& adapter : adapters()) {
        // The one after the last is right, but for what follows it.
        for (qsizetype manner = 0; manner <= wrongAnswers.size(); ++manner) {
            SCOPED_TRACE(std::string(adapter.service) + ' ' + std::to_string(manner));
            Stage stage;
            const bool isRight = manner == wrongAnswers.size();
            const QVariantMap right{{"", adapter.right},
                                    {"GetCapabilities", QStringList{"actions"}}};
            auto rude = std::make_unique<Rude>(stage.bus.connect());
            rude->isChatty = isRight;
            rude->says = isRight ? right : QVariantMap{{"", wrongAnswers[manner]}};
            rude->own(adapter.service);
            const State state = adapter.make(stage);
            settle({stage.session.connection(), rude->bus});
            EXPECT_EQ(state(), isRight ? adapter.good : adapter.neutral);
            const QString gone = rude->bus.name();
            rude.reset();
            QDBusConnection::disconnectFromBus(gone);
            StandInService next(stage.bus.connect());
            next.says = right;
            next.own(adapter.service);
            settle({stage.session.connection(), next.bus});
            (void)state();
            settle({stage.session.connection(), next.bus});
            EXPECT_EQ(state(), adapter.good);
        }
    }
}

struct Forgery {
    const char* path;
    QString interface;
    const char* member;
    QVariantList arguments;
};

// Each signal has the right path and interface, and comes from a process that owns none of the
// names: to everybody, and to the one connection alone.
TEST(Misbehaviour, OfAStrangerIsNotHeard) {
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
    ASSERT_EQ(watcher.presentOne(), owner);
    ASSERT_EQ(items.processes().size(), 1U);
    ASSERT_EQ(settings.values().size(), 1U);

    const char* const notices = "/org/freedesktop/Notifications";
    const char* const icons = "/StatusNotifierWatcher";
    const QString ofNotices = "org.freedesktop.Notifications";
    const QString ofIcons = "org.kde.StatusNotifierWatcher";
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
         {look, "color-scheme", inVariant(1U)}},
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
    const auto state = [&] {
        return QVariantList{pressed,
                            changes,
                            services.calls.size(),
                            watcher.presentOne(),
                            qulonglong(items.processes().size()),
                            end.obstacle(LoginRequest::logOut, EndForm::direct).has_value()};
    };
    for (const Forgery& forgery : forgeries) {
        for (const QString& to : {QString(), own.baseService()}) {
            const QVariantList before = state();
            QDBusMessage signal = QDBusMessage::createTargetedSignal(
                to, forgery.path, forgery.interface, forgery.member);
            signal.setArguments(forgery.arguments);
            EXPECT_TRUE(stranger.send(signal));
            settle({stranger, own, services.bus});
            EXPECT_EQ(state(), before) << forgery.member << " to " << to.toStdString();
        }
    }
}

} // namespace
} // namespace velmorquit
