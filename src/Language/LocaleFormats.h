#pragma once

#include "Platform/Formats.h"
#include "Texts/Language.h"

#include <QLocale>

#include <memory>

namespace velmorquit {

/// Formats by the data of Qt and ICU: the system needs no installed locales.
class LocaleFormats final : public Formats {
public:
    /// `locale` is for figures and times, `language` for dates in words.
    LocaleFormats(Language language, const QLocale& locale);
    ~LocaleFormats() override;

    [[nodiscard]] std::string shortTime(WallTime date) const override;
    [[nodiscard]] std::string relativeDate(WallTime date, WallTime now) const override;
    [[nodiscard]] std::string bytes(std::uint64_t count) const override;
    [[nodiscard]] std::string lowerCase(const std::string& text) const override;
    [[nodiscard]] ClockTime clockTime(WallTime date) const override;
    [[nodiscard]] WallTime nextOccurrence(ClockTime time, WallTime now) const override;
    [[nodiscard]] WallTime today(ClockTime time, WallTime now) const override;

private:
    struct Words;

    Language language_;
    QLocale locale_;
    /// Created with the first relative date, since that takes longer than the rest of a start.
    mutable std::unique_ptr<Words> words_;
};

} // namespace velmorquit
