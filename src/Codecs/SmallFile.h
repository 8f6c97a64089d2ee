#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace velmorquit {

/// The content of an ordinary file; none if it can't be read, is larger than any property list may
/// be, or is something else: reading a pipe would have to wait.
[[nodiscard]] std::optional<std::string> readSmallFile(const std::filesystem::path& file);

} // namespace velmorquit
