#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Texts of /proc, taken apart.
namespace velmorquit::ProcText {

/// The number after `field` at the beginning of the first line that has it; none without such a
/// line.
[[nodiscard]] std::optional<std::uint64_t> numberAt(std::string_view text, std::string_view field);

/// The text after "FIELD<blanks>: " on the first line that begins so.
[[nodiscard]] std::string textAt(std::string_view text, std::string_view field);

/// What ends with a NUL each, as arguments and variables do; the last one may lack its end.
[[nodiscard]] std::vector<std::string> splitAtNul(std::string_view text);

/// Whether a process of which `/proc/PID/status` holds this ignores SIGHUP.
[[nodiscard]] bool ignoresHangup(std::string_view status);

} // namespace velmorquit::ProcText
