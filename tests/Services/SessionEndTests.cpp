#include "Services/SessionEndTest.h"

#include <tuple>

namespace velmorquit {
namespace {

using enum LoginRequest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

TEST_F(SessionEndTest, WithNothingOpenTheSystemIsAskedOnceAndAtOnce) {
    desktop.open("Tray").withoutWindows();
    begin();
    EXPECT_EQ(ask(restart, 120s), Lines("0.00 CALL restart"));
    EXPECT_TRUE(desktop.systemLog.lines.empty());
}

TEST_F(SessionEndTest, AsksAllAndWaitsForTheLast) {
    desktop.open("Note").asksToSaveFor(20s);
    desktop.open("Mail").quitsAfter(1100ms);
    desktop.endService.onCall = [this](auto...) { EXPECT_EQ(desktop.sleepHold.reasons(), ""); };
    request(shutDown);
    EXPECT_EQ(desktop.sleepHold.reasons(), "Velmor Quit aspetta le app");
    EXPECT_EQ(after(120s),
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
    in(10s, [&] { desktop.windows.close(hidden), desktop.windows.close(remote); });
    in(20s, [&] { desktop.windows.close(question); });
    EXPECT_EQ(ask(shutDown, 30s),
              Lines("0.00 close Hidden", "0.00 close xterm (elsewhere)",
                    "1.00 notice Aspetto ancora: Hidden, xterm (elsewhere), Panel (aspetta una tua "
                    "risposta).",
                    "10.00 notice Aspetto ancora: Panel (aspetta una tua risposta).",
                    "20.00 CALL shut down", "20.00 notice withdrawn"));
}

TEST_F(SessionEndTest, OneThatCannotBeAskedIsNamedAtOnce) {
    desktop.windows.add({.name = "Clock"}, false, false);
    desktop.open("Shell").cannotBeAsked();
    EXPECT_EQ(ask(shutDown, 61s),
              Lines("0.00 quit Shell",
                    "0.00 notice Aspetto ancora: Shell (non si può chiederle di chiudersi), Clock "
                    "(non si può chiederle di chiudersi).",
                    "60.00 notice Non è ancora finito: Shell (non si può chiederle di chiudersi), "
                    "Clock (non si può chiederle di chiudersi).",
                    "60.00 refused"));
    EXPECT_EQ(desktop.systemLog.lines.back(), "Velmor Quit: spegnimento: rinuncio: Shell, Clock");
    EXPECT_EQ(desktop.sleepHold.reasons(), "");
}

TEST_F(SessionEndTest, OneThatOpensMeanwhileIsAskedAndHasItsTimeToo) {
    desktop.open("Note").quitsAfter(58s);
    work(desktop.open("Slow").livesOnWithoutWindows(), 100s);
    in(70s, [&] { desktop.open("Late").quitsAfter(50s); });
    EXPECT_EQ(
        ask(logOut, 140s),
        Lines("0.00 quit Note", "0.00 quit Slow", "1.00 notice Aspetto che si chiuda Note.",
              "1.25 quit Slow", "4.00 notice Aspetto ancora: Note, Slow (sta ancora lavorando).",
              "58.00 ended Note", "58.00 notice Aspetto ancora: Slow (sta ancora lavorando).",
              "70.00 quit Late", "70.00 notice Aspetto ancora: Late, Slow (sta ancora lavorando).",
              "102.00 notice Aspetto che si chiuda Late.", "120.00 ended Late",
              "120.00 CALL log out", "120.00 notice withdrawn"));
}

TEST_F(SessionEndTest, AQuietOneWithoutWindowsIsAskedOnceMoreAndPassedOver) {
    desktop.open("Chat").livesOnWithoutWindows();
    desktop.open("Twice").needsToBeAskedTwice();
    EXPECT_EQ(ask(shutDown, 60s),
              Lines("0.00 quit Chat", "0.00 quit Twice", "1.00 quit Chat", "1.00 quit Twice",
                    "1.00 ended Twice", "6.00 CALL shut down"));
}

// A window for a moment may be a question about what is being closed.
TEST_F(SessionEndTest, OneThatComesBackToItsWindowsIsAskedAnewAndIsNotPassedOver) {
    SimulatedApplication& back = desktop.open("Back").livesOnWithoutWindows();
    in(5s, [&] { back.withWindows(); });
    EXPECT_EQ(ask(shutDown, 10s),
              Lines("0.00 quit Back", "1.00 quit Back", "5.00 quit Back", "6.25 quit Back"));
    back.ignoresAsking().withWindows();
    EXPECT_THAT(after(100s), HasSubstr(" refused\n"));
}

TEST_F(SessionEndTest, AQuestionIsNotAnsweredByAskingAgain) {
    desktop.open("Draw").asksToSaveFor(30s).setStayReason(StayReason::asking);
    EXPECT_EQ(ask(shutDown, 100s),
              Lines("1.00 notice Aspetto ancora: Draw (aspetta una tua risposta).",
                    "60.00 notice Non è ancora finito: Draw (aspetta una tua risposta).",
                    "60.00 refused"));
}

TEST_F(SessionEndTest, WhatWorksOnWithoutWindowsIsWaitedForUntilItIsStillOrForHalfAnHour) {
    const SimulatedApplication& files = desktop.open("Files").livesOnWithoutWindows();
    work(files, 25s);
    EXPECT_EQ(ask(shutDown, 60s),
              Lines("0.00 quit Files", "1.00 quit Files",
                    "5.00 notice Aspetto ancora: Files (sta ancora lavorando).", "28.00 notice ",
                    "32.00 CALL shut down", "32.00 notice withdrawn"))
        << "until it has done nothing in a look, and then as long as any other";
    work(files, 3h);
    EXPECT_THAT(ask(restart, 30min + 2s), HasSubstr("1800.00 refused\n"));
    EXPECT_THAT(notice.shown->text, HasSubstr("Files (sta ancora lavorando)"));
}

// Each figure alone is work, and below it is not.
TEST_F(SessionEndTest, WorkIsTimeOnProcessorsOrBytesOnDisks) {
    for (const auto& [percent, bytesPerSecond, isWaitedFor] :
         {std::tuple(4, 0U, false), {5, 0U, true}, {0, 100U << 10, false}, {0, 128U << 10, true}}) {
        SimulatedApplication& one = desktop.open("One").livesOnWithoutWindows();
        desktop.processes.doing[one.processId()] = [=, this] {
            const Duration time = desktop.loop.uptime().sinceStart;
            return ProcessWork{.processorTime = time * percent / 100,
                               .written = static_cast<std::uint64_t>(time / 1s) * bytesPerSecond};
        };
        EXPECT_EQ(ask(logOut, 30s).find("CALL") == std::string::npos, isWaitedFor) << percent;
        desktop.processes.doing.clear();
        one.end();
        desktop.advance(60s);
    }
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
    in(5s, [&] { EXPECT_FALSE(end->state->canBeForced); });
    EXPECT_EQ(ask(shutDown, 65s),
              Lines("0.00 quit Asked",
                    "0.00 notice Nell'area di notifica: Safe. Comandi in corso "
                    "senza finestra: rsync.",
                    "1.00 quit Asked", "10.00 CALL shut down", "10.00 notice withdrawn"));
    EXPECT_EQ(desktop.systemLog.lines.back(), "Velmor Quit: spegnimento: avviso di Safe, rsync");
    in(5s, [&] { EXPECT_TRUE(notice.press("cancel")); });
    EXPECT_THAT(ask(shutDown, 60s), Not(HasSubstr("CALL")));
}

TEST_F(SessionEndTest, OneThatComesLateIsAnnouncedForAMinute) {
    in(50s, [&] { desktop.loop.fallAsleep(30s); });
    EXPECT_EQ(ask(shutDown, 120s, {.comesLate = true}),
              Lines("0.00 notice Entro un minuto, se non annulli.", "110.00 CALL shut down",
                    "110.00 notice withdrawn"))
        << "who opens the lid needs time to see it";
    EXPECT_EQ(end->state->stage, EndState::Stage::none);
}

TEST_F(SessionEndTest, AfterALongSleepItDoesNotFollowAnyMore) {
    desktop.open("Note").asksToSaveFor(30s);
    in(10s, [&] { desktop.loop.fallAsleep(121s); });
    EXPECT_THAT(ask(shutDown, 70s), Not(HasSubstr("CALL")));
    EXPECT_EQ(notice.shown->text, "Il computer è stato a lungo in stop nel frattempo.");
    EXPECT_EQ(desktop.sleepHold.reasons(), "");
}

TEST_F(SessionEndTest, AnInhibitorIsWaitedForAndShown) {
    auto& inhibitors = desktop.registry.account->inhibitors;
    inhibitors = {{Inhibitor::Against::shutdown, "apt", "Aggiornamento in corso", 9, ""},
                  {Inhibitor::Against::sleep, "film", "", 10, ""}};
    EXPECT_EQ(ask(shutDown, 100s),
              Lines("1.00 notice Aspetto ancora: apt (Aggiornamento in corso)."));
    EXPECT_THAT(ask(logOut, 3s), HasSubstr("CALL log out")) << "an upgrade outlives the session";
    inhibitors.front().against = Inhibitor::Against::sessionEnd;
    EXPECT_EQ(ask(logOut, 30min + 5s),
              Lines("1.00 notice Aspetto ancora: apt (Aggiornamento in corso).",
                    "1800.00 notice Non è ancora finito: apt (Aggiornamento in corso).",
                    "1800.00 refused"));
}

TEST_F(SessionEndTest, OneWithoutWindowsThatHoldsSleepOffIsAtWork) {
    for (const bool isPortal : {false, true}) {
        SimulatedApplication& files =
            desktop.open("Files").identified("org.example.Files").livesOnWithoutWindows();
        desktop.registry.account->inhibitors = {
            {Inhibitor::Against::sleep, "Files", "Copia di 3 file",
             isPortal ? 0 : files.processId(), isPortal ? "org.example.Files" : ""}};
        ask(logOut, 20s);
        EXPECT_THAT(notice.shown->text, HasSubstr("Files (sta ancora lavorando: Copia di 3 file)"));
        desktop.registry.account->inhibitors.clear();
        EXPECT_THAT(after(10s), HasSubstr("CALL log out"));
        files.end();
    }
}

TEST_F(SessionEndTest, OtherPeoplesSessionsRefuseBeforeAnybodyIsAsked) {
    desktop.open("Note");
    desktop.registry.account->otherUsers = {"anna"};
    EXPECT_EQ(ask(shutDown, 100s), Lines("0.00 notice anna è ancora al lavoro su questo computer.",
                                         "0.00 refused for good"));
    desktop.registry.account = SessionAccount{.hasSecondSession = true};
    EXPECT_EQ(ask(restart, 100s),
              Lines("0.00 notice ", "0.00 notice Hai un'altra sessione aperta su questo computer.",
                    "0.00 refused for good"));
    EXPECT_THAT(ask(logOut, 100s), HasSubstr("CALL log out")) << "they stay as they are";
}

TEST_F(SessionEndTest, AnAccountThatNobodyGivesIsWaitedFor) {
    desktop.registry.account.reset();
    in(30s, [&] { desktop.registry.account = SessionAccount{}; });
    EXPECT_EQ(ask(shutDown, 33s), Lines("1.00 notice Il sistema non dice chi è collegato e che "
                                        "cosa non va interrotto.",
                                        "30.00 CALL shut down", "30.00 notice withdrawn"));
    desktop.registry.account.reset();
    EXPECT_EQ(
        ask(shutDown, 70s),
        Lines("1.00 notice Il sistema non dice chi è collegato e che cosa non va interrotto.",
              "60.00 notice Il sistema non dice chi è collegato e che cosa non va interrotto.",
              "60.00 refused for good"));
}

TEST_F(SessionEndTest, WhatIsNotSeenIsNeverEndedDirectly) {
    desktop.workspace.seen = Sight::anotherDisplay;
    EXPECT_EQ(end->outlook(shutDown), EndOutlook::asks);
    EXPECT_EQ(ask(shutDown, 20s), Lines("0.00 ASK TO shut down"));

    desktop.open("Note");
    const auto refuses = [this](const char* why, Attendance attendance) {
        const std::string log = ask(shutDown, 20s, {.attendance = attendance});
        EXPECT_THAT(log, HasSubstr(" refused for good\n")) << "nobody can say over what";
        EXPECT_THAT(log, HasSubstr(why));
        EXPECT_THAT(log, Not(HasSubstr("ASK")));
        EXPECT_THAT(log, Not(HasSubstr("quit"))) << "for nothing";
    };
    refuses("non so se qualcuno è al computer", Attendance::unattended);
    for (const auto& since : {std::optional<Duration>(121s), std::optional<Duration>()}) {
        desktop.input.since = since;
        refuses("non so se qualcuno è al computer", Attendance::attended);
    }
    desktop.input.since = 1s;
    desktop.endService.cannotAsk = "nobody";
    EXPECT_EQ(end->outlook(logOut), EndOutlook::refused);
    refuses("nessun programma può chiederti conferma", Attendance::attended);
}

TEST_F(SessionEndTest, AWindowManagerMayBeReplacedMeanwhile) {
    desktop.workspace.seen = Sight::noWindowList;
    desktop.endService.cannotAsk = "nobody";
    in(2s, [&] {
        desktop.open("Note").quitsAfter(1s);
        desktop.workspace.seen = Sight::all;
    });
    in(3600ms, [&] { desktop.open("Late").quitsAfter(10ms); });
    EXPECT_EQ(ask(shutDown, 13s),
              Lines("2.00 quit Note", "3.00 ended Note", "3.00 notice Aspetto che si chiuda Note.",
                    "3.00 notice ", "3.75 quit Late", "3.75 notice Aspetto che si chiuda Late.",
                    "3.76 ended Late", "4.00 CALL shut down", "4.00 notice withdrawn"))
        << "windows are listed one by one";
}

} // namespace
} // namespace velmorquit
