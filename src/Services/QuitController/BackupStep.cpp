#include "Services/QuitController/BackupStep.h"

#include "Texts/Localized.h"
#include "Texts/Shown.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace velmorquit {

namespace {

constexpr Duration progressInterval = 1s;
constexpr Duration betweenReadings = 2s;
constexpr int mostReadings = 10;
/// The program's clock and that of the tool's records may differ.
constexpr Duration tolerance = 5s;

struct Records {
    TimeMachine::Info info;
    std::optional<WallTime> latest;
};

} // namespace

BackupStep::BackupStep(const Desktop& desktop, Surroundings surroundings)
    : desktop_(desktop), surroundings_(std::move(surroundings)) {}

Task<BackupStep::Outcome> BackupStep::run() {
    const Desktop& desktop = desktop_;
    const WallTime started = desktop.loop.now();
    auto launched = TimeMachine::startBackup(desktop.children, desktop.backupTool);
    if (const auto* error = std::get_if<std::string>(&launched))
        co_return Outcome{End::failed, shownText(*error)};
    const auto process = std::get<std::shared_ptr<ChildProcess>>(launched);
    surroundings_.events.tell(events::BackupStarted{});
    co_await unlessCancelled();

    Task<> watching = watch(*process);
    co_await watching;
    if (!stop_ && process->status() != 0)
        co_return failure(*process);
    // The tool has ended well, but only a backup that is on record counts.
    Task<bool> waiting = waitForRecord(started);
    if (co_await waiting)
        co_return Outcome{End::completed};
    if (!stop_)
        co_return failure(*process);

    // The first request counts, whatever the user says while the tool is stopping.
    const BackupStop how = *stop_;
    OffMain stopping([&children = desktop.children, tool = desktop.backupTool] {
        TimeMachine::stopBackup(children, tool);
        return true;
    });
    co_await stopping;
    co_return Outcome{how == BackupStop::cancel ? End::cancelled : End::skipped};
}

/// Reports how far the backup is: each quarter once as it is passed, except the last.
Task<> BackupStep::watch(const ChildProcess& process) {
    int lastQuarter = 0;
    while (process.isRunning()) {
        co_await sleep(progressInterval);
        if (stop_)
            co_return;
        OffMain reading([&children = desktop_.children, tool = desktop_.backupTool] {
            return TimeMachine::status(children, tool);
        });
        const TimeMachine::Status status = co_await reading;
        if (status.running)
            surroundings_.progress(status.fraction);
        if (!status.fraction || !std::isfinite(*status.fraction))
            continue;
        const int quarter = static_cast<int>(*status.fraction * 4);
        if (quarter >= 4 || quarter <= lastQuarter)
            continue;
        lastQuarter = quarter;
        surroundings_.events.tell(events::BackupProgress{quarter * 0.25});
        co_await unlessCancelled();
    }
}

/// True when the backup is on record; false when it isn't after all retries, or when stopped.
Task<bool> BackupStep::waitForRecord(WallTime started) {
    for (int reading = 0; reading < mostReadings && !stop_; ++reading) {
        OffMain looking(
            [&files = desktop_.files, &children = desktop_.children, tool = desktop_.backupTool] {
                return Records{TimeMachine::info(files, tool),
                               TimeMachine::latestBackupDate(children, tool)};
            });
        const Records records = co_await looking;
        surroundings_.options.noteBackups(records.info);
        const auto newest = std::max(records.info.lastBackup, records.latest);
        if (newest && *newest >= started - tolerance && !stop_)
            co_return true;
        if (stop_)
            break;
        nextReading_.clear();
        const Handle pause =
            desktop_.loop.after(betweenReadings, [this] { nextReading_.give({}); });
        co_await nextReading_;
    }
    co_return false;
}

void BackupStep::stop(BackupStop how) {
    stop_ = how;
    nextReading_.give({});
}

BackupStep::Outcome BackupStep::failure(const ChildProcess& process) {
    if (const auto message = TimeMachine::errorMessage(process))
        return {End::failed, localized("Time Machine: %@", shownText(*message))};
    return {End::failed, localized("Time Machine non ha registrato un backup nuovo. Controlla che "
                                   "il disco sia collegato.")};
}

} // namespace velmorquit
