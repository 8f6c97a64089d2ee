#pragma once

#include "Loop/Time.h"
#include "Platform/Processes.h"

#include <optional>

namespace velmorquit {

/// Tells from looks at a process whether it is at work or merely there.
///
/// Twenty-six programs that sat in the tray of a desktop, watched for a minute, used 1.0 % of a
/// core at the most and wrote 8 KiB at the most in any two seconds.
class WorkMeter {
public:
    static constexpr Duration lookInterval = 2s;
    /// From here on a process is busy between two looks: a share of one core, in percent …
    static constexpr int busyPercent = 5;
    /// … or so many bytes given to disks.
    static constexpr std::uint64_t busyBytes = 256 << 10;
    /// How long a process is waited for that isn't at work: most are gone by then.
    static constexpr Duration quietTime = 6s;
    /// One that has not been at work for so long is merely busy now and then.
    static constexpr Duration longQuietTime = 20s;

    [[nodiscard]] bool isLookDue(Uptime now) const {
        return !looked_ || now - looked_->at >= lookInterval;
    }
    void look(Uptime now, const ProcessWork& work);

    /// It was busy in the last two times between looks.
    [[nodiscard]] bool isWorking() const { return busyLooks_ >= 2; }
    /// It has not been at work for so long that there is no use in waiting for it, nor may it just
    /// have begun to be.
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
