#include "Linux/BusEndServiceTest.h"

#include <filesystem>
#include <fstream>

namespace velmorquit {
namespace {

TEST_F(BusEndServiceTest, EachSessionManagerAsksInItsOwnWay) {
    struct Case {
        QStringList names;
        QStringList calls; ///< for logging out, shutting down, restarting
    };
    const QString gnome = "/org/gnome/SessionManager org.gnome.SessionManager.";
    const QString xfce =
        "/org/xfce/SessionManager org.xfce.Session.Manager.Logout bool:true bool:true";
    const QString plasma = "/LogoutPrompt org.kde.LogoutPrompt.";
    login.own(loginName);
    startReady();
    for (const Case& known :
         {Case{{"org.gnome.SessionManager"},
               {gnome + "Logout uint:0", gnome + "Shutdown", gnome + "Reboot"}},
          Case{{"org.xfce.SessionManager"}, {xfce, xfce, xfce}},
          Case{{"org.kde.ksmserver", "org.kde.LogoutPrompt"},
               {plasma + "promptLogout", plasma + "promptShutDown", plasma + "promptReboot"}}}) {
        for (const QString& name : known.names)
            manager.own(name);
        settleAll();
        for (const LoginRequest request :
             {LoginRequest::logOut, LoginRequest::shutDown, LoginRequest::restart}) {
            EXPECT_EQ(service->obstacle(request, EndForm::asking), std::nullopt);
            EXPECT_EQ(carryOut(request, EndForm::asking), "done");
        }
        EXPECT_EQ(takeCalls(), known.calls);
        for (const QString& name : known.names)
            manager.disown(name);
    }
    // login1 asks nobody, nor does a manager whose prompt isn't installed.
    for (const QString& name : {QString(), QString("org.kde.ksmserver")}) {
        if (!name.isEmpty())
            manager.own(name);
        settleAll();
        EXPECT_EQ(service->obstacle(LoginRequest::shutDown, EndForm::asking),
                  "nessuno può chiedere conferma");
        EXPECT_EQ(carryOut(LoginRequest::shutDown, EndForm::asking),
                  "nessuno può chiedere conferma");
        EXPECT_EQ(takeCalls(), QStringList());
    }
}

TEST_F(BusEndServiceTest, APromptThatCanBeStartedAsks) {
    std::ofstream(sessionBus.services() / "prompt.service")
        << "[D-BUS Service]\nName=org.kde.LogoutPrompt\nExec=/bin/false\n";
    sessionBus.connect().call(QDBusMessage::createMethodCall(
        "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ReloadConfig"));
    manager.own("org.kde.ksmserver");
    startReady();
    EXPECT_EQ(service->obstacle(LoginRequest::restart, EndForm::asking), std::nullopt);
    const std::string failure = carryOut(LoginRequest::restart, EndForm::asking);
    EXPECT_NE(failure.find("Spawn.ChildExited"), std::string::npos) << failure;
}

TEST_F(BusEndServiceTest, AProgramAsksForAManagerWithoutAQuestion) {
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", sessionBus.folder().c_str());
    login.own(loginName);
    manager.own("org.lxqt.session");
    startReady();
    EXPECT_NE(service->obstacle(LoginRequest::logOut, EndForm::asking), std::nullopt);
    const auto program = sessionBus.folder() / "lxqt-leave";
    const auto mark = sessionBus.folder() / "asked";
    std::ofstream(program) << "#!/bin/sh\necho $# >'" << mark.string() << "'\n";
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    EXPECT_EQ(service->obstacle(LoginRequest::logOut, EndForm::asking), std::nullopt);
    EXPECT_EQ(carryOut(LoginRequest::logOut, EndForm::asking), "done");
    EXPECT_TRUE(waitUntil([&] {
        std::string arguments;
        return std::getline(std::ifstream(mark), arguments) && arguments == "0";
    }));
    EXPECT_EQ(takeCalls(), QStringList());
    qputenv("PATH", path);
}

TEST_F(BusEndServiceTest, AQuestionThatIsOpenOrDeniedIsNoFailure) {
    limit = 300ms;
    manager.own("org.gnome.SessionManager");
    startReady();
    for (const Manners manners : {Manners::hangs, Manners::cancels}) {
        manager.manners = manners;
        EXPECT_EQ(carryOut(LoginRequest::shutDown, EndForm::asking), "done");
    }
    EXPECT_NE(carryOut(LoginRequest::logOut), "done") << "nobody was asked";
    manager.manners = Manners::refuses;
    EXPECT_EQ(carryOut(LoginRequest::restart, EndForm::asking),
              "org.gnome.SessionManager Reboot: org.example.Denied (Not today)");
}

} // namespace
} // namespace velmorquit
