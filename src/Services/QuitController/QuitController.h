#pragma once

#include "Loop/Published.h"
#include "Loop/Task.h"
#include "Loop/Told.h"
#include "Model/Event.h"
#include "Model/Phase.h"
#include "Model/PowerAction.h"
#include "Model/SavedApp.h"
#include "Model/ScheduledQuit.h"
#include "Platform/Desktop.h"
#include "Platform/Workspace.h"
#include "Services/ExternalDrives.h"
#include "Services/MemoryMonitor.h"
#include "Services/QuitController/OpenApp.h"
#include "Services/TimeMachine.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

namespace velmorquit {

/// The one central object: which applications are open, which of them the user has excluded, and
/// the run that asks all others to quit. All its operations return at once and none fails to its
/// caller.
class QuitController {
public:
    static constexpr Duration gracePeriod = 6s;
    static constexpr Duration pollInterval = 250ms;
    /// How long an application lives on without windows before it is asked once more, in the way
    /// that is left, after the grace period.
    static constexpr Duration windowlessPatience = 1s;
    /// How often it is looked why the stubborn ones stay.
    static constexpr Duration reasonInterval = 1s;
    /// So long after a run's beginning an application that could not be asked, for an obstacle, is
    /// asked when that goes; but not while it is used, nor soon after that.
    static constexpr Duration askingTime = 10min;
    static constexpr Duration restBeforeAsking = 30s;
    /// An obstacle that is gone so soon was none.
    static constexpr Duration beginning = 3s;
    static constexpr Duration refreshInterval = 2500ms;
    static constexpr Duration resultTime = 8s;
    static constexpr Duration unattendedGrace = 60s;
    /// A run that waits for an answer that long lets the computer sleep, and what was to follow it
    /// is announced before it comes.
    static constexpr Duration longWait = 10min;
    /// What was closed so long ago is not offered any more to a program that starts.
    static constexpr Duration lastSessionAge = 7 * 24h;

    /// How the user stops a running backup.
    enum class BackupStop {
        skip,   ///< and goes on with what follows
        cancel, ///< and ends the run
    };
    /// What the user says to a backup that has failed.
    enum class FailureChoice { stop, goOn };

    /// Reads the preferences, watches the workspace and lists what is open.
    explicit QuitController(const Desktop& desktop);

    /// Open applications, most memory first.
    Published<std::vector<OpenApp>> apps;
    /// How much of the session was seen when they were listed.
    Published<Sight> sight;
    Published<Phase> phase;
    /// Those still open after the grace period of the present run.
    Published<std::vector<OpenApp>> stubborn;
    /// Why each of the stubborn ones is still there, by process.
    Published<std::map<ProcessId, StayReason>> stayReasons;
    Published<MemoryMonitor::SystemMemory> systemMemory;
    /// Exclusion keys of the applications that a run leaves alone.
    Published<std::set<std::string>> excluded;
    Published<PowerAction> afterQuit;
    /// Whether a run is followed by a backup, where there is a place for one.
    Published<bool> backupFirst;
    /// Whether a run is followed by ejecting the external drives.
    Published<bool> ejectDrives;
    Published<TimeMachine::Info> timeMachine;
    Published<std::vector<ExternalDrives::Drive>> externalDrives;
    /// What the user should know of the result beyond its figures.
    Published<std::optional<std::string>> resultNote;
    /// Nobody attends the present run: a failed backup is passed over after a while.
    Published<bool> unattended;
    /// When that happens, by the wall clock; none otherwise.
    Published<std::optional<WallTime>> autoContinueAt;
    /// What is to follow once the applications that were asked have gone; `none` from then on.
    Published<PowerAction> pendingAction;
    /// What the running sequence ends with; `none` outside one.
    Published<PowerAction> runningAction;
    /// What the last run that closed anything has closed, most memory first.
    Published<std::vector<SavedApp>> lastSession;
    /// Names of what that run has closed too, but that no file starts. They aren't stored.
    Published<std::vector<std::string>> closedForGood;

