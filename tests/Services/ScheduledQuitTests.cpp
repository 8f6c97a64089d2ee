#include "Services/ControllerStory.h"

namespace velmorquit {
namespace {

/// A run that is set for later, with one application open. Calls of attention are in the log.
class ScheduledQuitStory : public ControllerStory {
protected:
    void begin(bool asksFirst = false) {
        desktop.preferences.set("confirmScheduled", asksFirst);
        desktop.open("A", 5);
        start();
        calls_ = controller->hearCalls([this] { desktop.write("attention"); });
    }
    void scheduleIn(Duration time, PowerAction action = PowerAction::none) {
        controller->scheduleQuit(desktop.loop.now() + time, action);
    }
    std::size_t calls() const { return count("attention"); }
    bool hasBegun() const { return count("quit A") > 0; }
    std::size_t count(const std::string& text) const {
        const std::string log = desktop.log();
        std::size_t found = 0;
        for (auto at = log.find(text); at != std::string::npos; at = log.find(text, at + 1))
            ++found;
        return found;
    }
    std::string held() const { return desktop.sleepHold.reasons(); }

    static constexpr const char* scheduled = "Chiusura programmata di Velmor Quit";
    static constexpr const char* running = "Velmor Quit sta chiudendo le app";

private:
    Handle calls_;
};

TEST_F(ScheduledQuitStory, CallsAtTheMarksAndEveryLastSecondAndBeginsUnattended) {
    begin();
    scheduleIn(5min, PowerAction::restart);
    EXPECT_EQ(held(), scheduled);
    desktop.advance(5min - 1ns);
    EXPECT_EQ(desktop.log(), Lines("240.00 attention", "270.00 attention", "290.00 attention",
                                   "291.00 attention", "292.00 attention", "293.00 attention",
                                   "294.00 attention", "295.00 attention", "296.00 attention",
                                   "297.00 attention", "298.00 attention", "299.00 attention"));
    desktop.advance(1ns);
    EXPECT_TRUE(hasBegun());
    EXPECT_TRUE(controller->unattended.get());
    EXPECT_FALSE(controller->schedule.get());
    EXPECT_EQ(held(), running);
    desktop.advance(1min);
    EXPECT_EQ(calls(), 12U);
    EXPECT_EQ(count("restart"), 1U);
    EXPECT_FALSE(controller->unattended.get());
    EXPECT_EQ(held(), "");
}

TEST_F(ScheduledQuitStory, OneCallTellsWhateverHasPassedTogether) {
    for (const auto& [time, expected] :
         {std::pair<Duration, std::size_t>(20s, 11), {45s, 12}, {10s, 9}, {5500ms, 5}, {1s, 0}}) {
        begin();
        scheduleIn(time);
        desktop.advance(time - 1ns);
        EXPECT_EQ(calls(), expected) << time / 1ms;
        EXPECT_FALSE(hasBegun());
        controller->cancelSchedule();
        desktop.advance(1h);
        EXPECT_FALSE(hasBegun());
        EXPECT_EQ(held(), "");
    }
}

TEST_F(ScheduledQuitStory, WhatHasPassedAlreadyBeginsASecondLaterWithOneCall) {
    for (const Duration past : {Duration(0s), Duration(1h)}) {
        begin();
        scheduleIn(-past);
        desktop.advance(999ms);
        EXPECT_FALSE(hasBegun());
        desktop.advance(1ms);
        EXPECT_TRUE(hasBegun());
        EXPECT_EQ(calls(), 1U);
        desktop.advance(1min);
    }
}

TEST_F(ScheduledQuitStory, AsksWhenItsMomentHasComeAndWaitsWithoutEnd) {
    begin(true);
    onEvent = [this](const Event& event) {
        if (std::holds_alternative<events::ConfirmationNeeded>(event)) {
            EXPECT_TRUE(controller->awaitingConfirmation.get());
            EXPECT_TRUE(controller->schedule.get());
            EXPECT_EQ(held(), "");
        }
    };
    scheduleIn(20s, PowerAction::logOut);
    controller->chooseConfirmScheduled(false);
    EXPECT_FALSE(desktop.preferences.boolean("confirmScheduled", true));
    controller->confirmScheduledQuit();
    EXPECT_TRUE(controller->schedule.get()) << "nobody was asked yet";
    desktop.advance(24h);
    EXPECT_EQ(count("event confirmationNeeded"), 1U);
    EXPECT_EQ(calls(), 11U);
    EXPECT_FALSE(hasBegun());
    controller->confirmScheduledQuit();
    EXPECT_FALSE(controller->unattended.get()) << "the user is there";
    desktop.advance(1min);
    EXPECT_EQ(count("log out"), 1U);
    EXPECT_FALSE(controller->awaitingConfirmation.get());
}

TEST_F(ScheduledQuitStory, IsPostponedFromItsMomentOrFromNowAndReadsTheChoiceAgain) {
    begin(true);
    scheduleIn(5min, PowerAction::shutDown);
    const WallTime first = controller->schedule.get()->date;
    desktop.advance(1min);
    controller->postponeSchedule(10);
    EXPECT_EQ(*controller->schedule.get(),
              (ScheduledQuit{first + 10min, PowerAction::shutDown, desktop.loop.now(), true}));
    desktop.advance(16min);
    EXPECT_TRUE(controller->awaitingConfirmation.get());
    controller->chooseConfirmScheduled(false);
    controller->postponeSchedule(10);
    EXPECT_EQ(*controller->schedule.get(),
              (ScheduledQuit{desktop.loop.now() + 10min, PowerAction::shutDown, desktop.loop.now(),
                             false}));
    EXPECT_FALSE(controller->awaitingConfirmation.get());
    EXPECT_EQ(held(), scheduled);
    desktop.startLog();
    desktop.advance(10min);
    EXPECT_EQ(calls(), 12U);
    EXPECT_TRUE(hasBegun());
    controller->postponeSchedule(10);
    EXPECT_FALSE(controller->schedule.get());
}

TEST_F(ScheduledQuitStory, ARunInProgressIsNeverJoined) {
    for (const bool asksFirst : {true, false}) {
        begin(asksFirst);
        desktop.open("B").ignoresAsking();
        scheduleIn(3s, PowerAction::shutDown);
        controller->quitAll(PowerAction::none);
        desktop.advance(4s);
        controller->confirmScheduledQuit();
        EXPECT_FALSE(controller->schedule.get());
        EXPECT_FALSE(controller->unattended.get());
        desktop.advance(1min);
        controller->leaveStubbornOpen();
        desktop.advance(1min);
        EXPECT_EQ(count("shut down"), 0U);
    }
}

TEST_F(ScheduledQuitStory, ACallbackMayReplaceOrCancelIt) {
    begin();
    Handle further = controller->hearCalls([this] { controller->postponeSchedule(1); });
    scheduleIn(61s);
    desktop.advance(4min + 5s);
    EXPECT_EQ(calls(), 5U);
    further = controller->hearCalls([this] { controller->cancelSchedule(); });
    desktop.advance(1h);
    EXPECT_FALSE(controller->schedule.get());
    EXPECT_FALSE(hasBegun());
}

// Which of them the user reads is what the field says when the change is delivered.
TEST_F(ScheduledQuitStory, APostponementNeverLooksLikeACancellation) {
    begin();
    scheduleIn(1h);
    desktop.loop.settle();
    bool wasThere = true;
    const Handle watch = controller->schedule.subscribe(
        [&] { wasThere = wasThere && controller->schedule.get().has_value(); });
    controller->postponeSchedule(10);
    desktop.advance(10s);
    EXPECT_TRUE(wasThere);
}

TEST_F(ScheduledQuitStory, WhatWasSleptThroughBeginsOnlyWithinTwoMinutes) {
    begin();
    const WallTime date = desktop.loop.now() + 1h;
    controller->scheduleQuit(date, PowerAction::shutDown);
    desktop.loop.fallAsleep(1h + 120s + 1ns);
    desktop.advance(1min);
    EXPECT_FALSE(hasBegun());
    EXPECT_FALSE(controller->schedule.get());
    EXPECT_EQ(controller->scheduleNote.get(), "La chiusura programmata delle " +
                                                  desktop.formats.shortTime(date) +
                                                  " non è partita: il Mac era in stop.");
    EXPECT_EQ(held(), "");

    scheduleIn(1h);
    EXPECT_FALSE(controller->scheduleNote.get());
    desktop.loop.fallAsleep(1h + 120s);
    desktop.advance(1s);
    EXPECT_TRUE(hasBegun());
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

TEST_F(ScheduledQuitStory, FollowsTheClockOnTheWall) {
    begin();
    scheduleIn(8h);
    desktop.advance(1h);
    desktop.loop.moveWallClock(6h + 59min + 30s);
    desktop.advance(1s);
    EXPECT_EQ(calls(), 1U) << "thirty seconds are left";
    desktop.loop.moveWallClock(-1h);
    desktop.advance(1h + 28s);
    EXPECT_FALSE(hasBegun());
    EXPECT_EQ(calls(), 11U) << "each mark is told once";
    desktop.advance(1s);
    EXPECT_TRUE(hasBegun());
}

TEST_F(ScheduledQuitStory, MayBeAMonthAhead) {
    begin();
    scheduleIn(31 * 24h);
    desktop.advance(31 * 24h - 1s);
    EXPECT_FALSE(hasBegun());
    desktop.advance(1s);
    EXPECT_TRUE(hasBegun());
}

TEST_F(ScheduledQuitStory, ARunThatWaitsForLongLetsTheComputerSleepAndItsActionComesLate) {
    begin();
    const auto runFor = [this](Duration wait) {
        auto& stubborn = desktop.open("B").ignoresAsking();
        controller->quitAll(PowerAction::restart);
        controller->unattended = true;
        desktop.advance(6500ms + wait);
        const std::string heldThen = held();
        stubborn.end();
        desktop.advance(300ms);
        EXPECT_TRUE(desktop.loginWindow.state->isComing()) << "said at once";
        desktop.advance(1200ms);
        return heldThen;
    };
    EXPECT_EQ(runFor(9min), running);
    EXPECT_EQ(count("restart unattended late"), 0U);
    EXPECT_EQ(runFor(11min), "");
    EXPECT_EQ(count("restart unattended late"), 1U);
    auto& stubborn = desktop.open("B").ignoresAsking();
    controller->quitAll(PowerAction::restart);
    desktop.advance(10s);
    desktop.loop.fallAsleep(1h);
    stubborn.end();
    desktop.advance(5s);
    EXPECT_EQ(count("restart late"), 1U);
    controller->cancelPowerAction();
    desktop.open("C");
    controller->quitAll(PowerAction::restart);
    desktop.advance(5s);
    EXPECT_EQ(count("restart late"), 1U) << "the next run is another one";
}

TEST_F(ScheduledQuitStory, ARunHoldsOffSleepUntilItsEndUnlessTheUserIsAsked) {
    begin();
    auto& stubborn = desktop.open("B").ignoresAsking();
    controller->quitAll(PowerAction::restart);
    EXPECT_EQ(held(), running);
    desktop.advance(7s);
    EXPECT_EQ(held(), "") << "the user is to answer, and isn't there";
    scheduleIn(8h);
    stubborn.end();
    desktop.advance(500ms);
    EXPECT_EQ(held(), std::string(scheduled) + ", " + running);
    desktop.loginWindow.onRequest = [this] {
        EXPECT_EQ(held(), std::string(scheduled) + ", " + running) << "until others take over";
    };
    desktop.advance(1200ms);
    EXPECT_EQ(count("restart"), 1U);
    EXPECT_EQ(held(), "");
    desktop.advance(1min);
    EXPECT_EQ(held(), scheduled) << "the session goes on";

    controller->cancelSchedule();
    desktop.open("C").ignoresAsking();
    controller->quitAll(PowerAction::none);
    controller->unattended = true;
    desktop.advance(7s);
    EXPECT_EQ(held(), running) << "nobody is there to be asked";
    controller->leaveStubbornOpen();
    EXPECT_EQ(held(), "");
}

} // namespace
} // namespace velmorquit
