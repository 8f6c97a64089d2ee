#include "Theme/LookOwner.h"
#include "Views/PanelPopover.h"
#include "Views/PanelStory.h"
#include "Views/PopoverPlace.h"
#include "support/Waiting.h"

#include <QApplication>
#include <QTest>

#include <algorithm>

namespace velmorquit {
namespace {

/// The panel in its window, instead of by itself.
class PopoverTest : public PanelStory {
protected:
    PopoverTest() {
        settings = std::make_unique<Settings>(desktop.loop, desktop.preferences);
        controller = std::make_unique<QuitController>(desktop.ports(), *settings);
        updater = std::make_unique<AppUpdater>(desktop.loop);
        popover = std::make_unique<PanelPopover>(
            PanelPopover::Surroundings{desktop.loop, face.ports(), looks},
            [this] {
                ++panelsMade;
                return std::make_unique<PanelView>(*controller, *updater, desktop.ports(),
                                                   std::function<Menu()>());
            },
            [this] { return controller->isRunning(); });
        popover->onClose = [this] {
            EXPECT_FALSE(popover->isShown());
            ++closings;
        };
        face.appearance.motionReduced = true;
    }

    [[nodiscard]] static QWidget* window() {
        const QWidgetList all = QApplication::topLevelWidgets();
        const auto found = std::ranges::find(all, "PanelPopover", &QWidget::objectName);
        return found == all.end() ? nullptr : *found;
    }

    void expectAfterPress(const QPoint& place, bool isShown) {
        face.screens.point({place.x(), place.y()});
        face.windows.press();
        EXPECT_EQ(popover->isShown(), isShown) << place.x() << ' ' << place.y();
    }
    void turn(int times) {
        for (; times > 0; --times) {
            desktop.loop.settle();
            QApplication::processEvents();
        }
    }

