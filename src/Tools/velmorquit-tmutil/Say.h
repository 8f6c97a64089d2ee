#pragma once

#include "CommandLine.h"
#include "Problem.h"

#include <string>

namespace velmorquit::tmutil {

/// Writes one or more lines to standard output at once, as a terminal may show them.
void say(const std::string& line);

/// Writes a line to standard error at once, as a terminal may show it.
void warn(const std::string& line);

/// Says what is wrong on standard error, and gives the status for that.
[[nodiscard]] ExitStatus fail(const Problem& problem);

} // namespace velmorquit::tmutil
