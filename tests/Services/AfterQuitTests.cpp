#include "Services/ControllerStory.h"

#include <limits>

namespace velmorquit {
namespace {

using enum PowerAction;
using Stop = QuitController::BackupStop;
using Choice = QuitController::FailureChoice;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// What follows a run in which one application quits at once.
class AfterQuit : public ControllerStory {
protected:
    void begin(PowerAction action = none, Attendance attendance = Attendance::attended) {
        desktop.preferences.set("backupFirst", true);
        desktop.preferences.set("ejectDrives", true);
        desktop.backupTool.configure();
        desktop.open("A", 5);
        start().quitAll(action, attendance);
    }
};

TEST_F(AfterQuit, BacksUpEjectsAndShutsDown) {
    desktop.volumes.mountStick("one");
    desktop.volumes.mountStick("two");
    // In the order of the seconds; it may say anything.
    const std::vector<double> said{0.3, 0.1, -1,  0.5, std::numeric_limits<double>::quiet_NaN(),
                                   0.3, 1,   0.8, 0.8, 0.9};
    desktop.backupTool.progress = [&](Duration time) {
        return said[static_cast<std::size_t>(time / 1s) % said.size()];
    };
    begin(shutDown);
    const auto action = [this](Duration time, PowerAction expected) {
        in(time, [=, this] { EXPECT_EQ(controller->runningAction.get(), expected); });
    };
    action(11s, shutDown);
    action(12s, none);
    in(11s, [this] {
        EXPECT_TRUE(controller->externalDrives->empty());
        EXPECT_TRUE(controller->timeMachine->lastBackup);
    });
    EXPECT_EQ(after(30s), Lines("0.00 quit A", "0.00 quitting 1", "0.00 ended A", "0.25 backingUp",
                                "0.25 start backup", "0.25 event backupStarted",
                                "3.25 event backupProgress 0.50", "7.25 event backupProgress 0.75",
                                "10.25 event backupFinished", "10.25 ejecting",
                                "10.25 eject /media/one", "10.25 eject /media/two",
                                "10.25 event disksEjected 2", "10.25 event quitDone 1",
                                "10.25 done 1 5 Backup Time Machine completato · 2 dischi espulsi",
                                "11.45 shut down", "18.25 idle"));
}

/// How a backup may go, by what is in the log of it and of what follows.
struct BackupStory {
    const char* name;
    void (*arrange)(SimulatedDesktop& desktop);
    /// What the user does half a second after the backup has begun.
    void (*answer)(QuitController& controller);
    std::string log;
    bool isUnattended = false;
};

void PrintTo(const BackupStory& story, std::ostream* stream) { *stream << story.name; }

void haveDrive(SimulatedDesktop& desktop) { desktop.volumes.mountStick("one"); }
void failToStart(SimulatedDesktop& desktop) {
    haveDrive(desktop);
    desktop.backupTool.launchError = "no such tool";
}
void failOnTheWay(SimulatedDesktop& desktop) {
    desktop.backupTool.exitStatus = 1;
    desktop.backupTool.errorOutput = "first\n  The disk is full.\t\n \n\t";
}

const std::string begun = Lines("0.25 start backup", "0.25 event backupStarted");
const std::string failedAtOnce =
    Lines("0.25 event backupFinished badly", "0.25 backupFailed: no such tool");

const BackupStory backupStories[]{
    {"Skipped", [](SimulatedDesktop&) {},
     [](QuitController& controller) { controller.stopBackup(Stop::skip); },
     begun + Lines("1.25 stop backup", "1.25 event quitDone 1", "1.25 done 1 5 Backup saltato",
                   "2.45 restart", "9.25 idle")},
    {"Cancelled", haveDrive,
     [](QuitController& controller) { controller.stopBackup(Stop::cancel); },
     begun + Lines("1.25 stop backup", "1.25 done 1 5 Backup annullato", "9.25 idle")},
    {"FailedAndGoneOn", failToStart,
     [](QuitController& controller) { controller.resolveBackupFailure(Choice::goOn); },
     failedAtOnce + Lines("0.75 ejecting", "0.75 eject /media/one", "0.75 event disksEjected 1",
                          "0.75 event quitDone 1",
                          "0.75 done 1 5 Backup non riuscito · 1 disco espulso", "1.95 restart",
                          "8.75 idle")},
    {"FailedAndStopped", failToStart,
     [](QuitController& controller) {
         controller.resolveBackupFailure(Choice::stop);
         controller.resolveBackupFailure(Choice::goOn);
     },
     failedAtOnce + Lines("0.75 done 1 5 Backup non riuscito", "8.75 idle")},
    {"FailedUnattended", failOnTheWay, [](QuitController&) {},
     begun + Lines("2.25 event backupFinished badly",
                   "2.25 backupFailed: Time Machine: The disk is full.", "62.25 event quitDone 1",
                   "62.25 done 1 5 Backup non riuscito", "63.45 restart unattended", "70.25 idle"),
     true},
};

class EveryBackup : public AfterQuit, public testing::WithParamInterface<BackupStory> {};

TEST_P(EveryBackup, IsFollowedByWhatWasAskedForOrByNothing) {
    const BackupStory& story = GetParam();
    desktop.backupTool.duration = 2s;
    desktop.backupTool.progress = [](Duration) { return -1; };
    story.arrange(desktop);
    begin(restart, story.isUnattended ? Attendance::unattended : Attendance::attended);
    in(750ms, [&] { story.answer(*controller); });
    EXPECT_EQ(after(2min),
              Lines("0.00 quit A", "0.00 quitting 1", "0.00 ended A", "0.25 backingUp") +
                  story.log);
    EXPECT_EQ(controller->runningAction.get(), none);
    EXPECT_FALSE(controller->unattended.get() || controller->autoContinueAt.get());
}

INSTANTIATE_TEST_SUITE_P(, EveryBackup, testing::ValuesIn(backupStories),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(AfterQuit, AnAnswerEndsTheWaitForThatQuestionAlone) {
    desktop.backupTool.launchError = "no such tool";
    begin(none, Attendance::unattended);
    desktop.advance(1s);
    EXPECT_EQ(controller->autoContinueAt.get(), desktop.loop.now() - 750ms + 60s);
    controller->resolveBackupFailure(Choice::stop);
    desktop.advance(1s);
    controller->quitAll(restart);
    EXPECT_THAT(after(1h), testing::EndsWith("backupFailed: no such tool\n"));
}

TEST_F(AfterQuit, ABackupThatIsNotOnRecordAfterTenReadingsHasFailed) {
    desktop.backupTool.duration = 1s;
    desktop.backupTool.recordedAt = -6s;
    desktop.backupTool.errorOutput = "well\n\xff \n\t\n";
    begin();
    EXPECT_THAT(after(1min), HasSubstr("21.25 backupFailed: Time Machine non ha registrato un "
                                       "backup nuovo. Controlla che il disco sia collegato.\n"));
    controller->resolveBackupFailure(Choice::stop);
    desktop.backupTool.recordedAt = -4s;
    desktop.backupTool.recordDelay = 17s;
    begin();
    EXPECT_THAT(after(1min), HasSubstr("19.25 event backupFinished\n"));
}

TEST_F(AfterQuit, ABackupIsStoppedWhileItsRecordIsAwaitedTooAndTheRequestThatWasNoticedCounts) {
    desktop.backupTool.duration = 1s;
    desktop.backupTool.recordedAt.reset();
    desktop.backupTool.onStop = [this] { controller->stopBackup(Stop::skip); };
    begin(restart);
    in(4s, [this] { controller->stopBackup(Stop::cancel); });
    EXPECT_THAT(after(8s), testing::AllOf(HasSubstr("4.00 stop backup\n"),
                                          HasSubstr("done 1 5 Backup annullato\n")));
}

TEST_F(AfterQuit, DrivesThatStayAreTriedThriceAndNamed) {
    desktop.volumes.mountStick("held", 9);
    desktop.volumes.mountStick("slow", 2);
    desktop.volumes.mountStick("late", 9);
    desktop.backupTool.launchError = "no";
    in(1s, [this] { controller->resolveBackupFailure(Choice::goOn); });
    in(15s, [this] { desktop.volumes.unmount("/media/held"); });
    begin();
    EXPECT_THAT(after(25s),
                HasSubstr("Backup non riuscito · 2 dischi espulsi · Non espulso: late\n"));
}

TEST_F(AfterQuit, DrivesThatTheUserEjectsAlreadyAreNotTheRuns) {
    desktop.volumes.mountStick("slow", 2);
    desktop.volumes.mountStick("held", 4);
    desktop.preferences.set("ejectDrives", true);
    start().ejectNow();
    in(1s, [this] { controller->quitAll(restart); });
    EXPECT_EQ(after(1min),
              Lines("0.00 eject /media/slow", "1.00 ejecting", "3.00 eject /media/slow",
                    "6.00 eject /media/slow", "6.00 eject /media/held", "9.00 eject /media/held",
                    "12.00 eject /media/held", "12.00 event disksEjected 1 -held",
                    "12.25 eject /media/held", "15.25 eject /media/held",
                    "15.25 event disksEjected 1", "15.25 done 0 0 1 disco espulso", "16.45 restart",
                    "23.25 idle"));
    EXPECT_FALSE(controller->isEjecting());
}

TEST_F(AfterQuit, ALaterRunBringsItsOwnActionAndACancelledOneIsDropped) {
    start().quitAll(shutDown, Attendance::unattended);
    after(500ms);
    desktop.open("B").quitsAfter(2s);
    controller->quitAll(restart);
    EXPECT_FALSE(controller->unattended.get()) << "that was the earlier one";
    EXPECT_EQ(controller->runningAction.get(), none);
    desktop.advance(2500ms);
    EXPECT_EQ(controller->runningAction.get(), restart);
    controller->cancelPowerAction();
    EXPECT_EQ(after(1min), Lines("0.00 quit B", "0.00 quitting 1", "2.00 ended B",
                                 "2.00 event quitDone 1", "2.00 done 1 0", "10.00 idle"));
}

TEST_F(AfterQuit, ARefusedActionIsInTheLogAlone) {
    desktop.loginWindow.refusal = "no permission";
    EXPECT_EQ(run(restart, 1min), Lines("0.00 done 0 0", "1.20 restart", "8.00 idle"));
    EXPECT_THAT(desktop.systemLog.lines,
                ElementsAre("Velmor Quit: azione restart non riuscita: no permission"));
}

TEST_F(AfterQuit, OnlyExternalVolumesAreListed) {
    using Change = void (*)(Volume&);
    const std::pair<Change, bool> changes[]{
        {[](Volume&) {}, true},
        {[](Volume& v) { v.isInternal = true, v.isRemovable = true; }, true},
        {[](Volume& v) { v.isInternal.reset(), v.isEjectable = true; }, true},
        {[](Volume& v) { v.isBrowsable = true, v.isLocal = true; }, true},
        {[](Volume& v) { v.isInternal.reset(); }, false},
        {[](Volume& v) { v.isInternal = true, v.isRemovable = false; }, false},
        {[](Volume& v) { v.holdsSystem = true; }, false},
        {[](Volume& v) { v.isLocal = false; }, false},
        {[](Volume& v) { v.isBrowsable = false; }, false},
        {[](Volume& v) { v.capacity = 0; }, false},
        {[](Volume& v) { v.capacity.reset(); }, false},
        {[](Volume& v) { v.name.reset(); }, false},
        {[](Volume& v) { v.path = "/"; }, false}};
    for (const auto& [change, isListed] : changes) {
        desktop.volumes.mountStick("x");
        Volume volume = desktop.volumes.mounted().front();
        change(volume);
        desktop.volumes.unmount("/media/x");
        desktop.volumes.mount(volume);
        EXPECT_EQ(!ExternalDrives::connected(desktop.volumes).empty(), isListed);
        desktop.volumes.unmount(volume.path);
    }
}

} // namespace
} // namespace velmorquit
