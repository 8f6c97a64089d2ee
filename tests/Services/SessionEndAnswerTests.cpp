#include "Services/SessionEndTest.h"

namespace velmorquit {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

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
    EXPECT_THAT(desktop.log(), HasSubstr("8.00 notice 2 app sono rimaste aperte")) << "shown again";
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

TEST_F(SessionEndTest, AQuestionGoesWithItsRequest) {
    desktop.open("Note").ignoresAsking();
    request(LoginRequest::shutDown);
    desktop.advance(2s);
    EXPECT_TRUE(notice.press("anyway"));
    end->cancel();
    desktop.advance(1s);
    request(LoginRequest::shutDown);
    desktop.advance(5s);
    EXPECT_EQ(notice.shown->title, "Sto per spegnere il computer");
    notice.onButton("confirm");
    desktop.advance(1s);
    EXPECT_FALSE(isCalled());
}

TEST_F(SessionEndTest, ThePanelComesOnceWhereNoNoticeCanBeAnswered) {
    int panels = 0;
    endNotice->onUnanswerable = [&] { ++panels; };
    desktop.open("Note").ignoresAsking();
    for (int requests = 1; requests <= 2; ++requests) {
        request(LoginRequest::shutDown);
        desktop.advance(2s);
        notice.onUnanswerable();
        notice.onUnanswerable();
        EXPECT_EQ(panels, requests);
        end->cancel();
        desktop.advance(1s);
        notice.onUnanswerable();
        EXPECT_EQ(panels, requests) << "there is nothing to answer";
    }
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
