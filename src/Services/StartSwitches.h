#pragma once

#include <optional>
#include <string>
#include <vector>

/// What may stand behind the program's name, but for what changes how it starts with the session.
namespace velmorquit::StartSwitches {

/// What to print, without the last line's end, when the arguments, the program's path before them,
/// ask for the help or the version; none when the program is to start.
[[nodiscard]] std::optional<std::string> answer(const std::vector<std::string>& arguments);

/// The log's line that names arguments which nobody understands. The program starts all the same:
/// a launcher or a session may give it some of its own.
[[nodiscard]] std::string unknownLine(const std::vector<std::string>& unknown);

} // namespace velmorquit::StartSwitches
