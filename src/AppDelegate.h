#pragma once

#include "Platform/Desktop.h"
#include "Platform/DesktopFace.h"
#include "Platform/Notice.h"
#include "Services/Actions/ActionRunner.h"
#include "Services/AppUpdater.h"
#include "Services/MenuBar/MenuBarItem.h"
#include "Services/QuitController/QuitController.h"
#include "Services/Remote/RemoteControl.h"
#include "Services/RunNotice.h"
#include "Services/ScheduleNotice.h"
#include "Services/SessionEnd/EndNotice.h"
#include "Services/Settings.h"
#include "Theme/LookOwner.h"
#include "Views/ConfirmDialog.h"
#include "Views/PanelPopover.h"
#include "Views/TrayItem.h"

#include <memory>
#include <optional>

namespace velmorquit {

/// Owns the long-lived objects and connects them, in the order in which they start.
class AppDelegate {
public:
    /// Its desktop notices; they must outlive it.
    struct Notices {
        Notice& schedule;
        Notice& answers; ///< results of published actions
        Notice& end;     ///< how far the end of the session has come
        Notice& run;     ///< what a run is waiting for
    };

    AppDelegate(const Desktop& desktop, const DesktopFace& face, const Notices& notices);
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;
    ~AppDelegate();

    /// Ends the program in a later turn of the loop. A running run ends first, so that those
    /// waiting for it hear of that.
    void end();

private:
    void askThenEnd();
    void serveOthers(Notice& answers);
    void tellOfWaits();
    [[nodiscard]] std::unique_ptr<PanelView> makePanel();

    Desktop desktop_;
    Settings settings_;
    ActionRunner actions_;
    QuitController controller_;
    AppUpdater updater_;
    RemoteControl remoteControl_;
    ScheduleNotice scheduleNotice_;
    EndNotice endNotice_;
    RunNotice runNotice_;
    ConfirmDialog confirmDialog_;
    /// Separate, so that others' questions don't replace one that the user is being asked.
    ConfirmDialog callerDialog_;
    std::optional<Uptime> callerAgreedAt_;
    TrayItem trayItem_;
    LookOwner looks_;
    PanelPopover popover_;
    MenuBarItem menuBarItem_;
};

} // namespace velmorquit
