#pragma once

#include "Platform/Value.h"

#include <optional>
#include <string_view>

namespace velmorquit {

/// The languages of the interface.
enum class Language { italian, english };

/// The preference that forces one of them: an array of texts, of which the first counts.
inline constexpr std::string_view languagePreference = "AppleLanguages";

/// The language with that code, "it" or "en"; none for any other.
[[nodiscard]] std::optional<Language> languageFromCode(std::string_view code);

/// The language forced by the value stored under `languagePreference`, from the first two letters
/// of its first text; none if that is another language or the value is no array of texts.
[[nodiscard]] std::optional<Language> forcedLanguage(const std::optional<Value>& stored);

} // namespace velmorquit
