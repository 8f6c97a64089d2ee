#pragma once

#include "Problem.h"

#include <filesystem>
#include <optional>
#include <string>

/// Passwords of repositories. They are kept in files readable by their owner alone, never in
/// arguments, the environment or a log.
namespace velmorquit::tmutil::Password {

/// A new unguessable password, of letters and digits that can't be confused with each other.
[[nodiscard]] std::string make();

/// Asks for a password on the terminal without showing it; empty for an empty answer, none at the
/// end of input.
[[nodiscard]] std::optional<std::string> ask(const std::string& question);

/// The password in the file as restic reads it, without blanks at either end.
[[nodiscard]] Outcome<std::string> read(const std::string& file);

/// Stores it in a new file and returns the path.
[[nodiscard]] Outcome<std::filesystem::path> keep(const std::string& password);

} // namespace velmorquit::tmutil::Password
