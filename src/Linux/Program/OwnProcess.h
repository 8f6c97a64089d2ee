#pragma once

#include <filesystem>

namespace velmorquit {

/// The executable of this program; empty if /proc can't be read.
[[nodiscard]] std::filesystem::path ownExecutable();

/// The terminal that started the program may be asked to quit as well: from now on its end doesn't
/// end this program. The programs started from here don't inherit that.
void surviveTheTerminal();

/// From now on, large blocks of memory return to the system when they are freed.
void giveMemoryBack();

/// Raises the process's limit of descriptors to the usual one. True when it remains so low that the
/// last one may be in use at any moment.
[[nodiscard]] bool isShortOfDescriptors();

} // namespace velmorquit
