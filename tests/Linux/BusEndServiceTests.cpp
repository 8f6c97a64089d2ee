#include "Linux/Session/BusEndService.h"
#include "support/PrivateBus.h"
#include "support/Waiting.h"

#include <QCoreApplication>
#include <QDBusError>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <memory>
#include <optional>

namespace velmorquit {
namespace {

enum class Manners { accepts, refuses, hangs, leaves };

/// Stands for whoever ends sessions: all objects of one connection, under the names that it takes.
class StandIn final : public QDBusVirtualObject {
public:
    explicit StandIn(QDBusConnection bus) : bus_(std::move(bus)) {
        EXPECT_TRUE(bus_.registerVirtualObject("/", this, QDBusConnection::SubPath));
    }

    void own(const QString& name) { EXPECT_TRUE(bus_.registerService(name)); }
    void disown(const QString& name) { EXPECT_TRUE(bus_.unregisterService(name)); }

    [[nodiscard]] const QDBusConnection& bus() const { return bus_; }

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
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
        } else if (manners == Manners::leaves) {
            QDBusConnection::disconnectFromBus(bus_.name());
            bus_ = QDBusConnection("none");
        }
        return true;
    }

    Manners manners = Manners::accepts;
    QStringList calls;

private:
    QDBusConnection bus_;
};

class BusEndServiceTest : public testing::Test {
protected:
    BusEndService& start(std::string sessionId = "c2") {
        service = std::make_unique<BusEndService>(
            session, system, BusEndService::Settings{std::move(sessionId), limit});
        service->onAnswered = [this](const auto& failure) {
            answers.push_back(failure.value_or("done"));
        };
        return *service;
    }

    std::string carryOut(LoginRequest request) {
        answers.clear();
        service->carryOut(request, EndForm::direct);
        EXPECT_TRUE(answers.empty()) << "answered within the call";
        EXPECT_TRUE(waitUntil([this] { return !answers.empty(); }));
        settleAll();
        EXPECT_EQ(answers.size(), 1U);
        return answers.front();
    }

