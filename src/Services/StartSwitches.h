#pragma once

#include <optional>
#include <string>
#include <vector>

/// The program's command-line switches, except those for starting with the session.
namespace velmorquit::StartSwitches {

/// The text to print, without the final newline, if the arguments (the program's path first) ask
/// for help or the version; none when the program is to start.
[[nodiscard]] std::optional<std::string> answer(const std::vector<std::string>& arguments);

/// The log line that names unknown arguments. The program starts all the same: a launcher or a
/// session may pass some of its own.
[[nodiscard]] std::string unknownLine(const std::vector<std::string>& unknown);

} // namespace velmorquit::StartSwitches
