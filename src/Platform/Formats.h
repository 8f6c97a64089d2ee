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

/// Figures and dates in the user's formats, and the user's clock and calendar: local time with its
/// daylight-saving changes, by the system's rules at the time of the call.
///
/// For the main thread. Nothing here fails or waits; only the first relative date may take some
/// tens of milliseconds.
class Formats {
public:
    virtual ~Formats() = default;

    /// The local time of day in the locale's short form: "23:05", "11:05 PM". Used for every time
    /// of day that is shown.
    [[nodiscard]] virtual std::string shortTime(WallTime date) const = 0;

    /// `date` relative to `now`, in the interface's language, for use within a sentence: "ora",
    /// "5 minuti fa", "ieri", "3 giorni fa". Below 24 hours it counts the time passed, beyond that
    /// calendar days; incomplete units don't count. A future date gives "tra 5 minuti".
    [[nodiscard]] virtual std::string relativeDate(WallTime date, WallTime now) const = 0;

    /// An amount of memory: below 2^30 bytes in MB with at most one decimal, from there on in GB
    /// with at most two; no trailing zeros, the locale's decimal separator, and no grouping.
    /// Rounding doesn't change the unit: 2^30 - 1 bytes are "1024 MB".
    [[nodiscard]] virtual std::string bytes(std::uint64_t count) const = 0;

    /// The text in lower case, by the rules of the interface's language.
    [[nodiscard]] virtual std::string lowerCase(const std::string& text) const = 0;

    /// The local time of day at an instant, rounded down to the minute.
    [[nodiscard]] virtual ClockTime clockTime(WallTime date) const = 0;

    /// The first instant strictly after `now` at which the local clock shows `time`. On a day that
    /// skips that time it is the next existing instant, on a day that has it twice the first of the
    /// two.
    [[nodiscard]] virtual WallTime nextOccurrence(ClockTime time, WallTime now) const = 0;

    /// Like `nextOccurrence`, but on the local day of `now`, whether past or future.
    [[nodiscard]] virtual WallTime today(ClockTime time, WallTime now) const = 0;
};

} // namespace velmorquit
