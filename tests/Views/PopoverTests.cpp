#include "Theme/LookOwner.h"
#include "Views/PanelPopover.h"
#include "Views/PanelStory.h"
#include "Views/PopoverPlace.h"
#include "support/Waiting.h"

#include <QApplication>
#include <QTest>

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
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() == QLatin1String("PanelPopover"))
                return widget;
        }
        return nullptr;
    }

    void pressAt(const QPoint& place) {
        face.screens.point({place.x(), place.y()});
        face.windows.press();
    }

    int panelsMade = 0;
    int closings = 0;
    LookOwner looks{face.appearance};
    std::unique_ptr<PanelPopover> popover;
};

TEST_F(PopoverTest, IsMadeWhenItIsOpenedAndKept) {
    EXPECT_EQ(panelsMade, 0);
    popover->show(std::nullopt);
    EXPECT_TRUE(waitUntil([this] { return popover->isDrawn(); }));
    desktop.loop.settle();
    EXPECT_EQ(face.windows.activated, window()->winId());
    EXPECT_EQ(window()->focusWidget()->objectName(), "PanelView");
    popover->show(std::nullopt);
    popover->close();
    popover->close();
    EXPECT_EQ(closings, 1);
    EXPECT_FALSE(window()->isVisible());
    popover->show(std::nullopt);
    EXPECT_EQ(panelsMade, 1);
    popover->close();
    face.appearance.highContrast = true;
    popover->show(std::nullopt);
    EXPECT_EQ(panelsMade, 2);
}

TEST_F(PopoverTest, OpenedByItselfItLeavesKeyboardAndPressesToOthersAtFirst) {
    popover->showAside(std::nullopt);
    EXPECT_TRUE(waitUntil([this] { return popover->isDrawn(); }));
    desktop.loop.settle();
    EXPECT_EQ(face.windows.activated, 0U);
    EXPECT_EQ(face.windows.inputArea.width, 0);
    pressAt(QPoint(5, 400));
    EXPECT_TRUE(popover->isShown());
    desktop.advance(1s);
    EXPECT_EQ(face.windows.inputArea.width, PanelView::width);
    EXPECT_EQ(face.windows.activated, 0U);
    popover->show(std::nullopt);
    EXPECT_EQ(face.windows.activated, window()->winId());
    pressAt(QPoint(5, 400));
    EXPECT_FALSE(popover->isShown());
}

TEST_F(PopoverTest, ClosesOnAPressOutsideAndOnEscape) {
    const ScreenRect icon{600, 0, 24, 24};
    popover->show(icon);
    const QWidget* panel = window()->findChild<QWidget*>(QStringLiteral("PanelView"));
    pressAt(panel->mapToGlobal(QPoint(10, 10)));
    EXPECT_TRUE(popover->isShown());
    // What a press on the icon means is for the icon to tell.
    pressAt(QPoint(610, 10));
    EXPECT_TRUE(popover->isShown());
    pressAt(QPoint(5, 400));
    EXPECT_FALSE(popover->isShown());
    EXPECT_TRUE(popover->wasClosedByLastPress());
    pressAt(QPoint(5, 400));
    EXPECT_FALSE(popover->wasClosedByLastPress());

    popover->show(icon);
    QTest::keyClick(window()->focusWidget(), Qt::Key_Escape);
    EXPECT_FALSE(popover->isShown());
    EXPECT_FALSE(popover->wasClosedByLastPress());
    EXPECT_EQ(closings, 2);
}

TEST_F(PopoverTest, WindowsThatComeToTheFrontCloseItUnlessARunGoesOn) {
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
    pressAt(QPoint(5, 400));
    EXPECT_TRUE(popover->wasClosedByLastPress());
}

TEST_F(PopoverTest, GrowsWithWhatItShowsAndStaysOnTheScreen) {
    popover->show(std::nullopt);
    const int before = window()->height();
    for (int number = 0; number < 9; ++number)
        desktop.open("App " + std::to_string(number), 10_MiB);
    desktop.loop.settle();
    QApplication::processEvents();
    QApplication::processEvents();
    EXPECT_GT(window()->height(), before);
    face.windows.setCompositing(false);
    EXPECT_EQ(window()->width(), PanelView::width);
    EXPECT_FALSE(window()->mask().isEmpty());
    EXPECT_FALSE(window()->mask().contains(QPoint(0, 0)));
}

TEST_F(PopoverTest, FindsItsPlaceAgainOnOtherScreens) {
    const ScreenRect icon{700, 0, 24, 24};
    popover->show(icon);
    const QSize size = window()->size();
    EXPECT_EQ(window()->geometry().right() - 48, 800 - 8 - 1);
    face.screens.set({{{0, 0, 1280, 800}, {0, 60, 1280, 740}}});
    EXPECT_EQ(window()->geometry(), QRect(QPoint(712 - 180 - 48, 60 + 8 - 48), size));
    popover->close();
    face.screens.set({{{0, 0, 800, 800}, {0, 0, 800, 800}}});
    EXPECT_EQ(window()->y(), 60 + 8 - 48) << "nobody sees it";
}

// A window manager has heard of it only when it is on the screen.
TEST_F(PopoverTest, SaysWhereItTakesPressesOnceItIsOnTheScreen) {
    popover->show(std::nullopt);
    face.windows.inputArea = {};
    EXPECT_TRUE(waitUntil([this] { return face.windows.inputArea.width == PanelView::width; }));
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
    for (int turn = 0; turn < 50; ++turn) {
        desktop.loop.settle();
        QApplication::processEvents();
    }
    EXPECT_LT(fittings, 5);
    const int before = fittings;
    missSchedule();
    for (int turn = 0; turn < 50; ++turn) {
        desktop.loop.settle();
        QApplication::processEvents();
    }
    EXPECT_GT(fittings, before);
    EXPECT_LT(fittings, before + 5);
}

TEST(PopoverPlace, HangsBelowTheIconAndNeverLeavesTheScreen) {
    const ScreenRect area{0, 30, 1280, 770};
    const PopoverPlace below = placePopover(ScreenRect{600, 4, 20, 20}, area, 360, 500);
    EXPECT_EQ(below.x, 430);
    EXPECT_EQ(below.y, 38);
    EXPECT_EQ(placePopover(ScreenRect{1250, 4, 20, 20}, area, 360, 500).x, 1280 - 8 - 360);
    EXPECT_EQ(placePopover(ScreenRect{0, 4, 20, 20}, area, 360, 500).x, 8);
    const PopoverPlace above =
        placePopover(ScreenRect{600, 776, 20, 20}, {0, 0, 1280, 770}, 360, 500);
    EXPECT_EQ(above.y, 770 - 8 - 500);
    const PopoverPlace corner = placePopover(std::nullopt, area, 360, 500);
    EXPECT_EQ(corner.x, 1280 - 8 - 360);
    EXPECT_EQ(corner.y, 38);
}

} // namespace
} // namespace velmorquit
