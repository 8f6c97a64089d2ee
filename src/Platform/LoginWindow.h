#pragma once

#include <optional>
#include <string>

namespace velmorquit {

/// What the session can be asked for.
enum class LoginRequest { shutDown, restart, logOut };

/// Whoever ends sessions and switches the computer off.
class LoginWindow {
public:
    virtual ~LoginWindow() = default;

    /// Asks for it, without a question to the user. None when the request was taken, else why not,
    /// for the log. Returns at once: what is still open is asked to close first and waited for, and
    /// when something stays open the request is given up, which the user is told. A request that is
    /// waiting is replaced by the next.
    virtual std::optional<std::string> request(LoginRequest request) = 0;

    /// Gives up a request that is still waiting; false when there was none.
    virtual bool cancel() = 0;
};

} // namespace velmorquit
