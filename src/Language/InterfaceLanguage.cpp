#include "Language/InterfaceLanguage.h"

#include <algorithm>

namespace velmorquit {

namespace {

/// The locales "C" and "POSIX", and "und", the toolkit's name for them, are no languages.
bool isLanguage(const QString& code) {
    return code.size() > 1 && code != QLatin1String("posix") && code != QLatin1String("und");
}

} // namespace

Language interfaceLanguage(std::optional<Language> forced, const QStringList& userLanguages) {
    if (forced)
        return *forced;
    bool isAnyKnown = false;
    for (const QString& language : userLanguages) {
        const auto isLetter = [](QChar letter) { return letter.isLetter(); };
        const auto end = std::ranges::find_if_not(language, isLetter);
        const QString code = QString(language.constData(), end - language.begin()).toLower();
        if (const auto spoken = languageFromCode(code.toStdString()))
            return *spoken;
        isAnyKnown = isAnyKnown || isLanguage(code);
    }
    return isAnyKnown ? Language::english : Language::italian;
}

QLocale formatLocale(Language language, const QLocale& user) {
    const auto wanted = language == Language::italian ? QLocale::Italian : QLocale::English;
    return user.language() == wanted ? user : QLocale(wanted, user.territory());
}

} // namespace velmorquit
