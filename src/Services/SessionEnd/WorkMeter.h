#pragma once

#include "Loop/Time.h"
#include "Platform/Processes.h"

#include <optional>

namespace velmorquit {

/// Tells by repeated looks whether a process is working or merely there.
///
/// Twenty-six programs in a desktop's tray, watched for a minute, used at most 1.0 % of a core and
/// wrote at most 8 KiB in any two seconds.
class WorkMeter {
public:
    static constexpr Duration lookInterval = 2s;
    /// A process counts as busy between two looks from this share of one core on, in percent …
    static constexpr int busyPercent = 5;
    /// … or from this many bytes given to disks.
    static constexpr std::uint64_t busyBytes = 256 << 10;
    /// How long to wait for a process that isn't working: most are gone by then.
    static constexpr Duration quietTime = 6s;
    /// A process that has not worked for so long is merely busy now and then.
    static constexpr Duration longQuietTime = 20s;

    [[nodiscard]] bool isLookDue(Uptime now) const {
        return !looked_ || now - looked_->at >= lookInterval;
    }
    void look(Uptime now, const ProcessWork& work);

    /// It was busy in both of the last two intervals.
    [[nodiscard]] bool isWorking() const { return busyLooks_ >= 2; }
    /// It has not worked for so long that there is no use in waiting for it, and it can't just
    /// have begun to.
    [[nodiscard]] bool isQuiet(Uptime now) const {
        if (!quietSince_)
            return false;
        const Duration time = now - *quietSince_;
        return time >= quietTime && (busyLooks_ == 0 || time >= longQuietTime);
    }

private:
    struct Look {
        Uptime at;
        ProcessWork work;
    };

    std::optional<Look> looked_;
    std::optional<Uptime> quietSince_;
    int busyLooks_ = 0;
};

} // namespace velmorquit
