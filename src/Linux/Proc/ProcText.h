#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Parsers for the texts of /proc.
namespace velmorquit::ProcText {

/// The number after `field` on the first line that begins with it; none without such a
/// line.
[[nodiscard]] std::optional<std::uint64_t> numberAt(std::string_view text, std::string_view field);

/// The text after "FIELD<blanks>: " at the beginning of the first such line.
[[nodiscard]] std::string textAt(std::string_view text, std::string_view field);

/// Texts that end with a NUL each, such as arguments and variables; the last one may lack it.
[[nodiscard]] std::vector<std::string> splitAtNul(std::string_view text);

/// Whether a process with this content of `/proc/PID/status` ignores SIGHUP.
[[nodiscard]] bool ignoresHangup(std::string_view status);

} // namespace velmorquit::ProcText
