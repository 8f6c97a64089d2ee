#include "Services/ControllerStory.h"

namespace velmorquit {
namespace {

using Stop = QuitController::BackupStop;
using Choice = QuitController::FailureChoice;

/// What follows a run in which one application quits at once.
class AfterQuit : public ControllerStory {
protected:
    void begin(PowerAction action = PowerAction::none) {
        desktop.preferences.set("backupFirst", true);
        desktop.preferences.set("ejectDrives", true);
        desktop.backupTool.configure();
        desktop.open("A", 5);
        start().quitAll(action);
    }

    [[nodiscard]] std::string note() const { return controller->resultNote->value_or("none"); }

    static constexpr const char* unrecorded =
        "Time Machine non ha registrato un backup nuovo. Controlla che il disco sia collegato.";
};

TEST_F(AfterQuit, BacksUpEjectsAndShutsDown) {
    desktop.volumes.mountStick("one");
    desktop.volumes.mountStick("two");
    begin(PowerAction::shutDown);
    desktop.advance(30s);
    EXPECT_EQ(desktop.log(),
              Lines("0.00 quit A", "0.00 quitting 1", "0.00 ended A", "0.25 backingUp",
                    "0.25 start backup", "0.25 event backupStarted", "1.25 backingUp",
                    "2.25 backingUp", "3.25 event backupProgress 0.25", "3.25 backingUp",
                    "4.25 backingUp", "5.25 event backupProgress 0.50", "5.25 backingUp",
                    "6.25 backingUp", "7.25 backingUp", "8.25 event backupProgress 0.75",
                    "8.25 backingUp", "9.25 backingUp", "10.25 event backupFinished",
                    "10.25 ejecting", "10.25 eject /media/one", "10.25 eject /media/two",
                    "10.25 event disksEjected 2", "10.25 event quitDone 1", "10.25 done 1 5",
                    "11.45 shut down", "18.25 idle"));
}

TEST_F(AfterQuit, TheResultIsToldAndTheResetsComeWithTheEnd) {
    desktop.volumes.mountStick("one");
    onEvent = [this](const Event& event) {
        if (std::holds_alternative<events::QuitDone>(event)) {
            EXPECT_EQ(controller->runningAction.get(), PowerAction::logOut);
        }
    };
    begin(PowerAction::logOut);
    desktop.advance(11s);
    EXPECT_EQ(note(), "Backup Time Machine completato · 1 disco espulso");
    EXPECT_EQ(controller->runningAction.get(), PowerAction::logOut);
    desktop.advance(1s);
    EXPECT_EQ(controller->runningAction.get(), PowerAction::none);
    EXPECT_TRUE(controller->externalDrives->empty());
    EXPECT_TRUE(controller->timeMachine->lastBackup);
}

/// How a backup may go, by what is in the log of it; then what follows begins.
struct BackupStory {
    const char* name;
    void (*arrange)(SimulatedDesktop& desktop);
    /// What the user does half a second after the backup has begun.
    void (*answer)(QuitController& controller);
    bool isUnattended;
    std::string log;
    Duration end;
    const char* note;
    bool isFollowed;
};

void PrintTo(const BackupStory& story, std::ostream* stream) { *stream << story.name; }

const std::string begun = Lines("0.25 backingUp", "0.25 start backup", "0.25 event backupStarted");
const std::string failedAtOnce =
    Lines("0.25 backingUp", "0.25 event backupFinished badly", "0.25 backupFailed: no such tool");

void failToStart(SimulatedDesktop& desktop) { desktop.backupTool.launchError = "no such tool"; }
void failOnTheWay(SimulatedDesktop& desktop) {
    desktop.backupTool.exitStatus = 1;
    desktop.backupTool.errorOutput = "first\n  The disk is full.\t\n\n";
}

const BackupStory backupStories[]{
    {"Completed", [](SimulatedDesktop&) {}, [](QuitController&) {}, false,
     begun + Lines("2.25 event backupFinished"), 2250ms, "Backup Time Machine completato", true},
    {"Skipped", [](SimulatedDesktop&) {},
     [](QuitController& controller) { controller.stopBackup(Stop::skip); }, false,
     begun + Lines("1.25 stop backup"), 1250ms, "Backup saltato", true},
    {"Cancelled", [](SimulatedDesktop&) {},
     [](QuitController& controller) { controller.stopBackup(Stop::cancel); }, false,
     begun + Lines("1.25 stop backup"), 1250ms, "Backup annullato", false},
    {"FailedAndGoneOn", failToStart,
     [](QuitController& controller) { controller.resolveBackupFailure(Choice::goOn); }, false,
     failedAtOnce, 750ms, "Backup non riuscito", true},
    {"FailedAndStopped", failToStart,
     [](QuitController& controller) {
         controller.resolveBackupFailure(Choice::stop);
         controller.resolveBackupFailure(Choice::goOn);
     },
     false, failedAtOnce, 750ms, "Backup non riuscito", false},
    {"FailedUnattended", failOnTheWay, [](QuitController&) {}, true,
     begun + Lines("2.25 event backupFinished badly",
                   "2.25 backupFailed: Time Machine: The disk is full."),
     62250ms, "Backup non riuscito", true},
};

class EveryBackup : public AfterQuit,
                    public testing::WithParamInterface<std::tuple<BackupStory, bool, bool>> {
public:
    static std::string nameOf(const testing::TestParamInfo<ParamType>& info) {
        const auto& [story, hasDrive, hasAction] = info.param;
        return std::string(story.name) + (hasDrive ? "WithADrive" : "") +
               (hasAction ? "BeforeARestart" : "");
    }

protected:
    static std::string at(Duration time, std::string_view what) {
        const auto hundredths = time / 10ms;
        const std::string digits = std::to_string(100 + hundredths % 100).substr(1);
        return std::to_string(hundredths / 100) + '.' + digits + ' ' + std::string(what) + '\n';
    }

    static std::string expected(const BackupStory& story, bool hasDrive, bool hasAction) {
        std::string log = Lines("0.00 quit A", "0.00 quitting 1", "0.00 ended A") + story.log;
        if (story.isFollowed && hasDrive)
            log += at(story.end, "ejecting") + at(story.end, "eject /media/one") +
                   at(story.end, "event disksEjected 1");
        if (story.isFollowed)
            log += at(story.end, "event quitDone 1");
        log += at(story.end, "done 1 5");
        if (story.isFollowed && hasAction)
            log += at(story.end + 1200ms, story.isUnattended ? "restart unattended" : "restart");
        return log + at(story.end + 8s, "idle");
    }
};

TEST_P(EveryBackup, IsFollowedByWhatWasAskedForOrByNothing) {
    const auto& [story, hasDrive, hasAction] = GetParam();
    if (hasDrive)
        desktop.volumes.mountStick("one");
    desktop.backupTool.duration = 2s;
    desktop.backupTool.progress = [](Duration) { return -1; };
    story.arrange(desktop);
    begin(hasAction ? PowerAction::restart : PowerAction::none);
    controller->unattended = story.isUnattended;
    desktop.advance(750ms);
    story.answer(*controller);
    desktop.advance(story.end + 250ms);
    EXPECT_EQ(note(),
              std::string(story.note) + (story.isFollowed && hasDrive ? " · 1 disco espulso" : ""));
    desktop.advance(1min);
    EXPECT_EQ(desktop.log(), expected(story, hasDrive, hasAction));
    EXPECT_EQ(controller->runningAction.get(), PowerAction::none);
    EXPECT_FALSE(controller->unattended.get());
    EXPECT_FALSE(controller->autoContinueAt.get());
}

INSTANTIATE_TEST_SUITE_P(, EveryBackup,
                         testing::Combine(testing::ValuesIn(backupStories), testing::Bool(),
                                          testing::Bool()),
                         EveryBackup::nameOf);

TEST_F(AfterQuit, NobodyAttendingItSaysWhenItGoesOn) {
    desktop.backupTool.launchError = "no such tool";
    begin();
    controller->unattended = true;
    desktop.advance(1s);
    EXPECT_EQ(controller->autoContinueAt.get(), desktop.loop.now() - 750ms + 60s);
}

TEST_F(AfterQuit, TheRequestThatWasNoticedCounts) {
    begin(PowerAction::restart);
    desktop.advance(2s);
    desktop.backupTool.onStop = [this] { controller->stopBackup(Stop::skip); };
    controller->stopBackup(Stop::cancel);
    desktop.advance(4s);
    EXPECT_EQ(note(), "Backup annullato");
}

TEST_F(AfterQuit, AnAnswerEndsTheWaitForThatQuestionAlone) {
    desktop.backupTool.launchError = "no such tool";
    begin();
    controller->unattended = true;
    desktop.advance(1s);
    controller->resolveBackupFailure(Choice::stop);
    desktop.advance(1s);
    controller->quitAll(PowerAction::restart);
    desktop.advance(1h);
    EXPECT_TRUE(is<phases::BackupFailed>(controller->phase)) << desktop.log();
}

TEST_F(AfterQuit, ABackupThatIsNotOnRecordAfterTenReadingsHasFailed) {
    desktop.backupTool.duration = 1s;
    desktop.backupTool.recordedAt = -6s;
    begin();
    desktop.advance(1min);
    EXPECT_NE(desktop.log().find(std::string("21.25 backupFailed: ") + unrecorded),
              std::string::npos)
        << desktop.log();
    controller->resolveBackupFailure(Choice::stop);
    desktop.backupTool.recordedAt = -4s;
    desktop.backupTool.recordDelay = 17s;
    begin();
    desktop.advance(1min);
    EXPECT_EQ(desktop.log().find("Failed"), std::string::npos) << desktop.log();
    EXPECT_NE(desktop.log().find("19.25 event backupFinished\n"), std::string::npos)
        << desktop.log();
}

TEST_F(AfterQuit, ABackupIsStoppedWhileItsRecordIsAwaitedToo) {
    desktop.backupTool.duration = 1s;
    desktop.backupTool.recordedAt.reset();
    begin(PowerAction::restart);
    desktop.advance(4s);
    controller->stopBackup(Stop::cancel);
    desktop.advance(4s);
    EXPECT_EQ(note(), "Backup annullato");
    EXPECT_NE(desktop.log().find("4.00 stop backup\n"), std::string::npos) << desktop.log();
}

TEST_F(AfterQuit, DrivesThatStayAreTriedThriceAndNamed) {
    desktop.volumes.mountStick("held", 9);
    desktop.volumes.mountStick("slow", 2);
    desktop.volumes.mountStick("late", 9);
    begin();
    const Handle pulled =
        desktop.loop.after(15s, [this] { desktop.volumes.unmount("/media/held"); });
    desktop.backupTool.launchError = "no";
    desktop.advance(1s);
    controller->resolveBackupFailure(Choice::goOn);
    desktop.advance(20s);
    EXPECT_EQ(note(), "Backup non riuscito · 2 dischi espulsi · Non espulso: late");
}

TEST_F(AfterQuit, DrivesThatTheUserEjectsAlreadyAreNotTheRuns) {
    desktop.volumes.mountStick("slow", 2);
    desktop.volumes.mountStick("held", 4);
    desktop.preferences.set("ejectDrives", true);
    start().ejectNow();
    desktop.advance(1s);
    controller->quitAll(PowerAction::restart);
    desktop.advance(1min);
    const std::string log = desktop.log();
    const auto first = log.find("event disksEjected 1 -held\n");
    const auto second = log.find("event disksEjected 1\n");
    EXPECT_LT(log.find("ejecting\n"), first) << log;
    EXPECT_LT(first, second) << log;
    EXPECT_LT(second, log.find("restart\n")) << log;
    EXPECT_FALSE(controller->isEjecting());
}

TEST_F(AfterQuit, ALaterRunBringsItsOwnActionAndACancelledOneIsDropped) {
    start();
    controller->quitAll(PowerAction::shutDown);
    desktop.advance(500ms);
    controller->unattended = true;
    desktop.open("B").quitsAfter(2s);
    controller->quitAll(PowerAction::restart);
    EXPECT_FALSE(controller->unattended.get()) << "that was the earlier one";
    EXPECT_EQ(controller->runningAction.get(), PowerAction::none);
    desktop.advance(2500ms);
    EXPECT_EQ(controller->runningAction.get(), PowerAction::restart);
    controller->cancelPowerAction();
    desktop.advance(1min);
    EXPECT_EQ(desktop.log().find("shut down"), std::string::npos) << desktop.log();
    EXPECT_EQ(desktop.log().find("restart"), std::string::npos) << desktop.log();
}

TEST_F(AfterQuit, ARefusedActionIsInTheLogAlone) {
    desktop.loginWindow.refusal = "no permission";
    start().quitAll(PowerAction::restart);
    desktop.advance(1min);
    EXPECT_EQ(desktop.systemLog.lines,
              std::vector<std::string>{"Velmor Quit: azione restart non riuscita: no permission"});
    EXPECT_TRUE(is<phases::Idle>(controller->phase));
}

TEST_F(AfterQuit, AControllerMayGoAtAnyPointOfTheSequence) {
    for (const int milliseconds : {300, 1250, 10250, 12000}) {
        desktop.volumes.mountStick("held", 9);
        begin(PowerAction::restart);
        desktop.advance(std::chrono::milliseconds(milliseconds));
        controller.reset();
        desktop.advance(1min);
        desktop.volumes.unmount("/media/held");
    }
}

TEST_F(AfterQuit, OnlyExternalVolumesAreListed) {
    const auto listed = [this](auto change) {
        Volume volume;
        volume.path = "/media/x";
        volume.name = "x";
        volume.capacity = 1;
        volume.isInternal = false;
        change(volume);
        desktop.volumes.mount(volume);
        const bool isListed = !ExternalDrives::connected(desktop.volumes).empty();
        desktop.volumes.unmount(volume.path);
        return isListed;
    };
    EXPECT_TRUE(listed([](Volume&) {}));
    EXPECT_TRUE(listed([](Volume& v) { v.isInternal = true, v.isRemovable = true; }));
    EXPECT_TRUE(listed([](Volume& v) { v.isInternal.reset(), v.isEjectable = true; }));
    EXPECT_TRUE(listed([](Volume& v) { v.isBrowsable = true, v.isLocal = true; }));
    EXPECT_FALSE(listed([](Volume& v) { v.isInternal.reset(); }));
    EXPECT_FALSE(listed([](Volume& v) { v.isInternal = true, v.isRemovable = false; }));
    EXPECT_FALSE(listed([](Volume& v) { v.holdsSystem = true; }));
    EXPECT_FALSE(listed([](Volume& v) { v.isLocal = false; }));
    EXPECT_FALSE(listed([](Volume& v) { v.isBrowsable = false; }));
    EXPECT_FALSE(listed([](Volume& v) { v.capacity = 0; }));
    EXPECT_FALSE(listed([](Volume& v) { v.capacity.reset(); }));
    EXPECT_FALSE(listed([](Volume& v) { v.name.reset(); }));
    EXPECT_FALSE(listed([](Volume& v) { v.path = "/"; }));
}

} // namespace
} // namespace velmorquit
