#pragma once

#include <optional>
#include <string>

namespace velmorquit {

/// Whether this program starts with the user's session, and why not.
enum class LoginItemStatus {
    notRegistered,
    enabled,
    requiresApproval, ///< the user has to allow it elsewhere first
    notFound,         ///< it is registered, but what is to be started isn't there
    unknown,
};

/// The session's list of programs that start with it, as far as this program is concerned.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    /// Puts the program on the list. None when that worked, else what went wrong, for the log.
    virtual std::optional<std::string> add() = 0;

    /// Takes the program off the list; not being on it is no error. Returns as `add` does.
    virtual std::optional<std::string> remove() = 0;

    [[nodiscard]] virtual LoginItemStatus status() const = 0;
};

} // namespace velmorquit
