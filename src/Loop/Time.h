#pragma once

#include <chrono>
#include <compare>

namespace velmorquit {

using namespace std::chrono_literals;

/// Every time span, in integer nanoseconds: 10.0 s is exactly 10.0 s.
using Duration = std::chrono::nanoseconds;

/// The wall clock, in UTC. It may be corrected at any moment: for dates, never for waits.
using WallTime = std::chrono::time_point<std::chrono::system_clock, Duration>;

/// Running time since an arbitrary start. It never jumps and stands still while the computer
/// sleeps.
struct Uptime {
    Duration sinceStart{};

    friend constexpr auto operator<=>(Uptime, Uptime) = default;
    friend constexpr Uptime operator+(Uptime at, Duration wait) { return {at.sinceStart + wait}; }
    friend constexpr Duration operator-(Uptime later, Uptime earlier) {
        return later.sinceStart - earlier.sinceStart;
    }
};

} // namespace velmorquit
