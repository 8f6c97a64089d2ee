#include "Services/LaunchAtLogin.h"

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
        return "disattivo";
    case LoginItemStatus::enabled:
        return "attivo";
    case LoginItemStatus::requiresApproval:
        return "da approvare in Impostazioni di Sistema → Generali → Elementi di login";
    case LoginItemStatus::notFound:
        return "app non trovata (va lanciata dalla cartella Applicazioni)";
    case LoginItemStatus::unknown:
        break;
    }
    return "sconosciuto";
}

std::optional<std::string> runSwitches(const std::vector<std::string>& arguments, LoginItem& item,
                                       SystemLog& log) {
    constexpr std::array<std::pair<const char*, bool>, 2> switches{
        {{"--enable-launch-at-login", true}, {"--disable-launch-at-login", false}}};
    for (const auto& [text, enabled] : switches) {
        if (std::ranges::find(arguments, text) != arguments.end())
            return "Avvio automatico: " + describe(set(item, log, enabled));
    }
    return std::nullopt;
}

} // namespace velmorquit::LaunchAtLogin
