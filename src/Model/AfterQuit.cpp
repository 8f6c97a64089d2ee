#include "Model/AfterQuit.h"

#include "Texts/Localized.h"

#include <algorithm>

namespace velmorquit {

namespace {

/// The last one is a key of the string table.
struct Texts {
    AfterQuit choice;
    std::string_view raw;
    PowerAction action;
    const char* title;
};

constexpr std::array<Texts, allAfterQuits.size()> table{{
    {AfterQuit::nothing, "nothing", PowerAction::none, textKey("Niente")},
    {AfterQuit::shutDown, "shutDown", PowerAction::shutDown, textKey("Spegni")},
    {AfterQuit::restart, "restart", PowerAction::restart, textKey("Riavvia")},
    {AfterQuit::logOut, "logOut", PowerAction::logOut, textKey("Esci utente")},
}};

const Texts& textsOf(AfterQuit choice) { return table[static_cast<std::size_t>(choice)]; }

} // namespace

std::string_view rawValue(AfterQuit choice) { return textsOf(choice).raw; }

std::optional<AfterQuit> afterQuitFromRaw(std::string_view raw) {
    const auto found = std::ranges::find(table, raw, &Texts::raw);
    return found == table.end() ? std::nullopt : std::optional(found->choice);
}

PowerAction powerAction(AfterQuit choice) { return textsOf(choice).action; }

std::string displayTitle(AfterQuit choice) { return localized(textsOf(choice).title); }

} // namespace velmorquit
