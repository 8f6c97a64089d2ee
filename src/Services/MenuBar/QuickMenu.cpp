#include "Services/MenuBar/QuickMenu.h"

#include "Services/AppUpdater.h"
#include "Services/Panel/PanelTexts.h"
#include "Services/QuitController/QuitController.h"
#include "Services/RunAnswers.h"
#include "Services/SessionEnd/EndTexts.h"
#include "Texts/Localized.h"

#include <array>
#include <utility>

namespace velmorquit {

namespace {

using Command = QuickMenuEntry::Command;

constexpr std::array<std::pair<PowerAction, const char*>, 3> powerSymbols{
    {{PowerAction::shutDown, "power"},
     {PowerAction::restart, "arrow.clockwise"},
     {PowerAction::logOut, "rectangle.portrait.and.arrow.right"}}};

std::string quitTitle(std::size_t count, Sight sight) {
    if (count == 0)
        return PanelTexts::nothingToQuit(sight);
    return count == 1 ? localized("Chiudi 1 app") : localized("Chiudi %lld app", count);
}

std::string reopenTitle(std::size_t count) {
    return count == 1 ? localized("Riapri l'app di prima")
                      : localized("Riapri le %lld app di prima", count);
}

} // namespace

QuickMenu quickMenu(const QuitController& controller, const LoginWindow& loginWindow,
                    const AppUpdater& updater, const Formats& formats) {
    const QuickMenuEntry separator;
    const std::size_t open = controller.quittable().size();
    QuickMenu menu{{.command = Command::quit,
                    .title = quitTitle(open, controller.sight),
                    .symbol = "xmark.circle",
                    .isEnabled = open > 0},
                   separator};
    const bool mayReopen =
        RunAnswers::isTaken(RunAnswers::Word::reopen, RunAnswers::momentOf(controller));
    const EndOutlook outlook = loginWindow.outlook(LoginRequest::shutDown);
    for (const auto& [action, symbol] : powerSymbols)
        menu.push_back({.command = Command::quit,
                        .title = buttonTitle(action),
                        .symbol = symbol,
                        .then = action});
    if (outlook != EndOutlook::direct)
        menu.push_back({.command = Command::remark,
                        .title = EndTexts::shortOutlook(outlook),
                        .symbol = {},
                        .isEnabled = false});
    if (const std::size_t closed = controller.reopenable().size(); closed > 0) {
        menu.push_back(separator);
        menu.push_back({.command = Command::reopen,
                        .title = reopenTitle(closed),
                        .symbol = "arrow.uturn.backward.circle",
                        .isEnabled = mayReopen});
    }
    if (const auto& schedule = controller.schedule.get()) {
        menu.push_back(separator);
        menu.push_back(
            {.command = Command::cancelSchedule,
             .title = localized("Annulla la chiusura delle %@", formats.shortTime(schedule->date)),
             .symbol = "timer"});
    }
    if (const EndState& state = loginWindow.state; state.isComing()) {
        menu.push_back(separator);
        menu.push_back({.command = Command::cancelEnd,
                        .title = EndTexts::cancelTitle(state.request),
                        .symbol = "xmark.circle"});
    }
    menu.push_back(separator);
    menu.push_back({.command = Command::checkForUpdates,
                    .title = localized("Controlla aggiornamenti…"),
                    .symbol = {},
                    .isEnabled = updater.canCheckForUpdates});
    menu.push_back(
        {.command = Command::openPanel, .title = localized("Apri pannello…"), .symbol = {}});
    menu.push_back({.command = Command::exit,
                    .title = localized("Esci da Velmor Quit"),
                    .symbol = {},
                    .key = 'Q'});
    return menu;
}

} // namespace velmorquit
