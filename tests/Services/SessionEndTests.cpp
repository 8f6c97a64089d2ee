#include "Services/SessionEnd/EndNotice.h"
#include "Services/SessionEnd/SessionEnd.h"
#include "Simulated/SimulatedDesktop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

namespace velmorquit {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class SessionEndTest : public testing::Test {
protected:
    SessionEndTest() { begin(); }

    /// The program begins anew, and so knows nothing of who had windows before.
    void begin() {
        endNotice.reset();
        end.reset();
        end = std::make_unique<SessionEnd>(SessionEnd::Surroundings{
            desktop.loop, desktop.systemLog, desktop.workspace, desktop.windows, desktop.processes,
            desktop.registry, desktop.input, desktop.sleepHold, desktop.endService});
        endNotice = std::make_unique<EndNotice>(desktop.loop, *end, notice);
    }

    void request(LoginRequest request, Attendance attendance = Attendance::attended) {
        EXPECT_EQ(end->request(request, {.attendance = attendance}), std::nullopt);
        EXPECT_THAT(desktop.log(), Not(HasSubstr("CALL"))) << "called within the request";
    }
    [[nodiscard]] bool isCalled() const {
        return desktop.log().find("CALL") != std::string::npos ||
               desktop.log().find("ASK TO") != std::string::npos;
    }
    [[nodiscard]] EndState::Stage stage() const { return end->state->stage; }

    /// A process that is busy for so long from now on.
    void work(const SimulatedApplication& application, Duration time) {
        const Uptime begin = desktop.loop.uptime();
        desktop.processes.doing[application.processId()] = [this, begin, time] {
            return ProcessWork{.processorTime =
                                   std::min(desktop.loop.uptime() - begin, time) * 3 / 10};
        };
    }

