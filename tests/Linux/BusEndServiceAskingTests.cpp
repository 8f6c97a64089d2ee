#include "Linux/BusEndServiceTest.h"

#include <filesystem>
#include <fstream>

namespace velmorquit {
namespace {

class BusEndServiceAskingTest : public BusEndServiceTest {
protected:
    std::string ask(LoginRequest request) { return carryOut(request, EndForm::asking); }
    [[nodiscard]] bool canAsk(LoginRequest request) const {
        return isPossible(request, EndForm::asking);
    }
};

TEST_F(BusEndServiceAskingTest, Login1AsksNobodyNorDoesAManagerUnlessItsPromptCanBeStarted) {
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

TEST_F(BusEndServiceAskingTest, AProgramAsksForAManagerWithoutAQuestion) {
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

TEST_F(BusEndServiceAskingTest, AQuestionThatIsOpenOrDeniedIsNoFailure) {
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
