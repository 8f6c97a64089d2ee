#include "Language/TranslatedTexts.h"

namespace velmorquit {

TranslatedTexts::TranslatedTexts(Language language) {
    if (language == Language::english)
        static_cast<void>(table_.load(QStringLiteral(":/translations/en.qm")));
}

std::optional<std::string> TranslatedTexts::text(std::string_view key) const {
    const QString found = table_.translate("", std::string(key).c_str());
    return found.isEmpty() ? std::nullopt : std::optional(found.toStdString());
}

} // namespace velmorquit
