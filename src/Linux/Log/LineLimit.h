#pragma once

#include "Loop/Time.h"

namespace velmorquit {

/// Limits the lines in the log: other programs may cause new ones again and again, for as long as
/// the session lasts.
class LineLimit {
public:
    /// This many may be written at once, and then one more per interval.
    static constexpr int most = 60;
    static constexpr Duration interval = 1min;

    /// Whether there is room for one more line, which then counts as written.
    [[nodiscard]] bool takes(Uptime now);

    /// How many lines found no room since the last call.
    [[nodiscard]] unsigned long takeLost();

private:
    /// When the lines written so far will have been made up for.
    Uptime owedUntil_;
    unsigned long lost_ = 0;
};

} // namespace velmorquit
