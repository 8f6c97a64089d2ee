#pragma once

#include "Loop/Time.h"

#include <algorithm>

namespace velmorquit {

/// A second as a date, limited to those that can be represented: from 1677 to 2262. Figures from
/// other programs may be anything.
[[nodiscard]] inline WallTime dateAt(std::chrono::sys_seconds second) {
    using std::chrono::ceil;
    using std::chrono::floor;
    using std::chrono::seconds;
    if (second < ceil<seconds>(WallTime::min()))
        return ceil<seconds>(WallTime::min());
    return std::min(second, floor<seconds>(WallTime::max()));
}

} // namespace velmorquit
