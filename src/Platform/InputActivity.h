#pragma once

#include "Loop/Handle.h"
#include "Loop/Time.h"

#include <functional>
#include <optional>

namespace velmorquit {

/// Whether anybody is at the computer.
class InputActivity {
public:
    virtual ~InputActivity() = default;

    /// Calls `told` once, in a later turn, with the time since the session's last input by keyboard
    /// or pointer; with none when nobody knows or says so within a second. Not called any more once
    /// the handle has gone.
    [[nodiscard]] virtual Handle
    sinceLastInput(std::function<void(std::optional<Duration>)> told) = 0;
};

} // namespace velmorquit
