#include "Services/QuitController/QuitController.h"

#include "Platform/LoginWindow.h"
#include "Platform/Volumes.h"
#include "Platform/Workspace.h"

#include <algorithm>

namespace velmorquit {

QuitController::QuitController(const Desktop& desktop, Settings& settings)
    : RunningApplications(desktop, settings), RunOptions(desktop, settings), RunStatus(desktop),
      LastSession(desktop, settings),
      Scheduler(desktop, settings,
                {.begin = [this](PowerAction action,
                                 Attendance attendance) { quitAll(action, attendance); },
                 .events = *this}),
      desktop_(desktop) {
    observe();
    refresh();
}

void QuitController::observe() {
    observers_.push_back(desktop_.workspace.observe([this](const WorkspaceChanges& changes) {
        if (hasAnyOf(changes, {WorkspaceEvent::launched, WorkspaceEvent::terminated,
                               WorkspaceEvent::policyChanged}))
            refresh();
    }));
    observers_.push_back(desktop_.volumes.observe([this] { refresh(); }));
}

void QuitController::refresh() {
    listApplications();
    lookAround();
}

void QuitController::startLiveUpdates() {
    refresh();
    refreshTimer_ = desktop_.loop.every(refreshInterval, [this] { refresh(); });
}

void QuitController::stopLiveUpdates() { refreshTimer_.reset(); }

void QuitController::quitAll(PowerAction action, Attendance attendance) {
    if (isRunning())
        return;
    // An earlier run that is about to end the session gives way to this one.
    run_.reset();
    run_.emplace(desktop_,
                 QuitRun::Surroundings{.applications = *this,
                                       .options = *this,
                                       .status = *this,
                                       .lastSession = *this,
                                       .events = *this,
                                       .refresh = [this] { refresh(); },
                                       .letSleep = [this] { letSleep(); }},
                 action, attendance);
}

const std::vector<OpenApp>& QuitController::targets() const {
    static const std::vector<OpenApp> none;
    return run_ ? run_->targets() : none;
}

std::optional<StayReason> QuitController::askAgain(const OpenApp& app) {
    if (isExcluded(app))
        return StayReason::cannotBeAsked;
    if (const auto obstacle = app.app->obstacle())
        return obstacle;
    if (!app.app->terminate(AskedBy::user))
        return StayReason::cannotBeAsked;
    if (run_)
        run_->noteAsked(app.id);
    return std::nullopt;
}

std::vector<std::string> QuitController::forceQuitStubborn() {
    std::vector<std::string> refused;
    const std::vector<OpenApp> forced = stubborn;
    for (const OpenApp& app : forced) {
        if (!isExcluded(app) && !app.app->forceTerminate())
            refused.push_back(app.name);
    }
    return refused;
}

void QuitController::leaveStubbornOpen() {
    if (run_)
        run_->leave();
}

void QuitController::cancelRun() {
    cancelPowerAction();
    leaveStubbornOpen();
    stopBackup(BackupStop::cancel);
    resolveBackupFailure(FailureChoice::stop);
}

bool QuitController::cancelPowerAction() {
    const bool isToFollow =
        pendingAction.get() != PowerAction::none || runningAction.get() != PowerAction::none;
    if (run_)
        run_->dropAction();
    const bool wasAskedFor = desktop_.loginWindow.cancel();
    return isToFollow || wasAskedFor;
}

void QuitController::stopBackup(BackupStop how) {
    if (run_)
        run_->stopBackup(how);
}

void QuitController::resolveBackupFailure(FailureChoice choice) {
    if (run_)
        run_->resolveBackupFailure(choice);
}

void QuitController::ejectNow() {
    if (isRunning() || isEjecting())
        return;
    eject([this](const ExternalDrives::Ejected& ejected) {
        tell(events::DisksEjected{ejected.count, ejected.failed});
    });
}

bool QuitController::isEjecting() const {
    return isEjectingAlone() || (run_ && run_->isEjecting());
}

std::vector<std::string> QuitController::notReopenable() const {
    std::vector<std::string> lost = closedForGood;
    std::erase_if(lost, [this](const std::string& name) {
        return std::ranges::any_of(apps.get(),
                                   [&name](const OpenApp& app) { return app.name == name; });
    });
    return lost;
}

} // namespace velmorquit
