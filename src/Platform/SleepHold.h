#pragma once

#include "Loop/Handle.h"

#include <string>

namespace velmorquit {

/// Keeps an idle computer from falling asleep by itself.
class SleepHold {
public:
    virtual ~SleepHold() = default;

    /// Holds sleep off for as long as the handle is held. `reason` is shown to users who look up
    /// what keeps the computer awake. Returns at once; without a service nothing is held.
    [[nodiscard]] virtual Handle begin(const std::string& reason) = 0;
};

} // namespace velmorquit
