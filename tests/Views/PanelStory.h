#pragma once

#include "Services/AppUpdater.h"
#include "Services/QuitController/QuitController.h"
#include "Simulated/SimulatedDesktop.h"
#include "Simulated/SimulatedFace.h"
#include "Theme/AppTheme.h"
#include "Theme/Label.h"
#include "Views/PanelFrame.h"
#include "Views/PanelView.h"

#include <QAbstractButton>
#include <QApplication>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace velmorquit {

/// The panel on a simulated desktop, on the screen of the offscreen platform.
class PanelStory : public testing::Test {
protected:
    ~PanelStory() override { AppTheme::setLook({}); }

    /// Call it once the stage is set.
    QuitController& start() {
        controller.reset();
        settings = std::make_unique<Settings>(desktop.loop, desktop.preferences);
        controller = std::make_unique<QuitController>(desktop.ports(), *settings);
        updater = std::make_unique<AppUpdater>(desktop.loop);
        frame =
            std::make_unique<PanelFrame>(new PanelView(*controller, *updater, desktop.ports(), {}));
        desktop.loop.settle();
        desktop.startLog();
        frame->fit(height);
        frame->show();
        settle();
        return *controller;
    }

    /// Leaves a note of a schedule that came to nothing.
    void missSchedule() {
        controller->scheduleQuit(desktop.loop.now() + 1min, PowerAction::none);
        desktop.loop.fallAsleep(10min);
    }

    /// Lets the desktop and the toolkit come to rest.
    void settle() {
        desktop.loop.settle();
        QApplication::processEvents();
        frame->fit(height);
        QApplication::processEvents();
    }
    void advance(Duration time) {
        desktop.advance(time);
        settle();
    }

    template <class Widget = QWidget> Widget* find(const char* name) const {
        auto* found = frame->findChild<Widget*>(QString::fromLatin1(name));
        if (!found)
            ADD_FAILURE() << "no " << name;
        return found;
    }
    [[nodiscard]] bool isShown(const char* name) const {
        const auto* found = frame->findChild<QWidget*>(QString::fromLatin1(name));
        return found && found->isVisible();
    }
    [[nodiscard]] std::string text(const char* name) const {
        const QWidget* widget = find(name);
        if (const auto* label = qobject_cast<const QLabel*>(widget))
            return label->text().toStdString();
        const auto* button = qobject_cast<const QAbstractButton*>(widget);
        return button ? button->text().toStdString() : std::string();
    }
    /// A line for each, as it is seen: its text, "-" where it is hidden, in brackets where it is
    /// off.
    [[nodiscard]] std::string seen(std::initializer_list<const char*> names) const {
        std::string all;
        for (const char* name : names) {
            const std::string one = isShown(name) ? text(name) : "-";
            all += (one == "-" || find(name)->isEnabled() ? one : '[' + one + ']') + '\n';
        }
        return all;
    }
    void click(const char* name) {
        QTest::mouseClick(find(name), Qt::LeftButton);
        settle();
    }

    SimulatedDesktop desktop;
    SimulatedFace face;
    int height = 1000;
    std::unique_ptr<Settings> settings;
    std::unique_ptr<QuitController> controller;
    std::unique_ptr<AppUpdater> updater;
    std::unique_ptr<PanelFrame> frame;
};

} // namespace velmorquit
