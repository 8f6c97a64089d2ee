#pragma once

#include "Settings.h"

#include <string>

namespace velmorquit::tmutil {

/// A date in the form of a backup's name, "2026-03-02-081500", by the user's clock.
[[nodiscard]] std::string stampOf(WallTime date);

/// An imaginary path of a backup: the destination, with the stamp as the last component.
[[nodiscard]] std::string pathOf(const Destination& destination, WallTime date);

/// The present time, rounded up to a whole second.
[[nodiscard]] WallTime wholeSecondFromNow();

} // namespace velmorquit::tmutil
