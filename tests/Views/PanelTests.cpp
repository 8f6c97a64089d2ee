#include "Views/AppRow.h"
#include "Views/MemoryBar.h"
#include "Views/PanelStory.h"

#include <QCheckBox>
#include <QLabel>
#include <QRadioButton>
#include <QTest>

namespace velmorquit {
namespace {

class PanelTest : public PanelStory {
protected:
    /// Which of the blocks are on the screen.
    [[nodiscard]] std::string blocks() const {
        std::string shown;
        for (const char* name : {"normalContent", "StubbornAppsCard", "BackupCard",
                                 "BackupFailedCard", "ReopenCard"}) {
            if (isShown(name))
                shown += std::string(shown.empty() ? "" : " ") + name;
        }
        return shown;
    }
};

TEST_F(PanelTest, FollowsARunFromTheButtonToTheResult) {
    desktop.open("Nota", 300_MiB).quitsAfter(2s);
    desktop.open("Testardo", 100_MiB).ignoresAsking();
    start();
    EXPECT_EQ(blocks(), "normalContent");
    EXPECT_EQ(text("appCount"), "2 app aperte");
    EXPECT_EQ(text("status"), "2 app · circa 400 MB da liberare");
    EXPECT_TRUE(find("quitAll")->isEnabled());

    click("quitAll");
    EXPECT_EQ(desktop.log(), Lines("0.00 quit Nota", "0.00 quit Testardo"));
    EXPECT_EQ(blocks(), "normalContent");
    EXPECT_EQ(text("status"), "Chiusura di 2 app in corso…");
    EXPECT_FALSE(find("quitAll")->isEnabled());
    EXPECT_FALSE(find("PowerActionPicker")->isEnabled());
    EXPECT_FALSE(find("ExtrasRow")->isEnabled());
    EXPECT_TRUE(isShown("AppList"));

    advance(6s);
    EXPECT_EQ(blocks(), "StubbornAppsCard");
    click("leaveOpen");
    advance(1s);
    EXPECT_EQ(blocks(), "normalContent");
    EXPECT_EQ(text("status"), "Chiusa 1 app");
    EXPECT_EQ(text("freed"), "liberati 300 MB");
    EXPECT_TRUE(find("quitAll")->isEnabled());

    advance(QuitController::resultTime);
    EXPECT_FALSE(isShown("freed"));
    EXPECT_EQ(text("status"), "1 app · circa 100 MB da liberare");
}

TEST_F(PanelTest, WithNothingToQuitTheButtonStillDoesItsWork) {
    SimulatedApplication& only = desktop.open("Nota", 0);
    start();
    EXPECT_EQ(text("appCount"), "1 app aperta");
    EXPECT_EQ(text("status"), "1 app · circa 0 MB da liberare");
    controller->toggleExclusion(controller->apps.get().front());
    settle();
    EXPECT_EQ(text("status"), "Niente da chiudere");
    EXPECT_EQ(text("appCount"), "1 app aperta");
    only.end();
    settle();
    EXPECT_EQ(text("appCount"), "Nessuna app aperta");
    EXPECT_EQ(text("emptyList"), "Tutto chiuso. La memoria è libera.");
    desktop.workspace.seen = Sight::noWindowList;
    controller->refresh();
    settle();
    EXPECT_EQ(text("appCount"), "Nessuna app in vista");
    EXPECT_EQ(text("status"), "Non vedo niente da chiudere");
    EXPECT_EQ(text("emptyList").rfind("Non vedo che cosa è aperto", 0), 0);
    desktop.workspace.seen = Sight::incomplete;
    controller->refresh();
    settle();
    EXPECT_EQ(text("emptyList").rfind("Non vedo tutto", 0), 0);
    desktop.workspace.seen = Sight::all;
    controller->refresh();
    click("quitAll");
    EXPECT_EQ(text("status"), "Chiuse 0 app");
    EXPECT_FALSE(isShown("freed"));
}

TEST_F(PanelTest, TheChoicesAreTheControllers) {
    start();
    for (const PowerAction action : {PowerAction::restart, PowerAction::logOut}) {
        click(std::string(rawValue(action)).c_str());
        EXPECT_EQ(controller->afterQuit.get(), action);
        EXPECT_EQ(text("quitAll"), buttonTitle(action));
    }
    controller->chooseAfterQuit(PowerAction::none);
    settle();
    EXPECT_TRUE(find<QRadioButton>("none")->isChecked());
    click("ejectDrives");
    EXPECT_TRUE(controller->ejectDrives.get());
    click("showScheduler");
    EXPECT_TRUE(find<QCheckBox>("confirmScheduled")->isChecked());
    QTest::keyClick(find("confirmScheduled"), Qt::Key_Space);
    EXPECT_FALSE(controller->confirmScheduled.get());
    EXPECT_FALSE(controller->schedule->has_value());
}

TEST_F(PanelTest, ReturnQuitsAllUnlessItsButtonIsOff) {
    desktop.open("Nota").quitsAfter(1s);
    start();
    frame->panel().setFocus();
    QTest::keyClick(&frame->panel(), Qt::Key_Return);
    EXPECT_EQ(desktop.log(), "") << "it may have been meant for another window";
    advance(500ms);
    QTest::keyClick(&frame->panel(), Qt::Key_Return);
    settle();
    EXPECT_EQ(desktop.log(), Lines("0.50 quit Nota"));
    QTest::keyClick(&frame->panel(), Qt::Key_Return);
    settle();
    EXPECT_EQ(desktop.log(), Lines("0.50 quit Nota"));
}

TEST_F(PanelTest, ReturnMeansTheControlThatIsMarked) {
    desktop.open("Nota");
    start();
    advance(1s);
    frame->activateWindow();
    find("ejectDrives")->setFocus(Qt::TabFocusReason);
    frame->setAttribute(Qt::WA_KeyboardFocusChange);
    QApplication::processEvents();
    ASSERT_TRUE(find("ejectDrives")->hasFocus());
    QTest::keyClick(find("ejectDrives"), Qt::Key_Return);
    settle();
    EXPECT_TRUE(controller->ejectDrives.get());
    EXPECT_EQ(desktop.log(), "");
}

TEST_F(PanelTest, ADoubleClickDoesNotReachWhatTakesThePlace) {
    start();
    missSchedule();
    settle();
    // Its first press was on something else.
    QTest::mouseDClick(find("dismissNote"), Qt::LeftButton);
    settle();
    EXPECT_TRUE(isShown("NoteCard"));
    EXPECT_EQ(text("note").rfind("La chiusura programmata delle", 0), 0);
    click("dismissNote");
    EXPECT_FALSE(isShown("NoteCard"));
    EXPECT_FALSE(controller->scheduleNote->has_value());
}

TEST_F(PanelTest, TheMemoryBarStaysWithinItsTrack) {
    start();
    auto* bar = dynamic_cast<MemoryBar*>(find("MemoryBar"));
    EXPECT_EQ(text("memoryFigures"), "0 MB di 0 MB");
    EXPECT_EQ(bar->fraction(), 0);
    bar->render({3000_MiB, 2000_MiB});
    EXPECT_EQ(bar->fraction(), 1);
}

TEST_F(PanelTest, StubbornOnesAreShownForcedOrLeft) {
    desktop.open("Atto").ignoresAsking().setStayReason(StayReason::asking);
    desktop.open("Blocco").ignoresAsking();
    start();
    controller->chooseAfterQuit(PowerAction::shutDown);
    controller->quitAll(PowerAction::shutDown);
    advance(8s);
    const auto rows = frame->findChildren<QWidget*>(QStringLiteral("stubborn"));
    ASSERT_EQ(rows.size(), 2);
    const auto in = [&](int row, const char* name) {
        return rows[row]->findChild<QWidget*>(QString::fromLatin1(name));
    };
    EXPECT_EQ(static_cast<QLabel*>(in(0, "why"))->text(),
              "Ha una finestra aperta che aspetta una risposta.");
    EXPECT_FALSE(in(0, "askAgain")->isVisible()) << "its question would be dismissed";
    EXPECT_TRUE(in(1, "askAgain")->isVisible());
    desktop.startLog();
    QTest::mouseClick(in(0, "show"), Qt::LeftButton);
    QTest::mouseClick(in(1, "askAgain"), Qt::LeftButton);
    QTest::mouseClick(in(1, "force"), Qt::LeftButton);
    EXPECT_EQ(desktop.log(), Lines("0.00 activate Atto", "0.00 quit Blocco", "0.00 force Blocco"));
    advance(1s);
    EXPECT_EQ(frame->findChildren<QWidget*>(QStringLiteral("stubborn")).size(), 1);
    click("leaveOpen");
    advance(10s);
    EXPECT_EQ(controller->afterQuit.get(), PowerAction::shutDown);
    EXPECT_EQ(desktop.log(), Lines("0.00 activate Atto", "0.00 quit Blocco", "0.00 force Blocco",
                                   "0.00 ended Blocco"));
}

TEST_F(PanelTest, GivesItsListUpFirstAndScrollsThen) {
    for (int number = 0; number < 12; ++number)
        desktop.open("App " + std::to_string(number), 10_MiB);
    start();
    EXPECT_EQ(find("rows")->height(), 230);
    const int whole = frame->height();
    height = whole - 60;
    settle();
    EXPECT_EQ(frame->height(), height);
    EXPECT_EQ(find("rows")->height(), 170);
    EXPECT_EQ(frame->panel().height(), height);
    height = 400;
    settle();
    EXPECT_EQ(frame->height(), 400);
    EXPECT_EQ(find("rows")->height(), 3 * 32 + 2 * 2);
    EXPECT_EQ(frame->panel().height(), whole - 230 + 100);
}

TEST_F(PanelTest, LargerTypeMakesItHigherAndNoWider) {
    desktop.open("Nota", 300_MiB);
    start();
    const int usual = frame->height();
    frame.reset();
    AppTheme::setLook({.isHighContrast = false, .isMotionReduced = true, .textScale = 1.5});
    start();
    EXPECT_GT(frame->height(), usual + 20);
    EXPECT_EQ(frame->width(), PanelView::width);
    for (const QWidget* child : frame->panel().findChildren<QWidget*>()) {
        if (!child->isVisible())
            continue;
        const QRect place(child->mapTo(&frame->panel(), QPoint()), child->size());
        EXPECT_TRUE(frame->panel().rect().contains(place))
            << child->objectName().toStdString() << ' ' << place.x() << ' ' << place.width();
    }
}

} // namespace
} // namespace velmorquit
