#include "Services/Panel/SettingsMenu.h"

#include "Services/AppUpdater.h"
#include "Services/Settings.h"
#include "Texts/Localized.h"

#include <utility>

namespace velmorquit {

Menu settingsMenu(Settings& settings, AppUpdater& updater, std::function<void()> exit) {
    auto& quitsAll = settings.clickIconQuitsAll;
    return {{.id = "clickIconQuitsAll",
             .title = localized("Clic sull'icona chiude tutto subito"),
             .isChecked = quitsAll,
             .action = [&quitsAll] { quitsAll.store(!quitsAll); }},
            {},
            {.id = "checkForUpdates",
             .title = localized("Controlla aggiornamenti…"),
             .isEnabled = updater.canCheckForUpdates,
             .action = [&updater] { updater.checkForUpdates(); }},
            {.id = "exit", .title = localized("Esci da Velmor Quit"), .action = std::move(exit)}};
}

} // namespace velmorquit
