#pragma once

#include "Texts/Language.h"

#include <QLocale>
#include <QStringList>

#include <optional>

namespace velmorquit {

/// The interface's language: the forced one, else the first of the user's languages ("en-GB",
/// "it_IT") that the interface speaks. If it speaks none of them, English; Italian if nothing is
/// known of the user, as in the locale "C".
[[nodiscard]] Language interfaceLanguage(std::optional<Language> forced,
                                         const QStringList& userLanguages);

/// The locale for figures and times beside texts in `language`: the user's own if it is in that
/// language, else that language in the user's country.
[[nodiscard]] QLocale formatLocale(Language language, const QLocale& user);

} // namespace velmorquit
