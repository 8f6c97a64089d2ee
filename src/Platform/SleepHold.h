#pragma once

#include "Loop/Handle.h"

#include <string>

namespace velmorquit {

/// What keeps the computer from falling asleep by itself, because nobody uses it.
class SleepHold {
public:
    virtual ~SleepHold() = default;

    /// Holds sleep off for as long as the handle is held. `reason` is what a user reads who asks
    /// what keeps the computer awake. Returns at once; where nobody can be asked nothing is held.
    [[nodiscard]] virtual Handle begin(const std::string& reason) = 0;
};

} // namespace velmorquit
