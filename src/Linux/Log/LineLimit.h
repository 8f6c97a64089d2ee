#pragma once

#include "Loop/Time.h"

namespace velmorquit {

/// How many lines go into the log: what others do may give reason for one again and again, for as
/// long as the session lasts.
class LineLimit {
public:
    /// So many may be written at one go, and one more in each interval after that.
    static constexpr int most = 60;
    static constexpr Duration interval = 1min;

    /// Whether there is room for one more line, which counts as written then.
    [[nodiscard]] bool takes(Uptime now);

    /// How many had no room since the last time that this was asked.
    [[nodiscard]] unsigned long takeLost();

private:
    /// When all that was written will have been made up for.
    Uptime owedUntil_;
    unsigned long lost_ = 0;
};

} // namespace velmorquit
