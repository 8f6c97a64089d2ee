#pragma once

namespace velmorquit {

/// The motion of something released that springs into place.
struct Spring {
    double response = 0; ///< period in seconds without damping
    double damping = 0;  ///< relative to critical damping, where it no longer overshoots; 0 to 1

    /// The part of the way covered after that many seconds: 0 at the start, above 1 while it
    /// overshoots.
    [[nodiscard]] double at(double seconds) const;

    /// Seconds until it stays within a thousandth of its place.
    [[nodiscard]] double settlingTime() const;
};

} // namespace velmorquit
