#pragma once

#include "Platform/Value.h"

#include <array>
#include <optional>
#include <string_view>

namespace velmorquit {

/// The user's choice of the interface's language: the one of the system, or one that is forced.
enum class AppLanguage { system, italian, english };

inline constexpr std::array allAppLanguages{AppLanguage::system, AppLanguage::italian,
                                            AppLanguage::english};

/// "system", "it" or "en".
[[nodiscard]] std::string_view rawValue(AppLanguage language);

/// The choice with that raw value; none for any other text, another letter case included.
[[nodiscard]] std::optional<AppLanguage> appLanguageFromRaw(std::string_view raw);

/// The choice in a stored value: the system's language, unless the value forces another.
[[nodiscard]] AppLanguage appLanguageOf(const Value& stored);

} // namespace velmorquit
