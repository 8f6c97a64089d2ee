#include "Linux/Session/SessionEnd.h"
#include "Simulated/SimulatedDesktop.h"

#include <gtest/gtest.h>

#include <memory>

namespace velmorquit {
namespace {

constexpr ProcessId ownProcess = 1;

const char* word(LoginRequest request) {
    switch (request) {
    case LoginRequest::shutDown:
        return "shutDown";
    case LoginRequest::restart:
        return "restart";
    case LoginRequest::logOut:
        break;
    }
    return "logOut";
}

class LoggedService final : public EndService {
public:
    explicit LoggedService(SimulatedDesktop& desktop) : desktop_(desktop) {}

    [[nodiscard]] std::optional<std::string> obstacle(LoginRequest, EndForm) const override {
        return missing;
    }
    [[nodiscard]] bool isReady() const override { return true; }
    void carryOut(LoginRequest request, EndForm) override {
        desktop_.write(std::string("CALL ") + word(request));
        answering_ = desktop_.loop.after(answerTime, [this] { onAnswered(failure); });
    }

    std::optional<std::string> missing;
    std::optional<std::string> failure;
    Duration answerTime = 10ms;

private:
    SimulatedDesktop& desktop_;
    Handle answering_;
};

class LoggedNotice final : public EndNotice {
public:
    explicit LoggedNotice(SimulatedDesktop& desktop) : desktop_(desktop) {}

    void showWaiting(LoginRequest, const std::vector<std::string>& names) override {
        show("waits for", names);
    }
    void showGivenUp(LoginRequest, const std::vector<std::string>& names) override {
        show("gives up on", names);
    }
    void showFailure(LoginRequest) override { show("failed", {}); }
    void withdraw() override {
        if (std::exchange(isShown, false))
            desktop_.write("notice withdrawn");
    }

    bool isShown = false;

private:
    void show(std::string text, const std::vector<std::string>& names) {
        for (const std::string& name : names)
            text += ' ' + name;
        desktop_.write("notice " + text);
        isShown = true;
    }

    SimulatedDesktop& desktop_;
};

class SessionEndTest : public testing::Test {
protected:
    void request(LoginRequest request) {
        EXPECT_EQ(end->request(request), std::nullopt);
        EXPECT_EQ(desktop.log().find("CALL"), std::string::npos) << "called within the request";
    }

