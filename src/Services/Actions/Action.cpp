#include "Services/Actions/Action.h"

#include "Texts/Localized.h"

namespace velmorquit {

namespace {

constexpr int fewestMinutes = 1;
constexpr int mostMinutes = 600;
constexpr std::string_view application = "Velmor Quit";

} // namespace

std::vector<ActionDescription> allActions() {
    const std::string then = localized("Poi");
    return {
        {.kind = ActionKind::quitAll,
         .name = "quit-all",
         .title = localized("Chiudi tutte le app"),
         .minutes = std::nullopt,
         .then = ActionDescription::Choice{then, AfterQuit::nothing},
         .summary = localized("Chiudi tutte le app, poi %@", "%@"),
         .phrases = {localized("Chiudi tutto con %@", application),
                     localized("Chiudi tutte le app con %@", application)},
         .shortTitle = localized("Chiudi tutto"),
         .symbol = "xmark.circle"},
        {.kind = ActionKind::scheduleQuit,
         .name = "schedule-quit",
         .title = localized("Programma la chiusura"),
         .minutes =
             ActionDescription::Number{localized("Tra minuti"), 30, fewestMinutes, mostMinutes},
         .then = ActionDescription::Choice{then, AfterQuit::shutDown},
         .summary = localized("Tra %@ minuti chiudi tutto, poi %@", "%1$@", "%2$@"),
         .phrases = {localized("Programma la chiusura con %@", application),
                     localized("Programma lo spegnimento con %@", application)},
         .shortTitle = localized("Programma"),
         .symbol = "timer"},
        {.kind = ActionKind::cancelSchedule,
         .name = "cancel-schedule",
         .title = localized("Annulla la chiusura programmata"),
         .minutes = std::nullopt,
         .then = std::nullopt,
         .summary = {},
         .phrases = {localized("Annulla la chiusura con %@", application)},
         .shortTitle = localized("Annulla programmazione"),
         .symbol = "timer.slash"},
        {.kind = ActionKind::reopenApps,
         .name = "reopen-apps",
         .title = localized("Riapri le app di prima"),
         .minutes = std::nullopt,
         .then = std::nullopt,
         .summary = {},
         .phrases = {localized("Riapri le app con %@", application)},
         .shortTitle = localized("Riapri le app"),
         .symbol = "arrow.uturn.backward.circle"},
        {.kind = ActionKind::memory,
         .name = "memory",
         .title = localized("Memoria in uso"),
         .minutes = std::nullopt,
         .then = std::nullopt,
         .summary = {},
         .phrases = {localized("Memoria del Mac con %@", application)},
         .shortTitle = localized("Memoria in uso"),
         .symbol = "memorychip"},
    };
}

std::optional<ActionRequest> actionNamed(std::string_view name) {
    for (const ActionDescription& action : allActions()) {
        if (action.name != name)
            continue;
        ActionRequest request{.kind = action.kind};
        if (action.then)
            request.then = action.then->fallback;
        if (action.minutes)
            request.minutes = action.minutes->fallback;
        return request;
    }
    return std::nullopt;
}

std::optional<std::string> problemOf(const ActionRequest& request) {
    const bool isInRange = request.minutes >= fewestMinutes && request.minutes <= mostMinutes;
    if (request.kind != ActionKind::scheduleQuit || isInRange)
        return std::nullopt;
    return localized("I minuti vanno da %lld a %lld.", fewestMinutes, mostMinutes);
}

} // namespace velmorquit
