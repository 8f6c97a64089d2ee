#include "Services/RemoteAnswers.h"

#include "Texts/Localized.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace velmorquit::RemoteAnswers {
namespace {

constexpr const char* accepted = nullptr;

constexpr const char* noRun = textKey("Non c'è nessuna chiusura in corso.");
constexpr const char* quits = textKey("Velmor Quit sta già chiudendo le app.");
constexpr const char* works = textKey("Velmor Quit è già al lavoro.");
constexpr const char* noneStayed = textKey("Nessuna app è rimasta aperta.");
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
constexpr const char* changed = textKey("Ciò che resta aperto è cambiato: non faccio niente.");

struct Row {
    std::string_view verb;
    /// None for a word that stands alone, or takes what it likes.
    std::array<std::string_view, 2> arguments;
    std::size_t mostArguments;
    /// By moment.
    std::array<const char*, 9> answers;
};

constexpr std::array<Row, 9> table{{
    // idle, quitting, waiting, backingUp, backupFailed, ejecting, done, ending, underWay
    {"leave",
     {},
     0,
     {noRun, accepted, accepted, backupRuns, backupAsks, ejects, noRun, ends, tooLate}},
    {"force",
     {},
     0,
     {noneStayed, tooSoon, accepted, noneStayed, noneStayed, noneStayed, noneStayed, mayPass,
      tooLate}},
    {"backup",
     {"skip", "cancel"},
     1,
     {noBackup, noBackup, noBackup, accepted, backupAsks, noBackup, noBackup, noBackup, noBackup}},
    {"backup",
     {"continue", "stop"},
     1,
     {noQuestion, noQuestion, noQuestion, backupRuns, accepted, noQuestion, noQuestion, noQuestion,
      noQuestion}},
    {"cancel",
     {},
     0,
     {accepted, accepted, accepted, accepted, accepted, accepted, accepted, accepted, tooLate}},
    {"confirm",
     {},
     0,
     {accepted, quits, quits, works, backupAsks, works, accepted, accepted, tooLate}},
    {"postpone",
     {},
     1,
     {accepted, accepted, accepted, accepted, accepted, accepted, accepted, accepted, accepted}},
    {"quitAll",
     {},
     1,
     {accepted, quits, quits, backupRuns, backupAsks, works, accepted, accepted, accepted}},
    {"anyway",
     {},
     1,
     {accepted, changed, changed, changed, changed, changed, accepted, accepted, tooLate}},
}};

bool isMeant(const Row& row, const RemoteCommand& command) {
    if (row.verb != command.verb || command.arguments.size() > row.mostArguments)
        return false;
    return row.arguments.front().empty() ||
           (command.arguments.size() == 1 &&
            std::ranges::count(row.arguments, command.arguments.front()) > 0);
}

} // namespace

Moment momentOf(const QuitController& controller, const EndState& end) {
    const Phase& phase = controller.phase;
    if (is<phases::Waiting>(phase))
        return Moment::waiting;
    if (is<phases::BackingUp>(phase))
        return Moment::backingUp;
    if (is<phases::BackupFailed>(phase))
        return Moment::backupFailed;
    if (is<phases::Ejecting>(phase))
        return Moment::ejecting;
    // A run that had nothing to ask has begun, though its phase has not.
    if (controller.isRunning())
        return Moment::quitting;
    if (end.isComing())
        return Moment::ending;
    if (end.stage == EndState::Stage::underWay)
        return Moment::underWay;
    return is<phases::Done>(phase) ? Moment::done : Moment::idle;
}

std::optional<std::string> refusal(const RemoteCommand& command, Moment moment) {
    const auto* row =
        std::ranges::find_if(table, [&](const Row& one) { return isMeant(one, command); });
    if (row == table.end())
        return std::nullopt;
    const char* why = row->answers.at(static_cast<std::size_t>(moment));
    return why ? std::optional(localized(why)) : std::nullopt;
}

} // namespace velmorquit::RemoteAnswers
