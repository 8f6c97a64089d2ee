#pragma once

#include "CommandLine.h"
#include "Problem.h"

#include <string>

namespace velmorquit::tmutil {

/// Writes one or more lines to standard output at once, fit for a terminal.
void say(const std::string& line);

/// Writes a line to standard error at once, fit for a terminal.
void warn(const std::string& line);

/// Reports the problem on standard error, and returns the status for it.
[[nodiscard]] ExitStatus fail(const Problem& problem);

} // namespace velmorquit::tmutil
