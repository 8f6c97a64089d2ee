#pragma once

#include "Loop/Time.h"

#include <optional>

namespace velmorquit {

/// A window system's knowledge of the user's input.
class IdleSource {
public:
    virtual ~IdleSource() = default;

    /// The time since the last input that it knows of, by a short question; none when it doesn't
    /// tell.
    [[nodiscard]] virtual std::optional<Duration> sinceInput() = 0;
};

} // namespace velmorquit
