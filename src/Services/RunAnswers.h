#pragma once

#include "Platform/LoginWindow.h"
#include "Platform/RemoteCommands.h"
#include "Services/QuitController/QuitController.h"

#include <optional>
#include <string>

namespace velmorquit::RunAnswers {

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

/// What a user may say, and whoever speaks for one.
enum class Word {
    leave,         ///< whatever stays open alone
    leaveNamed,    ///< the same, as the answer to a notice that has named it
    showNamed,     ///< what such a notice has named
    askAgain,      ///< what stays
    force,         ///< what stays to end
    endBackup,     ///< that runs
    answerFailure, ///< of a backup
    cancel,        ///< what was asked for
    confirmSchedule,
    postponeSchedule,
    quitAll,
    endAnyway, ///< over what stays open
    reopen,    ///< what the last run has closed
};

[[nodiscard]] Moment momentOf(const QuitController& controller, const EndState& end);
/// Where the run itself stands, whatever follows it.
[[nodiscard]] Moment momentOf(const QuitController& controller);
/// Where what follows a run stands: `ending`, `underWay` or, without any, `idle`.
[[nodiscard]] Moment momentOf(const EndState& end);

/// Whether the word makes sense at that moment. That is all about a button of a notice or an entry
/// of a menu, which may be pressed when what it was about has gone.
[[nodiscard]] bool isTaken(Word word, Moment moment);

/// Why the command makes no sense at that moment, and what does, for a person. None where it may,
/// and for commands that are not about a run: what else they need is looked at by who does them.
/// The same table as for `isTaken`.
[[nodiscard]] std::optional<std::string> refusal(const RemoteCommand& command, Moment moment);

} // namespace velmorquit::RunAnswers
