#pragma once

#include "CommandLine.h"
#include "Problem.h"

#include <string>

namespace velmorquit {

/// Writes a line to standard output at once.
void say(const std::string& line);

/// Writes a line to standard error at once.
void warn(const std::string& line);

/// Says what is wrong on standard error, and gives the status for that.
[[nodiscard]] ExitStatus fail(const Problem& problem);

} // namespace velmorquit
