#pragma once

#include "Platform/Value.h"

#include <optional>
#include <string_view>

namespace velmorquit {

/// The languages that the interface speaks.
enum class Language { italian, english };

/// The preference that forces one of them: an array of texts, of which the first counts.
inline constexpr std::string_view languagePreference = "AppleLanguages";

/// The language of that code, "it" or "en"; none for any other.
[[nodiscard]] std::optional<Language> languageFromCode(std::string_view code);

/// The language that the value stored under `languagePreference` forces, by the first two letters
/// of its first text; none when that is another language or the value is no array of texts.
[[nodiscard]] std::optional<Language> forcedLanguage(const std::optional<Value>& stored);

} // namespace velmorquit
