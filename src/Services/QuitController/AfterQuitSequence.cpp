#include "Model/AppTexts.h"
#include "Platform/LoginWindow.h"
#include "Services/QuitController/QuitRun.h"
#include "Texts/Joined.h"
#include "Texts/Localized.h"

#include <utility>

namespace velmorquit {

namespace {

/// So that the result can be seen before the session ends.
constexpr Duration beforePowerAction = 1200ms;

void noteEjected(std::vector<std::string>& notes, const ExternalDrives::Ejected& ejected) {
    if (ejected.count > 0)
        notes.push_back(ejectedText(ejected.count));
    if (!ejected.failed.empty())
        notes.push_back(localized("Non espulso: %@", joined(ejected.failed)));
}

} // namespace

// A listener may begin the next run only once the result is on show; until then the phase still
// belongs to this run.
Task<> QuitRun::follow(PowerAction planned) {
    stage_ = Stage::following;
    RunStatus& status = surroundings_.status;
    status.follow(action_);
    std::vector<std::string> notes;

    if (surroundings_.options.backupFirst && surroundings_.options.timeMachine->isConfigured) {
        status.enter(phases::BackingUp{});
        backup_.emplace(desktop_, BackupStep::Surroundings{
                                      .options = surroundings_.options,
                                      .events = surroundings_.events,
                                      .progress = [&status](std::optional<double> fraction) {
                                          status.enter(phases::BackingUp{fraction});
                                      }});
        Task<bool> backingUp = backUp(notes);
        if (!co_await backingUp) {
            stage_ = Stage::over;
            status.show(result_, joined(notes, " · "));
            status.end();
            sleepHold_.reset();
            co_return;
        }
    }
    if (surroundings_.options.ejectDrives && !ExternalDrives::connected(desktop_.volumes).empty()) {
        status.enter(phases::Ejecting{});
        Task<> ejecting = eject(notes);
        co_await ejecting;
    }

    stage_ = Stage::over;
    status.show(result_, notes.empty() ? std::nullopt : std::optional(joined(notes, " · ")));
    if (result_.closed > 0)
        surroundings_.events.tell(events::QuitDone{result_.closed});
    co_await unlessCancelled();
    if (planned != PowerAction::none) {
        Task<> acting = act(planned);
        co_await acting;
    }
    status.end();
    sleepHold_.reset();
}

/// False when the run ends with the backup.
Task<bool> QuitRun::backUp(std::vector<std::string>& notes) {
    Task<BackupStep::Outcome> backingUp = backup_->run();
    const BackupStep::Outcome outcome = co_await backingUp;
    backup_.reset();
    switch (outcome.end) {
    case BackupStep::End::completed:
        surroundings_.events.tell(events::BackupFinished{true});
        co_await unlessCancelled();
        notes.push_back(localized("Backup Time Machine completato"));
        co_return true;
    case BackupStep::End::skipped:
        notes.push_back(localized("Backup saltato"));
        co_return true;
    case BackupStep::End::cancelled:
        notes.push_back(localized("Backup annullato"));
        co_return false;
    case BackupStep::End::failed:
        break;
    }
    surroundings_.events.tell(events::BackupFinished{false});
    co_await unlessCancelled();
    waitForChoice(outcome.reason);
    const FailureChoice choice = co_await choice_;
    givingUp_.reset();
    waiting_.reset();
    holdSleep();
    notes.push_back(localized("Backup non riuscito"));
    co_return choice == FailureChoice::goOn;
}

void QuitRun::waitForChoice(const std::string& reason) {
    surroundings_.status.enter(phases::BackupFailed{reason});
    if (surroundings_.status.unattended) {
        surroundings_.status.continueAt(desktop_.loop.now() + unattendedGrace);
        givingUp_ = desktop_.loop.after(unattendedGrace,
                                        [this] { resolveBackupFailure(FailureChoice::goOn); });
    }
    beginWaiting();
}

Task<> QuitRun::eject(std::vector<std::string>& notes) {
    // Drives that the user began to eject before the run are reported separately.
    while (surroundings_.options.isEjectingAlone())
        co_await sleep(pollInterval);
    isEjecting_ = true;
    Task<ExternalDrives::Ejected> ejecting =
        ExternalDrives::ejectAll(desktop_.loop, desktop_.volumes);
    const ExternalDrives::Ejected ejected = co_await ejecting;
    isEjecting_ = false;
    surroundings_.events.tell(events::DisksEjected{ejected.count, ejected.failed});
    co_await unlessCancelled();
    noteEjected(notes, ejected);
}

/// Ends the session as planned, unless the action is dropped before.
Task<> QuitRun::act(PowerAction action) {
    if (action_ != PowerAction::none)
        desktop_.loginWindow.announce(*loginRequest(action));
    co_await sleep(beforePowerAction);
    if (action_ == PowerAction::none)
        co_return;
    const auto attendance =
        surroundings_.status.unattended ? Attendance::unattended : Attendance::attended;
    perform(action, {.attendance = attendance, .comesLate = isLate_}, desktop_.loginWindow,
            desktop_.log);
    // The session's end holds off sleep from here on. If it doesn't come, a pending schedule takes
    // its own hold again.
    sleepHold_.reset();
    surroundings_.letSleep();
}

void QuitRun::dropAction() {
    action_ = PowerAction::none;
    surroundings_.status.dropAction();
}

void QuitRun::stopBackup(BackupStop how) {
    if (backup_)
        backup_->stop(how);
}

void QuitRun::resolveBackupFailure(FailureChoice choice) {
    if (choice_.isAwaited())
        choice_.give(choice);
}

} // namespace velmorquit
