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

/// An updater whose findings each picture sets.
struct StageUpdater : AppUpdater {
    using AppUpdater::AppUpdater;
    using AppUpdater::publish;
};

/// The simulated desktop for one picture, and the program on it. It always begins at the same
/// moment of virtual time, and nothing moves by itself, so the pictures are the same every time.
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

    /// Opens the demonstration applications with these English names; the usual eight by default.
    void open(const std::vector<std::string>& names = {});
    void exclude(const std::vector<std::string>& names);
    void useMemory(double gibibytes);
    /// Makes the user's font half as large again.
    void enlargeType();

    /// Starts the program, once the desktop is set up.
    QuitController& start();
    /// The same with the usual applications, two of them excluded, and a place for backups.
    QuitController& startUsually();
    void openPanel();
    /// The icon's menu, with its first entry selected.
    void openQuickMenu();
    /// Requests the action from outside, so that its question is on the screen.
    void askFor(const ActionRequest& request);
    /// A window that belongs to no program.
    void show(std::unique_ptr<QWidget> window);
    /// Lets the time pass, and everything settle.
    void advance(Duration time);

    /// The program's widget with this object name.
    [[nodiscard]] QWidget& widget(const char* name) const;
    /// Moves the pointer into the middle of the widget.
    void pointAt(const QWidget& widget);
    void click(const char* name);
    /// The applications closed by the last run, three hours ago, by their English names.
    void rememberClosed(const std::vector<std::string>& names);

    /// All open windows, on a dark background.
    [[nodiscard]] QImage photograph() const;

    SimulatedDesktop desktop;
    SimulatedFace face;
    Settings settings{desktop.loop, desktop.preferences};
    StageUpdater updater{desktop.loop};

private:
    void settle();
    /// A place away from the top and from the edges.
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
