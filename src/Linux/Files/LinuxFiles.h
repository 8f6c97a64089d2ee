#pragma once

#include "Platform/Files.h"

namespace velmorquit {

/// The file system.
class LinuxFiles final : public Files {
public:
    [[nodiscard]] bool exists(const std::string& path) const override;
    [[nodiscard]] std::optional<std::string> read(const std::string& path) const override;
};

} // namespace velmorquit
