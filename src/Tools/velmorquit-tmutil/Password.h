#pragma once

#include "Problem.h"

#include <filesystem>
#include <optional>
#include <string>

/// Passwords of repositories. They are in files of the owner's alone, never in arguments, the
/// environment or a log.
namespace velmorquit::tmutil::Password {

/// A new one that nobody can guess, of letters and digits that can't be taken for each other.
[[nodiscard]] std::string make();

/// Asks for one on the terminal, without showing it; empty for an empty answer, none when the
/// input ends.
[[nodiscard]] std::optional<std::string> ask(const std::string& question);

/// What restic takes the file for: its content without blanks at the ends.
[[nodiscard]] Outcome<std::string> read(const std::string& file);

/// Keeps it in a new file; gives its path.
[[nodiscard]] Outcome<std::filesystem::path> keep(const std::string& password);

} // namespace velmorquit::tmutil::Password
