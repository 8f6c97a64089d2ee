#include "Linux/Appearance/PortalSettings.h"
#include "Linux/Notices/BusNotice.h"
#include "Linux/Power/BusSleepHold.h"
#include "Linux/Session/BusEndService.h"
#include "Linux/Tray/NotifierItems.h"
#include "Linux/Tray/NotifierWatcher.h"
#include "Simulated/VirtualLoop.h"
#include "support/PrivateBus.h"
#include "support/StandInService.h"
#include "support/Waiting.h"

#include <QDBusArgument>
#include <QDBusMetaType>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace velmorquit {
namespace {

enum class Manner { never, nothing, number, wrongMap, error, twice, good };

/// Has one name, and answers whatever it is asked in its manner.
class Service final : public StandInService {
public:
    Service(const QDBusConnection& connection, const char* name, Manner manner, QVariant right)
        : StandInService(connection, {name}), manner_(manner), right_(std::move(right)) {}

    void hear(const QDBusMessage& call) override {
        const QVariant right =
            call.member() == "GetCapabilities" ? QVariant(QStringList{"actions"}) : right_;
        switch (manner_) {
        case Manner::never:
            break;
        case Manner::nothing:
            bus.send(call.createReply());
            break;
        case Manner::number:
            bus.send(call.createReply(QVariant::fromValue(QDBusVariant(-1.5))));
            break;
        case Manner::wrongMap:
            bus.send(call.createReply({QVariantMap{{"a", 1}, {"b", QVariantMap()}}, "x"}));
            break;
        case Manner::error:
            bus.send(call.createErrorReply("org.test.No", {}));
            break;
        case Manner::twice:
            bus.send(call.createReply(right));
            bus.send(call.createReply(QVariantMap{{"a", 1}}));
            bus.send(call.createErrorReply("org.test.No", "after all"));
            break;
        case Manner::good:
            bus.send(call.createReply(right));
        }
    }

private:
    Manner manner_;
    QVariant right_;
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
    const char* name;
    const char* service;
    QVariant right;
    std::function<State(Stage&)> make;
    std::string neutral;
    std::string good;
};

QVariant inVariant(const QVariant& value) { return QVariant::fromValue(QDBusVariant(value)); }

std::vector<Adapter> adapters() {
    using Settings = QMap<QString, QVariantMap>;
    qDBusRegisterMetaType<Settings>();
    const QVariantMap dark{{"color-scheme", 1U}};
    return {
        {"watcher", "org.kde.StatusNotifierWatcher", inVariant(true),
         [](Stage& stage) -> State {
             const auto made =
                 std::make_shared<NotifierWatcher>(stage.loop, stage.session.connection(), [] {});
             return [&stage, made] {
                 stage.loop.advance(1min);
                 return std::string(made->presentOne().isEmpty() ? "none" : "one");
             };
         },
         "none", "one"},
        {"items", "org.kde.StatusNotifierWatcher", inVariant(QStringList{":1.0"}),
         [](Stage& stage) -> State {
             const auto made = std::make_shared<NotifierItems>(stage.session.connection());
             return [made] { return std::to_string(made->processes().size()); };
         },
         "0", "1"},
        {"settings", "org.freedesktop.portal.Desktop",
         QVariant::fromValue(Settings{{"org.freedesktop.appearance", dark}}),
         [](Stage& stage) -> State {
             const auto made = std::make_shared<PortalSettings>(
                 stage.session.connection(),
                 std::set<std::string>{"org.freedesktop.appearance color-scheme"}, [] {});
             return [made] { return std::to_string(made->values().size()); };
         },
         "0", "1"},
        {"notice", "org.freedesktop.Notifications", 7U,
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
                 return std::string(std::exchange(stage.isUnanswerable, false) ? "panel"
                                                                               : "notice");
             };
         },
         "panel", "notice"},
        {"end", "org.lxqt.session", 1U,
         [](Stage& stage) -> State {
             const auto made = std::make_shared<BusEndService>(
                 stage.session, stage.session,
                 BusEndService::Settings{.sessionId = {}, .limit = 100ms});
             return [made] {
                 std::string told = "silent";
                 made->onAnswered = [&told](const std::optional<std::string>& failure) {
                     told = failure ? "failed" : "done";
                 };
                 waitUntil([&] { return made->isReady(); });
                 made->carryOut(LoginRequest::logOut, EndForm::direct);
                 waitUntil([&] { return told != "silent"; });
                 return told;
             };
         },
         "", "done"},
        {"hold", "org.gnome.SessionManager", 7U,
         [](Stage& stage) -> State {
             const auto made = std::make_shared<BusSleepHold>(stage.session, stage.session, 50);
             return [made] {
                 made->begin("A", BusSleepHold::Against::anySleep);
                 linger(100);
                 return std::string(made->isHeldBySession() ? "held" : "not held");
             };
         },
         "not held", "held"},
    };
}

// Whatever comes back, nothing is made of it; nothing waits for ever, and the next service that
// answers well is believed.
TEST(Misbehaviour, OfAServiceIsNeitherBelievedNorWaitedFor) {
    for (const Adapter& adapter : adapters()) {
        for (const Manner manner : {Manner::never, Manner::nothing, Manner::number,
                                    Manner::wrongMap, Manner::error, Manner::twice}) {
            Stage stage;
            const std::string what =
                std::string(adapter.name) + ' ' + std::to_string(static_cast<int>(manner));
            auto rude = std::make_unique<Service>(stage.bus.connect(), adapter.service, manner,
                                                  adapter.right);
            const State state = adapter.make(stage);
            settle({stage.session.connection(), rude->bus});
            const std::string found = state();
            const std::string& expected = manner == Manner::twice ? adapter.good : adapter.neutral;
            EXPECT_TRUE(expected.empty() || found == expected) << what << ": " << found;
            const QString gone = rude->bus.name();
            rude.reset();
            QDBusConnection::disconnectFromBus(gone);
            const Service next(stage.bus.connect(), adapter.service, Manner::good, adapter.right);
            settle({stage.session.connection(), next.bus});
            (void)state();
            settle({stage.session.connection(), next.bus});
            EXPECT_EQ(state(), adapter.good) << what;
        }
    }
}

} // namespace
} // namespace velmorquit