    /// The run that is to begin later; it isn't kept across starts.
    Published<std::optional<ScheduledQuit>> schedule;
    /// Its moment has come, and the user is asked whether it is to begin.
    Published<bool> awaitingConfirmation;
    /// Whether the user wants to be asked then.
    Published<bool> confirmScheduled;
    /// What the user should know of a schedule that came to nothing.
    Published<std::optional<std::string>> scheduleNote;

    /// Calls `heard` with every event the moment it happens; it may call any operation.
    [[nodiscard]] Handle hearEvents(std::function<void(const Event&)> heard) {
        return events_.hear(std::move(heard));
    }
    /// Calls `heard` when the user is to be called to the computer, before a scheduled run begins;
    /// it may call any operation.
    [[nodiscard]] Handle hearCalls(std::function<void()> heard) {
        return calls_.hear(std::move(heard));
    }

    /// Lists anew what is open.
    void refresh();

    /// Refreshes now and then every 2.5 s until `stopLiveUpdates`. Starting again is no error.
    void startLiveUpdates();
    void stopLiveUpdates();

    /// Excludes the application, or includes it again, and stores the exclusions.
    void toggleExclusion(const OpenApp& app);

    /// Removes `key` from the exclusions and stores them; also for what isn't open now. False when
    /// it was none.
    bool includeAgain(const std::string& key);

    [[nodiscard]] bool isExcluded(const OpenApp& app) const;

    /// The open applications that are not excluded, most memory first.
    [[nodiscard]] std::vector<OpenApp> quittable() const;

    /// Chooses what happens after a run started from the panel, and stores the choice.
    void chooseAfterQuit(PowerAction action);

    /// Asks every application of `quittable` to quit, with `action` to follow; one that has only
    /// just shown itself once it is known for good. Does nothing while a run is in progress.
    void quitAll(PowerAction action);

    /// Whether a run is in progress, what follows it included.
    [[nodiscard]] bool isRunning() const { return isBusy(phase) || unfollowedResult_; }

    /// The applications that the present run asks, with their figures of its beginning.
    [[nodiscard]] const std::vector<OpenApp>& targets() const { return targets_; }

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

    /// Choose what else follows a run, and store it.
    void chooseBackupFirst(bool isChosen);
    void chooseEjectDrives(bool isChosen);

    /// Stops the running backup, within a second.
    void stopBackup(BackupStop how);

    /// Ejects the external drives by themselves; `disksEjected` tells the result. Does nothing
    /// while a run is in progress or drives are being ejected.
    void ejectNow();
    [[nodiscard]] bool isEjecting() const {
        return ejectTask_.isActive() || ejectNowTask_.isActive();
    }

    /// Drops a power action that has not happened yet; false when there was none. The run itself
    /// goes on.
    bool cancelPowerAction();

    /// Answers the question after a failed backup. Without one nothing happens.
    void resolveBackupFailure(FailureChoice choice);

    /// Those of the last session that don't run now and that can still be started.
    [[nodiscard]] std::vector<SavedApp> reopenable() const;

    /// Those of `closedForGood` that nobody has started again since.
    [[nodiscard]] std::vector<std::string> notReopenable() const;

    /// Starts all that is `reopenable` in the background, and forgets the last session. Returns at
    /// once; whether they come is not told.
    void reopenLastSession();

    /// Forgets the last session, in the preferences too.
    void forgetLastSession();

    /// Sets the run for later, in place of one that was set before. A date that has passed is one
    /// second from now. The computer doesn't fall asleep by itself until then.
    void scheduleQuit(WallTime date, PowerAction action);
    /// Sets it for so many minutes later than it was to be, or than now when that has passed.
    void postponeSchedule(int minutes);
    /// Lets the run begin that waits for the user's word.
    void confirmScheduledQuit();
    void cancelSchedule();
    /// Chooses whether the next schedule asks, and stores the choice.
    void chooseConfirmScheduled(bool isChosen);

    [[nodiscard]] MainLoop& mainLoop() const { return desktop_.loop; }

private:
    struct RunResult {
        int closed = 0;
        std::uint64_t freed = 0;
    };
    enum class AfterSteps { run, skip };

