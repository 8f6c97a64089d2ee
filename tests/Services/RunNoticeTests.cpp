#include "Services/ControllerStory.h"
#include "Services/RunNotice.h"

namespace velmorquit {
namespace {

using enum PowerAction;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

class RunNoticeStory : public ControllerStory {
protected:
    void begin() {
        start();
        told = std::make_unique<RunNotice>(*controller, notice, desktop.formats);
        told->onShow = [this] { desktop.write("panel"); };
        told->onUnanswerable = [this] {
            desktop.write("panel aside");
            told->panelOpened();
        };
    }
    /// The applications that stay, and what happens when the desktop is given that long.
    std::string quit(PowerAction action, Duration time = 8s) {
        controller->quitAll(action);
        return after(time);
    }
    void failBackup(PowerAction action) {
        desktop.preferences.set("backupFirst", true);
        desktop.backupTool.configure();
        desktop.backupTool.launchError = "no such tool";
        begin();
        quit(action, 2s);
    }
    [[nodiscard]] std::string text() const { return notice.shown ? notice.shown->text : "none"; }

    SimulatedNotice notice{[this](std::string_view what) { desktop.write(what); }};
    std::unique_ptr<RunNotice> told;
};

TEST_F(RunNoticeStory, NamesWhatStaysAndWhatLeavingItOpenMeans) {
    desktop.open("A").ignoresAsking().setStayReason(StayReason::asking);
    desktop.open("B").ignoresAsking();
    begin();
    quit(shutDown);
    EXPECT_EQ(notice.shown->title, "Alcune app non si sono chiuse");
    EXPECT_EQ(text(), "Ancora aperte: A (aspetta una tua risposta), B.\n"
                      "Quando tutto sarà chiuso, il computer si spegnerà. Se lasci aperto "
                      "qualcosa, resterà acceso.");
    controller->cancelPowerAction();
    in(5s, [this] {
        EXPECT_TRUE(notice.press("show"));
        EXPECT_TRUE(notice.press("leave"));
        notice.onButton("show");
    });
    EXPECT_EQ(after(1min),
              Lines("4.50 notice Ancora aperte: A (aspetta una tua risposta), B.",
                    "5.00 activate A", "5.00 done 0 0", "5.00 notice withdrawn", "13.00 idle"));
}

TEST_F(RunNoticeStory, ChangesSeldomAndOnlyForNews) {
    std::vector<SimulatedApplication*> apps;
    for (const char* name : {"A", "B", "C", "D", "E", "F"})
        apps.push_back(&desktop.open(name).ignoresAsking());
    begin();
    EXPECT_THAT(quit(none, 7750ms), EndsWith("notice Ancora aperte: A, B, C, D e altre 2 app.\n"));
    for (const int gone : {5, 3, 2, 1}) {
        apps[gone]->end();
        EXPECT_THAT(after(1s), Not(HasSubstr("notice")));
    }
    EXPECT_EQ(after(2s), Lines("0.75 notice Ancora aperte: A, E."));
    apps[0]->setStayReason(StayReason::notResponding);
    EXPECT_EQ(after(6s), Lines("3.75 notice Ancora aperte: A (non risponde), E."));
    for (const auto reason : {StayReason::asking, StayReason::unknown, StayReason::asking}) {
        apps[0]->setStayReason(reason);
        EXPECT_EQ(after(10s), "");
    }
    apps[4]->end();
    EXPECT_THAT(after(6s), EndsWith("Ancora aperta: A (aspetta una tua risposta).\n"));
}

TEST_F(RunNoticeStory, IsThereWhileThePanelIsNot) {
    SimulatedApplication& app = desktop.open("A").livesOnWithoutWindows();
    begin();
    quit(none, 5s);
    told->panelOpened();
    EXPECT_THAT(after(10s), Not(HasSubstr("notice")));
    told->panelClosed();
    EXPECT_THAT(after(2s), HasSubstr("notice Ancora aperta: A"));
    EXPECT_TRUE(notice.press("show"));
    EXPECT_EQ(after(0s), Lines("0.00 activate A", "0.00 panel")) << "there is no window to show";
    told->panelOpened();
    notice.onButton("leave");
    told->panelClosed();
    app.end();
    EXPECT_EQ(after(10s), Lines("0.00 notice withdrawn", "0.00 ended A", "0.25 event quitDone 1",
                                "0.25 done 1 0", "8.25 idle"))
        << "it is over before it is worth a notice";
}

TEST_F(RunNoticeStory, GoesOnWithoutABackupOnlyWhenTheQuestionWasRead) {
    failBackup(restart);
    EXPECT_EQ(text(), "no such tool");
    EXPECT_EQ(notice.shown->buttons.back().caption, "Riavvia lo stesso");
    notice.onButton("leave");
    notice.onButton("show");
    told->panelClosed();
    desktop.startLog();
    EXPECT_TRUE(notice.press("goOn"));
    EXPECT_EQ(after(2s), Lines("0.00 notice no such tool")) << "nobody reads that fast";
    EXPECT_TRUE(notice.press("goOn"));
    EXPECT_EQ(after(5s),
              Lines("0.00 done 0 0 Backup non riuscito", "0.00 notice withdrawn", "1.20 restart"));
}

TEST_F(RunNoticeStory, SaysWhenItGoesOnByItselfAndStopsWhenToldTo) {
    failBackup(shutDown);
    EXPECT_TRUE(notice.press("stop"));
    EXPECT_THAT(after(1min), Not(HasSubstr("shut down")));
    controller->quitAll(shutDown, Attendance::unattended);
    desktop.advance(3s);
    EXPECT_EQ(text(), "no such tool\nSe nessuno risponde, proseguo da solo alle 09:02.");
    desktop.advance(1min);
    EXPECT_EQ(text(), "none");
}

TEST_F(RunNoticeStory, ThePanelComesByItselfOnceInAWaitThatNobodyHasSeen) {
    desktop.open("A").ignoresAsking();
    begin();
    const auto comesWhenUnanswerable = [this] {
        desktop.startLog();
        notice.onUnanswerable();
        return desktop.log().starts_with("0.00 panel aside\n") && !notice.shown;
    };
    const auto closeAgain = [this] {
        told->panelClosed();
        desktop.advance(3s);
        EXPECT_NE(text(), "none");
    };
    quit(none);
    EXPECT_TRUE(comesWhenUnanswerable());
    closeAgain();
    EXPECT_FALSE(comesWhenUnanswerable());
    controller->leaveStubbornOpen();
    desktop.advance(1s);
    notice.onUnanswerable();
    in(3s, [this] { told->panelOpened(); });
    quit(none);
    closeAgain();
    EXPECT_FALSE(comesWhenUnanswerable());
    controller->leaveStubbornOpen();
    desktop.advance(1s);
    quit(none);
    EXPECT_TRUE(comesWhenUnanswerable());
}

} // namespace
} // namespace velmorquit
