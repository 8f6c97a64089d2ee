#include "Views/AppRow.h"
#include "Views/PanelStory.h"
#include "Views/ThinScrollArea.h"

#include <QAccessible>
#include <QAccessibleInterface>
#include <QScrollBar>
#include <QTest>
#include <QTextDocumentFragment>
#include <QToolTip>

#include <algorithm>

namespace velmorquit {
namespace {

class AppListTest : public PanelStory {
protected:
    /// From top to bottom.
    [[nodiscard]] std::vector<AppRow*> rows() const {
        std::vector<AppRow*> rows;
        for (QCheckBox* box : find("rows")->findChildren<QCheckBox*>()) {
            if (auto* row = dynamic_cast<AppRow*>(box); row && row->isVisible())
                rows.push_back(row);
        }
        std::ranges::sort(rows, {}, [](const AppRow* row) { return row->y(); });
        return rows;
    }

    void point(const QWidget* widget) {
        QCursor::setPos(widget->mapToGlobal(widget->rect().center()));
        QTest::mouseMove(const_cast<QWidget*>(widget));
        settle();
    }
};

TEST_F(AppListTest, IsAsHighAsItMustBe) {
    start();
    EXPECT_TRUE(isShown("emptyList"));
    EXPECT_FALSE(isShown("rows"));
    desktop.open("Nota", 10_MiB);
    settle();
    EXPECT_FALSE(isShown("emptyList"));
    EXPECT_EQ(find("rows")->height(), 32);
}

TEST_F(AppListTest, AClickExcludesAndIncludesAtOnce) {
    desktop.open("Nota", 10_MiB).identified("org.example.Nota");
    start();
    AppRow* row = rows().front();
    EXPECT_TRUE(row->isChecked());
    EXPECT_EQ(row->toolTip(), "Clic per escludere Nota da «Chiudi tutto»");
    QTest::mouseClick(row, Qt::LeftButton);
    EXPECT_FALSE(row->isChecked());
    EXPECT_EQ(row->toolTip(), "Esclusa: «Chiudi tutto» la lascia aperta. Clic per includerla.");
    EXPECT_TRUE(controller->excluded->contains("org.example.Nota"));
    QTest::keyClick(row, Qt::Key_Space);
    EXPECT_TRUE(row->isChecked());
    EXPECT_FALSE(controller->excluded->contains("org.example.Nota"));
}

TEST_F(AppListTest, AnExcludedOneCanStillBeQuitByItself) {
    desktop.open("Nota", 10_MiB).ignoresAsking();
    start();
    controller->toggleExclusion(controller->apps.get().front());
    settle();
    AppRow* row = rows().front();
    EXPECT_FALSE(row->findChild<QWidget*>(QStringLiteral("quitOne")));
    point(row);
    auto* quit = row->findChild<QWidget*>(QStringLiteral("quitOne"));
    ASSERT_TRUE(quit && quit->isVisible());
    EXPECT_EQ(quit->toolTip(), "Chiudi solo Nota");
    QTest::mouseClick(quit, Qt::LeftButton);
    EXPECT_EQ(desktop.log(), Lines("0.00 quit Nota"));
    EXPECT_FALSE(row->isChecked());
}

TEST_F(AppListTest, SaysWhyOneWasNotAskedToQuit) {
    desktop.open("Terminale").hindered(StayReason::busyTerminal);
    start();
    point(find("quitAll"));
    point(rows().front());
    QTest::mouseClick(find("quitOne"), Qt::LeftButton);
    EXPECT_EQ(QToolTip::text(), "Vi è in corso un comando che andrebbe perso.");
    QToolTip::hideText();
}

TEST_F(AppListTest, KeepsHoverAndPlaceOverARefresh) {
    std::vector<SimulatedApplication*> apps;
    for (int number = 0; number < 300; ++number)
        apps.push_back(
            &desktop.open("App " + std::to_string(number), std::uint64_t(900 - number) << 20));
    start();
    EXPECT_EQ(rows().size(), 300U);
    QScrollBar* bar = find<ThinScrollArea>("rows")->verticalScrollBar();
    bar->setValue(1000);
    AppRow* row = rows()[32];
    point(row);
    EXPECT_TRUE(row->isHovering());
    apps[250]->setMemory(651_MiB);
    apps[0]->end();
    controller->refresh();
    settle();
    EXPECT_EQ(bar->value(), 1000);
    const auto all = rows();
    EXPECT_EQ(all.size(), 299U);
    EXPECT_EQ(all.front()->text(), "App 1");
    // Everything has moved up by one row, the pointer has not.
    EXPECT_FALSE(row->isHovering());
    EXPECT_TRUE(all[32]->isHovering());
    EXPECT_EQ(std::ranges::count_if(all, &AppRow::isHovering), 1);

    // What is aimed at keeps its place, whatever its figure, until the pointer has gone.
    AppRow* aimed = all[32];
    apps[299]->setMemory(5000_MiB);
    controller->refresh();
    settle();
    EXPECT_EQ(rows()[32], aimed);
    QCursor::setPos(frame->mapToGlobal(QPoint(5, 5)));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(find<ThinScrollArea>("rows")->viewport(), &leave);
    settle();
    EXPECT_EQ(rows().front()->text(), "App 299");
}

TEST_F(AppListTest, ANameIsNeitherMarkupNorAKey) {
    const std::string name = "<b>R&D</b> _x";
    desktop.open(name).ignoresAsking().identified("d");
    desktop.files.paths.insert(*desktop.open("<b>x</b>").identified("e").bundlePath());
    start();
    AppRow* row = rows().front();
    const QAccessibleInterface* face = QAccessible::queryAccessibleInterface(row);
    EXPECT_EQ(face->text(QAccessible::Name).toStdString(), name);
    EXPECT_TRUE(row->shortcut().isEmpty());
    const QString help = QStringLiteral("Clic per escludere <b>R&D</b> _x da «Chiudi tutto»");
    EXPECT_EQ(face->text(QAccessible::Description), help);
    EXPECT_EQ(QTextDocumentFragment::fromHtml(row->toolTip()).toPlainText(), help)
        << "the toolkit takes it for markup";

    controller->quitAll(PowerAction::none);
    advance(7s);
    const auto* force = find<QAbstractButton>("force");
    EXPECT_TRUE(QTextDocumentFragment::fromHtml(force->toolTip())
                    .toPlainText()
                    .startsWith("Chiude subito <b>R&D</b> _x:"));
    for (const QLabel* label : frame->findChildren<QLabel*>())
        EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
    controller->leaveStubbornOpen();
    advance(10s);
    EXPECT_EQ(QTextDocumentFragment::fromHtml(find("reopenNames")->toolTip()).toPlainText(),
              "<b>x</b>");
}

} // namespace
} // namespace velmorquit
