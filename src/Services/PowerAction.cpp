#include "Services/PowerAction.h"

namespace velmorquit {

namespace {

struct Texts {
    PowerAction action;
    std::string_view raw;
    std::string_view button;
    std::string_view label;
    std::string_view help;
};

constexpr std::array<Texts, allPowerActions.size()> table{{
    {PowerAction::none, "none", "Chiudi tutto", "Solo chiudi", "Chiude le app e basta"},
    {PowerAction::shutDown, "shutDown", "Chiudi e spegni", "Spegni",
     "Chiude le app, poi spegne il Mac"},
    {PowerAction::restart, "restart", "Chiudi e riavvia", "Riavvia",
     "Chiude le app, poi riavvia il Mac"},
    {PowerAction::logOut, "logOut", "Chiudi ed esci", "Esci utente",
     "Chiude le app, poi chiude la sessione"},
}};

const Texts& textsOf(PowerAction action) { return table[static_cast<std::size_t>(action)]; }

} // namespace

std::string_view rawValue(PowerAction action) { return textsOf(action).raw; }

std::optional<PowerAction> powerActionFromRaw(std::string_view raw) {
    for (const Texts& texts : table) {
        if (texts.raw == raw)
            return texts.action;
    }
    return std::nullopt;
}

std::string_view buttonTitle(PowerAction action) { return textsOf(action).button; }

std::string_view label(PowerAction action) { return textsOf(action).label; }

std::string_view helpText(PowerAction action) { return textsOf(action).help; }

std::string_view scheduleTitle(PowerAction action) {
    return action == PowerAction::none ? buttonTitle(action) : label(action);
}

} // namespace velmorquit
