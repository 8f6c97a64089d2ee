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

/// What a process has done since it began, together with the processes without windows that it has
/// started and that belong to its session.
struct ProcessWork {
    /// Tells it from a later process with the same id.
    std::uint64_t start = 0;
    /// Time that processors have spent on it.
    Duration processorTime{};
    /// Bytes that it has given to disks; 0 for a process that may not be looked at.
    std::uint64_t written = 0;
};

/// A command that runs in no window: in a terminal that no window shows, or without the one that it
/// was started in.
struct WindowlessJob {
    ProcessId process = 0;
    std::string name; ///< of its program, as valid UTF-8

    friend bool operator==(const WindowlessJob&, const WindowlessJob&) = default;
};

/// What the system's processes are at. All of it is quick and for the main thread.
class Processes {
public:
    virtual ~Processes() = default;

    /// What `ProcessWork::start` says; none when there is no such process.
    [[nodiscard]] virtual std::optional<std::uint64_t> startOf(ProcessId process) const = 0;

    /// One look at these; those that have ended are left out.
    [[nodiscard]] virtual std::map<ProcessId, ProcessWork>
    work(const std::set<ProcessId>& ids) const = 0;

    /// This user's commands that would be lost without any window having been asked: in panes of
    /// terminal multiplexers, in text consoles and logins from elsewhere, and those that have
    /// outlived their terminal. A shell at its prompt is none.
    [[nodiscard]] virtual std::vector<WindowlessJob> windowlessJobs() const = 0;
};

} // namespace velmorquit
