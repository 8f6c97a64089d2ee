#pragma once

#include "Platform/Formats.h"

namespace velmorquit {

/// A user in UTC whose locale has the plainest forms: "23:05", "90 s fa", "300 MB".
class SimulatedFormats final : public Formats {
public:
    [[nodiscard]] std::string shortTime(WallTime date) const override;
    [[nodiscard]] std::string relativeDate(WallTime date, WallTime now) const override;
    [[nodiscard]] std::string bytes(std::uint64_t count) const override;
    /// Only for ASCII letters.
    [[nodiscard]] std::string lowerCase(const std::string& text) const override;
    [[nodiscard]] ClockTime clockTime(WallTime date) const override;
    [[nodiscard]] WallTime nextOccurrence(ClockTime time, WallTime now) const override;
    [[nodiscard]] WallTime today(ClockTime time, WallTime now) const override;
};

} // namespace velmorquit
