#pragma once

#include <filesystem>

/// Where the tool keeps what it knows.
namespace velmorquit::tmutil::Folders {

/// What must outlast everything: destinations and passwords.
[[nodiscard]] std::filesystem::path configuration();

/// What ends with the session: `velmorquit` in XDG_RUNTIME_DIR, in the system's folder for that
/// where the variable is not set (a timer has none), else the same as `state`.
[[nodiscard]] std::filesystem::path runtime();

/// Logs: `$XDG_STATE_HOME/velmorquit`.
[[nodiscard]] std::filesystem::path state();

} // namespace velmorquit::tmutil::Folders
