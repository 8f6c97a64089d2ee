#pragma once

#include "Platform/LoginWindow.h"

#include <functional>
#include <optional>
#include <string>

namespace velmorquit {

/// Whoever ends the session or switches the computer off when it is told so, without a look at what
/// is still open.
class EndService {
public:
    virtual ~EndService() = default;

    /// Why nothing here can do this, for the log; none when it can, or when that is not known yet.
    /// From memory, returns at once.
    [[nodiscard]] virtual std::optional<std::string> obstacle(LoginRequest request) const = 0;

    /// Has it done: asked for once, never again. Returns at once; `onAnswered` is called once, in a
    /// later turn.
    virtual void carryOut(LoginRequest request) = 0;

    /// Called with why it failed, for the log; with none when it is under way. May be empty.
    std::function<void(const std::optional<std::string>& failure)> onAnswered;
};

} // namespace velmorquit
