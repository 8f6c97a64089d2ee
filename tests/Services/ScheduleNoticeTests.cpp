#include "Services/ControllerStory.h"
#include "Services/ScheduleNotice.h"

namespace velmorquit {
namespace {

using enum PowerAction;
using testing::HasSubstr;

class ScheduleNoticeStory : public ControllerStory {
protected:
    void begin(Duration time, PowerAction action, bool asksFirst = true) {
        desktop.preferences.set("confirmScheduled", asksFirst);
        start();
        told = std::make_unique<ScheduleNotice>(*controller, notice, desktop.formats);
        desktop.loop.settle();
        controller->scheduleQuit(desktop.loop.now() + time, action);
    }

    SimulatedNotice notice{[this](std::string_view what) { desktop.write(what); }};
    std::unique_ptr<ScheduleNotice> told;
};

TEST_F(ScheduleNoticeStory, CountsDownThenAsksAndGoesWhenItIsAnswered) {
    desktop.open("A");
    begin(31s, shutDown);
    EXPECT_EQ(after(20s), Lines("1.00 notice Tra 30 secondi: Chiudi e spegni"));
    EXPECT_EQ(notice.shown->title, "Chiusura programmata alle 09:00");
    EXPECT_FALSE(notice.press("confirm"));
    after(8s);
    EXPECT_EQ(after(3s),
              Lines("1.00 notice Tra 2 secondi: Chiudi e spegni",
                    "2.00 notice Tra 1 secondo: Chiudi e spegni", "3.00 event confirmationNeeded",
                    "3.00 notice Chiude le app, poi spegne il Mac"));
    EXPECT_EQ(notice.shown->title, "È l'ora della chiusura programmata");
    after(1h);
    EXPECT_TRUE(notice.press("confirm"));
    EXPECT_EQ(after(10ms),
              Lines("0.00 quit A", "0.00 notice withdrawn", "0.00 quitting 1", "0.00 ended A"));
    notice.onButton("cancel");
    EXPECT_FALSE(controller->awaitingConfirmation.get());
}

TEST_F(ScheduleNoticeStory, ButtonsPostponeAndCancelAndAreDeafWhenItIsAnotherSchedule) {
    begin(5s, none);
    desktop.advance(3s);
    EXPECT_TRUE(notice.press("postpone"));
    EXPECT_EQ(controller->schedule.get()->date - desktop.loop.now(), 10min + 2s);
    notice.onButton("cancel");
    EXPECT_TRUE(controller->schedule.get()) << "what is shown is about the one before";
    after(10min);
    EXPECT_TRUE(notice.press("cancel"));
    EXPECT_FALSE(controller->schedule.get());
    EXPECT_EQ(after(1s), Lines("0.00 notice withdrawn"));
}

// The user presses in the last second, and the notice is told of it a moment later.
TEST_F(ScheduleNoticeStory, CancellingAsTheRunBeginsEndsItAndDropsItsAction) {
    desktop.open("A").asksToSaveFor(20s);
    begin(5s, shutDown, false);
    after(5s);
    notice.onButton("cancel");
    EXPECT_EQ(after(60s), Lines("0.00 done 0 0", "8.00 idle", "20.00 ended A"));
    controller->quitAll(shutDown);
    in(1s, [this] { notice.onButton("cancel"); });
    EXPECT_THAT(after(60s), HasSubstr("shut down")) << "that is no scheduled one";
}

TEST_F(ScheduleNoticeStory, AnAnswerDuringAnotherRunLosesNoScheduleAndIsAskedForAgain) {
    desktop.open("A").asksToSaveFor(20s);
    begin(5s, shutDown);
    told->onUnanswerable = [this] { desktop.write("panel"); };
    controller->quitAll(none);
    after(6s);
    notice.onButton("confirm");
    EXPECT_TRUE(controller->awaitingConfirmation.get());
    notice.onUnanswerable();
    notice.onUnanswerable();
    EXPECT_EQ(after(0s), Lines("0.00 notice Chiude le app, poi spegne il Mac", "0.00 panel"))
        << "the panel comes once";
    desktop.advance(20s);
    notice.onButton("confirm");
    EXPECT_THAT(after(5s), HasSubstr("shut down"));
}

TEST_F(ScheduleNoticeStory, SaysWhatWasSleptThrough) {
    begin(1h, none);
    desktop.loop.fallAsleep(2h);
    EXPECT_THAT(after(0s), testing::EndsWith("delle 10:00 non è partita: il Mac era in stop.\n"));
}

} // namespace
} // namespace velmorquit
