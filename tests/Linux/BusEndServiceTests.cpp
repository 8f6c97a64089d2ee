#include "Linux/BusEndServiceTest.h"

#include <QCoreApplication>

#include <cstdlib>
#include <fstream>
#include <optional>

namespace velmorquit {
namespace {

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
    startReady();
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

// What comes later than it was asked for would come without a new look at what is open.
TEST_F(BusEndServiceTest, NothingIsPutOffUntilItIsKnownWhoIsThere) {
    manager.own("org.lxqt.session");
    login.own(loginName);
    EXPECT_FALSE(start().isReady());
    EXPECT_EQ(service->obstacle(LoginRequest::logOut, EndForm::direct), std::nullopt);
    EXPECT_EQ(carryOut(LoginRequest::logOut), "non si sa ancora chi possa farlo");
    EXPECT_EQ(takeCalls(), QStringList());
    EXPECT_TRUE(service->isReady());
    EXPECT_EQ(carryOut(LoginRequest::logOut), "done");
    EXPECT_EQ(takeCalls(), QStringList{"/LXQtSession org.lxqt.session.logout"});
}

TEST_F(BusEndServiceTest, ABusThatHangsHasNoNamesUntilItGoesOn) {
    namesLimit = 200ms;
    manager.own("org.xfce.SessionManager");
    login.own(loginName);
    settleAll();
    for (PrivateBus* bus : {&sessionBus, &systemBus})
        bus->halt();
    startReady();
    for (const EndForm form : {EndForm::direct, EndForm::asking})
        EXPECT_NE(service->obstacle(LoginRequest::shutDown, form), std::nullopt);
    for (PrivateBus* bus : {&sessionBus, &systemBus})
        bus->goOn();
    EXPECT_TRUE(
        waitUntil([this] { return !service->obstacle(LoginRequest::shutDown, EndForm::asking); }));
    manager.disown("org.xfce.SessionManager");
    EXPECT_TRUE(
        waitUntil([this] { return !service->obstacle(LoginRequest::shutDown, EndForm::direct); }));
}

TEST_F(BusEndServiceTest, WithoutASessionIdTheProcesssOwnSessionEnds) {
    login.own(loginName);
    startReady("");
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
    startReady();
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
    startReady("");
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
    startReady();
    EXPECT_EQ(carryOut(LoginRequest::logOut), "done");
    const std::string answer = carryOut(LoginRequest::restart);
    EXPECT_NE(answer.find("NoReply"), std::string::npos) << answer;
    EXPECT_EQ(login.calls, QStringList{reboot}) << "the manager had gone";
}

TEST_F(BusEndServiceTest, WithoutAnybodyTheRequestIsAnObstacle) {
    startReady();
    for (const auto request : {LoginRequest::logOut, LoginRequest::shutDown})
        EXPECT_EQ(service->obstacle(request, EndForm::direct),
                  "nessuno può farlo: org.freedesktop.login1 non è sul bus di sistema");
    // Whoever has gone since it was looked for is a failure.
    EXPECT_NE(carryOut(LoginRequest::shutDown).find("ServiceUnknown"), std::string::npos);
    manager.own("org.gnome.SessionManager");
    settleAll();
    EXPECT_EQ(service->obstacle(LoginRequest::logOut, EndForm::direct), std::nullopt);
    EXPECT_NE(service->obstacle(LoginRequest::shutDown, EndForm::direct), std::nullopt)
        << "only after a question";
    login.own(loginName);
    settleAll();
    EXPECT_EQ(service->obstacle(LoginRequest::shutDown, EndForm::direct), std::nullopt);
}

TEST_F(BusEndServiceTest, WhatCanBeStartedIsNoObstacle) {
    std::ofstream(systemBus.services() / "login1.service")
        << "[D-BUS Service]\nName=org.freedesktop.login1\nExec=/bin/false\n";
    systemBus.connect().call(QDBusMessage::createMethodCall(
        "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ReloadConfig"));
    startReady();
    EXPECT_EQ(service->obstacle(LoginRequest::shutDown, EndForm::direct), std::nullopt);
}

TEST_F(BusEndServiceTest, WithoutABusItSaysWhichAndWhy) {
    systemBus.stop();
    EXPECT_TRUE(waitUntil([this] { return !system.problem().empty(); }));
    startReady();
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
    startReady();
    EXPECT_TRUE(waitUntil([this] {
        return !service->obstacle(LoginRequest::shutDown, EndForm::direct);
    })) << mock.output();
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
    startReady().carryOut(LoginRequest::logOut, EndForm::direct);
    EXPECT_TRUE(waitUntil([this] { return !manager.calls.isEmpty(); }));
    service.reset();
    settleAll();
    EXPECT_TRUE(answers.empty());
}

} // namespace
} // namespace velmorquit
