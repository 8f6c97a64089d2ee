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

/// Whoever ends the session or switches the computer off when it is told so.
class EndService {
public:
    virtual ~EndService() = default;

    /// Whether it is known by now who is there to be told. It becomes so within seconds of the
    /// start, whatever happens.
    [[nodiscard]] virtual bool isReady() const = 0;

    /// Why nothing here can do this, for the log; none when it can, or while it isn't ready. From
    /// memory, returns at once.
    [[nodiscard]] virtual std::optional<std::string> obstacle(LoginRequest request,
                                                              EndForm form) const = 0;

    /// Has it done, once it is ready: asked for once, never again. Returns at once; `onAnswered` is
    /// called once, in a later turn.
    virtual void carryOut(LoginRequest request, EndForm form) = 0;

    /// Called with why it failed, for the log; with none when it is under way, or when the user is
    /// being asked. May be empty.
    std::function<void(const std::optional<std::string>& failure)> onAnswered;
};

} // namespace velmorquit
