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

/// The activity of the processes listed by /proc.
class ProcProcesses final : public Processes {
public:
    /// The display's knowledge of processes. Each is called at most once per query.
    struct Display {
        std::function<std::set<ProcessId>()> windowOwners;
        /// Those with an icon in the tray.
        std::function<std::set<ProcessId>()> trayOwners;
        /// The parts of the desktop itself.
        std::function<std::set<ProcessId>()> desktopProcesses;
    };

    /// Only jobs of `user` count.
    explicit ProcProcesses(Display display, const std::string& proc = "/proc",
                           uid_t user = ::getuid());

    [[nodiscard]] std::optional<std::uint64_t> startOf(ProcessId process) const override;

    /// A sum gets smaller in one case only: a process started from one of `ids` has ended, and its
    /// parent has not collected its status.
    [[nodiscard]] std::map<ProcessId, ProcessWork>
    work(const std::set<ProcessId>& ids) const override;

    /// The process is the first of the job. Terminals that some window shows are left out, and
    /// those from which windows or the desktop were started: a text console may have the whole
    /// desktop as its job. Daemons, which have detached themselves from the terminal that started
    /// them, are told from jobs that have outlived their terminal by the process group that they
    /// are in.
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
