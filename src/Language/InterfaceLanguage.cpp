#include "Language/InterfaceLanguage.h"

#include <algorithm>

namespace velmorquit {

Language interfaceLanguage(std::optional<Language> forced, const QStringList& userLanguages) {
    if (forced)
        return *forced;
    for (const QString& language : userLanguages) {
        const auto isLetter = [](QChar letter) { return letter.isLetter(); };
        const auto end = std::ranges::find_if_not(language, isLetter);
        const QString code(language.constData(), end - language.begin());
        if (const auto spoken = languageFromCode(code.toLower().toStdString()))
            return *spoken;
    }
    return Language::italian;
}

QLocale formatLocale(Language language, const QLocale& user) {
    const auto wanted = language == Language::italian ? QLocale::Italian : QLocale::English;
    return user.language() == wanted ? user : QLocale(wanted, user.territory());
}

} // namespace velmorquit
