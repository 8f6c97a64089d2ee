#include "Services/AppLanguage.h"

#include "Texts/Language.h"

namespace velmorquit {

std::string_view rawValue(AppLanguage language) {
    constexpr std::array<std::string_view, allAppLanguages.size()> values{"system", "it", "en"};
    return values[static_cast<std::size_t>(language)];
}

std::optional<AppLanguage> appLanguageFromRaw(std::string_view raw) {
    for (const AppLanguage language : allAppLanguages) {
        if (rawValue(language) == raw)
            return language;
    }
    return std::nullopt;
}

AppLanguage appLanguageOf(const Value& stored) {
    const auto forced = forcedLanguage(stored);
    if (!forced)
        return AppLanguage::system;
    return *forced == Language::italian ? AppLanguage::italian : AppLanguage::english;
}

} // namespace velmorquit
