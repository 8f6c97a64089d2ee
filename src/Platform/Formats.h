#pragma once

#include "Loop/Time.h"

#include <cstdint>
#include <string>

namespace velmorquit {

/// A time of day on the user's clock, to the minute.
struct ClockTime {
    int hour = 0;   ///< 0 to 23
    int minute = 0; ///< 0 to 59

    friend bool operator==(ClockTime, ClockTime) = default;
};

/// Figures and dates as the user writes them, and the user's clock and calendar: local time with
/// its daylight-saving changes, as the system knows it at the time of the call.
///
/// For the main thread. Nothing here fails or waits; only the first relative date may take some
/// tens of milliseconds.
class Formats {
public:
    virtual ~Formats() = default;

    /// The local time of day in the locale's short form: "23:05", "11:05 PM". Every time of day
    /// that is shown comes from here.
    [[nodiscard]] virtual std::string shortTime(WallTime date) const = 0;

    /// `date` as seen from `now`, in the interface's language, to be used within a sentence: "ora",
    /// "5 minuti fa", "ieri", "3 giorni fa". Below 24 hours what counts is the time gone by, beyond
    /// that the days on the calendar; begun units don't count. A later date gives "tra 5 minuti".
    [[nodiscard]] virtual std::string relativeDate(WallTime date, WallTime now) const = 0;

    /// An amount of memory: in MB below 2^30 bytes with at most one decimal, in GB from there up
    /// with at most two, none of them a zero at the end; with the locale's decimal separator and
    /// without any other. Rounding doesn't change the unit: 2^30 - 1 bytes are "1024 MB".
    [[nodiscard]] virtual std::string bytes(std::uint64_t count) const = 0;

    /// The text in lower case, by the rules of the interface's language.
    [[nodiscard]] virtual std::string lowerCase(const std::string& text) const = 0;

    /// The local time of day at an instant, what is beyond the minute left out.
    [[nodiscard]] virtual ClockTime clockTime(WallTime date) const = 0;

    /// The first instant strictly after `now` at which the local clock comes to `time`. On a day on
    /// which that time is skipped it is the next instant that there is, on a day on which it comes
    /// twice the first of both.
    [[nodiscard]] virtual WallTime nextOccurrence(ClockTime time, WallTime now) const = 0;

    /// As `nextOccurrence`, but on the local day of `now`, be it past or to come.
    [[nodiscard]] virtual WallTime today(ClockTime time, WallTime now) const = 0;
};

} // namespace velmorquit
