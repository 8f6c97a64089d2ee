#include "Services/ControllerStory.h"
#include "Services/ScheduleNotice.h"

namespace velmorquit {
namespace {

/// Writes into the desktop's log what is shown.
class LoggedNotice final : public Notice {
public:
    explicit LoggedNotice(SimulatedDesktop& desktop) : desktop_(desktop) {}

    void show(const Content& content) override {
        std::string line = content.title + " | " + content.text + " |";
        for (const Button& button : content.buttons)
            line += ' ' + button.id;
        desktop_.write(line);
    }
    void withdraw() override { desktop_.write("withdrawn"); }

private:
    SimulatedDesktop& desktop_;
};

class ScheduleNoticeStory : public ControllerStory {
protected:
    void begin() {
        start();
        told = std::make_unique<ScheduleNotice>(*controller, notice, desktop.formats);
        desktop.loop.settle();
    }

    LoggedNotice notice{desktop};
    std::unique_ptr<ScheduleNotice> told;
};

TEST_F(ScheduleNoticeStory, CountsDownThenAsksAndGoesWhenItIsAnswered) {
    desktop.open("A");
    begin();
    controller->scheduleQuit(desktop.loop.now() + 31s, PowerAction::shutDown);
    desktop.advance(28s);
    EXPECT_EQ(desktop.log().substr(0, desktop.log().find("\n21")),
              "1.00 Chiusura programmata alle 09:00 | Tra 30 secondi: Chiudi e spegni | postpone "
              "cancel");
    desktop.startLog();
    desktop.advance(3s);
    EXPECT_EQ(desktop.log(),
              Lines("1.00 Chiusura programmata alle 09:00 | Tra 2 secondi: Chiudi e spegni | "
                    "postpone cancel",
                    "2.00 Chiusura programmata alle 09:00 | Tra 1 secondo: Chiudi e spegni | "
                    "postpone cancel",
                    "3.00 event confirmationNeeded",
                    "3.00 È l'ora della chiusura programmata | Chiude le app, poi spegne il Mac | "
                    "confirm postpone cancel"));
    desktop.startLog();
    desktop.advance(1h);
    notice.onButton("confirm");
    desktop.advance(10ms);
    EXPECT_NE(desktop.log().find("withdrawn"), std::string::npos);
    EXPECT_NE(desktop.log().find("quit A"), std::string::npos);
    notice.onButton("cancel");
    EXPECT_FALSE(controller->awaitingConfirmation.get());
}

TEST_F(ScheduleNoticeStory, ButtonsPostponeAndCancelAndAreDeafWhenItIsAnotherSchedule) {
    begin();
    controller->scheduleQuit(desktop.loop.now() + 5s, PowerAction::none);
    desktop.advance(3s);
    notice.onButton("postpone");
    EXPECT_EQ(controller->schedule.get()->date - desktop.loop.now(), 10min + 2s);
    notice.onButton("cancel");
    EXPECT_TRUE(controller->schedule.get()) << "what is shown is about the one before";
    desktop.advance(10min);
    notice.onButton("cancel");
    EXPECT_FALSE(controller->schedule.get());
    desktop.startLog();
    desktop.advance(1s);
    EXPECT_EQ(desktop.log(), Lines("0.00 withdrawn"));
}

// The user presses in the last second, and the notice is told of it a moment later.
TEST_F(ScheduleNoticeStory, CancellingAsTheRunBeginsEndsItAndDropsItsAction) {
    desktop.open("A").asksToSaveFor(20s);
    desktop.preferences.set("confirmScheduled", false);
    begin();
    controller->scheduleQuit(desktop.loop.now() + 5s, PowerAction::shutDown);
    desktop.advance(5s);
    notice.onButton("cancel");
    desktop.advance(60s);
    EXPECT_EQ(desktop.log().find("shut down"), std::string::npos);
    EXPECT_NE(desktop.log().find("5.00 done 0 0"), std::string::npos) << desktop.log();
    controller->quitAll(PowerAction::shutDown);
    desktop.advance(1s);
    notice.onButton("cancel");
    desktop.advance(60s);
    EXPECT_NE(desktop.log().find("shut down"), std::string::npos) << "that is no scheduled one";
}

TEST_F(ScheduleNoticeStory, AnAnswerDuringAnotherRunLosesNoScheduleAndIsAskedForAgain) {
    desktop.open("A").asksToSaveFor(20s);
    begin();
    told->onUnanswerable = [this] { desktop.write("panel"); };
    controller->scheduleQuit(desktop.loop.now() + 5s, PowerAction::shutDown);
    controller->quitAll(PowerAction::none);
    desktop.advance(6s);
    desktop.startLog();
    notice.onButton("confirm");
    EXPECT_NE(desktop.log().find("È l'ora della chiusura programmata"), std::string::npos);
    EXPECT_TRUE(controller->awaitingConfirmation.get());
    notice.onUnanswerable();
    notice.onUnanswerable();
    EXPECT_EQ(desktop.log().find("panel"), desktop.log().rfind("panel"));
    EXPECT_NE(desktop.log().find("panel"), std::string::npos);
    desktop.advance(20s);
    notice.onButton("confirm");
    desktop.advance(5s);
    EXPECT_NE(desktop.log().find("shut down"), std::string::npos) << desktop.log();
}

TEST_F(ScheduleNoticeStory, SaysWhatWasSleptThrough) {
    begin();
    controller->scheduleQuit(desktop.loop.now() + 1h, PowerAction::none);
    desktop.loop.fallAsleep(2h);
    desktop.loop.settle();
    EXPECT_EQ(desktop.log(),
              Lines("0.00 Chiusura programmata | La chiusura programmata delle 10:00 non è "
                    "partita: il Mac era in stop. |"));
}

} // namespace
} // namespace velmorquit
