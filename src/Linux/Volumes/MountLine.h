#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace velmorquit {

/// The kernel's description of a mount.
struct MountLine {
    std::string path;
    std::string type;
    std::string source;
    std::string options;
    dev_t device = 0;
    bool isWhole = true; ///< false for a folder of the file system

    /// From a line of `/proc/PID/mountinfo`; none when it isn't such a line.
    [[nodiscard]] static std::optional<MountLine> from(std::string_view text);
};

namespace MountText {

/// The texts between the separators, without empty ones.
[[nodiscard]] std::vector<std::string> split(std::string_view text, char separator);

/// Decodes spaces and the like, which the kernel writes as three octal digits.
[[nodiscard]] std::string unescaped(std::string_view text);

/// From a text such as "8:1"; 0 if it is invalid.
[[nodiscard]] dev_t deviceNumber(std::string_view text);

/// The directories that an overlay with these options consists of.
[[nodiscard]] std::vector<std::string> partsOfOverlay(std::string_view options);

} // namespace MountText
} // namespace velmorquit