    SimulatedDesktop desktop;
    SimulatedNotice notice{[this](std::string_view what) { desktop.write(what); }};
    std::unique_ptr<SessionEnd> end;
    std::unique_ptr<EndNotice> endNotice;
};

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

TEST_F(SessionEndTest, TheUserMayPassOverExactlyWhatWasNamed) {
    SimulatedApplication& note = desktop.open("Note").ignoresAsking();
    request(LoginRequest::shutDown);
    desktop.advance(2s);
    EXPECT_TRUE(notice.press("anyway"));
    EXPECT_EQ(notice.shown->title, "Spegnere comunque?");
    EXPECT_EQ(notice.shown->text, "Note è rimasta aperta. Quello che non è salvato va perso.");
    desktop.advance(5s);
    EXPECT_FALSE(isCalled()) << "one press asks";
    SimulatedApplication& late = desktop.open("Late").ignoresAsking();
    const std::uint64_t former = end->state->list;
    desktop.advance(1s);
    EXPECT_FALSE(end->endAnyway(former)) << "that was another list";
    EXPECT_THAT(notice.shown->text, HasSubstr("2 app sono rimaste aperte: Note, Late."));
    EXPECT_TRUE(notice.press("confirm"));
    desktop.advance(1s);
    EXPECT_FALSE(isCalled()) << "nobody can have read that";
    EXPECT_TRUE(notice.press("confirm"));
    EXPECT_EQ(end->state->list, former + 1);
    desktop.open("Third").ignoresAsking();
    desktop.advance(10s);
    EXPECT_FALSE(isCalled()) << "the word was not given for it";
    EXPECT_TRUE(end->endAnyway(end->state->list));
    desktop.advance(1s);
    EXPECT_TRUE(isCalled());
    EXPECT_FALSE(note.isTerminated() || late.isTerminated());
}

TEST_F(SessionEndTest, ARefusedRequestMayBePassedOverOnlyByOneWhoAttends) {
    desktop.open("Note").ignoresAsking();
    request(LoginRequest::restart, Attendance::unattended);
    desktop.advance(70s);
    EXPECT_EQ(stage(), EndState::Stage::refused);
    EXPECT_FALSE(end->endAnyway(end->state->list));
    EXPECT_FALSE(notice.press("anyway"));
    request(LoginRequest::restart);
    desktop.advance(70s);
    EXPECT_TRUE(notice.press("anyway"));
    desktop.advance(2s);
    EXPECT_TRUE(notice.press("confirm"));
    desktop.advance(1s);
    EXPECT_THAT(desktop.log(), HasSubstr("CALL restart"));
    desktop.startLog();
    request(LoginRequest::restart);
    desktop.advance(30s);
    EXPECT_EQ(stage(), EndState::Stage::waiting) << "the word held for that once";
}

// The buttons of what has just gone from the screen are pressed too.
TEST_F(SessionEndTest, AnAnswerThatComesTooLateIsNoOtherAnswer) {
    SimulatedApplication& note = desktop.open("Note").ignoresAsking();
    request(LoginRequest::shutDown);
    desktop.advance(2s);
    note.withoutWindows();
    desktop.advance(300ms);
    EXPECT_EQ(notice.shown->text, "") << "it has closed its windows and is looked at";
    EXPECT_FALSE(notice.press("anyway"));
    for (const char* late : {"anyway", "confirm"})
        notice.onButton(late);
    desktop.advance(10s);
    EXPECT_TRUE(isCalled()) << "it was not cancelled by that";
}

TEST_F(SessionEndTest, TheWordForOneInhibitorIsNoneForTheNext) {
    const auto hold = [this](const char* why) {
        desktop.registry.account->inhibitors = {
            {Inhibitor::Against::sessionEnd, "Files", why, 0, "Files"}};
    };
    hold("Copying notes");
    request(LoginRequest::logOut);
    desktop.advance(3s);
    hold("Moving 40 GB");
    EXPECT_TRUE(end->endAnyway(end->state->list));
    desktop.advance(10s);
    EXPECT_FALSE(isCalled());
}

TEST_F(SessionEndTest, WhatChangesAllTheTimeIsNotNamedForEver) {
    int process = 1000;
    desktop.processes.jobs = {{process, "sleep"}};
    const Handle changing =
        desktop.loop.every(1s, [&] { desktop.processes.jobs = {{++process, "sleep"}}; });
    request(LoginRequest::shutDown);
    desktop.advance(11s);
    EXPECT_TRUE(isCalled());
}

TEST_F(SessionEndTest, ARefusalIsForgottenWhenItsReasonHasGone) {
    SimulatedApplication& note = desktop.open("Note").ignoresAsking();
    request(LoginRequest::shutDown);
    desktop.advance(70s);
    EXPECT_EQ(stage(), EndState::Stage::refused);
    note.end();
    desktop.advance(1s);
    EXPECT_EQ(stage(), EndState::Stage::none);
    EXPECT_FALSE(notice.shown);
    EXPECT_FALSE(isCalled());
}

TEST_F(SessionEndTest, CancellingLeavesAllAsItIs) {
    desktop.open("Note").asksToSaveFor(20s);
    request(LoginRequest::shutDown);
    desktop.advance(2s);
    EXPECT_TRUE(notice.press("cancel"));
    EXPECT_FALSE(end->cancel());
    EXPECT_EQ(desktop.sleepHold.reasons(), "");
    desktop.advance(100s);
    EXPECT_EQ(desktop.log(), Lines("0.00 quit Note", "1.00 notice Aspetto che si chiuda Note.",
                                   "2.00 notice withdrawn", "20.00 ended Note"));
}

TEST_F(SessionEndTest, TheNextRequestTakesThePlaceOfOneThatWaits) {
    desktop.open("Note").asksToSaveFor(75s);
    request(LoginRequest::shutDown);
    desktop.advance(20s);
    desktop.startLog();
    request(LoginRequest::logOut);
    desktop.advance(100s);
    EXPECT_THAT(desktop.log(), HasSubstr("0.00 quit Note\n")) << "asked once more";
    EXPECT_THAT(desktop.log(), HasSubstr("55.00 CALL log out\n")) << "with all of its time";
    EXPECT_THAT(desktop.log(), Not(HasSubstr("shut down")));
}

TEST_F(SessionEndTest, WhatNobodyCanDoIsRefusedAndNobodyIsAsked) {
    desktop.open("Note").asksToSaveFor(3s);
    desktop.endService.missing = "nobody";
    EXPECT_EQ(end->request(LoginRequest::shutDown, {}), "nobody");
    desktop.advance(5s);
    EXPECT_EQ(desktop.log(), Lines("0.00 notice Il sistema ha rifiutato o non ha risposto."));
    desktop.endService.missing.reset();
    desktop.endService.ready = false;
    request(LoginRequest::restart);
    desktop.advance(10s);
    EXPECT_FALSE(isCalled()) << "nobody knows yet who is there";
    desktop.open("Late").asksToSaveFor(3s);
    desktop.endService.ready = true;
    desktop.advance(2s);
    EXPECT_FALSE(isCalled()) << "a new look comes first";
    desktop.advance(5s);
    EXPECT_TRUE(isCalled());
}

TEST_F(SessionEndTest, AFailureIsToldAndTheSystemIsNotAskedAgain) {
    desktop.endService.failure = "org.example.Denied (no)";
    desktop.endService.answerTime = 5s;
    request(LoginRequest::logOut);
    desktop.advance(1s);
    EXPECT_EQ(end->request(LoginRequest::restart, {}), "chiusura della sessione già in corso");
    desktop.advance(100s);
    EXPECT_EQ(desktop.log(),
              Lines("0.00 CALL log out", "5.00 notice Il sistema ha rifiutato o non ha risposto."));
    EXPECT_THAT(desktop.systemLog.lines,
                ElementsAre("Velmor Quit: chiusura della sessione: org.example.Denied (no)"));
}

TEST_F(SessionEndTest, MayGoWhileItWaitsOrIsAnswered) {
    desktop.open("Note").asksToSaveFor(5s);
    desktop.registry.answerTime = 1s;
    request(LoginRequest::shutDown);
    desktop.advance(500ms);
    endNotice.reset();
    end.reset();
    desktop.advance(20s);
    EXPECT_FALSE(isCalled());
    EXPECT_FALSE(desktop.endService.onAnswered || notice.onButton);
    EXPECT_EQ(desktop.sleepHold.reasons(), "");
}

} // namespace
} // namespace velmorquit
