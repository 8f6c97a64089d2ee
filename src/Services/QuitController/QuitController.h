#pragma once

#include "Services/QuitController/EventFeed.h"
#include "Services/QuitController/LastSession.h"
#include "Services/QuitController/QuitRun.h"
#include "Services/QuitController/RunOptions.h"
#include "Services/QuitController/RunStatus.h"
#include "Services/QuitController/RunningApplications.h"
#include "Services/QuitController/Scheduler.h"

#include <optional>
#include <string>
#include <vector>

namespace velmorquit {

/// The one central object: which applications are open, which of them the user has excluded, and
/// the run that asks all others to quit. It publishes what its parts publish, each of which looks
/// after a state of its own, and owns the run. All its operations return at once and none fails to
/// its caller.
class QuitController : public EventFeed,
                       public RunningApplications,
                       public RunOptions,
                       public RunStatus,
                       public LastSession,
                       public Scheduler {
public:
    static constexpr Duration refreshInterval = 2500ms;

    using BackupStop = velmorquit::BackupStop;
    using FailureChoice = velmorquit::FailureChoice;

    /// Watches the workspace and lists what is open. Both outlive it.
    QuitController(const Desktop& desktop, Settings& settings);
    QuitController(const QuitController&) = delete;
    QuitController& operator=(const QuitController&) = delete;

    /// Lists anew what is open.
    void refresh();

    /// Refreshes now and then every 2.5 s until `stopLiveUpdates`. Starting again is no error.
    void startLiveUpdates();
    void stopLiveUpdates();

    /// Asks every application of `quittable` to quit, with `action` to follow; one that has only
    /// just shown itself once it is known for good. Does nothing while a run is in progress.
    void quitAll(PowerAction action) { begin(action, Attendance::attended); }

    /// Whether a run is in progress, what follows it included.
    [[nodiscard]] bool isRunning() const { return run_ && !run_->isOver(); }

    /// The applications that the present run asks, with their figures of its beginning.
    [[nodiscard]] const std::vector<OpenApp>& targets() const;

    /// Asks one of the stubborn applications once more, since the user says so. None when it was
    /// asked, else why not.
    std::optional<StayReason> askAgain(const OpenApp& app);

    /// Makes the stubborn applications end, but for those excluded meanwhile; the run then goes on
    /// by itself. Returns the names of those that the system protects.
    std::vector<std::string> forceQuitStubborn();

    /// Ends the run, leaving alone whatever is still open, without anything to follow.
    void leaveStubbornOpen();

    /// Ends the run wherever it is, leaving alone whatever is still open, and drops its power
    /// action. A running backup is stopped, within a second; drives that are being ejected go on.
    void cancelRun();

    /// Drops a power action that has not happened yet; false when there was none. The run itself
    /// goes on.
    bool cancelPowerAction();

    /// Stops the running backup, within a second.
    void stopBackup(BackupStop how);

    /// Answers the question after a failed backup. Without one nothing happens.
    void resolveBackupFailure(FailureChoice choice);

    /// Ejects the external drives by themselves; `disksEjected` tells the result. Does nothing
    /// while a run is in progress or drives are being ejected.
    void ejectNow();
    [[nodiscard]] bool isEjecting() const;

    /// Names of what the last run has closed for good, and nobody has started again since.
    [[nodiscard]] std::vector<std::string> notReopenable() const;

    [[nodiscard]] MainLoop& mainLoop() const { return desktop_.loop; }

private:
    void begin(PowerAction action, Attendance attendance);
    void observe();

    Desktop desktop_;
    std::optional<QuitRun> run_;
    Handle refreshTimer_;
    std::vector<Handle> observers_;
};

} // namespace velmorquit
