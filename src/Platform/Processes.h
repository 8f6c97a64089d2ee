#pragma once

#include "Loop/Time.h"
#include "Platform/RunningApplication.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace velmorquit {

/// The work of a process since it began, including the processes without windows that it has
/// started and that belong to its session.
struct ProcessWork {
    /// Distinguishes it from a later process with the same id.
    std::uint64_t start = 0;
    /// Processor time spent on it.
    Duration processorTime{};
    /// Bytes given to disks; 0 for a process that may not be inspected.
    std::uint64_t written = 0;
};

/// A command that runs in no window: in a terminal that no window shows, or after its terminal has
/// gone.
struct WindowlessJob {
    ProcessId process = 0;
    std::string name; ///< of its program, as valid UTF-8

    friend bool operator==(const WindowlessJob&, const WindowlessJob&) = default;
};

/// The activity of the system's processes. All calls are quick and for the main thread.
class Processes {
public:
    virtual ~Processes() = default;

    /// As in `ProcessWork::start`; none when there is no such process.
    [[nodiscard]] virtual std::optional<std::uint64_t> startOf(ProcessId process) const = 0;

    /// The work of these processes so far; those that have ended are left out.
    [[nodiscard]] virtual std::map<ProcessId, ProcessWork>
    work(const std::set<ProcessId>& ids) const = 0;

    /// This user's commands that would be lost without any window being asked: in panes of terminal
    /// multiplexers, on text consoles and remote logins, and those that have outlived their
    /// terminal. A shell at its prompt doesn't count.
    [[nodiscard]] virtual std::vector<WindowlessJob> windowlessJobs() const = 0;
};

} // namespace velmorquit
