#pragma once

#include "Linux/Proc/ProcDirectory.h"
#include "Linux/Proc/ProcessStat.h"
#include "Linux/Proc/TerminalJobs.h"
#include "Platform/Processes.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

#include <unistd.h>

namespace velmorquit {

/// What the processes that /proc lists are at.
class ProcProcesses final : public Processes {
public:
    /// What the display knows of processes. Each is called once per question at most.
    struct Display {
        std::function<std::set<ProcessId>()> windowOwners;
        /// Those with an icon in the tray.
        std::function<std::set<ProcessId>()> trayOwners;
        /// The parts of the desktop itself.
        std::function<std::set<ProcessId>()> desktopProcesses;
    };

    /// `user` is whose jobs count.
    explicit ProcProcesses(Display display, const std::string& proc = "/proc",
                           uid_t user = ::getuid());

    [[nodiscard]] std::optional<std::uint64_t> startOf(ProcessId process) const override;

    /// Of a process that was started from one of `ids` and whose end nobody has taken note of,
    /// nothing remains: only then can a sum get smaller.
    [[nodiscard]] std::map<ProcessId, ProcessWork>
    work(const std::set<ProcessId>& ids) const override;

    /// The process is the first of the job. Terminals that some window shows are left out, and
    /// those in which windows or the desktop have been started: a text console has the whole
    /// desktop for its job. A daemon has cut itself off from the terminal that it was started in,
    /// and is told from a job that has outlived its terminal by the group of processes that it is
    /// in.
    [[nodiscard]] std::vector<WindowlessJob> windowlessJobs() const override;

private:
    struct Look;

    [[nodiscard]] bool isOwn(ProcessId process) const;
    [[nodiscard]] std::uint64_t writtenBy(ProcessId process) const;
    void addTerminals(const Look& look, std::vector<WindowlessJob>& jobs) const;
    void addOutliving(const Look& look, std::vector<WindowlessJob>& jobs) const;

    Display display_;
    ProcDirectory proc_;
    uid_t user_;
};

} // namespace velmorquit
