#include "Services/ControllerStory.h"
#include "Services/RunNotice.h"

namespace velmorquit {
namespace {

class RunNoticeStory : public ControllerStory {
protected:
    /// The applications that stay, and the notice of them when the desktop is given that long.
    void begin(PowerAction action, Duration time = 8s) {
        start();
        told = std::make_unique<RunNotice>(*controller, notice, desktop.formats);
        told->onShow = [this] { desktop.write("panel"); };
        told->onUnanswerable = [this] {
            desktop.write("panel aside");
            told->panelOpened();
        };
        controller->quitAll(action);
        desktop.advance(time);
    }
    void failBackup(PowerAction action) {
        desktop.preferences.set("backupFirst", true);
        desktop.backupTool.configure();
        desktop.backupTool.launchError = "no such tool";
        begin(action, 2s);
    }
    [[nodiscard]] std::string text() const { return notice.shown ? notice.shown->text : "none"; }
    [[nodiscard]] bool hasHappened(const std::string& what) const {
        return desktop.log().find(what) != std::string::npos;
    }

    SimulatedNotice notice{[this](std::string_view what) { desktop.write(what); }};
    std::unique_ptr<RunNotice> told;
};

TEST_F(RunNoticeStory, NamesWhatStaysAndWhatLeavingItOpenMeans) {
    desktop.open("A").ignoresAsking().setStayReason(StayReason::asking);
    desktop.open("B").ignoresAsking();
    begin(PowerAction::shutDown);
    EXPECT_EQ(notice.shown->title, "Alcune app non si sono chiuse");
    EXPECT_EQ(text(), "Ancora aperte: A (aspetta una tua risposta), B.\n"
                      "Quando tutto sarà chiuso, il computer si spegnerà. Se lasci aperto "
                      "qualcosa, resterà acceso.");
    controller->cancelPowerAction();
    desktop.advance(5s);
    EXPECT_EQ(text(), "Ancora aperte: A (aspetta una tua risposta), B.");
    EXPECT_TRUE(notice.press("show"));
    EXPECT_TRUE(hasHappened("activate A"));
    EXPECT_TRUE(notice.press("leave"));
    notice.onButton("show");
    desktop.advance(1min);
    EXPECT_EQ(text(), "none");
    EXPECT_FALSE(hasHappened("panel"));
    EXPECT_FALSE(hasHappened("shutDown"));
}

TEST_F(RunNoticeStory, ChangesSeldomAndOnlyForNews) {
    std::vector<SimulatedApplication*> apps;
    for (const char* name : {"A", "B", "C", "D", "E", "F"})
        apps.push_back(&desktop.open(name).ignoresAsking());
    begin(PowerAction::none, 7500ms);
    EXPECT_EQ(text(), "Ancora aperte: A, B, C, D e altre 2 app.");
    desktop.advance(250ms);
    desktop.startLog();
    for (const int gone : {5, 3, 2, 1}) {
        apps[gone]->end();
        desktop.advance(1s);
    }
    EXPECT_FALSE(hasHappened("notice"));
    desktop.advance(2s);
    EXPECT_EQ(text(), "Ancora aperte: A, E.");
    apps[0]->setStayReason(StayReason::notResponding);
    desktop.advance(6s);
    EXPECT_EQ(text(), "Ancora aperte: A (non risponde), E.");
    desktop.startLog();
    for (const auto reason : {StayReason::asking, StayReason::unknown, StayReason::asking}) {
        apps[0]->setStayReason(reason);
        desktop.advance(10s);
    }
    EXPECT_FALSE(hasHappened("notice"));
    apps[4]->end();
    desktop.advance(6s);
    EXPECT_EQ(text(), "Ancora aperta: A (aspetta una tua risposta).");
}

TEST_F(RunNoticeStory, IsThereWhileThePanelIsNot) {
    SimulatedApplication& app = desktop.open("A").livesOnWithoutWindows();
    begin(PowerAction::none, 5s);
    told->panelOpened();
    desktop.advance(10s);
    EXPECT_EQ(text(), "none");
    told->panelClosed();
    desktop.advance(2s);
    EXPECT_NE(text(), "none");
    EXPECT_TRUE(notice.press("show"));
    EXPECT_TRUE(hasHappened("panel")) << "there is no window to show";
    told->panelOpened();
    notice.onButton("leave");
    told->panelClosed();
    app.end();
    desktop.advance(10s);
    EXPECT_EQ(text(), "none") << "it is over before it is worth a notice";
    EXPECT_TRUE(is<phases::Idle>(controller->phase) || is<phases::Done>(controller->phase));
}

TEST_F(RunNoticeStory, GoesOnWithoutABackupOnlyWhenTheQuestionWasRead) {
    failBackup(PowerAction::restart);
    EXPECT_EQ(text(), "no such tool");
    EXPECT_EQ(notice.shown->buttons.back().caption, "Riavvia lo stesso");
    notice.onButton("leave");
    notice.onButton("show");
    told->panelClosed();
    desktop.startLog();
    EXPECT_TRUE(notice.press("goOn"));
    desktop.advance(1s);
    EXPECT_EQ(desktop.log(), Lines("0.00 notice no such tool")) << "nobody reads that fast";
    desktop.advance(1s);
    EXPECT_TRUE(notice.press("goOn"));
    desktop.advance(5s);
    EXPECT_TRUE(hasHappened("notice withdrawn"));
    EXPECT_TRUE(hasHappened("restart"));
}

TEST_F(RunNoticeStory, SaysWhenItGoesOnByItselfAndStopsWhenToldTo) {
    failBackup(PowerAction::shutDown);
    EXPECT_TRUE(notice.press("stop"));
    desktop.advance(1min);
    EXPECT_FALSE(hasHappened("shutDown"));
    controller->quitAll(PowerAction::shutDown);
    controller->unattended = true;
    desktop.advance(3s);
    EXPECT_EQ(text(), "no such tool\nSe nessuno risponde, proseguo da solo alle 09:02.");
    desktop.advance(1min);
    EXPECT_EQ(text(), "none");
}

TEST_F(RunNoticeStory, ThePanelComesByItselfOnceInAWaitThatNobodyHasSeen) {
    desktop.open("A").ignoresAsking();
    begin(PowerAction::none);
    notice.onUnanswerable();
    EXPECT_TRUE(hasHappened("panel aside"));
    EXPECT_EQ(text(), "none");
    const auto closeAgain = [&] {
        desktop.startLog();
        told->panelClosed();
        desktop.advance(3s);
        EXPECT_NE(text(), "none");
        notice.onUnanswerable();
    };
    closeAgain();
    EXPECT_FALSE(hasHappened("panel aside"));
    controller->leaveStubbornOpen();
    desktop.advance(1s);
    notice.onUnanswerable();
    controller->quitAll(PowerAction::none);
    desktop.advance(3s);
    told->panelOpened();
    desktop.advance(5s);
    closeAgain();
    EXPECT_FALSE(hasHappened("panel aside"));
    controller->leaveStubbornOpen();
    desktop.advance(1s);
    controller->quitAll(PowerAction::none);
    desktop.advance(8s);
    notice.onUnanswerable();
    EXPECT_TRUE(hasHappened("panel aside"));
}

} // namespace
} // namespace velmorquit
