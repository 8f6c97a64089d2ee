#pragma once

#include "Settings.h"

#include <string>

namespace velmorquit::tmutil {

/// A date as the name of a backup, "2026-03-02-081500", by the user's clock.
[[nodiscard]] std::string stampOf(WallTime date);

/// Where a backup can be imagined to lie: the destination, and its stamp as the last component.
[[nodiscard]] std::string pathOf(const Destination& destination, WallTime date);

/// The first whole second that isn't over.
[[nodiscard]] WallTime wholeSecondFromNow();

} // namespace velmorquit::tmutil
