#include "Views/PanelStory.h"

#include <QTest>
#include <QTimeEdit>

#include <cmath>

namespace velmorquit {
namespace {

using namespace std::chrono;

class CardTest : public PanelStory {
protected:
    /// On the virtual wall clock: hours and minutes of its first days.
    [[nodiscard]] std::string scheduledIn() const {
        const auto left = controller->schedule.get()->date - desktop.loop.now();
        return std::to_string(duration_cast<minutes>(left).count()) + " min";
    }
};

TEST_F(CardTest, APresetSchedulesWhatIsChosenThen) {
    desktop.open("Nota");
    start();
    click("showScheduler");
    QTest::keyClick(find("confirmScheduled"), Qt::Key_Space);
    EXPECT_FALSE(controller->confirmScheduled.get());
    EXPECT_FALSE(controller->schedule->has_value());
    for (const PowerAction action :
         {PowerAction::none, PowerAction::logOut, PowerAction::restart}) {
        click(std::string(rawValue(action)).c_str());
        EXPECT_EQ(controller->afterQuit.get(), action);
        EXPECT_EQ(text("quitAll"), buttonTitle(action));
    }
    EXPECT_EQ(text("schedulerTitle"), "Riavvia tra…");
    controller->chooseAfterQuit(PowerAction::none);
    settle();
    EXPECT_TRUE(find<QAbstractButton>("none")->isChecked());
    EXPECT_EQ(text("schedulerTitle"), "Chiudi tutto tra…");
    controller->chooseAfterQuit(PowerAction::restart);
    click("preset120");
    EXPECT_EQ(scheduledIn(), "120 min");
    EXPECT_EQ(controller->schedule.get()->action, PowerAction::restart);
    EXPECT_EQ(seen({"SchedulerCard", "scheduleTitle", "showScheduler"}),
              Lines("-", "Riavvia", "[Programma]"));
    EXPECT_EQ(frame->focusWidget(), find("postpone"));
    EXPECT_TRUE(find<QAbstractButton>("showScheduler")->isChecked());
    click("cancelSchedule");
    EXPECT_EQ(seen({"SchedulerCard", "ScheduleCard"}), Lines("-", "-"));
}

TEST_F(CardTest, ATimeOfDayIsTheNextOneAndStartsInTheEvening) {
    start();
    const ClockTime now = desktop.formats.clockTime(desktop.loop.now());
    click("showScheduler");
    auto* time = find<QTimeEdit>("time");
    EXPECT_EQ(time->time(), QTime(23, 0));
    time->setTime(QTime(now.hour, now.minute));
    click("schedule");
    EXPECT_EQ(desktop.formats.clockTime(controller->schedule.get()->date), now);
    EXPECT_GT(controller->schedule.get()->date, desktop.loop.now() + 23h);
    controller->cancelSchedule();
    settle();
    click("showScheduler");
    QTest::keyClick(time, Qt::Key_Up);
    desktop.open("Nota");
    QTest::keyClick(time, Qt::Key_Return);
    settle();
    EXPECT_EQ(desktop.formats.clockTime(controller->schedule.get()->date), (ClockTime{0, 0}));
    EXPECT_TRUE(is<phases::Idle>(controller->phase));
}

TEST_F(CardTest, CountsDownWhileItIsSeenAndThenAsks) {
    desktop.open("Nota");
    start();
    controller->scheduleQuit(desktop.loop.now() + 61s, PowerAction::none);
    settle();
    EXPECT_EQ(text("remaining"), "tra 2 min");
    advance(1s);
    EXPECT_EQ(text("remaining"), "tra 1 min");
    click("postpone");
    EXPECT_EQ(text("remaining"), "tra 11 min");
    frame->hide();
    advance(10min);
    EXPECT_EQ(text("remaining"), "tra 11 min");
    frame->show();
    settle();
    advance(30s);
    EXPECT_EQ(text("remaining"), "tra 30 s");
    advance(31s);
    EXPECT_EQ(seen({"remaining", "scheduleQuestion"}), Lines("-", "È ora: Chiudi tutto?"));
    click("askLater");
    EXPECT_EQ(scheduledIn(), "10 min");
    advance(10min);
    desktop.startLog();
    click("confirmSchedule");
    EXPECT_EQ(desktop.log(), Lines("0.00 quit Nota", "0.00 ended Nota"));
}

TEST_F(CardTest, WhatWasClosedCanBeReopenedOrForgotten) {
    for (const std::string name : {"Uno", "Due", "Tre", "Quattro", "Cinque"}) {
        desktop.open(name, 10_MiB).identified(name);
        desktop.files.paths.insert("/applications/" + name + ".desktop");
    }
    desktop.open("Persa", 1_MiB);
    start();
    EXPECT_FALSE(isShown("ReopenCard"));
    click("quitAll");
    EXPECT_FALSE(isShown("ReopenCard"));
    advance(1s);
    EXPECT_EQ(seen({"reopenTitle", "notReopenable"}),
              Lines("5 app di prima", "Non si può riaprire: Persa."));
    click("reopen");
    EXPECT_FALSE(isShown("ReopenCard"));
    desktop.open("Uno", 10_MiB).identified("Uno");
    settle();
    click("quitAll");
    advance(1s);
    click("forget");
    EXPECT_FALSE(isShown("ReopenCard"));
    EXPECT_TRUE(controller->lastSession->empty());
}

TEST_F(CardTest, ABackupIsWatchedAndSkippedOrCancelled) {
    desktop.backupTool.configure();
    desktop.backupTool.progress = [](Duration time) {
        return time < 2s ? std::nan("") : 0.004 + duration<double>(time) / 200s;
    };
    desktop.backupTool.duration = 200s;
    start();
    click("backupFirst");
    EXPECT_EQ(text("lastBackup"), "Nessun backup ancora fatto");
    for (const char* stop : {"skipBackup", "cancelBackup"}) {
        controller->quitAll(PowerAction::shutDown);
        advance(1s);
        EXPECT_EQ(seen({"normalContent", "backupProgress", "afterBackup"}),
                  Lines("-", "Time Machine si sta preparando…", "Al termine: Spegni"));
        advance(20s);
        EXPECT_EQ(text("backupProgress"), "11 %");
        click(stop);
        advance(5s);
        EXPECT_FALSE(isShown("BackupCard"));
    }
    EXPECT_NE(desktop.log().find("shut down"), std::string::npos);
    EXPECT_EQ(desktop.log().find("shut down"), desktop.log().rfind("shut down"));
}

TEST_F(CardTest, AFailedBackupAsksAndGoesOnByItselfWhereNobodyIs) {
    desktop.backupTool.configure();
    desktop.backupTool.duration = 1s;
    desktop.backupTool.exitStatus = 1;
    desktop.backupTool.errorOutput = "Il disco è pieno.";
    start();
    controller->chooseBackupFirst(true);
    controller->quitAll(PowerAction::restart);
    advance(5s);
    EXPECT_EQ(seen({"failureReason", "continue", "continuesIn"}),
              Lines("Time Machine: Il disco è pieno.", "Riavvia lo stesso", "-"));
    click("stopAfterFailure");
    advance(10s);
    EXPECT_TRUE(isShown("normalContent"));

    controller->quitAll(PowerAction::none, Attendance::unattended);
    advance(5s);
    EXPECT_EQ(text("continue"), "Continua");
    const std::string before = seen({"continuesIn"});
    EXPECT_NE(before.find("proseguo da solo tra 5"), std::string::npos) << before;
    click("continue");
    EXPECT_FALSE(isShown("BackupFailedCard"));
}

TEST_F(CardTest, WhatStaysIsPassedOverOnlyByASecondPressThatCanBeMeant) {
    start();
    EXPECT_TRUE(isShown("status"));
    const auto stays = [this](const char* name, std::uint64_t list) {
        desktop.loginWindow.become({.stage = EndState::Stage::refused,
                                    .obstacles = {{EndObstacle::Kind::window, name}},
                                    .canBeForced = true,
                                    .list = list});
        settle();
    };
    stays("Nota", 1);
    EXPECT_FALSE(isShown("status"));
    EXPECT_EQ(text("endText"), "Nota è rimasta aperta.");
    click("endAnyway");
    EXPECT_EQ(frame->focusWidget(), find("cancelEnd"));
    click("endAnyway");
    EXPECT_EQ(text("endTitle"), "Spegnere comunque?");
    EXPECT_EQ(desktop.log(), "") << "a double click answers no question";
    advance(1s);
    stays("Posta", 2);
    click("endAnyway");
    EXPECT_EQ(desktop.log(), "") << "the name has just changed";
    EXPECT_EQ(text("endText"), "Posta è rimasta aperta. Quello che non è salvato va perso.");
    advance(1s);
    click("endAnyway");
    EXPECT_EQ(desktop.log(), Lines("2.00 end anyway"));
    click("cancelEnd");
    EXPECT_FALSE(isShown("EndCard"));
    EXPECT_TRUE(isShown("status"));
}

TEST_F(CardTest, SaysBeforeARunWhatIsNotPossible) {
    desktop.loginWindow.expected = EndOutlook::refused;
    desktop.preferences.set("backupFirst", true);
    start();
    EXPECT_FALSE(isShown("resultNote")) << "closing alone is possible anywhere";
    controller->chooseAfterQuit(PowerAction::shutDown);
    settle();
    EXPECT_NE(text("resultNote").find("non potrò spegnere"), std::string::npos);
    EXPECT_TRUE(find("restart")->toolTip().contains("non potrò spegnere"));
    // There is no place for backups, whatever is stored.
    EXPECT_FALSE(find("backupFirst")->isEnabled() || isShown("lastBackupLine"));
    EXPECT_FALSE(find<QAbstractButton>("backupFirst")->isChecked());
}

} // namespace
} // namespace velmorquit
