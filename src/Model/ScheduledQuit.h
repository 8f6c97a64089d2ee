#pragma once

#include "Loop/Time.h"
#include "Model/PowerAction.h"

namespace velmorquit {

/// A run that begins at a later time.
struct ScheduledQuit {
    WallTime date;                          ///< when it begins
    PowerAction action = PowerAction::none; ///< what follows it
    WallTime created;                       ///< when it was set, or postponed last
    /// Whether the user is asked at that time before it begins.
    bool needsConfirmation = true;

    friend bool operator==(const ScheduledQuit&, const ScheduledQuit&) = default;
};

} // namespace velmorquit
