#pragma once

#include "Loop/Handle.h"
#include "Loop/Time.h"

#include <functional>
#include <optional>

namespace velmorquit {

/// Tells whether anybody is using the computer.
class InputActivity {
public:
    virtual ~InputActivity() = default;

    /// Calls `told` once, in a later turn, with the time since the session's last keyboard or
    /// pointer input; with none when that is unknown or not answered within a second. Not called
    /// once the handle is gone.
    [[nodiscard]] virtual Handle
    sinceLastInput(std::function<void(std::optional<Duration>)> told) = 0;
};

} // namespace velmorquit
