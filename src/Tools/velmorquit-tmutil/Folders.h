#pragma once

#include <filesystem>

/// The folders for the tool's files.
namespace velmorquit::tmutil::Folders {

/// Destinations and passwords, which are kept permanently.
[[nodiscard]] std::filesystem::path configuration();

/// Files that end with the session: `velmorquit` in XDG_RUNTIME_DIR; if that isn't set (a timer has
/// none), in the system's folder for this purpose, else the same as `state`.
[[nodiscard]] std::filesystem::path runtime();

/// Logs: `$XDG_STATE_HOME/velmorquit`.
[[nodiscard]] std::filesystem::path state();

} // namespace velmorquit::tmutil::Folders
