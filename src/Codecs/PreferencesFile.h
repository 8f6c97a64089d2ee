#pragma once

#include "Platform/Value.h"

#include <filesystem>
#include <optional>
#include <string>

namespace velmorquit {

/// Where the user's preferences are: `$XDG_CONFIG_HOME/velmorquit/preferences.plist`, below
/// `~/.config` when that variable is not set or is no absolute path (without `$HOME`, below
/// `/.config`).
[[nodiscard]] std::filesystem::path defaultPreferencesFile();

/// Where it is written down where backups go: `backups.plist` in the same folder.
[[nodiscard]] std::filesystem::path defaultBackupDestinationsFile();

/// The earlier state that is kept beside such a file, or where a link there leads: `<file>~`.
[[nodiscard]] std::filesystem::path previousPreferencesFile(const std::filesystem::path& file);

/// What is stored under `key` in that file, for who only wants to read; none when nothing is. In
/// place of a file that is there and can't be read the earlier state holds.
[[nodiscard]] std::optional<Value> storedPreference(const std::filesystem::path& file,
                                                    const std::string& key);

} // namespace velmorquit
