#include "Services/ControllerStory.h"

namespace velmorquit {
namespace {

using enum PowerAction;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

/// A run that is set for later, with one application open. Calls of attention are in the log.
class ScheduledQuitStory : public ControllerStory {
protected:
    void begin(bool asksFirst = false) {
        desktop.preferences.set("confirmScheduled", asksFirst);
        desktop.open("A", 5);
        start();
        calls_ = controller->hearCalls([this] { desktop.write("attention"); });
    }
    void scheduleIn(Duration time, PowerAction action = none) {
        controller->scheduleQuit(desktop.loop.now() + time, action);
    }
    static std::size_t count(const std::string& log, const std::string& text) {
        std::size_t found = 0;
        for (auto at = log.find(text); at != std::string::npos; at = log.find(text, at + 1))
            ++found;
        return found;
    }
    /// Calls of attention in that time.
    std::size_t calls(Duration time) { return count(after(time), "attention"); }
    std::string held() const { return desktop.sleepHold.reasons(); }

    static constexpr const char* scheduled = "Chiusura programmata di Velmor Quit";
    static constexpr const char* running = "Velmor Quit sta chiudendo le app";
    static constexpr auto both =
        "Chiusura programmata di Velmor Quit, Velmor Quit sta chiudendo le app";

private:
    Handle calls_;
};

constexpr auto hasBegun = [] { return HasSubstr("quit A"); };

TEST_F(ScheduledQuitStory, CallsAtTheMarksAndEveryLastSecondAndBeginsUnattended) {
    begin();
    scheduleIn(5min, restart);
    EXPECT_EQ(held(), scheduled);
    EXPECT_EQ(after(5min - 1ns), Lines("240.00 attention", "270.00 attention", "290.00 attention",
                                       "291.00 attention", "292.00 attention", "293.00 attention",
                                       "294.00 attention", "295.00 attention", "296.00 attention",
                                       "297.00 attention", "298.00 attention", "299.00 attention"));
    EXPECT_THAT(after(1ns), hasBegun());
    EXPECT_TRUE(controller->unattended.get());
    EXPECT_FALSE(controller->schedule.get());
    EXPECT_EQ(held(), running);
    EXPECT_EQ(after(1min), Lines("0.25 event quitDone 1", "0.25 done 1 5",
                                 "1.45 restart unattended", "8.25 idle"));
    EXPECT_FALSE(controller->unattended.get());
    EXPECT_EQ(held(), "");
}

TEST_F(ScheduledQuitStory, OneCallTellsWhateverHasPassedTogether) {
    for (const auto& [time, expected] :
         {std::pair<Duration, std::size_t>(20s, 11), {45s, 12}, {10s, 9}, {5500ms, 5}, {1s, 0}}) {
        begin();
        scheduleIn(time);
        const std::string log = after(time - 1ns);
        EXPECT_EQ(count(log, "attention"), expected) << time / 1ms;
        controller->cancelSchedule();
        EXPECT_THAT(log + after(1h), Not(hasBegun()));
        EXPECT_EQ(held(), "");
    }
}

TEST_F(ScheduledQuitStory, WhatHasPassedAlreadyBeginsASecondLaterWithOneCall) {
    for (const Duration past : {Duration(0s), Duration(1h)}) {
        begin();
        scheduleIn(-past);
        EXPECT_EQ(after(999ms), "");
        EXPECT_EQ(after(1min),
                  Lines("0.00 attention", "0.00 quit A", "0.00 quitting 1", "0.00 ended A",
                        "0.25 event quitDone 1", "0.25 done 1 5", "8.25 idle"));
    }
}

TEST_F(ScheduledQuitStory, AsksWhenItsMomentHasComeAndWaitsWithoutEnd) {
    begin(true);
    onEvent = [this](const Event& event) {
        if (std::holds_alternative<events::ConfirmationNeeded>(event)) {
            EXPECT_TRUE(controller->awaitingConfirmation.get() && controller->schedule.get());
            EXPECT_EQ(held(), "");
        }
    };
    scheduleIn(20s, logOut);
    controller->chooseConfirmScheduled(false);
    EXPECT_FALSE(desktop.preferences.boolean("confirmScheduled", true));
    controller->confirmScheduledQuit();
    EXPECT_TRUE(controller->schedule.get()) << "nobody was asked yet";
    const std::string log = after(24h);
    EXPECT_EQ(count(log, "event confirmationNeeded"), 1U);
    EXPECT_EQ(count(log, "attention"), 11U);
    EXPECT_THAT(log, Not(hasBegun()));
    controller->confirmScheduledQuit();
    EXPECT_FALSE(controller->unattended.get()) << "the user is there";
    EXPECT_THAT(after(1min), HasSubstr("log out\n"));
    EXPECT_FALSE(controller->awaitingConfirmation.get());
}

TEST_F(ScheduledQuitStory, IsPostponedFromItsMomentOrFromNowAndReadsTheChoiceAgain) {
    begin(true);
    scheduleIn(5min, shutDown);
    const WallTime first = controller->schedule.get()->date;
    desktop.advance(1min);
    controller->postponeSchedule(10);
    EXPECT_EQ(*controller->schedule.get(),
              (ScheduledQuit{first + 10min, shutDown, desktop.loop.now(), true}));
    after(16min);
    EXPECT_TRUE(controller->awaitingConfirmation.get());
    controller->chooseConfirmScheduled(false);
    controller->postponeSchedule(10);
    EXPECT_EQ(*controller->schedule.get(),
              (ScheduledQuit{desktop.loop.now() + 10min, shutDown, desktop.loop.now(), false}));
    EXPECT_FALSE(controller->awaitingConfirmation.get());
    EXPECT_EQ(held(), scheduled);
    const std::string log = after(10min);
    EXPECT_EQ(count(log, "attention"), 12U);
    EXPECT_THAT(log, hasBegun());
    controller->postponeSchedule(10);
    EXPECT_FALSE(controller->schedule.get());
}

TEST_F(ScheduledQuitStory, ARunInProgressIsNeverJoined) {
    for (const bool asksFirst : {true, false}) {
        begin(asksFirst);
        desktop.open("B").ignoresAsking();
        scheduleIn(3s, shutDown);
        controller->quitAll(none);
        desktop.advance(4s);
        controller->confirmScheduledQuit();
        EXPECT_FALSE(controller->schedule.get());
        EXPECT_FALSE(controller->unattended.get());
        in(1min, [this] { controller->leaveStubbornOpen(); });
        EXPECT_THAT(after(2min), Not(HasSubstr("shut down")));
    }
}

TEST_F(ScheduledQuitStory, ACallbackMayReplaceOrCancelIt) {
    begin();
    Handle further = controller->hearCalls([this] { controller->postponeSchedule(1); });
    scheduleIn(61s);
    EXPECT_EQ(calls(4min + 5s), 5U);
    further = controller->hearCalls([this] { controller->cancelSchedule(); });
    EXPECT_EQ(after(1h), Lines("56.00 attention"));
}

// Which of them the user reads is what the field says when the change is delivered.
TEST_F(ScheduledQuitStory, APostponementNeverLooksLikeACancellation) {
    begin();
    scheduleIn(1h);
    desktop.loop.settle();
    const Handle watch = controller->schedule.subscribe(
        [&] { EXPECT_TRUE(controller->schedule.get().has_value()); });
    controller->postponeSchedule(10);
    desktop.advance(10s);
}

TEST_F(ScheduledQuitStory, WhatWasSleptThroughBeginsOnlyWithinTwoMinutes) {
    begin();
    scheduleIn(1h, shutDown);
    desktop.loop.fallAsleep(1h + 120s + 1ns);
    EXPECT_EQ(after(1min), "");
    EXPECT_FALSE(controller->schedule.get());
    EXPECT_EQ(controller->scheduleNote.get(),
              "La chiusura programmata delle 10:00 non è partita: il Mac era in stop.");
    EXPECT_EQ(held(), "");

    scheduleIn(1h);
    EXPECT_FALSE(controller->scheduleNote.get());
    desktop.loop.fallAsleep(1h + 120s);
    EXPECT_THAT(after(1s), hasBegun());
}

TEST_F(ScheduledQuitStory, SleepMeansNothingToOneThatWaitsForTheUser) {
    begin(true);
    scheduleIn(5s);
    desktop.advance(6s);
    desktop.loop.fallAsleep(9h);
    desktop.advance(1min);
    EXPECT_TRUE(controller->awaitingConfirmation.get());
    EXPECT_FALSE(controller->scheduleNote.get());
}

TEST_F(ScheduledQuitStory, FollowsTheClockOnTheWallAlsoAMonthAhead) {
    begin();
    scheduleIn(31 * 24h);
    EXPECT_EQ(after(30 * 24h + 17h), "");
    desktop.loop.moveWallClock(6h + 59min + 30s);
    EXPECT_EQ(calls(1s), 1U) << "thirty seconds are left";
    desktop.loop.moveWallClock(-1h);
    const std::string log = after(1h + 28s);
    EXPECT_THAT(log, Not(hasBegun()));
    EXPECT_EQ(count(log, "attention"), 10U) << "each mark is told once";
    EXPECT_THAT(after(1s), hasBegun());
}

TEST_F(ScheduledQuitStory, ARunThatWaitsForLongLetsTheComputerSleepAndItsActionComesLate) {
    begin();
    const auto runFor = [this](Duration wait) {
        auto& stubborn = desktop.open("B").ignoresAsking();
        controller->quitAll(restart, Attendance::unattended);
        desktop.advance(6500ms + wait);
        desktop.write(held());
        stubborn.end();
        desktop.advance(300ms);
        EXPECT_TRUE(desktop.loginWindow.state->isComing()) << "said at once";
        return after(1200ms);
    };
    EXPECT_THAT(runFor(9min), AllOf(HasSubstr(running), HasSubstr(" restart unattended\n")));
    EXPECT_THAT(runFor(11min), AllOf(Not(HasSubstr(running)), HasSubstr("unattended late\n")));
    auto& stubborn = desktop.open("B").ignoresAsking();
    controller->quitAll(restart);
    desktop.advance(10s);
    desktop.loop.fallAsleep(1h);
    stubborn.end();
    EXPECT_THAT(after(5s), HasSubstr(" restart late\n"));
    controller->cancelPowerAction();
    desktop.open("C");
    controller->quitAll(restart);
    EXPECT_THAT(after(5s), HasSubstr(" restart\n")) << "the next run is another one";
}

TEST_F(ScheduledQuitStory, ARunHoldsOffSleepUntilItsEndUnlessTheUserIsAsked) {
    begin();
    auto& stubborn = desktop.open("B").ignoresAsking();
    controller->quitAll(restart);
    EXPECT_EQ(held(), running);
    desktop.advance(7s);
    EXPECT_EQ(held(), "") << "the user is to answer, and isn't there";
    scheduleIn(8h);
    stubborn.end();
    desktop.advance(500ms);
    EXPECT_EQ(held(), both);
    desktop.loginWindow.onRequest = [this] { EXPECT_EQ(held(), both) << "until others take over"; };
    EXPECT_THAT(after(1200ms), HasSubstr("restart"));
    EXPECT_EQ(held(), "");
    desktop.advance(1min);
    EXPECT_EQ(held(), scheduled) << "the session goes on";

    controller->cancelSchedule();
    desktop.open("C").ignoresAsking();
    controller->quitAll(none, Attendance::unattended);
    desktop.advance(7s);
    EXPECT_EQ(held(), running) << "nobody is there to be asked";
    controller->leaveStubbornOpen();
    EXPECT_EQ(held(), "");
}

} // namespace
} // namespace velmorquit
