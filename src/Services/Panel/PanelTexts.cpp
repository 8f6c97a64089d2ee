#include "Services/Panel/PanelTexts.h"

#include "Texts/Localized.h"

#include <utility>

namespace velmorquit::PanelTexts {
namespace {

StatusLine resultLine(const phases::Done& done, const std::optional<std::string>& note,
                      const Formats& formats) {
    StatusLine line{.kind = StatusLine::Kind::result,
                    .text = done.closed == 1 ? localized("Chiusa 1 app")
                                             : localized("Chiuse %lld app", done.closed),
                    .badge = std::nullopt,
                    .note = note};
    if (done.freed > 0)
        line.badge = localized("liberati %@", formats.bytes(done.freed));
    return line;
}

StatusLine ordinary(std::string text) {
    StatusLine line;
    line.text = std::move(text);
    return line;
}

StatusLine outlook(const QuitController& controller, const Formats& formats) {
    const std::vector<OpenApp> quittable = controller.quittable();
    if (quittable.empty())
        return {.kind = StatusLine::Kind::quiet,
                .text = nothingToQuit(controller.sight),
                .badge = std::nullopt,
                .note = std::nullopt};
    std::uint64_t memory = 0;
    for (const OpenApp& app : quittable)
        memory += app.memory;
    const std::string amount = formats.bytes(memory);
    return ordinary(quittable.size() == 1
                        ? localized("1 app · circa %@ da liberare", amount)
                        : localized("%lld app · circa %@ da liberare", quittable.size(), amount));
}

} // namespace

std::string appCount(const QuitController& controller) {
    const std::size_t count = controller.apps->size();
    if (count == 0)
        return controller.sight == Sight::all ? localized("Nessuna app aperta")
                                              : localized("Nessuna app in vista");
    return count == 1 ? localized("1 app aperta") : localized("%lld app aperte", count);
}

std::string emptyList(Sight sight) {
    const std::string unseen = unseenHelp(sight);
    return unseen.empty() ? localized("Tutto chiuso. La memoria è libera.") : unseen;
}

std::string nothingToQuit(Sight sight) {
    return sight == Sight::all ? localized("Niente da chiudere")
                               : localized("Non vedo niente da chiudere");
}

StatusLine statusLine(const QuitController& controller, const Formats& formats) {
    const Phase& phase = controller.phase;
    if (const auto* quitting = std::get_if<phases::Quitting>(&phase))
        return ordinary(quitting->total == 1
                            ? localized("Chiusura di 1 app in corso…")
                            : localized("Chiusura di %lld app in corso…", quitting->total));
    if (is<phases::Ejecting>(phase))
        return ordinary(localized("Espulsione dei dischi…"));
    if (const auto* done = std::get_if<phases::Done>(&phase))
        return resultLine(*done, controller.resultNote, formats);
    return outlook(controller, formats);
}

std::string memory(const MemoryMonitor::SystemMemory& memory, const Formats& formats) {
    return localized("%@ di %@", formats.bytes(memory.used), formats.bytes(memory.total));
}

std::string rowHelp(const OpenApp& app, bool isExcluded) {
    return isExcluded ? localized("Esclusa: «Chiudi tutto» la lascia aperta. Clic per includerla.")
                      : localized("Clic per escludere %@ da «Chiudi tutto»", app.name);
}

std::string rowQuitHelp(const OpenApp& app) { return localized("Chiudi solo %@", app.name); }

std::string forceHelp(const OpenApp& app) {
    return localized("Chiude subito %@: le modifiche non salvate andranno perse", app.name);
}

std::string_view choiceSymbol(PowerAction action) {
    return action == PowerAction::none ? "xmark.circle" : buttonSymbol(action);
}

std::string_view buttonSymbol(PowerAction action) {
    switch (action) {
    case PowerAction::none:
        return "xmark";
    case PowerAction::shutDown:
        return "power";
    case PowerAction::restart:
        return "arrow.clockwise";
    case PowerAction::logOut:
        break;
    }
    return "rectangle.portrait.and.arrow.right";
}

} // namespace velmorquit::PanelTexts
