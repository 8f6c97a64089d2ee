#include "Language/LocaleFormats.h"

#include "Language/LocalTime.h"

#include <unicode/reldatefmt.h>

namespace velmorquit {

namespace {

struct Distance {
    URelativeDateTimeUnit unit = UDAT_REL_UNIT_SECOND;
    qint64 count = 0;
};

/// The time passed, in whole seconds, minutes or hours.
Distance elapsed(qint64 seconds) {
    constexpr qint64 minute = 60;
    constexpr qint64 hour = 60 * minute;
    if (seconds < minute)
        return {UDAT_REL_UNIT_SECOND, seconds};
    if (seconds < hour)
        return {UDAT_REL_UNIT_MINUTE, seconds / minute};
    return {UDAT_REL_UNIT_HOUR, seconds / hour};
}

/// The distance between two days, in whole days, weeks, months or years.
Distance between(const QDate& earlier, const QDate& later) {
    const qint64 days = earlier.daysTo(later);
    if (days < 7)
        return {UDAT_REL_UNIT_DAY, days};
    const int months = 12 * (later.year() - earlier.year()) + later.month() - earlier.month();
    const int whole = earlier.addMonths(months) > later ? months - 1 : months;
    if (whole == 0)
        return {UDAT_REL_UNIT_WEEK, days / 7};
    if (whole < 12)
        return {UDAT_REL_UNIT_MONTH, whole};
    return {UDAT_REL_UNIT_YEAR, whole / 12};
}

Distance distance(WallTime earlier, WallTime later) {
    constexpr qint64 day = 24 * 3600;
    // Two dates may be further apart than nanoseconds can express.
    const bool isFar = earlier < WallTime() &&
                       later.time_since_epoch() > Duration::max() + earlier.time_since_epoch();
    const Duration apart = isFar ? Duration::max() : later - earlier;
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(apart).count();
    const QDate first = LocalTime::at(earlier).date();
    const QDate last = LocalTime::at(later).date();
    // A day when the clock is set back has 25 hours.
    return seconds < day || first == last ? elapsed(seconds) : between(first, last);
}

} // namespace

/// Distances of time in words.
struct LocaleFormats::Words {
    explicit Words(Language language)
        : formatter(icu::Locale(language == Language::italian ? "it" : "en"), nullptr,
                    UDAT_STYLE_LONG, UDISPCTX_CAPITALIZATION_NONE, error) {}

    UErrorCode error = U_ZERO_ERROR; ///< of creating the formatter
    icu::RelativeDateTimeFormatter formatter;
};

LocaleFormats::LocaleFormats(Language language, const QLocale& locale)
    : language_(language), locale_(locale) {}

LocaleFormats::~LocaleFormats() = default;

std::string LocaleFormats::shortTime(WallTime date) const {
    const QTime time = LocalTime::at(date).time();
    // The short form of the "C" locale has seconds, whatever language it claims to have.
    const bool hasSeconds = locale_.timeFormat(QLocale::ShortFormat).contains(QLatin1String("ss"));
    const QString text = hasSeconds ? time.toString(QStringLiteral("HH:mm"))
                                    : locale_.toString(time, QLocale::ShortFormat);
    return text.toStdString();
}

std::string LocaleFormats::relativeDate(WallTime date, WallTime now) const {
    if (!words_)
        words_ = std::make_unique<Words>(language_);
    const bool isPast = date <= now;
    const Distance found = isPast ? distance(date, now) : distance(now, date);
    const auto count = static_cast<double>(found.count);
    UErrorCode error = words_->error;
    icu::UnicodeString words;
    // It does nothing after an error.
    words_->formatter.format(isPast ? -count : count, found.unit, words, error);
    if (U_FAILURE(error))
        return locale_.toString(LocalTime::at(date), QLocale::ShortFormat).toStdString();
    std::string text;
    return words.toUTF8String(text);
}

std::string LocaleFormats::bytes(std::uint64_t count) const {
    constexpr double mebibyte = 1 << 20;
    constexpr double gibibyte = 1 << 30;
    const auto figure = static_cast<double>(count);
    const bool isLarge = figure >= gibibyte;
    // A group separator would look like a decimal point, and is unnecessary up to 1024.
    QLocale plain = locale_;
    plain.setNumberOptions(QLocale::OmitGroupSeparator);
    QString number = plain.toString(figure / (isLarge ? gibibyte : mebibyte), 'f', isLarge ? 2 : 1);
    const QString point = plain.decimalPoint();
    while (number.contains(point) && (number.endsWith(plain.zeroDigit()) || number.endsWith(point)))
        number.chop(1);
    return number.toStdString() + (isLarge ? " GB" : " MB");
}

std::string LocaleFormats::lowerCase(const std::string& text) const {
    const QLocale locale(language_ == Language::italian ? QLocale::Italian : QLocale::English);
    return locale.toLower(QString::fromStdString(text)).toStdString();
}

ClockTime LocaleFormats::clockTime(WallTime date) const {
    const QTime time = LocalTime::at(date).time();
    return {time.hour(), time.minute()};
}

WallTime LocaleFormats::nextOccurrence(ClockTime time, WallTime now) const {
    return LocalTime::nextOccurrence(time, now);
}

WallTime LocaleFormats::today(ClockTime time, WallTime now) const {
    return LocalTime::today(time, now);
}

} // namespace velmorquit
