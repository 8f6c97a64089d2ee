#include "Services/QuitController/QuitController.h"

#include "Platform/LoginWindow.h"
#include "Texts/Localized.h"

#include <string_view>

namespace velmorquit {

namespace {

/// So that the result can be seen before the session ends.
constexpr Duration beforePowerAction = 1200ms;

std::string joined(const std::vector<std::string>& texts, std::string_view separator) {
    std::string all;
    for (const std::string& text : texts)
        all += (all.empty() ? "" : std::string(separator)) + text;
    return all;
}

void noteEjected(std::vector<std::string>& notes, const ExternalDrives::Ejected& ejected) {
    if (ejected.count == 1)
        notes.push_back(localized("1 disco espulso"));
    else if (ejected.count > 1)
        notes.push_back(localized("%lld dischi espulsi", ejected.count));
    if (!ejected.failed.empty())
        notes.push_back(localized("Non espulso: %@", joined(ejected.failed, ", ")));
}

} // namespace

// Whoever hears of an event may start the next run only after the result is on show: until then the
// phase is that of this one.
Task QuitController::afterApps(RunResult result, PowerAction action) {
    const int number = runNumber_;
    unfollowedResult_.reset();
    runningAction = isActionDropped_ ? PowerAction::none : action;
    std::vector<std::string> notes;

    if (backupFirst && timeMachine->isConfigured) {
        backupOutcome_.clear();
        backupStop_.reset();
        phase = phases::BackingUp{};
        backupTask_ = runBackup();
        const BackupOutcome outcome = co_await backupOutcome_;
        if (outcome.end == BackupEnd::completed) {
            emit(events::BackupFinished{true});
            notes.push_back(localized("Backup Time Machine completato"));
        } else if (outcome.end == BackupEnd::skipped) {
            notes.push_back(localized("Backup saltato"));
        } else if (outcome.end == BackupEnd::cancelled) {
            showResult(result, localized("Backup annullato"));
            resetSequence(number);
            co_return;
        } else {
            emit(events::BackupFinished{false});
            phase = phases::BackupFailed{outcome.reason};
            failureChoice_.clear();
            if (unattended) {
                autoContinueAt = desktop_.loop.now() + unattendedGrace;
                unattendedTask_ = continueUnattended();
            }
            beginAsking();
            const FailureChoice choice = co_await failureChoice_;
            unattendedTask_.cancel();
            asking_.reset();
            holdSleepForRun();
            if (choice == FailureChoice::stop) {
                showResult(result, localized("Backup non riuscito"));
                resetSequence(number);
                co_return;
            }
            notes.push_back(localized("Backup non riuscito"));
        }
    }

    if (ejectDrives && !ExternalDrives::connected(desktop_.volumes).empty()) {
        phase = phases::Ejecting{};
        // What the user had begun to eject before has a result of its own.
        while (ejectNowTask_.isActive())
            co_await sleep(pollInterval);
        ejected_.clear();
        ejectTask_ = ExternalDrives::ejectAll(desktop_.loop, desktop_.volumes, ejected_);
        const ExternalDrives::Ejected ejected = co_await ejected_;
        emit(events::DisksEjected{ejected.count, ejected.failed});
        noteEjected(notes, ejected);
    }

    showResult(result, notes.empty() ? std::nullopt : std::optional(joined(notes, " · ")));
    if (result.closed > 0)
        emit(events::QuitDone{result.closed});
    if (action != PowerAction::none) {
        if (number == runNumber_ && !isActionDropped_)
            desktop_.loginWindow.announce(*loginRequest(action));
        co_await sleep(beforePowerAction);
        // A run that has begun meanwhile brings its own action.
        if (number == runNumber_ && !isActionDropped_) {
            const auto attendance = unattended ? Attendance::unattended : Attendance::attended;
            perform(action, {.attendance = attendance, .comesLate = isLate_}, desktop_.loginWindow,
                    desktop_.log);
            // Whoever took it holds off sleep from here on. A pending schedule takes its own hold
            // again if the session doesn't end.
            runActivity_.reset();
            sleepActivity_.reset();
        }
    }
    resetSequence(number);
}

/// What belongs to a sequence goes with it, unless it is another run's by now.
void QuitController::resetSequence(int number) {
    if (number != runNumber_)
        return;
    unattended = false;
    autoContinueAt = std::nullopt;
    runningAction = PowerAction::none;
    runActivity_.reset();
}

Task QuitController::continueUnattended() {
    co_await sleep(unattendedGrace);
    resolveBackupFailure(FailureChoice::goOn);
}

void QuitController::resolveBackupFailure(FailureChoice choice) {
    if (failureChoice_.isAwaited())
        failureChoice_.give(choice);
}

void QuitController::ejectNow() {
    if (!isRunning() && !isEjecting())
        ejectNowTask_ = ejectByThemselves();
}

Task QuitController::ejectByThemselves() {
    ejectedNow_.clear();
    ejectAllNowTask_ = ExternalDrives::ejectAll(desktop_.loop, desktop_.volumes, ejectedNow_);
    const ExternalDrives::Ejected ejected = co_await ejectedNow_;
    emit(events::DisksEjected{ejected.count, ejected.failed});
}

bool QuitController::cancelPowerAction() {
    const bool isToFollow =
        pendingAction.get() != PowerAction::none || runningAction.get() != PowerAction::none;
    pendingAction = PowerAction::none;
    runningAction = PowerAction::none;
    isActionDropped_ = true;
    const bool wasAskedFor = desktop_.loginWindow.cancel();
    return isToFollow || wasAskedFor;
}

void QuitController::cancelRun() {
    cancelPowerAction();
    leaveStubbornOpen();
    if (is<phases::BackingUp>(phase))
        stopBackup(BackupStop::cancel);
    resolveBackupFailure(FailureChoice::stop);
}

void QuitController::stopBackup(BackupStop how) {
    backupStop_ = how;
    nextReading_.give({});
}

} // namespace velmorquit
