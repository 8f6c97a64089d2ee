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

/// The central object: which applications are open, which of them the user has excluded, and the
/// run that asks all others to quit. Each of its parts looks after one piece of state and publishes
/// it; the controller owns the run. All its operations return at once and none fails to its
/// caller.
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

    /// Watches the workspace and lists what is open. Both arguments must outlive it.
    QuitController(const Desktop& desktop, Settings& settings);
    QuitController(const QuitController&) = delete;
    QuitController& operator=(const QuitController&) = delete;

    /// Lists anew what is open.
    void refresh();

    /// Refreshes now and then every 2.5 s until `stopLiveUpdates`. Calling it twice is harmless.
    void startLiveUpdates();
    void stopLiveUpdates();

    /// Asks every application of `quittable` to quit, with `action` to follow; a newly started one
    /// only once it is known for certain. Does nothing while a run is in progress.
    /// An unattended run passes over a failed backup after a while.
    void quitAll(PowerAction action, Attendance attendance = Attendance::attended);

    /// Whether a run is in progress, including the steps that follow it.
    [[nodiscard]] bool isRunning() const { return run_ && !run_->isOver(); }

    /// The applications that the present run asks, with their figures from its beginning.
    [[nodiscard]] const std::vector<OpenApp>& targets() const;

    /// Asks one of the stubborn applications once more, because the user wants it. None when it was
    /// asked, else why not.
    std::optional<StayReason> askAgain(const OpenApp& app);

    /// Forces the stubborn applications to end, except those excluded meanwhile; the run then goes
    /// on by itself. Returns the names of those that the system protects.
    std::vector<std::string> forceQuitStubborn();

    /// Ends the run without anything to follow; applications still open are left alone.
    void leaveStubbornOpen();

    /// Ends the run wherever it is, leaves alone what is still open, and drops its power action. A
    /// running backup is stopped within a second; ejecting drives goes on.
    void cancelRun();

    /// Drops a power action that has not happened yet; false when there was none. The run itself
    /// goes on.
    bool cancelPowerAction();

    /// Stops the running backup, within a second.
    void stopBackup(BackupStop how);

    /// Answers the question after a failed backup. Without one nothing happens.
    void resolveBackupFailure(FailureChoice choice);

    /// Ejects the external drives outside a run; `disksEjected` tells the result. Does nothing
    /// while a run is in progress or drives are being ejected.
    void ejectNow();
    [[nodiscard]] bool isEjecting() const;

    /// Names of applications closed by the last run that can't be reopened and aren't open again.
    [[nodiscard]] std::vector<std::string> notReopenable() const;

    [[nodiscard]] MainLoop& mainLoop() const { return desktop_.loop; }

private:
    void observe();

    Desktop desktop_;
    std::optional<QuitRun> run_;
    Handle refreshTimer_;
    std::vector<Handle> observers_;
};

} // namespace velmorquit
