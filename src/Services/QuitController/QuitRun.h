#pragma once

#include "Loop/Task.h"
#include "Platform/LoginWindow.h"
#include "Services/QuitController/BackupStep.h"
#include "Services/QuitController/EventFeed.h"
#include "Services/QuitController/LastSession.h"
#include "Services/QuitController/RunOptions.h"
#include "Services/QuitController/RunStatus.h"
#include "Services/QuitController/RunTargets.h"
#include "Services/QuitController/RunningApplications.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velmorquit {

/// What the user says to a backup that has failed.
enum class FailureChoice { stop, goOn };

/// One run: it asks the applications to quit, waits for them, then makes a backup, ejects drives
/// and ends the session, as far as that is wanted. Destroying it ends it where it is; applications
/// that were asked stay so.
class QuitRun {
public:
    static constexpr Duration gracePeriod = 6s;
    static constexpr Duration pollInterval = 250ms;
    /// How often it is looked why the stubborn ones stay.
    static constexpr Duration reasonInterval = 1s;
    /// So long after the beginning an application is asked whose obstacle has gone.
    static constexpr Duration askingTime = 10min;
    static constexpr Duration unattendedGrace = 60s;
    /// A run that waits for an answer that long lets the computer sleep, and what was to follow it
    /// is announced before it comes.
    static constexpr Duration longWait = 10min;

    /// All of it outlives the run.
    struct Surroundings {
        RunningApplications& applications;
        RunOptions& options;
        RunStatus& status;
        LastSession& lastSession;
        const EventFeed& events;
        std::function<void()> refresh;
        std::function<void()> letSleep; ///< the session is about to end: nothing holds sleep off
    };

    QuitRun(const Desktop& desktop, Surroundings surroundings, PowerAction action,
            Attendance attendance);

    /// Whether the result is on show: another run may begin.
    [[nodiscard]] bool isOver() const { return stage_ == Stage::over; }
    /// The applications that are asked; none once they have gone or were left alone.
    [[nodiscard]] const std::vector<OpenApp>& targets() const;
    [[nodiscard]] bool isEjecting() const { return isEjecting_; }

    /// The user has asked that one.
    void noteAsked(ProcessId id);
    /// Leaves alone what is still open, without anything to follow. Too late once that has begun.
    void leave();
    void dropAction();
    void stopBackup(BackupStop how);
    void resolveBackupFailure(FailureChoice choice);

    [[nodiscard]] MainLoop& mainLoop() const { return desktop_.loop; }

private:
    enum class Stage { asking, asked, following, over };
    enum class AfterSteps { run, skip };

    Task<> poll(Uptime deadline);
    void look(std::vector<OpenApp> running);
    void finishAsking(AfterSteps steps);
    Task<> follow(PowerAction planned);
    Task<bool> backUp(std::vector<std::string>& notes);
    Task<> eject(std::vector<std::string>& notes);
    Task<> act(PowerAction action);
    void waitForChoice(const std::string& reason);
    void holdSleep();
    void beginWaiting();
    void conclude(std::optional<std::string> note);

    Desktop desktop_;
    Surroundings surroundings_;
    Stage stage_ = Stage::asking;
    /// What follows; `none` as soon as it is dropped.
    PowerAction action_;
    RunResult result_;
    /// It has waited for an answer for so long that nobody expects what follows.
    bool isLate_ = false;
    bool isEjecting_ = false;
    std::optional<RunTargets> targets_;
    std::optional<BackupStep> backup_;
    Answer<FailureChoice> choice_;
    Handle givingUp_; ///< the wait for that choice
    Handle waiting_;  ///< for an answer of the user's, since not too long ago
    Handle waking_;   ///< tells when the computer has slept
    Handle sleepHold_;
    std::optional<Uptime> lookedAt_;
    /// The work of a stage, which ends before all that it uses.
    Task<> polling_;
    Task<> following_;
};

} // namespace velmorquit
