#pragma once

#include "CommandLine.h"
#include "ForegroundJob.h"
#include "Platform/Formats.h"
#include "Program.h"
#include "WaitedRun.h"

#include <optional>
#include <string>

namespace velmorquit {

/// One call of velmorctl: has the running program carry out the command line, and ends Qt's event
/// loop with the exit status.
class Session {
public:
    Session(CommandLine line, const Formats& formats, ForegroundJob job);

    /// To be called from within the event loop.
    void start();

private:
    void carryOutOwn();
    /// Sends the line's command unchanged, and uses the answer as the table says.
    void carryOut();
    void report(const Program::Said& said);
    void relay(const Program::Said& said);
    void askThenEndAnyway();
    /// Prints changes until Ctrl+C, or until drives are ejected.
    void watch();
    void hear(const Program::Said& change);
    void hearEjected(const remote::Change& change);
    static void fail(const std::string& why, ExitStatus status);
    static void end(ExitStatus status);

    CommandLine line_;
    const Formats& formats_;
    ForegroundJob job_;
    Program program_;
    WaitedRun run_;
};

} // namespace velmorquit
