#pragma once

#include "CommandLine.h"
#include "FollowedRun.h"
#include "ForegroundJob.h"
#include "Interruption.h"
#include "Platform/Formats.h"
#include "Program.h"

#include <functional>
#include <optional>

namespace velmorquit {

/// Leaves the terminal where a run asks that one too: it would ask about velmorctl.
void leaveTerminal(ForegroundJob& job, const remote::Status& status);

/// `quit-all`: asks whoever sits there where something follows, has the run begin and waits for its
/// end.
class WaitedRun {
public:
    using End = std::function<void(ExitStatus status)>;

    /// What it is handed outlives it.
    WaitedRun(const CommandLine& line, const Formats& formats, ForegroundJob& job, Program& program,
              Program::Fail fail, End end);

    /// `agreed` is called once it is to begin.
    void start(std::function<void()> agreed);

    void hear(const remote::Change& change);

private:
    void quitAll();
    void begin();

    const CommandLine& line_;
    ForegroundJob& job_;
    Program& program_;
    Program::Fail fail_;
    End end_;
    std::function<void()> agreed_;
    FollowedRun run_;
    std::optional<Interruption> interruption_;
};

} // namespace velmorquit
