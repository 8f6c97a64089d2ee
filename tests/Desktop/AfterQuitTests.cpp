#include "Desktop/PowerStory.h"

namespace velmorquit {
namespace {

using testing::Contains;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class AfterQuit : public PowerStory {
protected:
    void SetUp() override {
        ASSERT_EQ(run({STAND_INS "/backup-tool", "prepare"}).status, 0);
        prefer({{"backupFirst", true}, {"ejectDrives", true}});
    }
};

TEST_F(AfterQuit, TheComputerIsSwitchedOffOnceAfterBackupAndEjection) {
    startAll();
    Child& application = openRude();
    const Outcome answer = control({"quit-all", "--then", "shutDown", "--yes"});
    EXPECT_EQ(answer.status, 0) << answer.text;
    EXPECT_FALSE(application.isRunning());
    EXPECT_THAT(answer.text, ContainsRegex("Backup in corso: [1-9][0-9]%"));
    EXPECT_THAT(answer.text, HasSubstr("Finito: 1 app chiusa"));
    EXPECT_THAT(answer.text, HasSubstr("Backup Time Machine completato · 1 disco espulso\n"));
    EXPECT_THAT(answer.text, EndsWith("Spengo il computer\n"));
    EXPECT_THAT(status()["drives"].toArray(), IsEmpty());
    awaitPowerCall();
    EXPECT_THAT(calls(), ElementsAre("backup started", "backup completed", "UDisks2 Unmount",
                                     "UDisks2 Eject", "login1 PowerOff"));
}

TEST_F(AfterQuit, ADriveThatStaysBusyIsNamedAndDoesNotKeepTheComputerOn) {
    startAll(3);
    openRude();
    const Outcome answer = control({"quit-all", "--then", "shutDown", "--yes"});
    EXPECT_EQ(answer.status, 1) << "not all that was asked for was done";
    EXPECT_THAT(answer.text, HasSubstr("Backup Time Machine completato · Non espulso: Photos\n"));
    awaitPowerCall();
    EXPECT_THAT(calls(), ElementsAre("backup started", "backup completed", "UDisks2 Unmount",
                                     "UDisks2 Unmount", "UDisks2 Unmount", "login1 PowerOff"));
}

TEST_F(AfterQuit, DrivesAreEjectedByThemselvesAsWell) {
    startAll(3);
    const Outcome busy = control({"eject"});
    EXPECT_EQ(busy.status, 1);
    EXPECT_EQ(busy.text, "Ancora collegati: Photos\n");
    const Outcome free = control({"eject"});
    EXPECT_EQ(free.status, 0);
    EXPECT_EQ(free.text, "1 disco espulso\n");
    const Outcome none = control({"eject"});
    EXPECT_EQ(none.status, 1);
    EXPECT_THAT(none.text, HasSubstr("Nessun disco esterno collegato."));
    EXPECT_THAT(calls(), ElementsAre("UDisks2 Unmount", "UDisks2 Unmount", "UDisks2 Unmount",
                                     "UDisks2 Unmount", "UDisks2 Eject"));
}

TEST_F(AfterQuit, ACancelledBackupIsFollowedByNothing) {
    startAll();
    openRude();
    Child quitAll({VELMORCTL, "quit-all", "--then", "restart", "--yes"});
    await("the backup", [] { return phase() == "backingUp"; });
    const Outcome leave = control({"leave"});
    EXPECT_EQ(leave.status, 1) << "the computer would be restarted all the same";
    EXPECT_THAT(leave.text, HasSubstr("velmorctl backup cancel"));
    EXPECT_EQ(control({"backup", "cancel"}).status, 0);
    const Outcome answer = outcomeOf(quitAll);
    EXPECT_EQ(answer.status, 1) << "what was asked for doesn't follow";
    EXPECT_THAT(answer.text, HasSubstr("Backup annullato"));
    linger(2000);
    EXPECT_THAT(calls(), ElementsAre("backup started", "backup stopped"));
}

TEST_F(AfterQuit, ALetterThatIsNotSavedKeepsTheComputerOn) {
    write(home() / "letter.txt", "");
    startAll();
    Child& editor = open({"mousepad", home() / "letter.txt"});
    EXPECT_EQ(control({"exclude", "mousepad"}).status, 0);
    focus("mousepad");
    type("not saved");
    EXPECT_EQ(control({"quit-all", "--then", "shutDown", "--yes", "--no-wait"}).status, 0);
    linger(8000);
    EXPECT_THAT(calls(), Not(Contains(HasSubstr("login1")))) << "it is asked about, and waited for";
    EXPECT_TRUE(editor.isRunning());
    EXPECT_EQ(control({"cancel"}).status, 0);
}

} // namespace
} // namespace velmorquit
