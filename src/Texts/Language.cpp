#include "Texts/Language.h"

#include <algorithm>
#include <string>

namespace velmorquit {

std::optional<Language> languageFromCode(std::string_view code) {
    if (code == "it")
        return Language::italian;
    if (code == "en")
        return Language::english;
    return std::nullopt;
}

std::optional<Language> forcedLanguage(const std::optional<Value>& stored) {
    const auto* list = stored ? stored->as<Value::Array>() : nullptr;
    const auto isText = [](const Value& entry) { return entry.as<std::string>() != nullptr; };
    if (!list || list->empty() || !std::ranges::all_of(*list, isText))
        return std::nullopt;
    return languageFromCode(std::string_view(*list->front().as<std::string>()).substr(0, 2));
}

} // namespace velmorquit
