#pragma once

#include <string>

namespace velmorquit {

/// With it and the path of a desktop entry this program does nothing but start that entry.
inline constexpr const char* startEntrySwitch = "--start-entry";

/// Starts the program of a desktop entry, as a child of nobody, in the home folder and with the
/// session, streams and signals of this process. For a process that does nothing else, since it
/// changes its own environment. It may take a while where only the bus can start the program.
///
/// No token goes along that would let a window come to the front. False when the entry can't be
/// read or says nothing that can be started.
[[nodiscard]] bool startDesktopEntry(const std::string& path);

} // namespace velmorquit
