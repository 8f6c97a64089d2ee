#pragma once

#include "Texts/Language.h"

#include <QLocale>
#include <QStringList>

#include <optional>

namespace velmorquit {

/// The interface's language: the forced one, else the first of the user's languages ("en-GB",
/// "it_IT") that the interface speaks. Where it speaks none of them, English; Italian where nothing
/// is known of the user, as in the locale "C".
[[nodiscard]] Language interfaceLanguage(std::optional<Language> forced,
                                         const QStringList& userLanguages);

/// How figures and times are written beside texts in `language`: as in the user's own locale when
/// that is in the same language, else as it is done in that language where the user lives.
[[nodiscard]] QLocale formatLocale(Language language, const QLocale& user);

} // namespace velmorquit
