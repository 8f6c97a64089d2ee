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

/// Leaves a terminal that the run asks as well, since it would ask about velmorctl.
void leaveTerminal(ForegroundJob& job, const remote::Status& status);

/// `quit-all`: asks the user if an action follows, begins the run and waits for its
/// end.
class WaitedRun {
public:
    using End = std::function<void(ExitStatus status)>;

    /// The references must outlive it.
    WaitedRun(const CommandLine& line, const Formats& formats, ForegroundJob& job, Program& program,
              Program::Fail fail, End end);

    /// `agreed` is called when the run may begin.
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
