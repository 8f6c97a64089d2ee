#pragma once

#include "Platform/LoginWindow.h"
#include "Platform/RemoteCommands.h"
#include "Services/QuitController/QuitController.h"

#include <optional>
#include <string>

namespace velmorquit::RemoteAnswers {

/// Where a run stands, for whoever says something about it from outside.
enum class Moment {
    idle,
    quitting,
    waiting,
    backingUp,
    backupFailed,
    ejecting,
    done,
    ending,   ///< the run is over, and what follows it is still to come
    underWay, ///< the system has been told to end the session
};

[[nodiscard]] Moment momentOf(const QuitController& controller, const EndState& end);

/// Why the command makes no sense at that moment, and what does, for a person. None where it may,
/// and for commands that are not about a run: what else they need is looked at by who does them.
[[nodiscard]] std::optional<std::string> refusal(const RemoteCommand& command, Moment moment);

} // namespace velmorquit::RemoteAnswers
