#pragma once

#include "Platform/LoginWindow.h"
#include "Remote/Verbs.h"
#include "Services/QuitController/QuitController.h"
#include "Texts/Localized.h"

#include <optional>
#include <string>

namespace velmorquit::RunAnswers {

/// Where a run stands, to judge what is said about it from outside.
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

// Sentences that several speakers use: keys of the string table.
inline constexpr const char* alreadyAtWork = textKey("Velmor Quit è già al lavoro.");
inline constexpr const char* noneStayed = textKey("Nessuna app è rimasta aperta.");
inline constexpr const char* othersStay =
    textKey("Ciò che resta aperto è cambiato: non faccio niente.");
inline constexpr const char* nothingScheduled = textKey("Non c'è nessuna chiusura programmata.");
inline constexpr const char* scheduleCancelled = textKey("Annullata: non chiudo niente.");
inline constexpr const char* nothingToReopen = textKey("Non ci sono app da riaprire.");

/// Says how many applications are being started again.
[[nodiscard]] std::string reopening(std::size_t count);

[[nodiscard]] Moment momentOf(const QuitController& controller, const EndState& end);
/// Where the run itself stands, disregarding what follows it.
[[nodiscard]] Moment momentOf(const QuitController& controller);
/// Where the end of the session stands: `ending`, `underWay` or, without one, `idle`.
[[nodiscard]] Moment momentOf(const EndState& end);

/// Whether the word makes sense at that moment. Enough for the button of a notice or a menu entry,
/// which may be pressed after its subject has gone.
[[nodiscard]] bool isTaken(Word word, Moment moment);

/// Why the command makes no sense at that moment, and what does, in words for the user. None where
/// it is acceptable, and for commands not about a run: their other conditions are checked where
/// they are carried out. Uses the same table as `isTaken`.
[[nodiscard]] std::optional<std::string> refusal(const RemoteCommand& command, Moment moment);

} // namespace velmorquit::RunAnswers
