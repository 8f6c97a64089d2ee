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
    void refresh() {
        controller->refresh();
        settle();
    }
    static QString plain(const QWidget* widget) {
        return QTextDocumentFragment::fromHtml(widget->toolTip()).toPlainText();
    }
};

TEST_F(AppListTest, AClickExcludesAndAnExcludedOneCanStillBeQuitByItself) {
    start();
    EXPECT_TRUE(isShown("emptyList") && !isShown("rows"));
    desktop.open("Nota", 10_MiB).ignoresAsking();
    settle();
    EXPECT_TRUE(!isShown("emptyList") && isShown("rows"));
    EXPECT_EQ(find("rows")->height(), 32);
    AppRow* row = rows().front();
    const auto expect = [&](bool isIncluded, const char* help) {
        EXPECT_EQ(row->isChecked(), isIncluded);
        EXPECT_EQ(row->toolTip(), help);
        EXPECT_EQ(controller->excluded->contains("Nota"), !isIncluded);
    };
    const char* const excludes = "Clic per escludere Nota da «Chiudi tutto»";
    const char* const includes = "Esclusa: «Chiudi tutto» la lascia aperta. Clic per includerla.";
    expect(true, excludes);
    QTest::mouseClick(row, Qt::LeftButton);
    expect(false, includes);
    QTest::keyClick(row, Qt::Key_Space);
    expect(true, excludes);
    controller->toggleExclusion(controller->apps.get().front());
    settle();
    EXPECT_FALSE(row->findChild<QWidget*>(QStringLiteral("quitOne")));
    point(row);
    EXPECT_EQ(find("quitOne")->toolTip(), "Chiudi solo Nota");
    desktop.startLog();
    QTest::mouseClick(find("quitOne"), Qt::LeftButton);
    EXPECT_EQ(desktop.log(), Lines("0.00 quit Nota"));
    expect(false, includes);
    desktop.open("Terminale").hindered(StayReason::busyTerminal);
    settle();
    point(find("quitAll"));
    point(rows().back());
    QTest::mouseClick(rows().back()->findChild<QWidget*>(QStringLiteral("quitOne")),
                      Qt::LeftButton);
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
    refresh();
    EXPECT_EQ(bar->value(), 1000);
    const auto all = rows();
    EXPECT_EQ(all.size(), 299U);
    EXPECT_EQ(all.front()->text(), "App 1");
    // Everything has moved up by one row, the pointer has not.
    EXPECT_TRUE(all[32]->isHovering());
    EXPECT_EQ(std::ranges::count_if(all, &AppRow::isHovering), 1);

    // The row that is aimed at keeps its place, whatever its figure, until the pointer has gone.
    apps[299]->setMemory(5000_MiB);
    refresh();
    EXPECT_EQ(rows()[32], all[32]);
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
    EXPECT_EQ(plain(row), help) << "the toolkit takes it for markup";

    controller->quitAll(PowerAction::none);
    advance(7s);
    EXPECT_TRUE(plain(find("force")).startsWith("Chiude subito <b>R&D</b> _x:"));
    for (const QLabel* label : frame->findChildren<QLabel*>())
        EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
    controller->leaveStubbornOpen();
    advance(10s);
    EXPECT_EQ(plain(find("reopenNames")), "<b>x</b>");
}

} // namespace
} // namespace velmorquit
