#pragma once

#include "Platform/Formats.h"
#include "Services/Actions/ActionRunner.h"
#include "Services/AppUpdater.h"
#include "Services/QuitController/QuitController.h"
#include "Services/Settings.h"
#include "Simulated/SimulatedDesktop.h"
#include "Simulated/SimulatedFace.h"
#include "StageScreens.h"
#include "Texts/Language.h"
#include "Theme/LookOwner.h"
#include "Views/ConfirmDialog.h"
#include "Views/PanelPopover.h"

#include <QFont>
#include <QImage>

#include <memory>
#include <string>
#include <vector>

class QWidget;

namespace velmorquit {

/// One that has found what a picture is to show.
struct StageUpdater : AppUpdater {
    using AppUpdater::AppUpdater;
    using AppUpdater::publish;
};

/// The simulated desktop for one picture, and the program on it. It begins at the same moment of
/// virtual time, and nothing on it moves by itself: what is drawn is the same every time.
class Stage {
public:
    struct Setting {
        Language language;
        const Formats& formats;
        StageScreens::Kind screen;
        int scale;
    };

    explicit Stage(const Setting& setting);
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;
    ~Stage();

    [[nodiscard]] Language language() const { return setting_.language; }

    /// Opens the demonstration applications of these English names; without any the usual eight.
    void open(const std::vector<std::string>& names = {});
    void exclude(const std::vector<std::string>& names);
    void useMemory(double gibibytes);
    /// The user's own type becomes half as large again.
    void enlargeType();

    /// Lets the program begin, once the desktop is as it is to be.
    QuitController& start();
    /// With the usual applications, two of them excluded, and a place for backups.
    QuitController& startUsually();
    void openPanel();
    /// The icon's menu, with its first entry chosen.
    void openQuickMenu();
    /// Asks the program for that from outside, so that its question is on the screen.
    void askFor(const ActionRequest& request);
    /// A window that belongs to no program.
    void show(std::unique_ptr<QWidget> window);
    /// Lets the time pass, and all settle that follows from it.
    void advance(Duration time);

    /// The one of the program's widgets that has this object name.
    [[nodiscard]] QWidget& widget(const char* name) const;
    /// Moves the pointer into the middle of the widget.
    void pointAt(const QWidget& widget);
    void click(const char* name);
    /// What the last run has closed, three hours ago, by the English names.
    void rememberClosed(const std::vector<std::string>& names);

    /// All windows that are open, on a dark ground.
    [[nodiscard]] QImage photograph() const;

    SimulatedDesktop desktop;
    SimulatedFace face;
    Settings settings{desktop.loop, desktop.preferences};
    StageUpdater updater{desktop.loop};

private:
    void settle();
    /// Where something stands that is neither at the top nor at the edge.
    [[nodiscard]] QPoint middle() const;

    Setting setting_;
    QFont font_;
    std::unique_ptr<QuitController> controller_;
    LookOwner looks_{face.appearance};
    std::unique_ptr<PanelPopover> popover_;
    ConfirmDialog dialog_;
    std::unique_ptr<ActionRunner> actions_;
    std::unique_ptr<QWidget> window_;
};

} // namespace velmorquit
