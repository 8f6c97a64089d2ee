#include "Services/LaunchAtLogin.h"

#include "Texts/Localized.h"

#include <algorithm>
#include <array>
#include <utility>

namespace velmorquit::LaunchAtLogin {

LoginItemStatus set(LoginItem& item, SystemLog& log, bool enabled) {
    if (const auto failure = enabled ? item.add() : item.remove())
        log.write("Velmor Quit: avvio automatico non modificato: " + *failure);
    return item.status();
}

std::string describe(LoginItemStatus status) {
    switch (status) {
    case LoginItemStatus::notRegistered:
        return localized("disattivo");
    case LoginItemStatus::enabled:
        return localized("attivo");
    case LoginItemStatus::requiresApproval:
        return localized("da approvare in Impostazioni di Sistema → Generali → Elementi di login");
    case LoginItemStatus::notFound:
        return localized("app non trovata (va lanciata dalla cartella Applicazioni)");
    case LoginItemStatus::unknown:
        break;
    }
    return localized("sconosciuto");
}

std::optional<std::string> runSwitches(const std::vector<std::string>& arguments, LoginItem& item,
                                       SystemLog& log) {
    constexpr std::array<std::pair<const char*, bool>, 2> switches{
        {{"--enable-launch-at-login", true}, {"--disable-launch-at-login", false}}};
    for (const auto& [text, enabled] : switches) {
        if (std::ranges::find(arguments, text) != arguments.end())
            return localized("Avvio automatico: %@", describe(set(item, log, enabled)));
    }
    return std::nullopt;
}

} // namespace velmorquit::LaunchAtLogin
