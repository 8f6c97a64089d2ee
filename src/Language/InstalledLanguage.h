#pragma once

#include "Language/LocaleFormats.h"
#include "Language/TranslatedTexts.h"
#include "Texts/Localized.h"

#include <optional>

namespace velmorquit {

/// The language of a program: its texts, and the formats that go with them. A program creates one
/// before its first text, and keeps it until its end.
class InstalledLanguage {
public:
    /// Takes the user's languages and locale from the system unless a language is forced.
    explicit InstalledLanguage(std::optional<Language> forced);

    [[nodiscard]] const Formats& formats() const { return formats_; }

private:
    Language language_;
    QLocale locale_;
    TranslatedTexts texts_;
    LocaleFormats formats_;
    LocalizationScope scope_;
};

} // namespace velmorquit
