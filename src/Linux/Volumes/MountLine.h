#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace velmorquit {

/// What the kernel tells of a mount.
struct MountLine {
    std::string path;
    std::string type;
    std::string source;
    std::string options;
    dev_t device = 0;
    bool isWhole = true; ///< not only a folder of the file system

    /// From a line of `/proc/PID/mountinfo`; none when it isn't such a line.
    [[nodiscard]] static std::optional<MountLine> from(std::string_view text);
};

namespace MountText {

/// What is between the separators, but for what is empty.
[[nodiscard]] std::vector<std::string> split(std::string_view text, char separator);

/// The kernel writes spaces and the like as three octal digits.
[[nodiscard]] std::string unescaped(std::string_view text);

/// "8:1"; 0 where it is none.
[[nodiscard]] dev_t deviceNumber(std::string_view text);

/// The directories that an overlay with these options was made of.
[[nodiscard]] std::vector<std::string> partsOfOverlay(std::string_view options);

} // namespace MountText
} // namespace velmorquit
