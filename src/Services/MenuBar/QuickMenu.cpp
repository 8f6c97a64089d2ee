#include "Services/MenuBar/QuickMenu.h"

#include "Services/AppUpdater.h"
#include "Services/Panel/PanelTexts.h"
#include "Services/QuitController/QuitController.h"
#include "Services/RunAnswers.h"
#include "Services/SessionEnd/EndTexts.h"
#include "Texts/Localized.h"

#include <array>
#include <string>
#include <utility>

namespace velmorquit {

namespace {

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

Menu quickMenu(const QuitController& controller, const LoginWindow& loginWindow,
               const AppUpdater& updater, const Formats& formats, const QuickMenuActions& actions) {
    const MenuEntry separator;
    const auto quit = [&](PowerAction then) { return [quit = actions.quit, then] { quit(then); }; };
    const std::size_t open = controller.quittable().size();
    Menu menu{{.id = "quit",
               .title = quitTitle(open, controller.sight),
               .symbol = "xmark.circle",
               .isEnabled = open > 0,
               .action = quit(PowerAction::none)},
              separator};
    const bool mayReopen =
        RunAnswers::isTaken(RunAnswers::Word::reopen, RunAnswers::momentOf(controller));
    const EndOutlook outlook = loginWindow.outlook(LoginRequest::shutDown);
    for (const auto& [action, symbol] : powerSymbols)
        menu.push_back({.id = "quit." + std::string(rawValue(action)),
                        .title = buttonTitle(action),
                        .symbol = symbol,
                        .action = quit(action)});
    if (outlook != EndOutlook::direct)
        menu.push_back(
            {.id = "remark", .title = EndTexts::shortOutlook(outlook), .isEnabled = false});
    if (const std::size_t closed = controller.reopenable().size(); closed > 0) {
        menu.push_back(separator);
        menu.push_back({.id = "reopen",
                        .title = reopenTitle(closed),
                        .symbol = "arrow.uturn.backward.circle",
                        .isEnabled = mayReopen,
                        .action = actions.reopen});
    }
    if (const auto& schedule = controller.schedule.get()) {
        menu.push_back(separator);
        menu.push_back(
            {.id = "cancelSchedule",
             .title = localized("Annulla la chiusura delle %@", formats.shortTime(schedule->date)),
             .symbol = "timer",
             .action = actions.cancelSchedule});
    }
    if (const EndState& state = loginWindow.state; state.isComing()) {
        menu.push_back(separator);
        menu.push_back({.id = "cancelEnd",
                        .title = EndTexts::cancelTitle(state.request),
                        .symbol = "xmark.circle",
                        .action = actions.cancelEnd});
    }
    menu.push_back(separator);
    menu.push_back({.id = "checkForUpdates",
                    .title = localized("Controlla aggiornamenti…"),
                    .isEnabled = updater.canCheckForUpdates,
                    .action = actions.checkForUpdates});
    menu.push_back(
        {.id = "openPanel", .title = localized("Apri pannello…"), .action = actions.openPanel});
    menu.push_back({.id = "exit",
                    .title = localized("Esci da Velmor Quit"),
                    .key = 'Q',
                    .action = actions.exit});
    return menu;
}

} // namespace velmorquit
