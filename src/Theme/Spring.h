#pragma once

namespace velmorquit {

/// How something that was let go swings into place.
struct Spring {
    double response = 0; ///< seconds of one period if nothing damped it
    double damping = 0;  ///< share of the damping at which it no longer swings over; 0 to 1

    /// The share of the way that is covered after that many seconds: 0 at the start, beyond 1 where
    /// it swings over.
    [[nodiscard]] double at(double seconds) const;

    /// Seconds after which it stays within a thousandth of its place.
    [[nodiscard]] double settlingTime() const;
};

} // namespace velmorquit
