#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace velmorquit {

/// What an ordinary file holds; none when it can't be read, is larger than any property list may
/// be, or is something else: a pipe would have to be waited for.
[[nodiscard]] std::optional<std::string> readSmallFile(const std::filesystem::path& file);

} // namespace velmorquit
