#pragma once

#include "Platform/LoginItem.h"

#include <filesystem>
#include <vector>

namespace velmorquit {

/// The program's entry in the session's autostart folders.
class AutostartEntry final : public LoginItem {
public:
    /// The user's own folder, and the system's, which apply where the user has no entry.
    struct Folders {
        std::filesystem::path own;
        std::vector<std::filesystem::path> system;

        /// From `$XDG_CONFIG_HOME` and `$XDG_CONFIG_DIRS`.
        static Folders fromEnvironment();
    };

    /// `program` is the absolute path of the program to start.
    AutostartEntry(Folders folders, std::filesystem::path program);

    /// Fails for a path that not every session would start: one with quotes, backslashes, `$`, `%`,
    /// backticks, control characters or invalid UTF-8.
    std::optional<std::string> add() override;
    /// Hides an entry of the system's folders by one in the user's folder.
    std::optional<std::string> remove() override;
    /// Never `requiresApproval`: sessions need no approval.
    [[nodiscard]] LoginItemStatus status() const override;

private:
    [[nodiscard]] std::filesystem::path ownFile() const;
    [[nodiscard]] std::optional<std::filesystem::path> systemFile() const;
    [[nodiscard]] std::optional<std::string> write(const std::string& lines) const;

    Folders folders_;
    std::filesystem::path program_;
};

} // namespace velmorquit
