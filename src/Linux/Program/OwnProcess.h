#pragma once

#include <filesystem>

namespace velmorquit {

/// The file that this program runs; empty where /proc can't be read.
[[nodiscard]] std::filesystem::path ownExecutable();

/// The terminal that started the program may be one of those that are asked to quit: from here on
/// its end is no reason to end. The programs that are started from here don't inherit that.
void surviveTheTerminal();

/// From here on large blocks of memory go back to the system when they are freed.
void giveMemoryBack();

/// Allows the process the usual number of descriptors where it has fewer. True when it stays so few
/// that the last one can be in use at any moment.
[[nodiscard]] bool isShortOfDescriptors();

} // namespace velmorquit
