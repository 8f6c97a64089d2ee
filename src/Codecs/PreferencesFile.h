#pragma once

#include "Platform/Value.h"

#include <filesystem>
#include <optional>
#include <string>

namespace velmorquit {

/// The file of the user's preferences: `$XDG_CONFIG_HOME/velmorquit/preferences.plist`, or below
/// `~/.config` if that variable is not set or is no absolute path (without `$HOME`, below
/// `/.config`).
[[nodiscard]] std::filesystem::path defaultPreferencesFile();

/// The file of the backup destinations: `backups.plist` in the same folder.
[[nodiscard]] std::filesystem::path defaultBackupDestinationsFile();

/// The earlier state kept beside such a file, or beside the target of a link there: `<file>~`.
[[nodiscard]] std::filesystem::path previousPreferencesFile(const std::filesystem::path& file);

/// The value stored under `key` in that file, for those who only read; none without one. If the
/// file exists and can't be read, the earlier state is used.
[[nodiscard]] std::optional<Value> storedPreference(const std::filesystem::path& file,
                                                    const std::string& key);

} // namespace velmorquit
