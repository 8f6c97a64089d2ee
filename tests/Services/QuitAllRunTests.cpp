#include "Services/ControllerStory.h"

namespace velmorquit {
namespace {

using QuitAllRun = ControllerStory;

TEST_F(QuitAllRun, AllQuitInTimeLargestAskedFirst) {
    desktop.open("Note", 300).quitsAfter(900ms);
    desktop.open("Mail", 500).quitsAfter(300ms);
    start().quitAll(PowerAction::none);
    desktop.advance(20s);
    EXPECT_EQ(desktop.log(),
              Lines("0.00 quit Mail", "0.00 quit Note", "0.00 quitting 2", "0.30 ended Mail",
                    "0.90 ended Note", "1.00 event quitDone 2", "1.00 done 2 800", "9.00 idle"));
}

TEST_F(QuitAllRun, AnUnsavedDocumentIsWaitedForAndTheRunGoesOnByItself) {
    desktop.open("Note", 300).asksToSaveFor(20s);
    desktop.open("Mail", 200).quitsAfter(7100ms);
    start().quitAll(PowerAction::restart);
    desktop.advance(7s);
    EXPECT_EQ(names(controller->stubborn), "Note Mail");
    desktop.advance(1s);
    EXPECT_EQ(names(controller->stubborn), "Note");
    desktop.advance(30s);
    EXPECT_EQ(names(controller->stubborn), "");
    EXPECT_EQ(desktop.log(), Lines("0.00 quit Note", "0.00 quit Mail", "0.00 quitting 2",
                                   "6.00 event stubbornApps: Note Mail", "6.00 waiting",
                                   "7.10 ended Mail", "20.00 ended Note", "20.00 event quitDone 2",
                                   "20.00 done 2 500", "21.20 restart", "28.00 idle"));
}

TEST_F(QuitAllRun, OneThatQuitsExactlyAtTheDeadlineIsNotStubborn) {
    desktop.open("Note").quitsAfter(6s);
    start().quitAll(PowerAction::none);
    desktop.advance(6s);
    EXPECT_EQ(desktop.log(), Lines("0.00 quit Note", "0.00 quitting 1", "6.00 ended Note",
                                   "6.00 event quitDone 1", "6.00 done 1 0"));
}

TEST_F(QuitAllRun, StubbornOnesAreForcedAndWhatTheSystemProtectsStays) {
    desktop.open("Deaf", 20).ignoresAsking().endsWhenForcedAfter(2s);
    desktop.open("Root", 10).cannotBeAsked().cannotBeForced();
    start().quitAll(PowerAction::none);
    EXPECT_TRUE(controller->forceQuitStubborn().empty());
    desktop.advance(7s);
    desktop.startLog();
    EXPECT_EQ(controller->forceQuitStubborn(), std::vector<std::string>{"Root"});
    desktop.advance(60s);
    EXPECT_EQ(desktop.log(), Lines("0.00 force Deaf", "0.00 force Root", "2.00 ended Deaf"));
    EXPECT_EQ(names(controller->stubborn), "Root");
    EXPECT_TRUE(is<phases::Waiting>(controller->phase));
}

TEST_F(QuitAllRun, OneThatWasExcludedWhileItIsStubbornIsNotForced) {
    desktop.open("Keep").ignoresAsking();
    desktop.open("Deaf").ignoresAsking();
    start().quitAll(PowerAction::none);
    desktop.advance(7s);
    controller->toggleExclusion(app("Keep"));
    desktop.startLog();
    EXPECT_TRUE(controller->forceQuitStubborn().empty());
    desktop.advance(1s);
    EXPECT_EQ(desktop.log(), Lines("0.00 force Deaf", "0.00 ended Deaf"));
}

TEST_F(QuitAllRun, LeavingThemOpenEndsTheRunWithWhatHasGoneSinceTheLastPoll) {
    desktop.open("A", 1).quitsAfter(1s);
    desktop.open("B", 2).quitsAfter(6100ms);
    desktop.open("C", 4).ignoresAsking();
    start().quitAll(PowerAction::shutDown);
    desktop.advance(6200ms);
    EXPECT_EQ(names(controller->stubborn), "C B");
    controller->leaveStubbornOpen();
    EXPECT_EQ(names(controller->stubborn), "");
    EXPECT_EQ(names(controller->apps), "C");
    desktop.advance(60s);
    EXPECT_EQ(desktop.log(), Lines("0.00 quit C", "0.00 quit B", "0.00 quit A", "0.00 quitting 3",
                                   "1.00 ended A", "6.00 event stubbornApps: C B", "6.00 waiting",
                                   "6.10 ended B", "6.20 done 2 3", "14.20 idle"));
    EXPECT_TRUE(desktop.systemLog.lines.empty()) << "no power action was left over";
}

TEST_F(QuitAllRun, LeavingIsPossibleInTheGracePeriodAndMeansNothingOutsideARun) {
    desktop.open("A").quitsAfter(2s);
    start().leaveStubbornOpen();
    controller->quitAll(PowerAction::none);
    desktop.advance(1s);
    controller->leaveStubbornOpen();
    desktop.advance(2s);
    controller->leaveStubbornOpen();
    desktop.advance(60s);
    EXPECT_EQ(desktop.log(), Lines("0.00 quit A", "0.00 quitting 1", "1.00 done 0 0",
                                   "2.00 ended A", "9.00 idle"));
}

TEST_F(QuitAllRun, LeavingInTheTurnInWhichTheLastOneWentShowsThatRunsResult) {
    desktop.open("A", 7).quitsAfter(250ms);
    start().quitAll(PowerAction::shutDown);
    Handle race;
    // Armed after the poll's first sleep, due at the same instant: it runs between the end of the
    // run and the first step of what follows.
    const Handle arming = desktop.loop.after(
        1ms, [&] { race = desktop.loop.after(249ms, [&] { controller->leaveStubbornOpen(); }); });
    desktop.advance(1s);
    EXPECT_EQ(desktop.log(),
              Lines("0.00 quit A", "0.00 quitting 1", "0.25 ended A", "0.25 done 1 7"));
    EXPECT_TRUE(desktop.systemLog.lines.empty());
}

TEST_F(QuitAllRun, NothingToQuitStillGoesThroughTheStepsThatFollow) {
    desktop.open("Files").identified("files");
    desktop.preferences.set("excludedApps", Value::Array{"files"});
    start().quitAll(PowerAction::restart);
    EXPECT_TRUE(is<phases::Idle>(controller->phase));
    controller->quitAll(PowerAction::none);
    desktop.advance(1s);
    desktop.advance(1s);
    EXPECT_EQ(desktop.log(), Lines("0.00 done 0 0", "1.20 restart"))
        << "the first request's own action, once";
}

TEST_F(QuitAllRun, ASecondRequestIsIgnoredWhileARunIsInProgress) {
    desktop.open("A").ignoresAsking();
    start().quitAll(PowerAction::none);
    desktop.advance(3s);
    controller->quitAll(PowerAction::shutDown);
    desktop.advance(4s);
    controller->quitAll(PowerAction::shutDown);
    EXPECT_EQ(desktop.log(), Lines("0.00 quit A", "0.00 quitting 1", "6.00 event stubbornApps: A",
                                   "6.00 waiting"));
    EXPECT_EQ(controller->afterQuit.get(), PowerAction::none);
}

TEST_F(QuitAllRun, ANewRunReplacesAResultOnShowAndItsReset) {
    desktop.open("A").quitsAfter(100ms);
    start().quitAll(PowerAction::none);
    desktop.advance(4s);
    desktop.open("B").ignoresAsking();
    desktop.startLog();
    controller->quitAll(PowerAction::none);
    desktop.advance(5s);
    EXPECT_EQ(desktop.log(), Lines("0.00 quit B", "0.00 quitting 1"));
    controller->leaveStubbornOpen();
    desktop.advance(7s);
    EXPECT_TRUE(is<phases::Done>(controller->phase)) << "the new result has its own 8 seconds";
    desktop.advance(1s);
    EXPECT_TRUE(is<phases::Idle>(controller->phase));
}

TEST_F(QuitAllRun, ACallbackMayLeaveThemAtTheVeryMomentTheyTurnStubborn) {
    desktop.open("A").ignoresAsking();
    onEvent = [this](const Event&) { controller->leaveStubbornOpen(); };
    start().quitAll(PowerAction::shutDown);
    desktop.advance(7s);
    EXPECT_EQ(desktop.log(), Lines("0.00 quit A", "0.00 quitting 1", "6.00 event stubbornApps: A",
                                   "6.00 done 0 0"));
}

TEST_F(QuitAllRun, ACallbackMayLeaveThemAndStartTheNextRun) {
    desktop.open("A").ignoresAsking();
    int rounds = 0;
    onEvent = [&](const Event&) {
        if (++rounds > 1)
            return;
        controller->leaveStubbornOpen();
        controller->quitAll(PowerAction::none);
    };
    start().quitAll(PowerAction::none);
    desktop.advance(13s);
    EXPECT_EQ(desktop.log(),
              Lines("0.00 quit A", "0.00 quitting 1", "6.00 event stubbornApps: A", "6.00 quit A",
                    "6.00 quitting 1", "12.00 event stubbornApps: A", "12.00 waiting"));
    EXPECT_EQ(names(controller->stubborn), "A");
}

TEST_F(QuitAllRun, ACallbackMayStartTheNextRunWhenOneIsDone) {
    desktop.open("A").quitsAfter(100ms);
    onEvent = [this](const Event&) {
        desktop.open("B").quitsAfter(100ms);
        onEvent = nullptr;
        controller->quitAll(PowerAction::none);
    };
    start().quitAll(PowerAction::none);
    desktop.advance(1s);
    EXPECT_EQ(desktop.log(), Lines("0.00 quit A", "0.00 quitting 1", "0.10 ended A",
                                   "0.25 event quitDone 1", "0.25 quit B", "0.25 quitting 1",
                                   "0.35 ended B", "0.50 event quitDone 1", "0.50 done 1 0"));
}

TEST_F(QuitAllRun, OneThatLivesOnWithoutWindowsOrDiedBeforehandIsToldByItsProcess) {
    desktop.open("Tray").livesOnWithoutWindows();
    auto& crashed = desktop.open("Crashed", 5);
    start();
    crashed.end();
    controller->quitAll(PowerAction::none);
    desktop.advance(6s);
    EXPECT_EQ(names(controller->stubborn), "Tray");
    EXPECT_EQ(names(controller->apps), "") << "without windows it isn't listed";
}

TEST_F(QuitAllRun, OneThatGoesOnWithoutWindowsIsAskedOnceMoreInTheWayThatIsLeft) {
    desktop.open("Player").needsToBeAskedTwice();
    auto& tray = desktop.open("Tray").livesOnWithoutWindows();
    tray.setStayReason(StayReason::windowless);
    start().quitAll(PowerAction::none);
    desktop.advance(7s);
    EXPECT_EQ(desktop.log(), Lines("0.00 quit Player", "0.00 quit Tray", "0.00 quitting 2",
                                   "6.00 quit Player", "6.00 ended Player", "6.00 quit Tray",
                                   "6.00 event stubbornApps: Player Tray", "6.00 waiting"));
    EXPECT_EQ(names(controller->stubborn), "Tray");
    EXPECT_EQ(controller->stayReasons->at(tray.processId()), StayReason::windowless);
    controller->leaveStubbornOpen();
    EXPECT_TRUE(controller->stayReasons->empty());
}

// A terminal's command ends, a legal notice is accepted.
TEST_F(QuitAllRun, WhatCouldNotBeAskedIsAskedOnceWhenNothingStandsInTheWayAnyMore) {
    auto& terminal = desktop.open("Terminal").hindered(StayReason::busyTerminal).ignoresAsking();
    auto& notice = desktop.open("Notice").hindered(StayReason::cannotBeAsked).ignoresAsking();
    start().quitAll(PowerAction::none);
    desktop.advance(20s);
    terminal.hindered(std::nullopt);
    desktop.advance(700ms);
    terminal.hindered(StayReason::busyTerminal);
    desktop.advance(5s);
    EXPECT_EQ(desktop.log().find("quit Terminal"), std::string::npos) << "between two commands";
    desktop.startLog();
    terminal.hindered(std::nullopt);
    notice.hindered(std::nullopt).usedAt(desktop.loop.uptime());
    desktop.advance(29s);
    EXPECT_EQ(desktop.log(), Lines("1.55 quit Terminal")) << "once, and what is used is left alone";
    desktop.advance(5s);
    EXPECT_NE(desktop.log().find("quit Notice"), std::string::npos);
    controller->leaveStubbornOpen();
    terminal.hindered(StayReason::busyTerminal);
    controller->quitAll(PowerAction::none);
    desktop.advance(10min + 1s);
    desktop.startLog();
    terminal.hindered(std::nullopt);
    desktop.advance(1min);
    EXPECT_EQ(desktop.log(), "") << "nobody expects it any more";
    EXPECT_EQ(controller->askAgain(controller->stubborn->front()), std::nullopt);
    EXPECT_NE(desktop.log().find("quit "), std::string::npos);
    terminal.hindered(StayReason::asking);
    EXPECT_EQ(controller->askAgain(controller->stubborn->front()), StayReason::asking);
}

TEST_F(QuitAllRun, OneThatOpensMeanwhileIsNoTarget) {
    desktop.open("A").quitsAfter(1s);
    start().quitAll(PowerAction::none);
    desktop.advance(500ms);
    desktop.open("Late").ignoresAsking();
    desktop.advance(600ms);
    EXPECT_EQ(std::get<phases::Done>(controller->phase.get()).closed, 1);
    EXPECT_EQ(names(controller->apps), "Late");
}

TEST_F(QuitAllRun, AClockThatIsCorrectedStretchesNoGracePeriod) {
    desktop.open("A").ignoresAsking();
    start().quitAll(PowerAction::none);
    desktop.advance(1s);
    desktop.loop.moveWallClock(-1h);
    desktop.advance(5s);
    EXPECT_TRUE(is<phases::Waiting>(controller->phase));
}

TEST_F(QuitAllRun, AControllerMayGoAtAnyPointOfARun) {
    desktop.open("A").ignoresAsking();
    for (const Duration moment : {Duration(0s), Duration(100ms), Duration(7s)}) {
        start().quitAll(PowerAction::none);
        desktop.advance(moment);
        controller.reset();
        desktop.advance(20s);
    }
    start().quitAll(PowerAction::none);
    desktop.advance(10s);
    EXPECT_EQ(names(controller->stubborn), "A");
}

} // namespace
} // namespace velmorquit
