#include "Views/PanelStory.h"

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
    EXPECT_EQ(seen({"appCount", "status", "freed", "quitAll"}),
              Lines("2 app aperte", "2 app · circa 400 MB da liberare", "-", "Chiudi tutto"));
    click("quitAll");
    EXPECT_EQ(desktop.log(), Lines("0.00 quit Nota", "0.00 quit Testardo"));
    EXPECT_EQ(blocks(), "normalContent");
    EXPECT_EQ(seen({"status", "quitAll", "PowerActionPicker", "ExtrasRow", "AppList"}),
              Lines("Chiusura di 2 app in corso…", "[Chiudi tutto]", "[]", "[]", ""));
    advance(6s);
    EXPECT_EQ(blocks(), "StubbornAppsCard");
    click("leaveOpen");
    advance(1s);
    EXPECT_EQ(blocks(), "normalContent");
    EXPECT_EQ(seen({"status", "freed", "quitAll"}),
              Lines("Chiusa 1 app", "liberati 300 MB", "Chiudi tutto"));
    advance(QuitController::resultTime);
    EXPECT_EQ(seen({"status", "freed"}), Lines("1 app · circa 100 MB da liberare", "-"));
}

TEST_F(PanelTest, WithNothingToQuitTheButtonStillDoesItsWork) {
    SimulatedApplication& only = desktop.open("Nota", 0);
    start();
    const auto expect = [this](Sight sight, const char* count, const char* status,
                               const std::string& list) {
        desktop.workspace.seen = sight;
        controller->refresh();
        settle();
        EXPECT_EQ(seen({"appCount", "status"}), Lines(count, status));
        EXPECT_EQ(seen({"emptyList"}).substr(0, list.size()), list);
    };
    expect(Sight::all, "1 app aperta", "1 app · circa 0 MB da liberare", "-");
    controller->toggleExclusion(controller->apps.get().front());
    expect(Sight::all, "1 app aperta", "Niente da chiudere", "-");
    only.end();
    expect(Sight::all, "Nessuna app aperta", "Niente da chiudere",
           "Tutto chiuso. La memoria è libera.\n");
    expect(Sight::noWindowList, "Nessuna app in vista", "Non vedo niente da chiudere",
           "Non vedo che cosa è aperto");
    expect(Sight::incomplete, "Nessuna app in vista", "Non vedo niente da chiudere",
           "Non vedo tutto");
    click("quitAll");
    EXPECT_EQ(seen({"status", "freed", "memoryFigures"}),
              Lines("Chiuse 0 app", "-", "0 MB di 0 MB"));
}

TEST_F(PanelTest, ReturnMeansTheControlThatIsMarkedOrQuitsAllUnlessThatIsOff) {
    desktop.open("Nota").quitsAfter(1s);
    start();
    const auto press = [this](QWidget* where) {
        QTest::keyClick(where, Qt::Key_Return);
        settle();
    };
    frame->panel().setFocus();
    press(&frame->panel());
    EXPECT_EQ(desktop.log(), "") << "it may have been meant for another window";
    advance(500ms);
    frame->activateWindow();
    find("ejectDrives")->setFocus(Qt::TabFocusReason);
    frame->setAttribute(Qt::WA_KeyboardFocusChange);
    QApplication::processEvents();
    ASSERT_TRUE(find("ejectDrives")->hasFocus());
    press(find("ejectDrives"));
    EXPECT_TRUE(controller->ejectDrives.get());
    EXPECT_EQ(desktop.log(), "");
    frame->setAttribute(Qt::WA_KeyboardFocusChange, false);
    frame->panel().setFocus();
    for (int time = 0; time < 2; ++time)
        press(&frame->panel());
    EXPECT_EQ(desktop.log(), Lines("0.50 quit Nota"));
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
    for (QWidget* button : {in(0, "show"), in(1, "askAgain"), in(1, "force")})
        QTest::mouseClick(button, Qt::LeftButton);
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
    const int whole = frame->height();
    const auto expect = [this](int available, int list, int panel) {
        height = available;
        settle();
        EXPECT_EQ(frame->height(), std::min(available, panel));
        EXPECT_EQ(find("rows")->height(), list);
        EXPECT_EQ(frame->panel().height(), panel);
    };
    expect(1000, 230, whole);
    expect(whole - 60, 170, whole - 60);
    expect(400, 3 * 32 + 2 * 2, whole - 230 + 100);
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
        const QRect place(child->mapTo(&frame->panel(), QPoint()), child->size());
        EXPECT_TRUE(!child->isVisible() || frame->panel().rect().contains(place))
            << child->objectName().toStdString() << ' ' << place.x() << ' ' << place.width();
    }
}

} // namespace
} // namespace velmorquit
