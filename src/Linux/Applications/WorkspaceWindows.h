#pragma once

#include "Linux/Applications/LinuxApplication.h"
#include "Linux/Applications/ToplevelSource.h"
#include "Linux/Proc/ProcessStat.h"
#include "Platform/MainLoop.h"

#include <functional>
#include <optional>
#include <set>
#include <vector>

namespace velmorquit {

/// The windows of a desktop, lent to its applications.
class WorkspaceWindows final : public ApplicationWindows {
public:
    /// Both references outlive it. `askOtherwise` asks a process without windows to quit, and may
    /// be empty.
    WorkspaceWindows(MainLoop& loop, ToplevelSource& source,
                     std::function<void(ProcessId)> askOtherwise)
        : loop_(loop), source_(source), askOtherwise_(std::move(askOtherwise)) {}

    std::optional<StayReason> askToClose(ProcessId process) override;
    bool askWithoutWindows(ProcessId process) override;
    bool bringToFront(ProcessId process) override;
    std::vector<Toplevel> dialogs(ProcessId process) override;
    bool isDeaf(ProcessId process) override;

    /// Whether it is a terminal at work: see `hasTerminalJob`.
    bool hasJob(ProcessId process);

private:
    MainLoop& loop_;
    ToplevelSource& source_;
    std::function<void(ProcessId)> askOtherwise_;
    std::vector<ProcessStat> table_;
    std::set<ProcessId> owners_;
    std::optional<Uptime> lookedAt_;
};

} // namespace velmorquit
