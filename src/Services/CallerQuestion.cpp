#include "Services/CallerQuestion.h"

#include "Services/Actions/Action.h"
#include "Texts/Localized.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace velmorquit {

namespace {

/// What everybody may do: look, and keep things as they are.
constexpr std::array<std::string_view, 7> harmless{"status", "show",   "memory",  "actions",
                                                   "leave",  "cancel", "postpone"};

/// What a command comes to. Of a verb that is there more than once the first one counts whose
/// argument the command has; one without an argument stands for all the rest.
struct Request {
    std::string_view verb;
    std::string_view argument;
    const char* text;
};

constexpr std::array<Request, 21> requests{{
    {"quitAll", "shutDown", textKey("chiudere tutte le app e poi spegnere il computer")},
    {"quitAll", "restart", textKey("chiudere tutte le app e poi riavviare il computer")},
    {"quitAll", "logOut", textKey("chiudere tutte le app e poi uscire dalla sessione")},
    {"quitAll", "", textKey("chiudere tutte le app")},
    {"force", "",
     textKey("terminare a forza le app rimaste aperte: ciò che non è salvato va perso")},
    {"anyway", "", textKey("passare sopra a ciò che resta aperto: ciò che non è salvato va perso")},
    {"askAgain", "", textKey("chiedere di nuovo alle app di chiudersi")},
    {"backup", "skip", textKey("saltare il backup")},
    {"backup", "continue", textKey("andare avanti senza backup")},
    {"backup", "", textKey("fermare il backup")},
    {"eject", "", textKey("espellere i dischi esterni")},
    {"confirm", "", textKey("cominciare la chiusura programmata")},
    {"schedule", "none", textKey("programmare la chiusura di tutte le app")},
    {"schedule", "",
     textKey("programmare la chiusura di tutte le app, e poi spegnere, riavviare o uscire")},
    {"reopen", "", textKey("riaprire le app di prima")},
    {"forget", "", textKey("dimenticare le app da riaprire")},
    {"exclude", "", textKey("non chiudere più un'app")},
    {"include", "", textKey("chiudere di nuovo un'app esclusa")},
    {"action", "quit-all", textKey("chiudere tutte le app")},
    {"action", "schedule-quit",
     textKey("programmare la chiusura di tutte le app, e poi spegnere, riavviare o uscire")},
    {"action", "reopen-apps", textKey("riaprire le app di prima")},
}};

/// Null when there is none: what nobody has thought of is not done for everybody.
const char* requestOf(const RemoteCommand& command) {
    const auto* const request = std::ranges::find_if(requests, [&](const Request& one) {
        const bool isMeant =
            one.argument.empty() || std::ranges::count(command.arguments, one.argument) > 0;
        return one.verb == command.verb && isMeant;
    });
    return request == requests.end() ? nullptr : request->text;
}

std::string questionOf(const RemoteCaller& caller, const std::string& what) {
    if (caller.name.empty())
        return localized("Un programma sconosciuto chiede di %@. Lo permetti?", what);
    return localized("«%@», che gira in una sandbox, chiede di %@. Lo permetti?", caller.name,
                     what);
}

} // namespace

bool CallerQuestion::isAbout(const RemoteCommand& command) {
    if (command.verb != "action" || command.arguments.empty())
        return std::ranges::count(harmless, command.verb) == 0;
    const auto action = actionNamed(command.arguments.front());
    return !action ||
           (action->kind != ActionKind::memory && action->kind != ActionKind::cancelSchedule);
}

std::optional<RemoteAnswer> CallerQuestion::consider(const RemoteCommand& command,
                                                     std::function<void()> agreed) {
    if (!command.caller.isConfined || !isAbout(command))
        return std::nullopt;
    const char* request = requestOf(command);
    if (!request)
        return RemoteAnswer{RemoteAnswer::Status::unknown,
                            localized("Comando sconosciuto: %@", command.verb)};
    if (agreed_)
        return RemoteAnswer{
            RemoteAnswer::Status::refused,
            localized("Velmor Quit ha già una domanda sullo schermo: riprova dopo la risposta.")};
    if (!screen.ask || (quietUntil_ && loop_.uptime() < *quietUntil_))
        return RemoteAnswer{RemoteAnswer::Status::refused,
                            localized("A un programma in una sandbox l'utente ha detto di no da "
                                      "poco: per ora Velmor Quit non chiede più.")};
    agreed_ = std::move(agreed);
    const unsigned question = ++question_;
    losingPatience_ = loop_.after(patience, [this, question] { hear(question, false); });
    screen.ask(questionOf(command.caller, localized(request)), localized("Permetti"),
               [this, question](bool isWanted) { hear(question, isWanted); });
    return RemoteAnswer{RemoteAnswer::Status::asking,
                        localized("Il comando viene da una sandbox: Velmor Quit chiede conferma "
                                  "sullo schermo, e lo esegue solo dopo un sì.")};
}

// Withdrawing answers as well: the question has been closed by then.
void CallerQuestion::hear(unsigned question, bool isWanted) {
    if (question != question_ || !agreed_)
        return;
    const auto agreed = std::exchange(agreed_, nullptr);
    losingPatience_.reset();
    if (isWanted) {
        nextRest_ = rest;
        quietUntil_.reset();
        agreed();
        return;
    }
    // What was weeks ago says nothing of who asks today.
    if (quietUntil_ && loop_.uptime() - *quietUntil_ > 2 * longestRest)
        nextRest_ = rest;
    quietUntil_ = loop_.uptime() + nextRest_;
    nextRest_ = std::min<Duration>(nextRest_ * 2, longestRest);
    if (screen.withdraw)
        screen.withdraw();
}

} // namespace velmorquit