    static constexpr QPoint outside{5, 400};
    int panelsMade = 0;
    int closings = 0;
    LookOwner looks{face.appearance};
    std::unique_ptr<PanelPopover> popover;
};

TEST_F(PopoverTest, OpenedByItselfItLeavesKeyboardAndPressesToOthersAtFirst) {
    EXPECT_EQ(panelsMade, 0);
    popover->showAside(std::nullopt);
    EXPECT_TRUE(waitUntil([this] { return popover->isDrawn(); }));
    desktop.loop.settle();
    EXPECT_EQ(face.windows.activated, 0U);
    EXPECT_EQ(face.windows.inputArea.width, 0);
    expectAfterPress(outside, true);
    desktop.advance(1s);
    EXPECT_EQ(face.windows.inputArea.width, PanelView::width);
    EXPECT_EQ(face.windows.activated, 0U);
    popover->show(std::nullopt);
    EXPECT_EQ(face.windows.activated, window()->winId());
    EXPECT_EQ(window()->focusWidget()->objectName(), "PanelView");
    popover->show(std::nullopt);
    popover->close();
    popover->close();
    EXPECT_EQ(closings, 1);
    popover->show(std::nullopt);
    EXPECT_EQ(panelsMade, 1) << "it is kept";
    popover->close();
    face.appearance.highContrast = true;
    popover->show(std::nullopt);
    EXPECT_EQ(panelsMade, 2);
}

TEST_F(PopoverTest, ClosesOnAPressOutsideOnEscapeAndForOtherWindowsUnlessARunGoesOn) {
    const ScreenRect icon{600, 0, 24, 24};
    popover->show(icon);
    const QWidget* panel = window()->findChild<QWidget*>(QStringLiteral("PanelView"));
    expectAfterPress(panel->mapToGlobal(QPoint(10, 10)), true);
    // The icon itself tells what a press on it means.
    expectAfterPress(QPoint(610, 10), true);
    expectAfterPress(outside, false);
    EXPECT_TRUE(popover->wasClosedByLastPress());
    expectAfterPress(outside, false);
    EXPECT_FALSE(popover->wasClosedByLastPress());

    popover->show(icon);
    QTest::keyClick(window()->focusWidget(), Qt::Key_Escape);
    EXPECT_FALSE(popover->isShown());
    EXPECT_FALSE(popover->wasClosedByLastPress());

    desktop.open("Nota").quitsAfter(3s);
    desktop.loop.settle();
    controller->refresh();
    popover->show(std::nullopt);
    QEvent left(QEvent::WindowDeactivate);
    controller->quitAll(PowerAction::none);
    QApplication::sendEvent(window(), &left);
    EXPECT_TRUE(popover->isShown());
    desktop.advance(20s);
    QApplication::sendEvent(window(), &left);
    EXPECT_FALSE(popover->isShown());
    // The press that moved the keyboard is told after that.
    expectAfterPress(outside, false);
    EXPECT_TRUE(popover->wasClosedByLastPress());
    EXPECT_EQ(closings, 3);
}

TEST_F(PopoverTest, GrowsWithWhatItShowsAndStaysInItsPlaceOnAnyScreen) {
    const ScreenRect icon{700, 0, 24, 24};
    popover->show(icon);
    // A window manager has heard of it only when it is on the screen.
    face.windows.inputArea = {};
    EXPECT_TRUE(waitUntil([this] { return face.windows.inputArea.width == PanelView::width; }));
    const QSize size = window()->size();
    EXPECT_EQ(window()->geometry().right() - 60, 800 - 8 - 1);
    face.screens.set({{{0, 0, 1280, 800}, {0, 60, 1280, 740}}});
    EXPECT_EQ(window()->geometry(), QRect(QPoint(712 - 180 - 60, 60 + 8 - 60), size));
    for (int number = 0; number < 9; ++number)
        desktop.open("App " + std::to_string(number), 10_MiB);
    turn(2);
    EXPECT_GT(window()->height(), size.height());
    face.windows.setCompositing(false);
    EXPECT_EQ(window()->width(), PanelView::width);
    EXPECT_FALSE(window()->mask().isEmpty());
    EXPECT_FALSE(window()->mask().contains(QPoint(0, 0)));
    const int y = window()->y();
    popover->close();
    face.screens.set({{{0, 0, 800, 800}, {0, 0, 800, 800}}});
    EXPECT_EQ(window()->y(), y) << "nobody sees it";
}

TEST_F(PopoverTest, ComesToRest) {
    desktop.open("Nota", 10_MiB);
    desktop.loop.settle();
    popover->show(std::nullopt);
    auto* panel = dynamic_cast<PanelView*>(window()->findChild<QWidget*>("PanelView"));
    int fittings = 0;
    const auto fit = panel->onResize;
    panel->onResize = [&] {
        ++fittings;
        fit();
    };
    turn(50);
    EXPECT_LT(fittings, 5);
    const int before = fittings;
    missSchedule();
    turn(50);
    EXPECT_GT(fittings, before);
    EXPECT_LT(fittings, before + 5);
}

TEST(PopoverPlace, HangsBelowTheIconAndNeverLeavesTheScreen) {
    const ScreenRect area{0, 30, 1280, 770};
    struct Case {
        std::optional<ScreenRect> icon;
        ScreenRect area;
        int x;
        int y;
    };
    for (const Case& one : {Case{ScreenRect{600, 4, 20, 20}, area, 430, 38},
                            Case{ScreenRect{1250, 4, 20, 20}, area, 1280 - 8 - 360, 38},
                            Case{ScreenRect{0, 4, 20, 20}, area, 8, 38},
                            Case{ScreenRect{600, 776, 20, 20}, {0, 0, 1280, 770}, 430, 262},
                            Case{std::nullopt, area, 1280 - 8 - 360, 38}}) {
        const PopoverPlace place = placePopover(one.icon, one.area, 360, 500);
        EXPECT_EQ(std::pair(place.x, place.y), std::pair(one.x, one.y));
    }
}

} // namespace
} // namespace velmorquit
