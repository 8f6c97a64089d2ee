#include "Model/PowerAction.h"

#include "Texts/Localized.h"

namespace velmorquit {

namespace {

/// The last three are keys of the string table.
struct Texts {
    PowerAction action;
    std::string_view raw;
    std::string_view button;
    std::string_view label;
    std::string_view help;
};

constexpr std::array<Texts, allPowerActions.size()> table{{
    {PowerAction::none, "none", textKey("Chiudi tutto"), textKey("Solo chiudi"),
     textKey("Chiude le app e basta")},
    {PowerAction::shutDown, "shutDown", textKey("Chiudi e spegni"), textKey("Spegni"),
     textKey("Chiude le app, poi spegne il Mac")},
    {PowerAction::restart, "restart", textKey("Chiudi e riavvia"), textKey("Riavvia"),
     textKey("Chiude le app, poi riavvia il Mac")},
    {PowerAction::logOut, "logOut", textKey("Chiudi ed esci"), textKey("Esci utente"),
     textKey("Chiude le app, poi chiude la sessione")},
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

std::string buttonTitle(PowerAction action) { return localized(textsOf(action).button); }

std::string label(PowerAction action) { return localized(textsOf(action).label); }

std::string helpText(PowerAction action) { return localized(textsOf(action).help); }

std::optional<LoginRequest> loginRequest(PowerAction action) {
    switch (action) {
    case PowerAction::shutDown:
        return LoginRequest::shutDown;
    case PowerAction::restart:
        return LoginRequest::restart;
    case PowerAction::logOut:
        return LoginRequest::logOut;
    case PowerAction::none:
        break;
    }
    return std::nullopt;
}

bool perform(PowerAction action, const EndTerms& terms, LoginWindow& loginWindow, SystemLog& log) {
    const auto request = loginRequest(action);
    if (!request)
        return true;
    const auto refused = loginWindow.request(*request, terms);
    if (refused) {
        log.write("Velmor Quit: azione " + std::string(rawValue(action)) +
                  " non riuscita: " + *refused);
    }
    return !refused;
}

std::string scheduleTitle(PowerAction action) {
    return action == PowerAction::none ? buttonTitle(action) : label(action);
}

} // namespace velmorquit
