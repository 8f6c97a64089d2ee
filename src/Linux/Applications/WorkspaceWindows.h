#pragma once

#include "Linux/Applications/LinuxApplication.h"
#include "Linux/Proc/TerminalJobs.h"
#include "Linux/Windows/ToplevelSource.h"
#include "Loop/MainLoop.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <vector>

namespace velmorquit {

/// The windows of a desktop, lent to its applications.
class WorkspaceWindows final : public ApplicationWindows {
public:
    /// Handles processes without windows; each may be empty.
    struct Surroundings {
        /// Asks the process to quit.
        std::function<void(ProcessId)> ask = {};
        std::function<std::set<ProcessId>()> trayOwners = {};
        /// Clicks its icon in the tray; false when it has none.
        std::function<bool(ProcessId)> clickInTray = {};
        /// How long keyboard and pointer have been idle.
        std::function<std::optional<Duration>()> sinceInput = {};
    };

    /// Both references must outlive it.
    WorkspaceWindows(MainLoop& loop, ToplevelSource& source, Surroundings surroundings)
        : loop_(loop), source_(source), surroundings_(std::move(surroundings)) {}

    std::optional<StayReason> obstacle(ProcessId process) override;
    void askToClose(ProcessId process) override;
    bool takeBack(ProcessId process) override { return asking_.erase(process) > 0; }
    std::optional<Duration> sinceInput() override {
        return surroundings_.sinceInput ? surroundings_.sinceInput() : std::nullopt;
    }
    bool askWithoutWindows(ProcessId process) override;
    bool bringToFront(ProcessId process) override;
    std::vector<Toplevel> windowsOf(ProcessId process) override;
    bool isInTray(ProcessId process) override;
    bool clickInTray(ProcessId process) override;
    bool isDeaf(ProcessId process) override;

    /// Whether it is a terminal at work: see `hasTerminalJob`.
    bool hasJob(ProcessId process);

private:
    void askAtRest(ProcessId process, int looks, bool hasRested);
    void askNow(const std::vector<std::uint64_t>& windows);
    [[nodiscard]] std::vector<std::uint64_t> windowsToClose(ProcessId process) const;
    void look();
    [[nodiscard]] ProcessFacts facts() const;

    MainLoop& loop_;
    ToplevelSource& source_;
    Surroundings surroundings_;
    std::vector<ProcessStat> table_;
    bool knowsProcesses_ = false; ///< whether the table could be read
    std::set<ProcessId> owners_;
    std::optional<Uptime> lookedAt_;
    std::map<ProcessId, Handle> asking_;
};

} // namespace velmorquit
