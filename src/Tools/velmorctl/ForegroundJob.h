#pragma once

#include <vector>

#include <sys/types.h>

namespace velmorquit {

/// velmorctl as the foreground command of its terminal, which asks about running commands before it
/// closes. It may leave the terminal and go on; for the shell it has then ended.
class ForegroundJob {
public:
    /// To be called while there is only one thread. If the shell waits for this process alone, it
    /// returns in a child that does the work, and the process ends when the child does.
    static ForegroundJob begin();

    /// A job that can't leave.
    ForegroundJob() = default;

    /// Whether the shell is waiting for it now.
    [[nodiscard]] bool isInFront() const;

    /// The shell and its ancestors, nearest first.
    [[nodiscard]] const std::vector<pid_t>& ancestors() const { return ancestors_; }

    /// Ends for the shell, as if by Ctrl+C.
    void leave();

private:
    pid_t standIn_ = 0; ///< 0 when it can't leave
    std::vector<pid_t> ancestors_;
};

} // namespace velmorquit
