#include "Desktop/PowerStory.h"

namespace velmorquit {
namespace {

using AfterQuit = PowerStory;

TEST_F(AfterQuit, TheComputerIsSwitchedOffOnceAfterBackupAndEjection) {
    ASSERT_EQ(run({STAND_INS "/backup-tool", "prepare"}).status, 0);
    prefer({{"backupFirst", true}, {"ejectDrives", true}});
    startAll(3);
    EXPECT_THAT(control({"eject"}), ends(1, "Ancora collegati: Photos\n"));
    EXPECT_THAT(calls(), ElementsAre("UDisks2 Unmount", "UDisks2 Unmount", "UDisks2 Unmount"));

    Child cancelled({VELMORCTL, "quit-all", "--then", "restart", "--yes"});
    await("the backup", [] { return phase() == "backingUp"; });
    EXPECT_THAT(control({"leave"}), ends(1, HasSubstr("velmorctl backup cancel")))
        << "the computer would be restarted all the same";
    EXPECT_EQ(control({"backup", "cancel"}).status, 0);
    EXPECT_THAT(outcomeOf(cancelled), ends(1, HasSubstr("Backup annullato")));
    linger(2000);
    const Words before = calls();
    EXPECT_EQ(before.back(), "backup stopped");

    Child& application = openRude();
    const Outcome answer = control({"quit-all", "--then", "shutDown", "--yes"});
    EXPECT_FALSE(application.isRunning());
    EXPECT_THAT(answer,
                ends(0, AllOf(ContainsRegex("Backup in corso: [1-9][0-9]%"),
                              HasSubstr("Finito: 1 app chiusa"),
                              HasSubstr("Backup Time Machine completato · 1 disco espulso\n"),
                              EndsWith("Spengo il computer\n"))));
    EXPECT_TRUE(status()["drives"].toArray().isEmpty());
    EXPECT_THAT(control({"eject"}), ends(1, HasSubstr("Nessun disco esterno collegato.")));
    awaitPowerCall();
    const Words all = calls();
    EXPECT_THAT(Words(all.begin() + std::ssize(before), all.end()),
                ElementsAre("backup started", "backup completed", "UDisks2 Unmount",
                            "UDisks2 Eject", "login1 PowerOff"));
}

using RealBackup = DesktopStory;

TEST_F(RealBackup, IsMadeByARunAndGivesTheFilesBack) {
    const auto documents = home() / "Documents";
    write(documents / "letter.txt", "The meeting is on Friday at ten.");
    EXPECT_EQ(run({VELMORQUIT_TMUTIL, "setup", home() / "disk", "--source", documents}).status, 0);
    prefer({{"backupFirst", true}});
    startProgram();
    Child& application = openRude();
    EXPECT_THAT(control({"quit-all"}),
                ends(0, AllOf(HasSubstr("Backup in corso"), HasSubstr("Time Machine completato"))));
    EXPECT_FALSE(application.isRunning());
    const auto restored = home() / "restored";
    EXPECT_EQ(run({VELMORQUIT_TMUTIL, "restore", "latest", "--to", restored}).status, 0);
    EXPECT_EQ(run({"grep", "-rl", "Friday at ten", restored}).status, 0);
}

} // namespace
} // namespace velmorquit
