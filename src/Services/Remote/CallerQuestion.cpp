#include "Services/Remote/CallerQuestion.h"

#include "Remote/Verbs.h"
#include "Services/Remote/Answers.h"
#include "Texts/Shown.h"

#include <algorithm>
#include <utility>

namespace velmorquit {

namespace {

std::string questionOf(const RemoteCaller& caller, const std::string& what) {
    const std::string name = shownName(caller.name);
    if (name.empty())
        return localized("Un programma sconosciuto chiede di %@. Lo permetti?", what);
    return localized("«%@», che gira in una sandbox, chiede di %@. Lo permetti?", name, what);
}

} // namespace

// Commands that nobody has classified are not open to everybody.
bool CallerQuestion::isAbout(const RemoteCommand& command) {
    const remote::Meaning* const meaning = remote::meaningOf(command);
    return !meaning || meaning->request;
}

std::optional<RemoteAnswer> CallerQuestion::consider(const RemoteCommand& command,
                                                     const std::string& subject,
                                                     std::function<void()> agreed) {
    if (!command.caller.isConfined || !isAbout(command))
        return std::nullopt;
    const remote::Meaning* const meaning = remote::meaningOf(command);
    if (!meaning)
        return remote::unknownCommand(command.verb);
    if (agreed_)
        return remote::refused(
            localized("Velmor Quit ha già una domanda sullo schermo: riprova dopo la risposta."));
    if (!screen.ask || (quietUntil_ && loop_.uptime() < *quietUntil_))
        return remote::refused(localized("A un programma in una sandbox l'utente ha detto di no da "
                                         "poco: per ora Velmor Quit non chiede più."));
    agreed_ = std::move(agreed);
    const unsigned question = ++question_;
    losingPatience_ = loop_.after(patience, [this, question] { hear(question, false); });
    screen.ask(questionOf(command.caller, localized(meaning->request, subject)),
               localized("Permetti"),
               [this, question](bool isWanted) { hear(question, isWanted); });
    return RemoteAnswer{RemoteAnswer::Status::asking,
                        localized("Il comando viene da una sandbox: Velmor Quit chiede conferma "
                                  "sullo schermo, e lo esegue solo dopo un sì.")};
}

// The question is over before it is withdrawn, since withdrawing may answer it as well.
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
    // A refusal weeks ago says nothing about a caller today.
    if (quietUntil_ && loop_.uptime() - *quietUntil_ > 2 * longestRest)
        nextRest_ = rest;
    quietUntil_ = loop_.uptime() + nextRest_;
    nextRest_ = std::min<Duration>(nextRest_ * 2, longestRest);
    if (screen.withdraw)
        screen.withdraw();
}

} // namespace velmorquit