    enum class BackupEnd { completed, skipped, cancelled, failed };
    struct BackupOutcome {
        BackupEnd end = BackupEnd::failed;
        std::string reason; ///< of a failure
    };

    void loadPreferences();
    void loadLastSession();
    void observeWorkspace();
    void takeOverEdits();
    void storeExclusions(std::set<std::string> keys);

    void renewTargets();
    void askTargets();
    Task pollTargets(Uptime deadline);
    [[nodiscard]] std::vector<OpenApp> targetsStillRunning() const;
    void noteWindowless(const std::vector<OpenApp>& running);
    void askWindowless(const std::vector<OpenApp>& running);
    void askHindered(const std::vector<OpenApp>& running);
    [[nodiscard]] static std::map<ProcessId, StayReason>
    reasonsOf(const std::vector<OpenApp>& running);
    void finish(AfterSteps steps);
    [[nodiscard]] RunResult countClosed() const;
    [[nodiscard]] std::vector<OpenApp> closedTargets() const;
    void rememberSession(const std::vector<OpenApp>& closed);
    Task afterApps(RunResult result, PowerAction action);
    Task runBackup();
    Task continueUnattended();
    Task ejectByThemselves();
    void publishProgress(const TimeMachine::Status& status, int& lastQuarter);
    [[nodiscard]] static std::string failureReason(const ChildProcess& process);
    void resetSequence(int number);
    void showResult(RunResult result, std::optional<std::string> note);
    Task resetResult();
    void emit(const Event& event) { events_.tell(event); }

    void observeClock();
    void holdSleepForSchedule();
    void tickAtNextSecond();
    void tickWhenNeeded(Duration remaining);
    void tickAfter(int ticks);
    void scheduleTick();
    [[nodiscard]] bool isAttentionDue(Duration remaining);
    void meetDeadline();
    void checkMissedSchedule();
    void holdSleepForRun();
    void beginAsking();

    Desktop desktop_;
    Told<Event> events_;
    Told<> calls_; ///< of the user, to the computer
    std::vector<OpenApp> targets_;
    /// Those of them that are not asked yet, since they may turn out to be others.
    std::set<ProcessId> unsettled_;
    /// When targets were first seen without windows; those that were asked once more have no time.
    std::map<ProcessId, std::optional<Uptime>> windowlessSince_;
    /// Targets that could not be asked, with the moment from which on nothing stood in the way.
    std::map<ProcessId, std::optional<Uptime>> hindered_;
    Uptime lookForObstaclesAt_;
    Uptime beginningUntil_;
    /// Counts the poll loops, so that one that was interrupted by a callback knows that it is over.
    int pollNumber_ = 0;
    /// The result of a run that has ended while what follows it has not begun.
    std::optional<RunResult> unfollowedResult_;
    Task pollTask_;
    /// Counts the runs, so that the end of one leaves alone what belongs to the next.
    int runNumber_ = 0;
    std::optional<BackupStop> backupStop_;
    Answer<BackupOutcome> backupOutcome_;
    /// Ends the pause before it is looked again whether the backup is on record.
    Answer<std::monostate> nextReading_;
    Answer<FailureChoice> failureChoice_;
    Answer<ExternalDrives::Ejected> ejected_;
    Answer<ExternalDrives::Ejected> ejectedNow_;
    Task postTask_;
    Task backupTask_;
    Task unattendedTask_;
    Task ejectTask_;
    Task ejectNowTask_;
    Task ejectAllNowTask_;
    bool isActionDropped_ = false;
    /// The present run has waited for an answer for so long that nobody expects what follows.
    bool isLate_ = false;
    Handle asking_;
    Task resetTask_;
    Handle refreshTimer_;
    /// Counts what is done to the schedule, so that a tick sees when a callback has replaced it.
    int scheduleNumber_ = 0;
    Uptime scheduledAt_;
    Handle scheduleTimer_;
    int scheduleWarnings_ = 0; ///< marks that were told
    std::optional<std::int64_t> lastBeepSecond_;
    Handle sleepActivity_;
    Handle runActivity_;
    std::vector<Handle> observers_;
};

} // namespace velmorquit
