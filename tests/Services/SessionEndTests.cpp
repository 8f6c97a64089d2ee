#include "Services/SessionEndTest.h"

namespace velmorquit {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

TEST_F(SessionEndTest, WithNothingOpenTheSystemIsAskedOnceAndAtOnce) {
    desktop.open("Tray").withoutWindows();
    begin();
    request(LoginRequest::restart);
    desktop.advance(120s);
    EXPECT_EQ(desktop.log(), Lines("0.00 CALL restart"));
    EXPECT_TRUE(desktop.systemLog.lines.empty());
}

TEST_F(SessionEndTest, AsksAllAndWaitsForTheLast) {
    desktop.open("Note").asksToSaveFor(20s);
    desktop.open("Mail").quitsAfter(1100ms);
    request(LoginRequest::shutDown);
    EXPECT_EQ(desktop.sleepHold.reasons(), "Velmor Quit aspetta le app");
    desktop.endService.onCall = [this](auto...) { EXPECT_EQ(desktop.sleepHold.reasons(), ""); };
    desktop.advance(120s);
    EXPECT_EQ(desktop.log(),
              Lines("0.00 quit Note", "0.00 quit Mail",
                    "1.00 notice Aspetto che si chiudano 2 app: Note, Mail.", "1.10 ended Mail",
                    "1.25 notice Aspetto che si chiuda Note.", "20.00 ended Note",
                    "20.00 CALL shut down", "20.00 notice withdrawn"));
    EXPECT_THAT(desktop.systemLog.lines, ElementsAre("Velmor Quit: spegnimento: aspetto Note, Mail",
                                                     "Velmor Quit: spegnimento: aspetto Note"));
}

// Nobody would find them in a list of applications.
TEST_F(SessionEndTest, EveryWindowCountsWhoeverOwnsIt) {
    const auto hidden = desktop.windows.add({.name = "Hidden"});
    const auto remote = desktop.windows.add({.name = "xterm (elsewhere)"});
    const auto question = desktop.windows.add({.name = "Panel"}, true);
    request(LoginRequest::shutDown);
    desktop.advance(10s);
    EXPECT_EQ(desktop.log(), Lines("0.00 close Hidden", "0.00 close xterm (elsewhere)",
                                   "1.00 notice Aspetto ancora: Hidden, xterm (elsewhere), Panel "
                                   "(aspetta una tua risposta)."));
    desktop.windows.close(hidden);
    desktop.windows.close(remote);
    desktop.advance(10s);
    EXPECT_FALSE(isCalled());
    desktop.windows.close(question);
    desktop.advance(1s);
    EXPECT_TRUE(isCalled());
}

TEST_F(SessionEndTest, OneThatCannotBeAskedIsNamedAtOnce) {
    desktop.windows.add({.name = "Clock"}, false, false);
    desktop.open("Shell").cannotBeAsked();
    request(LoginRequest::shutDown);
    desktop.advance(59s);
    EXPECT_EQ(stage(), EndState::Stage::waiting);
    desktop.advance(2s);
    EXPECT_EQ(desktop.log(),
              Lines("0.00 quit Shell",
                    "0.00 notice Aspetto ancora: Shell (non si può chiederle di chiudersi), Clock "
                    "(non si può chiederle di chiudersi).",
                    "60.00 notice Non è ancora finito: Shell (non si può chiederle di chiudersi), "
                    "Clock (non si può chiederle di chiudersi)."));
    EXPECT_EQ(stage(), EndState::Stage::refused);
    EXPECT_EQ(desktop.systemLog.lines.back(), "Velmor Quit: spegnimento: rinuncio: Shell, Clock");
    EXPECT_EQ(desktop.sleepHold.reasons(), "");
}

TEST_F(SessionEndTest, OneThatOpensMeanwhileIsAskedAndHasItsTimeToo) {
    desktop.open("Note").quitsAfter(58s);
    SimulatedApplication& slow = desktop.open("Slow").livesOnWithoutWindows();
    work(slow, 100s);
    request(LoginRequest::logOut);
    desktop.advance(70s);
    EXPECT_EQ(stage(), EndState::Stage::waiting) << "of the windows, the last has gone in time";
    desktop.open("Late").quitsAfter(50s);
    desktop.advance(49s);
    EXPECT_FALSE(isCalled());
    EXPECT_EQ(stage(), EndState::Stage::waiting);
    desktop.advance(20s);
    EXPECT_TRUE(isCalled());
}

TEST_F(SessionEndTest, AQuietOneWithoutWindowsIsAskedOnceMoreAndPassedOver) {
    desktop.open("Chat").livesOnWithoutWindows();
    desktop.open("Twice").needsToBeAskedTwice();
    request(LoginRequest::shutDown);
    desktop.advance(60s);
    EXPECT_EQ(desktop.log(), Lines("0.00 quit Chat", "0.00 quit Twice", "1.00 quit Chat",
                                   "1.00 quit Twice", "1.00 ended Twice", "6.00 CALL shut down"));
}

// A window for a moment may be a question about what is being closed.
TEST_F(SessionEndTest, OneThatComesBackToItsWindowsIsAskedAnewAndIsNotPassedOver) {
    SimulatedApplication& back = desktop.open("Back").livesOnWithoutWindows();
    request(LoginRequest::shutDown);
    desktop.advance(5s);
    back.withWindows();
    desktop.advance(5s);
    EXPECT_EQ(desktop.log(),
              Lines("0.00 quit Back", "1.00 quit Back", "5.25 quit Back", "6.50 quit Back"));
    back.ignoresAsking().withWindows();
    desktop.advance(100s);
    EXPECT_EQ(stage(), EndState::Stage::refused);
}

TEST_F(SessionEndTest, AQuestionIsNotAnsweredByAskingAgain) {
    desktop.open("Draw").asksToSaveFor(30s).setStayReason(StayReason::asking);
    request(LoginRequest::shutDown);
    desktop.advance(100s);
    EXPECT_EQ(desktop.log(), Lines("1.00 notice Aspetto ancora: Draw (aspetta una tua risposta).",
                                   "60.00 notice Non è ancora finito: Draw (aspetta una tua "
                                   "risposta)."));
}

TEST_F(SessionEndTest, WhatWorksOnWithoutWindowsIsWaitedFor) {
    SimulatedApplication& files = desktop.open("Files");
    files.livesOnWithoutWindows();
    work(files, 25s);
    request(LoginRequest::shutDown);
    desktop.advance(60s);
    EXPECT_EQ(desktop.log(),
              Lines("0.00 quit Files", "1.00 quit Files",
                    "5.00 notice Aspetto ancora: Files (sta ancora lavorando).", "28.00 notice ",
                    "32.00 CALL shut down", "32.00 notice withdrawn"))
        << "until it has done nothing in a look, and then as long as any other";
}

// Each figure alone is work, and below it is not.
TEST_F(SessionEndTest, WorkIsTimeOnProcessorsOrBytesOnDisks) {
    const auto isWaitedFor = [this](int percent, std::uint64_t bytesPerSecond) {
        SimulatedApplication& one = desktop.open("One").livesOnWithoutWindows();
        desktop.processes.doing[one.processId()] = [=, this] {
            const Duration time = desktop.loop.uptime().sinceStart;
            return ProcessWork{.processorTime = time * percent / 100,
                               .written = static_cast<std::uint64_t>(time / 1s) * bytesPerSecond};
        };
        desktop.startLog();
        request(LoginRequest::logOut);
        desktop.advance(30s);
        const bool isWaiting = !isCalled();
        desktop.processes.doing.clear();
        one.end();
        desktop.advance(60s);
        return isWaiting;
    };
    EXPECT_FALSE(isWaitedFor(4, 0));
    EXPECT_TRUE(isWaitedFor(5, 0));
    EXPECT_FALSE(isWaitedFor(0, 100 << 10));
    EXPECT_TRUE(isWaitedFor(0, 128 << 10));
}

TEST_F(SessionEndTest, WorkThatDoesNotEndEndsTheRequestAfterHalfAnHour) {
    SimulatedApplication& files = desktop.open("Files").livesOnWithoutWindows();
    work(files, 3h);
    request(LoginRequest::restart);
    desktop.advance(30min - 1s);
    EXPECT_EQ(stage(), EndState::Stage::waiting);
    desktop.advance(2s);
    EXPECT_EQ(stage(), EndState::Stage::refused);
    EXPECT_THAT(notice.shown->text, HasSubstr("Files (sta ancora lavorando)"));
}

// Its windows were closed long before: it was not asked by us, and nobody knows what it holds.
TEST_F(SessionEndTest, WhatWentToTheTrayByItselfIsNamedForTenSeconds) {
    SimulatedApplication& safe = desktop.open("Safe");
    desktop.open("Asked").livesOnWithoutWindows();
    SimulatedApplication& session = desktop.open("Session");
    desktop.windows.inBackground = {session.processId()};
    for (SimulatedApplication* one : {&safe, &session}) {
        one->withoutWindows();
        desktop.windows.inTray.insert(one->processId());
    }
    desktop.processes.jobs = {{77, "rsync"}};
    desktop.advance(600s);
    desktop.startLog();
    request(LoginRequest::shutDown);
    desktop.advance(5s);
    EXPECT_EQ(stage(), EndState::Stage::naming);
    EXPECT_EQ(desktop.systemLog.lines.back(), "Velmor Quit: spegnimento: avviso di Safe, rsync");
    EXPECT_FALSE(end->state->canBeForced);
    desktop.advance(60s);
    EXPECT_EQ(desktop.log(),
              Lines("0.00 quit Asked",
                    "0.00 notice Nell'area di notifica: Safe. Comandi in corso "
                    "senza finestra: rsync.",
                    "1.00 quit Asked", "10.00 CALL shut down", "10.00 notice withdrawn"));
    desktop.startLog();
    request(LoginRequest::shutDown);
    desktop.advance(5s);
    EXPECT_TRUE(notice.press("cancel"));
    desktop.advance(60s);
    EXPECT_FALSE(isCalled());
}

TEST_F(SessionEndTest, OneThatComesLateIsAnnouncedForAMinute) {
    EXPECT_EQ(end->request(LoginRequest::shutDown, {.comesLate = true}), std::nullopt);
    desktop.advance(50s);
    EXPECT_EQ(notice.shown->text, "Entro un minuto, se non annulli.");
    desktop.loop.fallAsleep(30s);
    desktop.advance(59s);
    EXPECT_FALSE(isCalled()) << "who opens the lid needs time to see it";
    desktop.advance(2s);
    EXPECT_TRUE(isCalled());
    EXPECT_EQ(stage(), EndState::Stage::underWay);
    EXPECT_FALSE(notice.shown);
    desktop.advance(10s);
    EXPECT_EQ(stage(), EndState::Stage::none);
}

TEST_F(SessionEndTest, AfterALongSleepItDoesNotFollowAnyMore) {
    desktop.open("Note").asksToSaveFor(30s);
    request(LoginRequest::shutDown);
    desktop.advance(10s);
    desktop.loop.fallAsleep(121s);
    desktop.advance(60s);
    EXPECT_FALSE(isCalled());
    EXPECT_EQ(notice.shown->text, "Il computer è stato a lungo in stop nel frattempo.");
    EXPECT_EQ(desktop.sleepHold.reasons(), "");
}

TEST_F(SessionEndTest, AnInhibitorIsWaitedForAndShown) {
    desktop.registry.account->inhibitors = {
        {Inhibitor::Against::shutdown, "apt", "Aggiornamento in corso", 9, ""},
        {Inhibitor::Against::sleep, "film", "", 10, ""}};
    request(LoginRequest::shutDown);
    desktop.advance(100s);
    EXPECT_EQ(desktop.log(), Lines("1.00 notice Aspetto ancora: apt (Aggiornamento in corso)."));
    request(LoginRequest::logOut);
    desktop.advance(3s);
    EXPECT_THAT(desktop.log(), HasSubstr("CALL log out")) << "an upgrade outlives the session";
    desktop.startLog();
    desktop.registry.account->inhibitors.front().against = Inhibitor::Against::sessionEnd;
    request(LoginRequest::logOut);
    desktop.advance(30min + 5s);
    EXPECT_FALSE(isCalled());
    EXPECT_EQ(stage(), EndState::Stage::refused);
}

TEST_F(SessionEndTest, OneWithoutWindowsThatHoldsSleepOffIsAtWork) {
    for (const bool isPortal : {false, true}) {
        SimulatedApplication& files =
            desktop.open("Files").identified("org.example.Files").livesOnWithoutWindows();
        Inhibitor copy{Inhibitor::Against::sleep, "Files", "Copia di 3 file", files.processId(),
                       ""};
        if (isPortal) {
            copy.process = 0;
            copy.application = "org.example.Files";
        }
        desktop.registry.account->inhibitors = {copy};
        desktop.startLog();
        request(LoginRequest::logOut);
        desktop.advance(20s);
        EXPECT_THAT(notice.shown->text, HasSubstr("Files (sta ancora lavorando: Copia di 3 file)"));
        desktop.registry.account->inhibitors.clear();
        desktop.advance(10s);
        EXPECT_TRUE(isCalled());
        files.end();
    }
}

TEST_F(SessionEndTest, OtherPeoplesSessionsRefuseBeforeAnybodyIsAsked) {
    desktop.open("Note");
    desktop.registry.account->otherUsers = {"anna"};
    request(LoginRequest::shutDown);
    desktop.advance(100s);
    EXPECT_EQ(desktop.log(), Lines("0.00 notice anna è ancora al lavoro su questo computer."));
    EXPECT_FALSE(end->state->canBeForced);
    desktop.registry.account = SessionAccount{.hasSecondSession = true};
    request(LoginRequest::restart);
    desktop.advance(100s);
    EXPECT_EQ(notice.shown->text, "Hai un'altra sessione aperta su questo computer.");
    request(LoginRequest::logOut);
    desktop.advance(100s);
    EXPECT_THAT(desktop.log(), HasSubstr("CALL log out")) << "they stay as they are";
}

TEST_F(SessionEndTest, AnAccountThatNobodyGivesIsWaitedFor) {
    desktop.registry.account.reset();
    request(LoginRequest::shutDown);
    desktop.advance(30s);
    EXPECT_FALSE(isCalled());
    desktop.registry.account = SessionAccount{};
    desktop.advance(3s);
    EXPECT_TRUE(isCalled());
    desktop.startLog();
    desktop.registry.account.reset();
    request(LoginRequest::shutDown);
    desktop.advance(70s);
    EXPECT_EQ(stage(), EndState::Stage::refused);
    EXPECT_FALSE(end->state->canBeForced);
}

TEST_F(SessionEndTest, WhatIsNotSeenIsNeverEndedDirectly) {
    desktop.workspace.seen = Sight::anotherDisplay;
    EXPECT_EQ(end->outlook(LoginRequest::shutDown), EndOutlook::asks);
    request(LoginRequest::shutDown);
    desktop.advance(20s);
    EXPECT_EQ(desktop.log(), Lines("0.00 ASK TO shut down"));

    const auto refuses = [this](const std::string& why, Attendance attendance) {
        desktop.open("Note");
        desktop.startLog();
        request(LoginRequest::shutDown, attendance);
        desktop.advance(20s);
        EXPECT_THAT(desktop.log(), Not(HasSubstr("ASK")));
        EXPECT_THAT(desktop.log(), Not(HasSubstr("quit"))) << "for nothing";
        EXPECT_EQ(stage(), EndState::Stage::refused);
        EXPECT_FALSE(end->state->canBeForced) << "nobody can say over what";
        EXPECT_THAT(notice.shown->text, HasSubstr(why));
    };
    refuses("non so se qualcuno è al computer", Attendance::unattended);
    desktop.input.since = 121s;
    refuses("non so se qualcuno è al computer", Attendance::attended);
    desktop.input.since.reset();
    refuses("non so se qualcuno è al computer", Attendance::attended);
    desktop.input.since = 1s;
    desktop.endService.cannotAsk = "nobody";
    EXPECT_EQ(end->outlook(LoginRequest::logOut), EndOutlook::refused);
    refuses("nessun programma può chiederti conferma", Attendance::attended);
}

TEST_F(SessionEndTest, AWindowManagerMayBeReplacedMeanwhile) {
    desktop.workspace.seen = Sight::noWindowList;
    desktop.endService.cannotAsk = "nobody";
    request(LoginRequest::shutDown);
    desktop.advance(2s);
    desktop.open("Note").quitsAfter(1s);
    desktop.workspace.seen = Sight::all;
    desktop.advance(1600ms);
    desktop.open("Late").quitsAfter(10ms);
    desktop.advance(10s);
    EXPECT_THAT(desktop.log(), HasSubstr("3.75 quit Late\n")) << "windows are listed one by one";
    EXPECT_THAT(desktop.log(), HasSubstr("4.25 CALL shut down\n"));
}

} // namespace
} // namespace velmorquit
