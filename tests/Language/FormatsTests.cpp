#include "Language/LocaleFormats.h"

#include <QDateTime>

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>
#include <tuple>
#include <utility>

namespace velmorquit {
namespace {

constexpr std::uint64_t kib = 1 << 10;
constexpr std::uint64_t mib = 1 << 20;
constexpr std::uint64_t gib = 1 << 30;

/// A user in the time zone of Rome, unless a test moves.
class FormatsTest : public testing::Test {
protected:
    FormatsTest() { moveTo("Europe/Rome"); }
    ~FormatsTest() override {
        before ? ::setenv("TZ", before->c_str(), 1) : ::unsetenv("TZ");
        ::tzset();
    }

    static void moveTo(const char* zone) {
        ::setenv("TZ", zone, 1);
        ::tzset();
    }

    /// An instant by its UTC: "2026-03-29T01:00:00Z".
    static WallTime utc(const char* text) {
        const auto date = QDateTime::fromString(QLatin1String(text), Qt::ISODate);
        return WallTime(std::chrono::seconds(date.toSecsSinceEpoch()));
    }
    static std::string text(WallTime date) {
        const auto seconds = std::chrono::floor<std::chrono::seconds>(date.time_since_epoch());
        return QDateTime::fromSecsSinceEpoch(seconds.count(), Qt::UTC)
            .toString(Qt::ISODate)
            .toStdString();
    }

    LocaleFormats italian{Language::italian, QLocale("it_IT")};
    LocaleFormats english{Language::english, QLocale("en_US")};
    std::optional<std::string> before =
        std::getenv("TZ") ? std::optional<std::string>(std::getenv("TZ")) : std::nullopt;
};

TEST_F(FormatsTest, BytesHaveTheUnitAndTheDecimalsThatTheirSizeAsksFor) {
    struct Case {
        std::uint64_t count;
        const char* italian;
        const char* english;
    };
    const Case cases[]{
        {51 * kib, "0 MB", "0 MB"},
        {52 * kib, "0,1 MB", "0.1 MB"},
        {100 * mib + 512 * kib, "100,5 MB", "100.5 MB"},
        {gib - 1, "1024 MB", "1024 MB"},
        {gib + 6 * mib, "1,01 GB", "1.01 GB"},
        {gib + gib / 2, "1,5 GB", "1.5 GB"},
        {10 * gib - 1, "10 GB", "10 GB"},
    };
    for (const Case& one : cases) {
        EXPECT_EQ(italian.bytes(one.count), one.italian) << one.count;
        EXPECT_EQ(english.bytes(one.count), one.english) << one.count;
    }
}

TEST_F(FormatsTest, ATimeOfDayIsShortAndLocal) {
    const WallTime evening = utc("2026-07-01T21:05:59Z") + 999ms;
    EXPECT_EQ(italian.shortTime(evening), "23:05");
    EXPECT_EQ(english.shortTime(evening), "11:05 PM");
    EXPECT_EQ(italian.clockTime(evening), (ClockTime{23, 5}));
    EXPECT_EQ(italian.clockTime(utc("2026-12-31T23:00:00Z") - 1ns), (ClockTime{23, 59}));
    moveTo("UTC");
    EXPECT_EQ(italian.shortTime(evening), "21:05");
}

TEST_F(FormatsTest, ARelativeDateIsAsAPersonWouldSayIt) {
    const WallTime now = utc("2026-11-23T12:00:00Z"); // a Monday, 13:00 in Rome
    const std::pair<Duration, const char*> cases[]{
        {999ms, "ora"},
        {1s, "1 secondo fa"},
        {5min + 59s, "5 minuti fa"},
        {24h - 1ns, "23 ore fa"},
        {24h, "ieri"},
        {37h + 1s, "l’altro ieri"}, // before the midnight at which yesterday began
        {7 * 24h, "settimana scorsa"},
        {31 * 24h, "mese scorso"},
        {365 * 24h, "anno scorso"},
        {-5min, "tra 5 minuti"},
    };
    for (const auto& [gone, words] : cases)
        EXPECT_EQ(italian.relativeDate(now - gone, now), words) << gone.count();
    EXPECT_EQ(english.relativeDate(now, now), "now");
    EXPECT_EQ(english.relativeDate(WallTime::min(), now), "349 years ago");
    EXPECT_EQ(english.relativeDate(now - 3h, now), "3 hours ago");
    EXPECT_EQ(english.relativeDate(now - 24h, now), "yesterday");
    // A day of 25 hours, of which 24 have gone by.
    EXPECT_EQ(italian.relativeDate(utc("2026-10-24T22:10:00Z"), utc("2026-10-25T22:20:00Z")),
              "24 ore fa");
}

TEST_F(FormatsTest, TheNextOccurrenceIsStrictlyLaterAndWhatIsSkippedTheNextThatThereIs) {
    const struct {
        const char* zone;
        ClockTime time;
        const char *now, *next;
    } cases[]{
        {"Europe/Rome", {13, 0}, "2026-11-23T11:59:59Z", "2026-11-23T12:00:00Z"},
        {"Europe/Rome", {13, 0}, "2026-11-23T12:00:00Z", "2026-11-24T12:00:00Z"},
        // 2:00 to 3:00 is skipped on 2026-03-29.
        {"Europe/Rome", {2, 30}, "2026-03-28T22:00:00Z", "2026-03-29T01:00:00Z"},
        {"Europe/Rome", {2, 0}, "2026-03-28T22:00:00Z", "2026-03-29T01:00:00Z"},
        {"Europe/Rome", {2, 30}, "2026-03-29T01:00:00Z", "2026-03-30T00:30:00Z"},
        // It comes twice on 2026-10-25, of which the first counts.
        {"Europe/Rome", {2, 30}, "2026-10-24T22:00:00Z", "2026-10-25T00:30:00Z"},
        {"Europe/Rome", {2, 30}, "2026-10-25T00:30:00Z", "2026-10-26T01:30:00Z"},
        // Half an hour.
        {"Australia/Lord_Howe", {2, 15}, "2026-10-03T12:00:00Z", "2026-10-03T15:30:00Z"},
        // Midnight is skipped.
        {"America/Santiago", {0, 0}, "2026-09-05T12:00:00Z", "2026-09-06T04:00:00Z"},
    };
    for (const auto& [zone, time, now, next] : cases) {
        moveTo(zone);
        EXPECT_EQ(text(italian.nextOccurrence(time, utc(now))), next) << zone << ' ' << now;
    }
    moveTo("Europe/Rome");
    EXPECT_EQ(text(italian.nextOccurrence({13, 0}, utc("2026-11-23T12:00:00Z") - 1ns)),
              "2026-11-23T12:00:00Z");
    for (const auto& [time, now, expected] :
         {std::tuple(ClockTime{23, 0}, "2026-11-23T22:30:00Z", "2026-11-23T22:00:00Z"),
          {ClockTime{0, 0}, "2026-11-23T22:30:00Z", "2026-11-22T23:00:00Z"},
          {ClockTime{2, 30}, "2026-03-29T12:00:00Z", "2026-03-29T01:00:00Z"},
          {ClockTime{2, 30}, "2026-10-25T12:00:00Z", "2026-10-25T00:30:00Z"}})
        EXPECT_EQ(text(italian.today(time, utc(now))), expected);
}

} // namespace
} // namespace velmorquit
