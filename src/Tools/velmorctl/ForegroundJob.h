#pragma once

#include <vector>

#include <sys/types.h>

namespace velmorquit {

/// velmorctl as the command that a shell waits for, and with it the terminal, which asks about
/// commands before it closes. It may leave the terminal and go on; for the shell it has ended then.
class ForegroundJob {
public:
    /// To be called while there is one thread. Where the process is by itself what a shell waits
    /// for, this returns in a child that does the work, and the process ends as the child does.
    static ForegroundJob begin();

    /// One that can't leave.
    ForegroundJob() = default;

    /// Whether the shell waits for it now.
    [[nodiscard]] bool isInFront() const;

    /// The shell and what it was started from, the nearest first.
    [[nodiscard]] const std::vector<pid_t>& ancestors() const { return ancestors_; }

    /// Ends for the shell, as by Ctrl+C.
    void leave();

private:
    pid_t standIn_ = 0; ///< 0 when it can't leave
    std::vector<pid_t> ancestors_;
};

} // namespace velmorquit
