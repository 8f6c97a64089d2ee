#pragma once

#include "Platform/LoginWindow.h"
#include "Remote/Verbs.h"
#include "Services/QuitController/QuitController.h"
#include "Texts/Localized.h"

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

using remote::Word;

// Said in the same words by several: keys of the string table.
inline constexpr const char* alreadyAtWork = textKey("Velmor Quit è già al lavoro.");
inline constexpr const char* noneStayed = textKey("Nessuna app è rimasta aperta.");
inline constexpr const char* othersStay =
    textKey("Ciò che resta aperto è cambiato: non faccio niente.");
inline constexpr const char* nothingScheduled = textKey("Non c'è nessuna chiusura programmata.");
inline constexpr const char* scheduleCancelled = textKey("Annullata: non chiudo niente.");
inline constexpr const char* nothingToReopen = textKey("Non ci sono app da riaprire.");

/// So many applications are started again.
[[nodiscard]] std::string reopening(std::size_t count);

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
