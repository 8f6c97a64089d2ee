#pragma once

#include "Platform/Localization.h"
#include "Texts/Language.h"

#include <QTranslator>

namespace velmorquit {

/// The string tables built into the program. Italian needs none.
class TranslatedTexts final : public Localization {
public:
    explicit TranslatedTexts(Language language);

    [[nodiscard]] std::optional<std::string> text(std::string_view key) const override;

private:
    QTranslator table_;
};

} // namespace velmorquit
