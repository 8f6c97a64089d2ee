#include "Services/ControllerStory.h"

namespace velmorquit {
namespace {

using enum PowerAction;
using QuitAllRun = ControllerStory;
using testing::HasSubstr;
using testing::Not;

TEST_F(QuitAllRun, AnUnsavedDocumentIsWaitedForAndTheRunGoesOnByItself) {
    desktop.open("Note", 300).asksToSaveFor(20s);
    desktop.open("Mail", 200).quitsAfter(7100ms);
    in(500ms, [&] { desktop.open("Late").ignoresAsking(); });
    EXPECT_EQ(run(restart, 38s),
              Lines("0.00 quit Note", "0.00 quit Mail", "0.00 quitting 2",
                    "6.00 event stubbornApps: Note Mail", "6.00 waiting: Note Mail",
                    "7.10 ended Mail", "7.25 waiting: Note", "20.00 ended Note",
                    "20.00 event quitDone 2", "20.00 done 2 500", "21.20 restart", "28.00 idle"))
        << "one that opens meanwhile is no target";
    EXPECT_EQ(names(controller->apps), "Late");
}

TEST_F(QuitAllRun, OneThatQuitsExactlyAtTheDeadlineIsNotStubborn) {
    desktop.open("Note").quitsAfter(6s);
    EXPECT_EQ(run(none, 6s), Lines("0.00 quit Note", "0.00 quitting 1", "6.00 ended Note",
                                   "6.00 event quitDone 1", "6.00 done 1 0"));
}

TEST_F(QuitAllRun, StubbornOnesAreForcedButForThoseExcludedMeanwhileAndProtected) {
    desktop.open("Deaf", 20).ignoresAsking().endsWhenForcedAfter(2s);
    desktop.open("Root", 10).cannotBeAsked().cannotBeForced();
    desktop.open("Keep").ignoresAsking();
    start().quitAll(none);
    EXPECT_TRUE(controller->forceQuitStubborn().empty()) << "before they are";
    after(7s);
    controller->toggleExclusion(app("Keep"));
    EXPECT_EQ(controller->forceQuitStubborn(), std::vector<std::string>{"Root"});
    EXPECT_EQ(after(60s), Lines("0.00 force Deaf", "0.00 force Root", "2.00 ended Deaf",
                                "2.00 waiting: Root Keep"));
}

TEST_F(QuitAllRun, LeavingThemOpenEndsTheRunWithWhatHasGoneSinceTheLastPoll) {
    desktop.open("A", 1).quitsAfter(1s);
    desktop.open("B", 2).quitsAfter(6100ms);
    desktop.open("C", 4).ignoresAsking();
    in(6200ms, [&] {
        controller->leaveStubbornOpen();
        EXPECT_EQ(names(controller->stubborn), "");
        EXPECT_EQ(names(controller->apps), "C");
    });
    EXPECT_EQ(run(shutDown, 1min),
              Lines("0.00 quit C", "0.00 quit B", "0.00 quit A", "0.00 quitting 3", "1.00 ended A",
                    "6.00 event stubbornApps: C B", "6.00 waiting: C B", "6.10 ended B",
                    "6.20 done 2 3", "14.20 idle"));
    EXPECT_TRUE(desktop.systemLog.lines.empty()) << "no power action was left over";
}

TEST_F(QuitAllRun, LeavingIsPossibleInTheGracePeriodAndMeansNothingOutsideARun) {
    desktop.open("A").quitsAfter(2s);
    start().leaveStubbornOpen();
    for (const Duration time : {1s, 3s})
        in(time, [this] { controller->leaveStubbornOpen(); });
    controller->quitAll(none);
    EXPECT_EQ(after(60s), Lines("0.00 quit A", "0.00 quitting 1", "1.00 done 0 0", "2.00 ended A",
                                "9.00 idle"));
}

TEST_F(QuitAllRun, LeavingInTheTurnInWhichTheLastOneWentShowsThatRunsResult) {
    desktop.open("A", 7).quitsAfter(250ms);
    start().quitAll(shutDown);
    // Armed after the poll's first sleep, due at the same instant: it runs between the end of the
    // run and the first step of what follows.
    in(1ms, [this] { in(249ms, [this] { controller->leaveStubbornOpen(); }); });
    EXPECT_EQ(after(1s), Lines("0.00 quit A", "0.00 quitting 1", "0.25 ended A", "0.25 done 1 7"));
    EXPECT_TRUE(desktop.systemLog.lines.empty());
}

TEST_F(QuitAllRun, NothingToQuitStillGoesThroughTheStepsThatFollow) {
    desktop.open("Files").identified("files");
    desktop.preferences.set("excludedApps", Value::Array{"files"});
    start().quitAll(restart);
    EXPECT_TRUE(is<phases::Idle>(controller->phase));
    controller->quitAll(none);
    EXPECT_EQ(after(2s), Lines("0.00 done 0 0", "1.20 restart"))
        << "the first request's own action, once";
}

TEST_F(QuitAllRun, NeitherASecondRequestNorACorrectedClockChangesARunInProgress) {
    desktop.open("A").ignoresAsking();
    in(1s, [&] { desktop.loop.moveWallClock(-1h); });
    for (const Duration time : {3s, 7s})
        in(time, [this] { controller->quitAll(shutDown); });
    EXPECT_EQ(run(none, 10s), Lines("0.00 quit A", "0.00 quitting 1", "6.00 event stubbornApps: A",
                                    "6.00 waiting: A"));
    EXPECT_EQ(controller->afterQuit.get(), none);
}

TEST_F(QuitAllRun, ANewRunReplacesAResultOnShowAndItsReset) {
    desktop.open("A").quitsAfter(100ms);
    run(none, 4s);
    desktop.open("B").ignoresAsking();
    in(5s, [this] { controller->leaveStubbornOpen(); });
    controller->quitAll(none);
    EXPECT_EQ(after(20s), Lines("0.00 quit B", "0.00 quitting 1", "5.00 done 0 0", "13.00 idle"))
        << "the new result has its own 8 seconds";
}

TEST_F(QuitAllRun, ACallbackMayLeaveThemAndStartTheNextRun) {
    desktop.open("A").ignoresAsking();
    onEvent = [this](const Event&) {
        onEvent = nullptr;
        controller->leaveStubbornOpen();
        controller->quitAll(none);
    };
    EXPECT_EQ(run(none, 13s),
              Lines("0.00 quit A", "0.00 quitting 1", "6.00 event stubbornApps: A", "6.00 quit A",
                    "12.00 event stubbornApps: A", "12.00 waiting: A"));
}

TEST_F(QuitAllRun, ACallbackMayStartTheNextRunWhenOneIsDone) {
    desktop.open("A").quitsAfter(100ms);
    onEvent = [this](const Event&) {
        desktop.open("B").quitsAfter(100ms);
        onEvent = nullptr;
        controller->quitAll(none);
    };
    EXPECT_EQ(run(none, 1s),
              Lines("0.00 quit A", "0.00 quitting 1", "0.10 ended A", "0.25 event quitDone 1",
                    "0.25 quit B", "0.35 ended B", "0.50 event quitDone 1", "0.50 done 1 0"));
}

TEST_F(QuitAllRun, OneThatGoesOnWithoutWindowsIsAskedOnceMoreInTheWayThatIsLeft) {
    desktop.open("Player").needsToBeAskedTwice();
    auto& tray = desktop.open("Tray").livesOnWithoutWindows();
    tray.setStayReason(StayReason::windowless);
    auto& crashed = desktop.open("Crashed");
    start();
    crashed.end();
    desktop.startLog();
    controller->quitAll(none);
    EXPECT_EQ(after(7s),
              Lines("0.00 quit Player", "0.00 quit Tray", "0.00 quitting 2", "6.00 quit Player",
                    "6.00 ended Player", "6.00 quit Tray", "6.00 event stubbornApps: Player Tray",
                    "6.00 waiting: Player Tray", "6.25 waiting: Tray"));
    EXPECT_EQ(names(controller->apps), "") << "without windows it isn't listed";
    EXPECT_EQ(controller->stayReasons->at(tray.processId()), StayReason::windowless);
    controller->leaveStubbornOpen();
    EXPECT_TRUE(controller->stayReasons->empty());
}

// A terminal's command ends, a legal notice is accepted.
TEST_F(QuitAllRun, WhatCouldNotBeAskedIsAskedOnceWhenNothingStandsInTheWayAnyMore) {
    auto& terminal = desktop.open("Terminal").hindered(StayReason::busyTerminal).ignoresAsking();
    auto& notice = desktop.open("Notice").hindered(StayReason::cannotBeAsked).ignoresAsking();
    in(20s, [&] { terminal.hindered(std::nullopt); });
    in(20700ms, [&] { terminal.hindered(StayReason::busyTerminal); });
    EXPECT_THAT(run(none, 25700ms), Not(HasSubstr("quit Terminal"))) << "between two commands";
    terminal.hindered(std::nullopt);
    notice.hindered(std::nullopt).usedAt(desktop.loop.uptime());
    EXPECT_EQ(after(29s), Lines("1.55 quit Terminal")) << "once, and what is used is left alone";
    EXPECT_EQ(after(5s), Lines("2.55 quit Notice"));
    controller->leaveStubbornOpen();
    terminal.hindered(StayReason::busyTerminal);
    controller->quitAll(none);
    after(10min + 1s);
    terminal.hindered(std::nullopt);
    EXPECT_EQ(after(1min), "") << "nobody expects it any more";
    EXPECT_EQ(controller->askAgain(controller->stubborn->front()), std::nullopt);
    EXPECT_EQ(after(0s), Lines("0.00 quit Terminal"));
    terminal.hindered(StayReason::asking);
    EXPECT_EQ(controller->askAgain(controller->stubborn->front()), StayReason::asking);
}

} // namespace
} // namespace velmorquit
