#include "Services/QuitController/QuitController.h"

#include "Texts/Localized.h"
#include "Texts/Shown.h"

#include <cmath>

namespace velmorquit {

namespace {

constexpr Duration progressInterval = 1s;
constexpr Duration betweenReadings = 2s;
constexpr int mostReadings = 10;
/// The clocks of the program and of the tool's records need not be the same.
constexpr Duration tolerance = 5s;

struct Records {
    TimeMachine::Info info;
    std::optional<WallTime> latest;
};

} // namespace

Task QuitController::runBackup() {
    const Desktop& desktop = desktop_;
    const WallTime started = desktop.loop.now();
    auto launched = TimeMachine::startBackup(desktop.children, desktop.backupTool);
    if (const auto* error = std::get_if<std::string>(&launched)) {
        backupOutcome_.give({BackupEnd::failed, shownText(*error)});
        co_return;
    }
    const auto process = std::get<std::shared_ptr<ChildProcess>>(launched);
    emit(events::BackupStarted{});

    int lastQuarter = 0;
    while (process->isRunning()) {
        co_await sleep(progressInterval);
        if (backupStop_)
            break;
        OffMain reading([&children = desktop.children, tool = desktop.backupTool] {
            return TimeMachine::status(children, tool);
        });
        const TimeMachine::Status status = co_await reading;
        publishProgress(status, lastQuarter);
    }
    if (!backupStop_ && process->status() != 0) {
        backupOutcome_.give({BackupEnd::failed, failureReason(*process)});
        co_return;
    }

    // The tool has ended well; what counts is that the backup is on record.
    for (int reading = 0; reading < mostReadings && !backupStop_; ++reading) {
        OffMain looking(
            [&files = desktop.files, &children = desktop.children, tool = desktop.backupTool] {
                return Records{TimeMachine::info(files, tool),
                               TimeMachine::latestBackupDate(children, tool)};
            });
        const Records records = co_await looking;
        timeMachine = records.info;
        const auto newest = std::max(records.info.lastBackup, records.latest);
        if (newest && *newest >= started - tolerance && !backupStop_) {
            backupOutcome_.give({BackupEnd::completed, {}});
            co_return;
        }
        if (backupStop_)
            break;
        nextReading_.clear();
        const Handle pause = desktop.loop.after(betweenReadings, [this] { nextReading_.give({}); });
        co_await nextReading_;
    }
    if (!backupStop_) {
        backupOutcome_.give({BackupEnd::failed, failureReason(*process)});
        co_return;
    }

    // The request that was noticed counts, whatever else is said while the tool stops.
    const BackupStop how = *backupStop_;
    OffMain stopping([&children = desktop.children, tool = desktop.backupTool] {
        TimeMachine::stopBackup(children, tool);
        return true;
    });
    co_await stopping;
    backupOutcome_.give(
        {how == BackupStop::cancel ? BackupEnd::cancelled : BackupEnd::skipped, {}});
}

/// Tells how far the backup is: each quarter that is passed once, the last one never.
void QuitController::publishProgress(const TimeMachine::Status& status, int& lastQuarter) {
    if (status.running)
        phase = phases::BackingUp{status.fraction};
    if (!status.fraction || !std::isfinite(*status.fraction))
        return;
    const int quarter = static_cast<int>(*status.fraction * 4);
    if (quarter >= 4 || quarter <= lastQuarter)
        return;
    emit(events::BackupProgress{quarter * 0.25});
    lastQuarter = quarter;
}

std::string QuitController::failureReason(const ChildProcess& process) {
    if (const auto message = TimeMachine::errorMessage(process))
        return localized("Time Machine: %@", shownText(*message));
    return localized("Time Machine non ha registrato un backup nuovo. Controlla che il disco sia "
                     "collegato.");
}

} // namespace velmorquit
