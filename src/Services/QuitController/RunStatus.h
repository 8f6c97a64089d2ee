#pragma once

#include "Loop/Published.h"
#include "Model/Phase.h"
#include "Model/PowerAction.h"
#include "Platform/Desktop.h"
#include "Platform/LoginWindow.h"
#include "Services/QuitController/OpenApp.h"

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velmorquit {

/// What a run has achieved.
struct RunResult {
    int closed = 0;
    std::uint64_t freed = 0; ///< bytes that they used when the run began
};

/// How far the present run is, or the last one, whose result stays on show for a while. Only the
/// run itself changes it.
class RunStatus {
public:
    static constexpr Duration resultTime = 8s;

    explicit RunStatus(const Desktop& desktop);

    Published<Phase, RunStatus> phase;
    /// Those still open after the grace period of the present run.
    Published<std::vector<OpenApp>, RunStatus> stubborn;
    /// Why each of the stubborn ones is still there, by process.
    Published<std::map<ProcessId, StayReason>, RunStatus> stayReasons;
    /// A remark for the user on the result, beyond its figures.
    Published<std::optional<std::string>, RunStatus> resultNote;
    /// Nobody attends the present run: a failed backup is passed over after a while.
    Published<bool, RunStatus> unattended;
    /// When a failed backup is passed over, by the wall clock; none otherwise.
    Published<std::optional<WallTime>, RunStatus> autoContinueAt;
    /// What follows once the applications that were asked have gone; `none` from then on.
    Published<PowerAction, RunStatus> pendingAction;
    /// The power action at the end of the running sequence; `none` outside one.
    Published<PowerAction, RunStatus> runningAction;

private:
    friend class QuitRun;

    /// A run begins: everything about the one before is reset.
    void begin(PowerAction action, Attendance attendance);
    void enter(const Phase& next) { phase = next; }
    /// These have stayed so far.
    void stay(std::vector<OpenApp> running) { stubborn = std::move(running); }
    void explain(std::map<ProcessId, StayReason> reasons) { stayReasons = std::move(reasons); }
    /// Nobody is waited for any more. Returns the action that was to follow.
    PowerAction endWaiting();
    /// The steps begin that follow the applications' end, with `action` as the last one.
    void follow(PowerAction action) { runningAction = action; }
    /// The failed backup is passed over then.
    void continueAt(WallTime date) { autoContinueAt = date; }
    void dropPending() { pendingAction = PowerAction::none; }
    void dropAction();
    /// Shows the result of the present run, for 8 s.
    void show(RunResult result, std::optional<std::string> note);
    /// The run ends: nothing more follows it.
    void end();

    MainLoop& loop_;
    int number_ = 0; ///< of the present run
    Handle hiding_;
};

} // namespace velmorquit
