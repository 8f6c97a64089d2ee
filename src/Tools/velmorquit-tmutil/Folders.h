#pragma once

#include <filesystem>
#include <string_view>

/// Where the tool keeps what it knows, and how it writes there.
namespace velmorquit::Folders {

/// What must outlast everything: destinations and passwords.
[[nodiscard]] std::filesystem::path configuration();

/// What ends with the session: `velmorquit` in XDG_RUNTIME_DIR, in the system's folder for that
/// where the variable is not set (a timer has none), else the same as `state`.
[[nodiscard]] std::filesystem::path runtime();

/// Logs: `$XDG_STATE_HOME/velmorquit`.
[[nodiscard]] std::filesystem::path state();

/// Makes the folder and those above it, for the owner only; false when that fails.
[[nodiscard]] bool makePrivate(const std::filesystem::path& folder);

/// How a file gets to be there.
enum class Durability {
    untilShutdown, ///< whole or not at all for who reads it
    onDisk,        ///< and also after a power cut
};

/// Replaces the file, or where a link there leads, in one step by one that only the owner can read.
/// False when that fails; then it is as it was.
[[nodiscard]] bool replace(const std::filesystem::path& file, std::string_view content,
                           Durability durability);

} // namespace velmorquit::Folders
