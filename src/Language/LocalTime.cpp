#include "Language/LocalTime.h"

#include <algorithm>

namespace velmorquit::LocalTime {

namespace {

/// Seconds since 1970, in UTC, or on a wall clock as if that were UTC.
using Seconds = qint64;

Seconds offsetAt(Seconds utc) { return QDateTime::fromSecsSinceEpoch(utc).offsetFromUtc(); }

Seconds clockAt(Seconds utc) { return utc + offsetAt(utc); }

/// The first instant when the clock shows `wanted` or, if that time is skipped, the next one.
Seconds firstInstantAt(Seconds wanted) {
    // More than any offset, and less than the time between two changes of it.
    constexpr Seconds margin = 36 * 3600;
    const auto [smaller, larger] =
        std::minmax({offsetAt(wanted - margin), offsetAt(wanted + margin)});
    Seconds earliest = wanted - larger;
    Seconds latest = wanted - smaller;
    // Checked first: after the clock is set back, later instants show earlier times.
    if (clockAt(earliest) >= wanted)
        return earliest;
    while (earliest < latest) {
        const Seconds middle = earliest + (latest - earliest) / 2;
        if (clockAt(middle) >= wanted)
            latest = middle;
        else
            earliest = middle + 1;
    }
    return latest;
}

WallTime onDay(const QDate& day, ClockTime time) {
    const QDateTime wanted(day, QTime(time.hour, time.minute), Qt::UTC);
    return WallTime(std::chrono::seconds(firstInstantAt(wanted.toSecsSinceEpoch())));
}

} // namespace

QDateTime at(WallTime date) {
    const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(date);
    return QDateTime::fromMSecsSinceEpoch(milliseconds.time_since_epoch().count());
}

WallTime nextOccurrence(ClockTime time, WallTime now) {
    QDate day = at(now).date();
    WallTime found = onDay(day, time);
    while (found <= now) {
        day = day.addDays(1);
        found = onDay(day, time);
    }
    return found;
}

WallTime today(ClockTime time, WallTime now) { return onDay(at(now).date(), time); }

} // namespace velmorquit::LocalTime
