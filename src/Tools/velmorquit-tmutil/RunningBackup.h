#pragma once

#include "Linux/Files/Descriptor.h"

#include <optional>

#include <sys/types.h>

namespace velmorquit::tmutil {

/// The running backup as seen by all processes of the user: a lock that ends with its process, and
/// beside it the progress.
class RunningBackup {
public:
    /// Makes this process the one that backs up, for as long as the object exists; none if there is
    /// another one. Without a folder for the lock, nothing guards against two.
    [[nodiscard]] static std::optional<RunningBackup> begin();

    RunningBackup(RunningBackup&&) noexcept = default;
    RunningBackup& operator=(RunningBackup&&) = delete;
    ~RunningBackup();

    /// Publishes the progress, 0 to 1. It never goes back.
    void publish(double fraction);

    /// The process that is backing up; none without one.
    [[nodiscard]] static std::optional<pid_t> process();

    /// The progress, 0 to 1; none while unknown.
    [[nodiscard]] static std::optional<double> fraction(pid_t process);

    enum class Stop { nothingRan, stopped, stillRunning };
    /// Makes it end, and waits for that, a minute at most.
    [[nodiscard]] static Stop stop();

private:
    explicit RunningBackup(Descriptor lock) : lock_(std::move(lock)) {}

    Descriptor lock_;
    std::optional<double> published_;
};

} // namespace velmorquit::tmutil
