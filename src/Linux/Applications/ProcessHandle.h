#pragma once

#include "Platform/RunningApplication.h"

#include <QSocketNotifier>

#include <functional>
#include <memory>
#include <optional>

namespace velmorquit {

/// A hold on one process, child or not, that is never mistaken for a later one with the same
/// id.
class ProcessHandle {
public:
    enum class Signalled { yes, refused };

    /// Takes hold of the process that now has that id; null when there is none, or when the system
    /// can't watch any more. `ended` is called once, on the main loop, when the process ends.
    static std::unique_ptr<ProcessHandle> open(ProcessId id, std::function<void()> ended);

    ProcessHandle(const ProcessHandle&) = delete;
    ProcessHandle& operator=(const ProcessHandle&) = delete;
    ~ProcessHandle();

    [[nodiscard]] ProcessId id() const { return id_; }

    /// Whether the process has ended; asks the kernel, without waiting. Also true while its parent
    /// has not collected its status yet.
    [[nodiscard]] bool hasEnded() const;

    /// Sends a signal. A process that has already ended is no refusal.
    Signalled send(int signal) const;

private:
    ProcessHandle(ProcessId id, int descriptor, std::function<void()> ended);

    ProcessId id_;
    int descriptor_;
    QSocketNotifier notifier_;
};

} // namespace velmorquit
