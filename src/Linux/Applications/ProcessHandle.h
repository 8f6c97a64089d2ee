#pragma once

#include "Platform/RunningApplication.h"

#include <QSocketNotifier>

#include <functional>
#include <memory>
#include <optional>

namespace velmorquit {

/// A hold on one process, child or not, that can never be mistaken for a later one with the same
/// id.
class ProcessHandle {
public:
    enum class Signalled { yes, refused };

    /// Takes hold of the process that has that id now; null when there is none or the system has no
    /// means left to watch it. `ended` is called once, on the main loop, when the process ends.
    static std::unique_ptr<ProcessHandle> open(ProcessId id, std::function<void()> ended);

    ProcessHandle(const ProcessHandle&) = delete;
    ProcessHandle& operator=(const ProcessHandle&) = delete;
    ~ProcessHandle();

    [[nodiscard]] ProcessId id() const { return id_; }

    /// Whether the process has ended; asked of the kernel, without waiting. Also true of one whose
    /// parent has not taken note yet.
    [[nodiscard]] bool hasEnded() const;

    /// Sends a signal. To have ended already is no refusal.
    Signalled send(int signal) const;

private:
    ProcessHandle(ProcessId id, int descriptor, std::function<void()> ended);

    ProcessId id_;
    int descriptor_;
    QSocketNotifier notifier_;
};

} // namespace velmorquit
