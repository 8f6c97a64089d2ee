#pragma once

#include "Linux/Files/Descriptor.h"

#include <filesystem>
#include <string_view>
#include <system_error>

/// Files and folders that only their owner can read, whatever the umask, and that are never written
/// through what another user put in their place.
namespace velmorquit::PrivateFiles {

/// Makes the folder and those above it that are missing. An error as well when it is there and was
/// put there by a stranger, as somebody may in a folder where everybody may write.
[[nodiscard]] std::error_code makeFolder(const std::filesystem::path& folder);

/// Where the links lead that `file` may be, also when there is nothing; `file` itself where one of
/// them was put there by a stranger: opening that one has to be refused (O_NOFOLLOW), renaming over
/// it replaces it.
[[nodiscard]] std::filesystem::path targetOf(const std::filesystem::path& file);

/// The file that processes lock, made when it isn't there.
[[nodiscard]] Descriptor openLock(const std::filesystem::path& file);

/// How a file gets to be there.
enum class Durability {
    untilShutdown, ///< whole or not at all for who reads it
    onDisk,        ///< and also after a power cut
};

/// Replaces the file, or where a link there leads, in one step. After an error it is as it was.
[[nodiscard]] std::error_code replace(const std::filesystem::path& file, std::string_view content,
                                      Durability durability);

} // namespace velmorquit::PrivateFiles
