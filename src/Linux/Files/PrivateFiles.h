#pragma once

#include "Linux/Files/Descriptor.h"

#include <filesystem>
#include <string_view>
#include <system_error>

/// Files and folders that only their owner can read, whatever the umask, and that are never written
/// through a link planted by another user.
namespace velmorquit::PrivateFiles {

/// Creates the folder and any missing ones above it. Also fails if it exists but was created by a
/// stranger, as may happen in a folder where everybody may write.
[[nodiscard]] std::error_code makeFolder(const std::filesystem::path& folder);

/// The target of the links that `file` may be, even if nothing is there; `file` itself if one of
/// them was planted by a stranger: opening it then has to be refused (O_NOFOLLOW), while renaming
/// replaces it.
[[nodiscard]] std::filesystem::path targetOf(const std::filesystem::path& file);

/// Opens the file that processes lock, creating it if need be.
[[nodiscard]] Descriptor openLock(const std::filesystem::path& file);

/// How safely a file is replaced.
enum class Durability {
    untilShutdown, ///< readers find it complete or not at all
    onDisk,        ///< also after a power cut
};

/// Replaces the file, or the target of a link there, in one step. On an error it stays as it was.
[[nodiscard]] std::error_code replace(const std::filesystem::path& file, std::string_view content,
                                      Durability durability);

} // namespace velmorquit::PrivateFiles
