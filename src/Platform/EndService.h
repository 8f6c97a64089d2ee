#pragma once

#include "Platform/LoginWindow.h"

#include <functional>
#include <optional>
#include <string>

namespace velmorquit {

/// How a session is ended.
enum class EndForm {
    direct, ///< without a look at what is still open
    asking, ///< the session's own manager asks its user, who may still say no
};

/// The service that ends the session or switches the computer off.
class EndService {
public:
    virtual ~EndService() = default;

    /// Whether it is known yet which service there is. It becomes known within seconds of the
    /// start, in any case.
    [[nodiscard]] virtual bool isReady() const = 0;

    /// Why no service here can do this, for the log; none when one can, or while it isn't ready.
    /// From memory, returns at once.
    [[nodiscard]] virtual std::optional<std::string> obstacle(LoginRequest request,
                                                              EndForm form) const = 0;

    /// Does it, once it is ready. The system is told only once, without retries. Returns at once;
    /// `onAnswered` is called once, in a later turn.
    virtual void carryOut(LoginRequest request, EndForm form) = 0;

    /// Called with the reason of a failure, for the log; with none when the end is under way, or
    /// when the user is being asked. May be empty.
    std::function<void(const std::optional<std::string>& failure)> onAnswered;
};

} // namespace velmorquit
