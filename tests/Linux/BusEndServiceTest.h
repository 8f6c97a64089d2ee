#pragma once

#include "Linux/Session/BusEndService.h"
#include "support/PrivateBus.h"
#include "support/StandInService.h"
#include "support/Waiting.h"

#include <QDBusObjectPath>

#include <memory>
#include <string>
#include <vector>

namespace velmorquit {

/// Of whoever is called.
const QVariant accepting = QVariantList();
const QVariant refusing = Refusal{"org.example.Denied", "Not today"};
const QVariant hanging;

/// Stands for whoever ends sessions.
class StandIn final : public StandInService {
public:
    explicit StandIn(const QDBusConnection& connection) : StandInService(connection) {
        says[""] = accepting;
        says["GetSessionByPID"] = QVariant::fromValue(QDBusObjectPath("/session/_37"));
    }

    bool leaves = false; ///< the bus, when it is called

protected:
    [[nodiscard]] QString lineOf(const QDBusMessage& call) const override {
        QStringList words{call.path(), call.interface() + '.' + call.member()};
        for (const QVariant& argument : call.arguments())
            words << argument.typeName() + QStringLiteral(":") + argument.toString();
        return words.join(' ');
    }
    void reply(const QDBusMessage& call) override {
        if (!leaves)
            return StandInService::reply(call);
        QDBusConnection::disconnectFromBus(bus.name());
        bus = QDBusConnection("none");
    }
};

/// A session's bus and a system's, with somebody on each of them.
class BusEndServiceTest : public testing::Test {
protected:
    BusEndService& start(std::string sessionId = "c2") {
        service = std::make_unique<BusEndService>(
            session, system, BusEndService::Settings{std::move(sessionId), limit, namesLimit});
        service->onAnswered = [this](const auto& failure) {
            answers.push_back(failure.value_or("done"));
        };
        return *service;
    }
    BusEndService& startReady(std::string sessionId = "c2") {
        start(std::move(sessionId));
        EXPECT_TRUE(waitUntil([this] { return service->isReady(); }));
        return *service;
    }

    std::string carryOut(LoginRequest request, EndForm form = EndForm::direct) {
        answers.clear();
        service->carryOut(request, form);
        EXPECT_TRUE(answers.empty()) << "answered within the call";
        EXPECT_TRUE(waitUntil([this] { return !answers.empty(); }));
        settleAll();
        EXPECT_EQ(answers.size(), 1U);
        return answers.front();
    }
    [[nodiscard]] bool isPossible(LoginRequest request, EndForm form = EndForm::direct) const {
        return !service->obstacle(request, form);
    }
    std::string ask(LoginRequest request) { return carryOut(request, EndForm::asking); }
    [[nodiscard]] bool canAsk(LoginRequest request) const {
        return isPossible(request, EndForm::asking);
    }
    void settleAll() {
        settle({manager.bus, login.bus, session.connection(), system.connection()});
    }
    QStringList takeCalls() { return manager.takeCalls() + login.takeCalls(); }

    PrivateBus sessionBus;
    PrivateBus systemBus;
    PowerBus session = PowerBus::standIn(sessionBus.address(), sessionBus.folder());
    PowerBus system = PowerBus::standIn(systemBus.address(), systemBus.folder());
    StandIn manager{sessionBus.connect()};
    StandIn login{systemBus.connect()};
    Duration limit = 10s;
    Duration namesLimit = 10s;
    std::vector<std::string> answers;
    std::unique_ptr<BusEndService> service;

    static constexpr auto logOut = LoginRequest::logOut;
    static constexpr auto shutDown = LoginRequest::shutDown;
    static constexpr auto restart = LoginRequest::restart;
};

inline const QString loginName = QStringLiteral("org.freedesktop.login1");
inline const QString gnomeName = QStringLiteral("org.gnome.SessionManager");
inline const QString xfceName = QStringLiteral("org.xfce.SessionManager");

} // namespace velmorquit
