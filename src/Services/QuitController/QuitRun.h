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

/// The user's answer to a failed backup.
enum class FailureChoice { stop, goOn };

/// One run: it asks the applications to quit, waits for them, then backs up, ejects drives and ends
/// the session, as far as that is wanted. Destroying it stops it where it is; applications already
/// asked remain asked.
class QuitRun {
public:
    static constexpr Duration gracePeriod = 6s;
    static constexpr Duration pollInterval = 250ms;
    /// How often the reasons why applications stay are looked up.
    static constexpr Duration reasonInterval = 1s;
    /// For this long after the beginning, an application is still asked once its obstacle has gone.
    static constexpr Duration askingTime = 10min;
    static constexpr Duration unattendedGrace = 60s;
    /// A run that has waited this long for an answer lets the computer sleep, and announces the
    /// power action before it comes.
    static constexpr Duration longWait = 10min;

    /// All of it outlives the run.
    struct Surroundings {
        RunningApplications& applications;
        RunOptions& options;
        RunStatus& status;
        LastSession& lastSession;
        const EventFeed& events;
        std::function<void()> refresh;
        std::function<void()> letSleep; ///< ends other holds, as the session is about to end
    };

    QuitRun(const Desktop& desktop, Surroundings surroundings, PowerAction action,
            Attendance attendance);

    /// Whether the result is on show: another run may begin.
    [[nodiscard]] bool isOver() const { return stage_ == Stage::over; }
    /// The applications that are asked; none once they have gone or were left alone.
    [[nodiscard]] const std::vector<OpenApp>& targets() const;
    [[nodiscard]] bool isEjecting() const { return isEjecting_; }

    /// The user has asked that application.
    void noteAsked(ProcessId id);
    /// Leaves alone what is still open; nothing follows. Too late once the next step has begun.
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
    /// The action that follows; `none` as soon as it is dropped.
    PowerAction action_;
    RunResult result_;
    /// The wait for an answer took so long that nobody expects the power action any more.
    bool isLate_ = false;
    bool isEjecting_ = false;
    std::optional<RunTargets> targets_;
    std::optional<BackupStep> backup_;
    Answer<FailureChoice> choice_;
    Handle givingUp_; ///< ends the wait for that choice
    Handle waiting_;  ///< the wait for the user's answer, until it has lasted too long
    Handle waking_;   ///< tells when the computer has slept
    Handle sleepHold_;
    std::optional<Uptime> lookedAt_;
    /// The stages' work; declared last, so that it ends before all that it uses.
    Task<> polling_;
    Task<> following_;
};

} // namespace velmorquit