    void settleAll() {
        settle({manager.bus(), login.bus(), session.connection(), system.connection()});
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
    std::vector<std::string> answers;
    std::unique_ptr<BusEndService> service;
};

const QString loginName = QStringLiteral("org.freedesktop.login1");
const QString powerOff =
    QStringLiteral("/org/freedesktop/login1 org.freedesktop.login1.Manager.PowerOff bool:false");
const QString reboot =
    QStringLiteral("/org/freedesktop/login1 org.freedesktop.login1.Manager.Reboot bool:false");

TEST_F(BusEndServiceTest, EachSessionManagerIsAskedInItsOwnWay) {
    struct Case {
        QStringList names;
        QString logOut;
        QString shutDown;
        QString restart;
    };
    login.own(loginName);
    start();
    settleAll();
    for (const Case& known :
         {Case{{"org.gnome.SessionManager"},
               "/org/gnome/SessionManager org.gnome.SessionManager.Logout uint:1",
               powerOff,
               reboot},
          Case{{"org.xfce.SessionManager"},
               "/org/xfce/SessionManager org.xfce.Session.Manager.Logout bool:false bool:true",
               "/org/xfce/SessionManager org.xfce.Session.Manager.Shutdown bool:false",
               "/org/xfce/SessionManager org.xfce.Session.Manager.Restart bool:false"},
          Case{{"org.kde.ksmserver", "org.kde.Shutdown"},
               "/Shutdown org.kde.Shutdown.logout",
               "/Shutdown org.kde.Shutdown.logoutAndShutdown",
               "/Shutdown org.kde.Shutdown.logoutAndReboot"},
          Case{{"org.lxqt.session"}, "/LXQtSession org.lxqt.session.logout", powerOff, reboot},
          Case{{},
               "/org/freedesktop/login1 org.freedesktop.login1.Manager.TerminateSession QString:c2",
               powerOff,
               reboot}}) {
        for (const QString& name : known.names)
            manager.own(name);
        settleAll();
        for (const auto& [request, call] : {std::pair(LoginRequest::logOut, known.logOut),
                                            std::pair(LoginRequest::shutDown, known.shutDown),
                                            std::pair(LoginRequest::restart, known.restart)}) {
            EXPECT_EQ(service->obstacle(request, EndForm::direct), std::nullopt);
            EXPECT_EQ(carryOut(request), "done");
            EXPECT_EQ(takeCalls(), QStringList{call});
        }
        for (const QString& name : known.names)
            manager.disown(name);
    }
}

TEST_F(BusEndServiceTest, AManagerThatWasThereBeforeIsFoundInTime) {
    manager.own("org.lxqt.session");
    login.own(loginName);
    EXPECT_EQ(start().obstacle(LoginRequest::logOut, EndForm::direct), std::nullopt);
    EXPECT_EQ(carryOut(LoginRequest::logOut), "done");
    EXPECT_EQ(takeCalls(), QStringList{"/LXQtSession org.lxqt.session.logout"});
}

TEST_F(BusEndServiceTest, WithoutASessionIdTheProcesssOwnSessionEnds) {
    login.own(loginName);
    start("");
    const QString question =
        QStringLiteral("/org/freedesktop/login1 org.freedesktop.login1.Manager.GetSessionByPID "
                       "uint:%1")
            .arg(QCoreApplication::applicationPid());
    EXPECT_EQ(carryOut(LoginRequest::logOut), "done");
    EXPECT_EQ(takeCalls(),
              (QStringList{question, "/session/_37 org.freedesktop.login1.Session.Terminate"}));
    login.manners = Manners::refuses;
    EXPECT_EQ(carryOut(LoginRequest::logOut), "GetSessionByPID: org.example.Denied (Not today)");
    EXPECT_EQ(takeCalls(), QStringList{question});
}

TEST_F(BusEndServiceTest, ARefusalIsNamedAndNobodyElseIsAsked) {
    manager.own("org.xfce.SessionManager");
    login.own(loginName);
    manager.manners = login.manners = Manners::refuses;
    start();
    EXPECT_EQ(carryOut(LoginRequest::shutDown),
              "org.xfce.SessionManager Shutdown: org.example.Denied (Not today)");
    EXPECT_EQ(takeCalls().size(), 1);
    manager.disown("org.xfce.SessionManager");
    settleAll();
    EXPECT_EQ(carryOut(LoginRequest::shutDown),
              "org.freedesktop.login1 PowerOff: org.example.Denied (Not today)");
    EXPECT_EQ(takeCalls(), QStringList{powerOff});
}

TEST_F(BusEndServiceTest, OneThatHangsIsGivenUp) {
    limit = 300ms;
    manager.own("org.gnome.SessionManager");
    login.own(loginName);
    manager.manners = login.manners = Manners::hangs;
    start("");
    for (const LoginRequest request : {LoginRequest::logOut, LoginRequest::restart}) {
        const std::string answer = carryOut(request);
        EXPECT_NE(answer.find("org.freedesktop.DBus.Error.NoReply ("), std::string::npos) << answer;
        EXPECT_EQ(takeCalls().size(), 1);
    }
}

// A session manager may be gone with its session before it has answered; login1 never is.
TEST_F(BusEndServiceTest, OneThatGoesWithTheSessionHasDoneItsWork) {
    manager.own("org.xfce.SessionManager");
    login.own(loginName);
    manager.manners = login.manners = Manners::leaves;
    start();
    EXPECT_EQ(carryOut(LoginRequest::logOut), "done");
    const std::string answer = carryOut(LoginRequest::restart);
    EXPECT_NE(answer.find("NoReply"), std::string::npos) << answer;
    EXPECT_EQ(login.calls, QStringList{reboot}) << "the manager had gone";
}

TEST_F(BusEndServiceTest, WithoutAnybodyTheRequestIsAnObstacle) {
    start();
    EXPECT_EQ(service->obstacle(LoginRequest::logOut, EndForm::direct), std::nullopt) << "that isn't known yet";
    settleAll();
    for (const auto request : {LoginRequest::logOut, LoginRequest::shutDown})
        EXPECT_EQ(service->obstacle(request, EndForm::direct),
                  "nessuno può farlo: org.freedesktop.login1 non è sul bus di sistema");
    // Whoever has gone since it was looked for is a failure.
    EXPECT_NE(carryOut(LoginRequest::shutDown).find("ServiceUnknown"), std::string::npos);
    manager.own("org.gnome.SessionManager");
    settleAll();
    EXPECT_EQ(service->obstacle(LoginRequest::logOut, EndForm::direct), std::nullopt);
    EXPECT_NE(service->obstacle(LoginRequest::shutDown, EndForm::direct), std::nullopt) << "only after a question";
    login.own(loginName);
    settleAll();
    EXPECT_EQ(service->obstacle(LoginRequest::shutDown, EndForm::direct), std::nullopt);
}

TEST_F(BusEndServiceTest, WhatCanBeStartedIsNoObstacle) {
    std::ofstream(systemBus.services() / "login1.service")
        << "[D-BUS Service]\nName=org.freedesktop.login1\nExec=/bin/false\n";
    systemBus.connect().call(QDBusMessage::createMethodCall(
        "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ReloadConfig"));
    start();
    settleAll();
    EXPECT_EQ(service->obstacle(LoginRequest::shutDown, EndForm::direct), std::nullopt);
}

TEST_F(BusEndServiceTest, WithoutABusItSaysWhichAndWhy) {
    systemBus.stop();
    EXPECT_TRUE(waitUntil([this] { return !system.problem().empty(); }));
    start();
    settleAll();
    const auto obstacle = service->obstacle(LoginRequest::shutDown, EndForm::direct);
    EXPECT_TRUE(obstacle && obstacle->starts_with("nessuno può farlo: "));
    EXPECT_NE(carryOut(LoginRequest::restart), "done");
    // A manager on the session bus needs no other.
    manager.own("org.xfce.SessionManager");
    settleAll();
    EXPECT_EQ(service->obstacle(LoginRequest::restart, EndForm::direct), std::nullopt);
    sessionBus.stop();
    EXPECT_TRUE(waitUntil([this] { return !session.problem().empty(); }));
    EXPECT_NE(service->obstacle(LoginRequest::restart, EndForm::direct), std::nullopt);
}

// Not a stand-in of ours: it takes only calls with the arguments that login1 itself takes.
TEST_F(BusEndServiceTest, Login1sOwnSignaturesAreMet) {
    if (std::system("/usr/bin/python3 -c 'import dbusmock' 2>/dev/null") != 0)
        GTEST_SKIP() << "python3-dbusmock is not installed";
    Child mock({"env", "DBUS_SYSTEM_BUS_ADDRESS=" + systemBus.address(), "/usr/bin/python3", "-u",
                "-m", "dbusmock", "--template", "logind"});
    start();
    settleAll();
    EXPECT_TRUE(waitUntil([this] { return !service->obstacle(LoginRequest::shutDown, EndForm::direct); }))
        << mock.output();
    for (const auto& [request, call] :
         {std::pair(LoginRequest::shutDown, "PowerOff False"),
          std::pair(LoginRequest::restart, "Reboot False"),
          std::pair(LoginRequest::logOut, "TerminateSession \"c2\"")}) {
        EXPECT_EQ(carryOut(request), "done");
        EXPECT_TRUE(waitUntil([&, call = std::string(call)] {
            return mock.output().find(call) != std::string::npos;
        })) << mock.output();
    }
}

TEST_F(BusEndServiceTest, MayGoWhileItIsAnswered) {
    manager.own("org.xfce.SessionManager");
    manager.manners = Manners::hangs;
    start().carryOut(LoginRequest::logOut, EndForm::direct);
    EXPECT_TRUE(waitUntil([this] { return !manager.calls.isEmpty(); }));
    service.reset();
    settleAll();
    EXPECT_TRUE(answers.empty());
}

} // namespace
} // namespace velmorquit
