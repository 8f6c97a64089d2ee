#pragma once

#include "Linux/Applications/RunProgram.h"
#include "Linux/Windows/ToplevelSource.h"

#include <string>

namespace velmorquit {

/// Whether the window's class is a word that somebody has chosen to name the program, rather than
/// one that a toolkit derives from the name of a class or a file.
[[nodiscard]] bool isOwnWord(const std::string& className);

/// The part of a window's title that names the program rather than its content; empty when no part
/// seems to.
[[nodiscard]] std::string programInTitle(const std::string& title, const RunProgram& program,
                                         const std::string& className);

} // namespace velmorquit
