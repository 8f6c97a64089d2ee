#include "Linux/BusEndServiceTest.h"

#include <QCoreApplication>

#include <filesystem>
#include <fstream>

namespace velmorquit {
namespace {

const QString atLogin = "/org/freedesktop/login1 org.freedesktop.login1.Manager.";
const QString powerOff = atLogin + "PowerOff bool:false";
const QString reboot = atLogin + "Reboot bool:false";

TEST_F(BusEndServiceTest, EachSessionManagerIsAskedInItsOwnWay) {
    struct Case {
        QStringList names;
        EndForm form;
        QStringList calls; ///< for logging out, shutting down, restarting
    };
    const auto direct = EndForm::direct;
    const auto asking = EndForm::asking;
    const QStringList plasma{"org.kde.ksmserver", "org.kde.Shutdown", "org.kde.LogoutPrompt"};
    const QString gnome = "/org/gnome/SessionManager org.gnome.SessionManager.";
    const QString xfce = "/org/xfce/SessionManager org.xfce.Session.Manager.";
    const QString xfceAsks = xfce + "Logout bool:true bool:true";
    const QString ends = "/Shutdown org.kde.Shutdown.";
    const QString asks = "/LogoutPrompt org.kde.LogoutPrompt.";
    login.own(loginName);
    startReady();
    for (const Case& known :
         {Case{{gnomeName}, direct, {gnome + "Logout uint:1", powerOff, reboot}},
          Case{
              {gnomeName}, asking, {gnome + "Logout uint:0", gnome + "Shutdown", gnome + "Reboot"}},
          Case{{xfceName},
               direct,
               {xfce + "Logout bool:false bool:true", xfce + "Shutdown bool:false",
                xfce + "Restart bool:false"}},
          Case{{xfceName}, asking, {xfceAsks, xfceAsks, xfceAsks}},
          Case{plasma,
               direct,
               {ends + "logout", ends + "logoutAndShutdown", ends + "logoutAndReboot"}},
          Case{plasma,
               asking,
               {asks + "promptLogout", asks + "promptShutDown", asks + "promptReboot"}},
          Case{{"org.lxqt.session"},
               direct,
               {"/LXQtSession org.lxqt.session.logout", powerOff, reboot}},
          Case{{}, direct, {atLogin + "TerminateSession QString:c2", powerOff, reboot}}}) {
        for (const QString& name : known.names)
            manager.own(name);
        settleAll();
        QStringList calls;
        for (const LoginRequest request : {logOut, shutDown, restart}) {
            EXPECT_TRUE(isPossible(request, known.form));
            EXPECT_EQ(carryOut(request, known.form), "done");
            calls += takeCalls();
        }
        EXPECT_EQ(calls, known.calls);
        for (const QString& name : known.names)
            manager.disown(name);
    }
}

// What comes later than it was asked for would come without a new look at what is open.
TEST_F(BusEndServiceTest, NothingIsPutOffUntilItIsKnownWhoIsThere) {
    manager.own("org.lxqt.session");
    login.own(loginName);
    EXPECT_FALSE(start().isReady());
    EXPECT_TRUE(isPossible(logOut));
    EXPECT_EQ(carryOut(logOut), "non si sa ancora chi possa farlo");
    EXPECT_EQ(takeCalls(), QStringList());
    EXPECT_TRUE(service->isReady());
    EXPECT_EQ(carryOut(logOut), "done");
    EXPECT_EQ(takeCalls(), QStringList{"/LXQtSession org.lxqt.session.logout"});

    // It may go while it is answered.
    manager.says[""] = hanging;
    answers.clear();
    service->carryOut(logOut, EndForm::direct);
    EXPECT_TRUE(waitUntil([this] { return !manager.calls.isEmpty(); }));
    service.reset();
    settleAll();
    EXPECT_TRUE(answers.empty());
}

TEST_F(BusEndServiceTest, ABusThatHangsHasNoNamesUntilItGoesOn) {
    namesLimit = 200ms;
    manager.own(xfceName);
    login.own(loginName);
    settleAll();
    for (PrivateBus* bus : {&sessionBus, &systemBus})
        bus->halt();
    startReady();
    for (const EndForm form : {EndForm::direct, EndForm::asking})
        EXPECT_FALSE(isPossible(shutDown, form));
    for (PrivateBus* bus : {&sessionBus, &systemBus})
        bus->goOn();
    EXPECT_TRUE(waitUntil([this] { return isPossible(shutDown, EndForm::asking); }));
    manager.disown(xfceName);
    EXPECT_TRUE(waitUntil([this] { return isPossible(shutDown); }));
}

TEST_F(BusEndServiceTest, WithoutASessionIdTheProcesssOwnSessionEnds) {
    login.own(loginName);
    startReady("");
    const QString question =
        atLogin + QStringLiteral("GetSessionByPID uint:%1").arg(QCoreApplication::applicationPid());
    EXPECT_EQ(carryOut(logOut), "done");
    EXPECT_EQ(takeCalls(),
              (QStringList{question, "/session/_37 org.freedesktop.login1.Session.Terminate"}));
    login.says["GetSessionByPID"] = refusing;
    EXPECT_EQ(carryOut(logOut), "GetSessionByPID: org.example.Denied (Not today)");
    EXPECT_EQ(takeCalls(), QStringList{question});
}

TEST_F(BusEndServiceTest, ARefusalIsNamedSilenceIsGivenUpAndNobodyElseIsAsked) {
    limit = 300ms;
    manager.own(gnomeName);
    login.own(loginName);
    startReady("");
    for (const auto& [request, who] : {std::pair(logOut, "org.gnome.SessionManager Logout: org."),
                                       std::pair(restart, "org.freedesktop.login1 Reboot: org.")}) {
        manager.says[""] = login.says[""] = refusing;
        EXPECT_EQ(carryOut(request), std::string(who) + "example.Denied (Not today)");
        manager.says[""] = login.says[""] = hanging;
        const std::string answer = carryOut(request);
        EXPECT_TRUE(answer.starts_with(std::string(who) + "freedesktop.DBus.Error.NoReply ("))
            << answer;
        EXPECT_EQ(takeCalls().size(), 2);
    }
}

// A session manager may be gone with its session before it has answered; login1 never is.
TEST_F(BusEndServiceTest, OneThatGoesWithTheSessionHasDoneItsWork) {
    manager.own(xfceName);
    login.own(loginName);
    manager.leaves = login.leaves = true;
    startReady();
    EXPECT_EQ(carryOut(logOut), "done");
    const std::string answer = carryOut(restart);
    EXPECT_NE(answer.find("NoReply"), std::string::npos) << answer;
    EXPECT_EQ(login.calls, QStringList{reboot}) << "the manager had gone";
}

TEST_F(BusEndServiceTest, WithoutAnybodyTheRequestIsAnObstacle) {
    startReady();
    for (const auto request : {logOut, shutDown})
        EXPECT_EQ(service->obstacle(request, EndForm::direct),
                  "nessuno può farlo: org.freedesktop.login1 non è sul bus di sistema");
    // Whoever has gone since it was looked for is a failure.
    EXPECT_NE(carryOut(shutDown).find("ServiceUnknown"), std::string::npos);
    manager.own(gnomeName);
    settleAll();
    EXPECT_TRUE(isPossible(logOut));
    EXPECT_FALSE(isPossible(shutDown)) << "only after a question";
    login.own(loginName);
    settleAll();
    EXPECT_TRUE(isPossible(shutDown));
    login.disown(loginName);
    systemBus.offer("org.freedesktop.login1", "/bin/false");
    startReady();
    EXPECT_TRUE(isPossible(shutDown)) << "it can be started";
}

TEST_F(BusEndServiceTest, WithoutABusItSaysWhichAndWhy) {
    systemBus.stop();
    EXPECT_TRUE(waitUntil([this] { return !system.problem().empty(); }));
    startReady();
    const auto obstacle = service->obstacle(shutDown, EndForm::direct);
    EXPECT_TRUE(obstacle && obstacle->starts_with("nessuno può farlo: "));
    EXPECT_NE(carryOut(restart), "done");
    // A manager on the session bus needs no other.
    manager.own(xfceName);
    settleAll();
    EXPECT_TRUE(isPossible(restart));
    sessionBus.stop();
    EXPECT_TRUE(waitUntil([this] { return !session.problem().empty(); }));
    EXPECT_FALSE(isPossible(restart));
}

TEST_F(BusEndServiceTest, Login1AsksNobodyNorDoesAManagerUnlessItsPromptCanBeStarted) {
    login.own(loginName);
    startReady();
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(service->obstacle(shutDown, EndForm::asking), "nessuno può chiedere conferma");
        EXPECT_EQ(ask(shutDown), "nessuno può chiedere conferma");
        EXPECT_EQ(takeCalls(), QStringList());
        manager.own("org.kde.ksmserver");
        settleAll();
    }
    sessionBus.offer("org.kde.LogoutPrompt", "/bin/false");
    startReady();
    EXPECT_TRUE(canAsk(restart));
    const std::string failure = ask(restart);
    EXPECT_NE(failure.find("Spawn.ChildExited"), std::string::npos) << failure;
}

TEST_F(BusEndServiceTest, AProgramAsksForAManagerWithoutAQuestion) {
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", sessionBus.folder().c_str());
    login.own(loginName);
    manager.own("org.lxqt.session");
    startReady();
    EXPECT_FALSE(canAsk(logOut));
    const auto program = sessionBus.folder() / "lxqt-leave";
    const auto mark = sessionBus.folder() / "asked";
    std::ofstream(program) << "#!/bin/sh\necho $# >'" << mark.string() << "'\n";
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    EXPECT_TRUE(canAsk(logOut));
    EXPECT_EQ(ask(logOut), "done");
    EXPECT_TRUE(waitUntil([&] {
        std::string arguments;
        return std::getline(std::ifstream(mark), arguments) && arguments == "0";
    }));
    EXPECT_EQ(takeCalls(), QStringList());
    qputenv("PATH", path);
}

TEST_F(BusEndServiceTest, AQuestionThatIsOpenOrDeniedIsNoFailure) {
    limit = 300ms;
    manager.own(gnomeName);
    startReady();
    for (const QVariant& answer :
         {hanging, QVariant(Refusal{"org.gtk.GDBus.UnmappedGError.Quark._g_2dio_2derror_2dquark."
                                    "Code19",
                                    "L'operazione è stata annullata"})}) {
        manager.says[""] = answer;
        EXPECT_EQ(ask(shutDown), "done");
    }
    EXPECT_NE(carryOut(logOut), "done") << "nobody was asked";
    manager.says[""] = refusing;
    EXPECT_EQ(ask(restart), "org.gnome.SessionManager Reboot: org.example.Denied (Not today)");
}

} // namespace
} // namespace velmorquit
