#include "Model/AfterQuit.h"

#include "Texts/Localized.h"

#include <algorithm>

namespace velmorquit {

namespace {

struct Names {
    AfterQuit choice;
    std::string_view raw;
    PowerAction action;
};

constexpr std::array<Names, allAfterQuits.size()> table{{
    {AfterQuit::nothing, "nothing", PowerAction::none},
    {AfterQuit::shutDown, "shutDown", PowerAction::shutDown},
    {AfterQuit::restart, "restart", PowerAction::restart},
    {AfterQuit::logOut, "logOut", PowerAction::logOut},
}};

const Names& namesOf(AfterQuit choice) { return table[static_cast<std::size_t>(choice)]; }

} // namespace

std::string_view rawValue(AfterQuit choice) { return namesOf(choice).raw; }

std::optional<AfterQuit> afterQuitFromRaw(std::string_view raw) {
    const auto found = std::ranges::find(table, raw, &Names::raw);
    return found == table.end() ? std::nullopt : std::optional(found->choice);
}

PowerAction powerAction(AfterQuit choice) { return namesOf(choice).action; }

std::string displayTitle(AfterQuit choice) {
    return choice == AfterQuit::nothing ? localized("Niente") : label(powerAction(choice));
}

} // namespace velmorquit
