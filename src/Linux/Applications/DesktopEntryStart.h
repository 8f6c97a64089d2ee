#pragma once

#include <string>

namespace velmorquit {

/// With this switch and the path of a desktop entry, the program only starts that entry.
inline constexpr const char* startEntrySwitch = "--start-entry";

/// Starts the program of a desktop entry, detached, in the home folder and with the session,
/// streams and signals of this process. Only for a process that does nothing else, since it changes
/// its own environment. It may take a while if only the bus can start the program.
///
/// No activation token is passed on, which would let a window come to the front. False when the
/// entry can't be read or has nothing to start.
[[nodiscard]] bool startDesktopEntry(const std::string& path);

} // namespace velmorquit
