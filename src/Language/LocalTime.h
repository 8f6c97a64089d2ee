#pragma once

#include "Platform/Formats.h"

#include <QDateTime>

/// The user's clock and calendar, in the system's time zone at the time of the call.
namespace velmorquit::LocalTime {

[[nodiscard]] QDateTime at(WallTime date);

/// See `Formats`.
[[nodiscard]] WallTime nextOccurrence(ClockTime time, WallTime now);
[[nodiscard]] WallTime today(ClockTime time, WallTime now);

} // namespace velmorquit::LocalTime
