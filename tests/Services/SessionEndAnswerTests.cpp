#include "Services/SessionEndTest.h"

namespace velmorquit {
namespace {

using enum LoginRequest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

TEST_F(SessionEndTest, TheUserMayPassOverExactlyWhatWasNamed) {
    SimulatedApplication& note = desktop.open("Note").ignoresAsking();
    ask(shutDown, 2s);
    EXPECT_TRUE(notice.press("anyway"));
    EXPECT_EQ(notice.shown->title, "Spegnere comunque?");
    EXPECT_EQ(after(5s), Lines("0.00 notice Note è rimasta aperta. Quello che non è salvato va "
                               "perso."))
        << "one press asks";
    SimulatedApplication& late = desktop.open("Late").ignoresAsking();
    const std::uint64_t former = end->state->list;
    desktop.advance(1s);
    EXPECT_FALSE(end->endAnyway(former)) << "that was another list";
    EXPECT_THAT(after(0s), HasSubstr("2 app sono rimaste aperte: Note, Late."));
    EXPECT_TRUE(notice.press("confirm"));
    EXPECT_EQ(after(1s), Lines("0.00 notice 2 app sono rimaste aperte: Note, Late. Quello che non "
                               "è salvato va perso."))
        << "nobody can have read that: it is shown again";
    EXPECT_TRUE(notice.press("confirm"));
    EXPECT_EQ(end->state->list, former + 1);
    desktop.open("Third").ignoresAsking();
    EXPECT_THAT(after(10s), Not(HasSubstr("CALL"))) << "the word was not given for it";
    EXPECT_TRUE(end->endAnyway(end->state->list));
    EXPECT_THAT(after(1s), HasSubstr("CALL shut down"));
    EXPECT_FALSE(note.isTerminated() || late.isTerminated());
}

TEST_F(SessionEndTest, ARefusedRequestMayBePassedOverOnlyByOneWhoAttends) {
    desktop.open("Note").ignoresAsking();
    EXPECT_THAT(ask(restart, 70s, {.attendance = Attendance::unattended}),
                HasSubstr("refused for good"));
    EXPECT_FALSE(end->endAnyway(end->state->list));
    EXPECT_FALSE(notice.press("anyway"));
    EXPECT_THAT(ask(restart, 70s), HasSubstr("refused\n"));
    EXPECT_TRUE(notice.press("anyway"));
    desktop.advance(2s);
    EXPECT_TRUE(notice.press("confirm"));
    EXPECT_THAT(after(1s), HasSubstr("CALL restart"));
    EXPECT_THAT(ask(restart, 30s), Not(HasSubstr("CALL"))) << "the word held for that once";
}

TEST_F(SessionEndTest, AQuestionGoesWithItsRequest) {
    desktop.open("Note").ignoresAsking();
    ask(shutDown, 2s);
    EXPECT_TRUE(notice.press("anyway"));
    end->cancel();
    desktop.advance(1s);
    ask(shutDown, 5s);
    EXPECT_EQ(notice.shown->title, "Sto per spegnere il computer");
    notice.onButton("confirm");
    EXPECT_THAT(after(1s), Not(HasSubstr("CALL")));
}

TEST_F(SessionEndTest, ThePanelComesOnceWhereNoNoticeCanBeAnswered) {
    endNotice->onUnanswerable = [this] { desktop.write("panel"); };
    desktop.open("Note").ignoresAsking();
    for (int requests = 1; requests <= 2; ++requests) {
        ask(shutDown, 2s);
        notice.onUnanswerable();
        notice.onUnanswerable();
        end->cancel();
        desktop.advance(1s);
        notice.onUnanswerable();
        EXPECT_EQ(desktop.log(), Lines("0.00 panel", "0.00 notice withdrawn"));
    }
}

// The buttons of what has just gone from the screen are pressed too.
TEST_F(SessionEndTest, AnAnswerThatComesTooLateIsNoOtherAnswer) {
    SimulatedApplication& note = desktop.open("Note").ignoresAsking();
    ask(shutDown, 2s);
    note.withoutWindows();
    EXPECT_EQ(after(300ms), Lines("0.25 notice ")) << "it has closed its windows and is looked at";
    EXPECT_FALSE(notice.press("anyway"));
    for (const char* late : {"anyway", "confirm"})
        notice.onButton(late);
    EXPECT_THAT(after(10s), HasSubstr("CALL")) << "it was not cancelled by that";
}

TEST_F(SessionEndTest, TheWordForOneInhibitorIsNoneForTheNext) {
    const auto hold = [this](const char* why) {
        desktop.registry.account->inhibitors = {
            {Inhibitor::Against::sessionEnd, "Files", why, 0, "Files"}};
    };
    hold("Copying notes");
    ask(logOut, 3s);
    hold("Moving 40 GB");
    EXPECT_TRUE(end->endAnyway(end->state->list));
    EXPECT_THAT(after(10s), Not(HasSubstr("CALL")));
}

TEST_F(SessionEndTest, WhatChangesAllTheTimeIsNotNamedForEver) {
    int process = 1000;
    desktop.processes.jobs = {{process, "sleep"}};
    const Handle changing =
        desktop.loop.every(1s, [&] { desktop.processes.jobs = {{++process, "sleep"}}; });
    EXPECT_THAT(ask(shutDown, 11s), HasSubstr("CALL"));
}

TEST_F(SessionEndTest, ARefusalIsForgottenWhenItsReasonHasGone) {
    SimulatedApplication& note = desktop.open("Note").ignoresAsking();
    EXPECT_THAT(ask(shutDown, 70s), HasSubstr("refused\n"));
    note.end();
    EXPECT_EQ(after(1s), Lines("0.00 ended Note", "0.00 notice withdrawn"));
    EXPECT_EQ(end->state->stage, EndState::Stage::none);
}

TEST_F(SessionEndTest, CancellingLeavesAllAsItIs) {
    desktop.open("Note").asksToSaveFor(20s);
    in(2s, [&] {
        EXPECT_TRUE(notice.press("cancel"));
        EXPECT_FALSE(end->cancel());
        EXPECT_EQ(desktop.sleepHold.reasons(), "");
    });
    EXPECT_EQ(ask(shutDown, 102s),
              Lines("0.00 quit Note", "1.00 notice Aspetto che si chiuda Note.",
                    "2.00 notice withdrawn", "20.00 ended Note"));
}

TEST_F(SessionEndTest, TheNextRequestTakesThePlaceOfOneThatWaits) {
    desktop.open("Note").asksToSaveFor(75s);
    ask(shutDown, 20s);
    EXPECT_EQ(ask(logOut, 100s),
              Lines("0.00 notice ", "0.00 quit Note", "0.00 notice Aspetto che si chiuda Note.",
                    "55.00 ended Note", "55.00 CALL log out", "55.00 notice withdrawn"))
        << "asked once more, and with all of its time";
}

TEST_F(SessionEndTest, WhatNobodyCanDoIsRefusedAndNobodyIsAsked) {
    desktop.open("Note").asksToSaveFor(3s);
    desktop.endService.missing = "nobody";
    EXPECT_EQ(end->request(shutDown, {}), "nobody");
    EXPECT_EQ(after(5s), Lines("0.00 notice Il sistema ha rifiutato o non ha risposto."));
    desktop.endService.missing.reset();
    desktop.endService.ready = false;
    in(10s, [&] {
        desktop.open("Late").asksToSaveFor(3s);
        desktop.endService.ready = true;
    });
    EXPECT_EQ(ask(restart, 17s),
              Lines("0.00 notice ", "0.00 quit Note",
                    "0.00 notice Aspetto che si chiuda Note. Il sistema non dice chi è collegato "
                    "e che cosa non va interrotto.",
                    "3.00 ended Note",
                    "3.00 notice Il sistema non dice chi è collegato e che cosa non va "
                    "interrotto.",
                    "10.00 quit Late", "10.00 notice Aspetto che si chiuda Late.",
                    "13.00 ended Late", "13.00 CALL restart", "13.00 notice withdrawn"))
        << "a new look comes first";
}

TEST_F(SessionEndTest, AFailureIsToldAndTheSystemIsNotAskedAgain) {
    desktop.endService.failure = "org.example.Denied (no)";
    desktop.endService.answerTime = 5s;
    in(1s, [&] { EXPECT_EQ(end->request(restart, {}), "chiusura della sessione già in corso"); });
    EXPECT_EQ(ask(logOut, 101s),
              Lines("0.00 CALL log out", "5.00 notice Il sistema ha rifiutato o non ha risposto."));
    EXPECT_THAT(desktop.systemLog.lines,
                ElementsAre("Velmor Quit: chiusura della sessione: org.example.Denied (no)"));
}

TEST_F(SessionEndTest, MayGoWhileItWaitsOrIsAnswered) {
    desktop.open("Note").asksToSaveFor(5s);
    desktop.registry.answerTime = 1s;
    ask(shutDown, 500ms);
    endNotice.reset();
    end.reset();
    EXPECT_THAT(after(20s), Not(HasSubstr("CALL")));
    EXPECT_FALSE(desktop.endService.onAnswered || notice.onButton);
    EXPECT_EQ(desktop.sleepHold.reasons(), "");
}

} // namespace
} // namespace velmorquit
