#pragma once

#include "Linux/Session/BusEndService.h"
#include "support/PrivateBus.h"
#include "support/StandInService.h"
#include "support/Waiting.h"

#include <QDBusObjectPath>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace velmorquit {

/// Of whoever is called.
enum class Manners { accepts, refuses, cancels, hangs, leaves };

/// Stands for whoever ends sessions: all objects of one connection, under the names that it takes.
class StandIn final : public StandInService {
public:
    using StandInService::StandInService;

    void hear(const QDBusMessage& message) override {
        QStringList words{message.path(), message.interface() + '.' + message.member()};
        for (const QVariant& argument : message.arguments())
            words << argument.typeName() + QStringLiteral(":") + argument.toString();
        calls << words.join(' ');
        if (message.member() == "GetSessionByPID" && manners != Manners::refuses) {
            bus.send(message.createReply(QVariant::fromValue(QDBusObjectPath("/session/_37"))));
        } else if (manners == Manners::accepts) {
            bus.send(message.createReply());
        } else if (manners == Manners::refuses) {
            bus.send(message.createErrorReply("org.example.Denied", "Not today"));
        } else if (manners == Manners::cancels) {
            bus.send(message.createErrorReply(
                "org.gtk.GDBus.UnmappedGError.Quark._g_2dio_2derror_2dquark.Code19",
                "L'operazione è stata annullata"));
        } else if (manners == Manners::leaves) {
            QDBusConnection::disconnectFromBus(bus.name());
            bus = QDBusConnection("none");
        }
    }

    Manners manners = Manners::accepts;
    QStringList calls;
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

    void settleAll() {
        settle({manager.bus, login.bus, session.connection(), system.connection()});
    }

    QStringList takeCalls() {
        const QStringList calls = manager.calls + login.calls;
        manager.calls.clear();
        login.calls.clear();
        return calls;
    }

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
};

inline const QString loginName = QStringLiteral("org.freedesktop.login1");

} // namespace velmorquit