    SimulatedDesktop desktop;
    LoggedService service{desktop};
    LoggedNotice notice{desktop};
    std::unique_ptr<SessionEnd> end = std::make_unique<SessionEnd>(SessionEnd::Surroundings{
        desktop.loop, desktop.systemLog, desktop.workspace, service, notice, ownProcess});
};

TEST_F(SessionEndTest, WithNothingOpenTheSystemIsAskedOnceAndAtOnce) {
    desktop.open("Tray").withoutWindows();
    request(LoginRequest::restart);
    desktop.advance(120s);
    EXPECT_EQ(desktop.log(), Lines("0.00 CALL restart"));
    EXPECT_TRUE(desktop.systemLog.lines.empty());
}

TEST_F(SessionEndTest, AsksAllAndWaitsForTheLast) {
    desktop.open("Note").asksToSaveFor(20s);
    desktop.open("Mail").quitsAfter(1100ms);
    request(LoginRequest::shutDown);
    desktop.advance(120s);
    EXPECT_EQ(desktop.log(),
              Lines("0.00 quit Note", "0.00 quit Mail", "1.00 notice waits for Note Mail",
                    "1.10 ended Mail", "1.25 notice waits for Note", "20.00 ended Note",
                    "20.00 notice withdrawn", "20.00 CALL shutDown"));
}

TEST_F(SessionEndTest, WhatClosesQuicklyIsNotWorthANotice) {
    desktop.open("Mail").quitsAfter(60ms);
    request(LoginRequest::logOut);
    desktop.advance(5s);
    EXPECT_EQ(desktop.log(), Lines("0.00 quit Mail", "0.06 ended Mail", "0.25 CALL logOut"));
}

TEST_F(SessionEndTest, OneThatStaysOpenEndsTheRequestAndNotTheSession) {
    desktop.open("Note").ignoresAsking();
    desktop.open("Root").cannotBeAsked().withoutName().identified("root");
    request(LoginRequest::shutDown);
    desktop.advance(59s);
    EXPECT_TRUE(desktop.systemLog.lines.empty());
    desktop.advance(600s);
    EXPECT_EQ(desktop.log(),
              Lines("0.00 quit Note", "0.00 quit Root", "1.00 notice waits for Note root",
                    "60.00 notice gives up on Note root"));
    EXPECT_EQ(
        desktop.systemLog.lines,
        std::vector<std::string>{"Velmor Quit: spegnimento: rinuncio, restano aperte Note, root"});
}

TEST_F(SessionEndTest, AfterGivingUpTheNextRequestAsksAgain) {
    SimulatedApplication& note = desktop.open("Note").ignoresAsking();
    request(LoginRequest::shutDown);
    desktop.advance(70s);
    note.quitsAfter(100ms);
    desktop.startLog();
    request(LoginRequest::shutDown);
    desktop.advance(70s);
    EXPECT_EQ(desktop.log(), Lines("0.00 notice withdrawn", "0.00 quit Note", "0.10 ended Note",
                                   "0.25 CALL shutDown"));
}

TEST_F(SessionEndTest, OneThatOpensMeanwhileIsAskedAsWell) {
    desktop.open("Note").quitsAfter(2s);
    request(LoginRequest::logOut);
    desktop.advance(1800ms);
    desktop.open("Late").quitsAfter(3s);
    desktop.advance(20s);
    EXPECT_EQ(desktop.log(),
              Lines("0.00 quit Note", "1.00 notice waits for Note", "2.00 ended Note",
                    "2.00 quit Late", "2.00 notice waits for Late", "5.00 ended Late",
                    "5.00 notice withdrawn", "5.00 CALL logOut"));
}

TEST_F(SessionEndTest, OneWithoutWindowsIsAskedAgainAndMayThenStay) {
    desktop.open("Chat").livesOnWithoutWindows();
    desktop.open("Twice").needsToBeAskedTwice();
    request(LoginRequest::shutDown);
    desktop.advance(60s);
    EXPECT_EQ(desktop.log(), Lines("0.00 quit Chat", "0.00 quit Twice", "1.25 quit Chat",
                                   "1.25 quit Twice", "1.25 ended Twice", "6.25 CALL shutDown"));
}

// A window for a moment may be a question about what is being closed.
TEST_F(SessionEndTest, OneThatComesBackToItsWindowsIsAskedAnewAndIsNotPassedOver) {
    SimulatedApplication& brief = desktop.open("Brief").livesOnWithoutWindows();
    SimulatedApplication& back = desktop.open("Back").livesOnWithoutWindows();
    request(LoginRequest::shutDown);
    desktop.advance(600ms);
    brief.withWindows();
    desktop.advance(6s);
    back.withWindows();
    desktop.advance(4s);
    EXPECT_EQ(desktop.log(),
              Lines("0.00 quit Brief", "0.00 quit Back", "1.00 notice waits for Brief",
                    "1.25 quit Back", "6.75 quit Back", "6.75 notice waits for Brief Back",
                    "7.00 notice waits for Brief", "8.00 quit Back"));
    desktop.advance(100s);
    EXPECT_NE(desktop.log().find("60.00 notice gives up on Brief\n"), std::string::npos);
}

TEST_F(SessionEndTest, AQuestionWithoutAnyOtherWindowHoldsTheEndUp) {
    SimulatedApplication& draw = desktop.open("Draw").livesOnWithoutWindows();
    request(LoginRequest::shutDown);
    desktop.advance(600ms);
    draw.setStayReason(StayReason::asking);
    desktop.advance(20s);
    draw.setStayReason(StayReason::notResponding);
    desktop.advance(5s);
    EXPECT_EQ(desktop.log(), Lines("0.00 quit Draw", "1.00 notice waits for Draw"));
    draw.setStayReason(StayReason::windowless);
    desktop.advance(20s);
    EXPECT_EQ(desktop.log(),
              Lines("0.00 quit Draw", "1.00 notice waits for Draw", "26.75 quit Draw",
                    "31.75 notice withdrawn", "31.75 CALL shutDown"));
}

TEST_F(SessionEndTest, AQuestionThatNobodyAnswersEndsTheRequest) {
    desktop.open("Draw").withoutWindows().setStayReason(StayReason::asking);
    desktop.open("Panel").withoutWindows().setStayReason(StayReason::notResponding);
    request(LoginRequest::shutDown);
    desktop.advance(100s);
    EXPECT_EQ(desktop.log(), Lines("1.00 notice waits for Draw", "60.00 notice gives up on Draw"));
}

TEST_F(SessionEndTest, WhatHasClosedItsWindowsAtTheLastMomentStillHasItsTime) {
    SimulatedApplication& note = desktop.open("Note").ignoresAsking();
    request(LoginRequest::restart);
    desktop.advance(59s);
    note.withoutWindows();
    desktop.advance(20s);
    EXPECT_EQ(desktop.log(),
              Lines("0.00 quit Note", "1.00 notice waits for Note", "60.25 quit Note",
                    "65.25 notice withdrawn", "65.25 CALL restart"));
}

TEST_F(SessionEndTest, CancellingLeavesAllAsItIs) {
    desktop.open("Note").asksToSaveFor(20s);
    request(LoginRequest::shutDown);
    desktop.advance(2s);
    end->cancel();
    desktop.advance(100s);
    EXPECT_EQ(desktop.log(), Lines("0.00 quit Note", "1.00 notice waits for Note",
                                   "2.00 notice withdrawn", "20.00 ended Note"));
    end->cancel();
    EXPECT_TRUE(desktop.systemLog.lines.empty());
}

TEST_F(SessionEndTest, TheUserCancelsInTheNotice) {
    desktop.open("Note").asksToSaveFor(20s);
    request(LoginRequest::shutDown);
    desktop.advance(2s);
    notice.onCancel();
    desktop.advance(100s);
    EXPECT_EQ(desktop.log().find("CALL"), std::string::npos);
    EXPECT_FALSE(notice.isShown);
}

TEST_F(SessionEndTest, TheNextRequestTakesThePlaceOfOneThatWaits) {
    desktop.open("Question").asksToSaveFor(30s).setStayReason(StayReason::asking);
    desktop.open("Note").asksToSaveFor(75s);
    request(LoginRequest::shutDown);
    desktop.advance(20s);
    desktop.startLog();
    request(LoginRequest::logOut);
    desktop.advance(100s);
    EXPECT_EQ(desktop.log(), Lines("0.00 notice withdrawn", "0.00 quit Note",
                                   "1.00 notice waits for Question Note", "10.00 ended Question",
                                   "10.00 notice waits for Note", "55.00 ended Note",
                                   "55.00 notice withdrawn", "55.00 CALL logOut"))
        << "with all of its time, and without troubling those that wait for an answer";
}

TEST_F(SessionEndTest, WhatNobodyCanDoIsRefusedAndNobodyIsAsked) {
    desktop.open("Note").asksToSaveFor(3s);
    service.missing = "nobody";
    EXPECT_EQ(end->request(LoginRequest::shutDown), "nobody");
    desktop.advance(5s);
    EXPECT_EQ(desktop.log(), "");
    service.missing.reset();
    request(LoginRequest::restart);
    service.missing = "nobody";
    EXPECT_EQ(end->request(LoginRequest::shutDown), "nobody");
    desktop.advance(5s);
    EXPECT_NE(desktop.log().find("8.00 CALL restart"), std::string::npos)
        << "the one that waits goes on\n"
        << desktop.log();
}

TEST_F(SessionEndTest, AFailureIsToldAndTheSystemIsNotAskedAgain) {
    service.failure = "org.example.Denied (no)";
    request(LoginRequest::logOut);
    desktop.advance(100s);
    EXPECT_EQ(desktop.log(), Lines("0.00 CALL logOut", "0.01 notice failed"));
    EXPECT_EQ(
        desktop.systemLog.lines,
        std::vector<std::string>{"Velmor Quit: chiusura della sessione: org.example.Denied (no)"});
}

TEST_F(SessionEndTest, WhileTheSystemIsAskedNothingElseIs) {
    service.answerTime = 10s;
    request(LoginRequest::shutDown);
    desktop.advance(1s);
    EXPECT_EQ(end->request(LoginRequest::restart), "spegnimento già in corso");
    end->cancel();
    desktop.advance(10s);
    EXPECT_EQ(desktop.log(), Lines("0.00 CALL shutDown"));
    desktop.startLog();
    request(LoginRequest::restart);
    desktop.advance(1s);
    EXPECT_EQ(desktop.log(), Lines("0.00 CALL restart"));
}

TEST_F(SessionEndTest, MayGoWhileItWaitsOrIsAnswered) {
    desktop.open("Note").asksToSaveFor(5s);
    request(LoginRequest::shutDown);
    desktop.advance(2s);
    end.reset();
    desktop.advance(20s);
    EXPECT_EQ(desktop.log().find("CALL"), std::string::npos);
    EXPECT_FALSE(notice.isShown);
    EXPECT_FALSE(service.onAnswered || notice.onCancel);
}

TEST_F(SessionEndTest, TheProgramsOwnWindowsAreNotAsked) {
    const ProcessId first = desktop.open("Velmor Quit").processId();
    end = nullptr;
    end = std::make_unique<SessionEnd>(SessionEnd::Surroundings{
        desktop.loop, desktop.systemLog, desktop.workspace, service, notice, first});
    request(LoginRequest::shutDown);
    desktop.advance(5s);
    EXPECT_EQ(desktop.log(), Lines("0.00 CALL shutDown"));
}

} // namespace
} // namespace velmorquit
