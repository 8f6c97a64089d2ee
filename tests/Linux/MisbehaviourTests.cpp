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

#include <QDBusMetaType>

#include <functional>
#include <memory>

namespace velmorquit {
namespace {

/// Answers once more than it was asked, and differently.
class Chatterer final : public StandInService {
public:
    using StandInService::StandInService;

protected:
    void reply(const QDBusMessage& call) override {
        StandInService::reply(call);
        send(call, QVariantMap{{"a", 1}});
        send(call, Refusal{"org.test.No", "after all"});
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
    using Settings = QMap<QString, QVariantMap>;
    qDBusRegisterMetaType<Settings>();
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
         QVariant::fromValue(Settings{{"org.freedesktop.appearance", dark}}),
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
        {"org.lxqt.session", 1U,
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
            const auto serve = [&](StandInService& service, const QVariant& answer) {
                service.says[""] = answer;
                if (answer == adapter.right)
                    service.says["GetCapabilities"] = QStringList{"actions"};
            };
            Stage stage;
            std::unique_ptr<StandInService> rude;
            const bool isRight = manner == wrongAnswers.size();
            if (isRight)
                rude = std::make_unique<Chatterer>(stage.bus.connect());
            else
                rude = std::make_unique<StandInService>(stage.bus.connect());
            serve(*rude, isRight ? adapter.right : wrongAnswers[manner]);
            rude->own(adapter.service);
            const State state = adapter.make(stage);
            settle({stage.session.connection(), rude->bus});
            const std::string found = state();
            const std::string& expected = isRight ? adapter.good : adapter.neutral;
            EXPECT_TRUE(expected.empty() || found == expected) << found;
            const QString gone = rude->bus.name();
            rude.reset();
            QDBusConnection::disconnectFromBus(gone);
            StandInService next(stage.bus.connect());
            serve(next, adapter.right);
            next.own(adapter.service);
            settle({stage.session.connection(), next.bus});
            (void)state();
            settle({stage.session.connection(), next.bus});
            EXPECT_EQ(state(), adapter.good);
        }
    }
}

} // namespace
} // namespace velmorquit
