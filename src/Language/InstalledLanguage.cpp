#include "Language/InstalledLanguage.h"

#include "Language/InterfaceLanguage.h"

namespace velmorquit {

InstalledLanguage::InstalledLanguage(std::optional<Language> forced)
    : language_(interfaceLanguage(forced, QLocale::system().uiLanguages())),
      locale_(formatLocale(language_, QLocale::system())), texts_(language_),
      formats_(language_, locale_), scope_(texts_) {
    // For texts of the toolkit's own, such as the time in a time field.
    QLocale::setDefault(locale_);
}

} // namespace velmorquit
