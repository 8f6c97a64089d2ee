#include "Services/RunAnswers.h"

#include <array>

namespace velmorquit::RunAnswers {
namespace {

constexpr const char* accepted = nullptr;

constexpr const char* noRun = textKey("Non c'è nessuna chiusura in corso.");
constexpr const char* quits = textKey("Velmor Quit sta già chiudendo le app.");
constexpr const char* tooSoon =
    textKey("Le app hanno ancora qualche secondo per chiudersi da sole: riprova fra poco.");
constexpr const char* backupRuns =
    textKey("È in corso un backup: velmorctl backup skip lo salta e va avanti, velmorctl backup "
            "cancel si ferma qui.");
constexpr const char* backupAsks =
    textKey("Il backup non è riuscito e aspetta una risposta: velmorctl backup continue va avanti, "
            "velmorctl backup stop si ferma qui.");
constexpr const char* noBackup = textKey("Non c'è nessun backup in corso.");
constexpr const char* noQuestion = textKey("Nessun backup aspetta una risposta.");
constexpr const char* ejects =
    textKey("Sto espellendo i dischi, e non mi fermo a metà: velmorctl cancel rinuncia a spegnere, "
            "riavviare o uscire.");
constexpr const char* ends = textKey("La chiusura delle app è finita: velmorctl cancel rinuncia a "
                                     "spegnere, riavviare o uscire.");
constexpr const char* mayPass = textKey("La chiusura delle app è finita: velmorctl anyway passa "
                                        "sopra a ciò che resta aperto.");
constexpr const char* tooLate = textKey("È troppo tardi: il sistema lo sta già facendo.");

constexpr std::size_t words = static_cast<std::size_t>(Word::none);
constexpr std::size_t moments = static_cast<std::size_t>(Moment::underWay) + 1;

/// By word and moment.
constexpr std::array<std::array<const char*, moments>, words> table{{
    // idle, quitting, waiting, backingUp, backupFailed, ejecting, done, ending, underWay
    // leave
    {noRun, accepted, accepted, backupRuns, backupAsks, ejects, noRun, ends, tooLate},
    // leaveNamed, showNamed, askAgain, force
    {noneStayed, tooSoon, accepted, noneStayed, noneStayed, noneStayed, noneStayed, ends, tooLate},
    {noneStayed, tooSoon, accepted, noneStayed, noneStayed, noneStayed, noneStayed, ends, tooLate},
    {noneStayed, tooSoon, accepted, noneStayed, noneStayed, noneStayed, noneStayed, ends, tooLate},
    {noneStayed, tooSoon, accepted, noneStayed, noneStayed, noneStayed, noneStayed, mayPass,
     tooLate},
    // endBackup, answerFailure
    {noBackup, noBackup, noBackup, accepted, backupAsks, noBackup, noBackup, noBackup, noBackup},
    {noQuestion, noQuestion, noQuestion, backupRuns, accepted, noQuestion, noQuestion, noQuestion,
     noQuestion},
    // cancel
    {accepted, accepted, accepted, accepted, accepted, accepted, accepted, accepted, tooLate},
    // confirmSchedule, postponeSchedule
    {accepted, quits, quits, alreadyAtWork, backupAsks, alreadyAtWork, accepted, accepted, tooLate},
    {accepted, accepted, accepted, accepted, accepted, accepted, accepted, accepted, accepted},
    // quitAll
    {accepted, quits, quits, backupRuns, backupAsks, alreadyAtWork, accepted, accepted, accepted},
    // endAnyway
    {accepted, othersStay, othersStay, othersStay, othersStay, othersStay, accepted, accepted,
     tooLate},
    // reopen
    {accepted, quits, quits, backupRuns, backupAsks, alreadyAtWork, accepted, accepted, accepted},
}};

const char* answerTo(Word word, Moment moment) {
    return table.at(static_cast<std::size_t>(word)).at(static_cast<std::size_t>(moment));
}

} // namespace

std::string reopening(std::size_t count) {
    return count == 1 ? localized("Riapro 1 app.") : localized("Riapro %lld app.", count);
}

Moment momentOf(const QuitController& controller) {
    const Phase& phase = controller.phase;
    if (is<phases::Waiting>(phase))
        return Moment::waiting;
    if (is<phases::BackingUp>(phase))
        return Moment::backingUp;
    if (is<phases::BackupFailed>(phase))
        return Moment::backupFailed;
    if (is<phases::Ejecting>(phase))
        return Moment::ejecting;
    // A run without any targets has begun, but has not set its phase yet.
    if (controller.isRunning())
        return Moment::quitting;
    return is<phases::Done>(phase) ? Moment::done : Moment::idle;
}

Moment momentOf(const EndState& end) {
    if (end.isComing())
        return Moment::ending;
    return end.stage == EndState::Stage::underWay ? Moment::underWay : Moment::idle;
}

Moment momentOf(const QuitController& controller, const EndState& end) {
    const Moment ofEnd = momentOf(end);
    return controller.isRunning() || ofEnd == Moment::idle ? momentOf(controller) : ofEnd;
}

bool isTaken(Word word, Moment moment) { return answerTo(word, moment) == accepted; }

std::optional<std::string> refusal(const RemoteCommand& command, Moment moment) {
    const remote::Meaning* const meaning = remote::meaningOf(command);
    if (!meaning || meaning->word == Word::none)
        return std::nullopt;
    const char* why = answerTo(meaning->word, moment);
    return why ? std::optional(localized(why)) : std::nullopt;
}

} // namespace velmorquit::RunAnswers
