#pragma once

#include <optional>
#include <string>

namespace velmorquit {

/// Whether this program starts with the user's session, or why not.
enum class LoginItemStatus {
    notRegistered,
    enabled,
    requiresApproval, ///< the user has to allow it elsewhere first
    notFound,         ///< it is registered, but the file to start is missing
    unknown,
};

/// This program's entry among those that start with the session.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    /// Adds the program. None on success, else what went wrong, for the log.
    virtual std::optional<std::string> add() = 0;

    /// Removes the program; success if it isn't there. Returns like `add`.
    virtual std::optional<std::string> remove() = 0;

    [[nodiscard]] virtual LoginItemStatus status() const = 0;
};

} // namespace velmorquit
