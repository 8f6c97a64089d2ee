#pragma once

#include "Linux/Files/Descriptor.h"

#include <optional>

#include <sys/types.h>

namespace velmorquit::tmutil {

/// The backup that is under way, as every process of the user can see it: a lock that ends with the
/// process that has it, and beside it how far that one is.
class RunningBackup {
public:
    /// Makes this process the one that backs up, until the object goes; none when another one is.
    /// Where there is no folder for the lock, nothing guards it.
    [[nodiscard]] static std::optional<RunningBackup> begin();

    RunningBackup(RunningBackup&&) noexcept = default;
    RunningBackup& operator=(RunningBackup&&) = delete;
    ~RunningBackup();

    /// Tells how far it is, 0 to 1. It never goes back.
    void publish(double fraction);

    /// The process that is backing up; none when there is none.
    [[nodiscard]] static std::optional<pid_t> process();

    /// How far it is, 0 to 1; none while that isn't known.
    [[nodiscard]] static std::optional<double> fraction(pid_t process);

    enum class Stop { nothingRan, stopped, stillRunning };
    /// Has it end, and waits until it has: a minute at most.
    [[nodiscard]] static Stop stop();

private:
    explicit RunningBackup(Descriptor lock) : lock_(std::move(lock)) {}

    Descriptor lock_;
    std::optional<double> published_;
};

} // namespace velmorquit::tmutil
