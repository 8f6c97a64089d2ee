#pragma once

#include <optional>
#include <string>

namespace velmorquit {

/// Reads files of other programs.
class Files {
public:
    virtual ~Files() = default;

    [[nodiscard]] virtual bool exists(const std::string& path) const = 0;

    /// The whole content of an ordinary file of up to 16 MiB; none when it can't be read. Quick.
    [[nodiscard]] virtual std::optional<std::string> read(const std::string& path) const = 0;
};

} // namespace velmorquit
