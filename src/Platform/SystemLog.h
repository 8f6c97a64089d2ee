#pragma once

#include <string_view>

namespace velmorquit {

/// The system's log.
class SystemLog {
public:
    virtual ~SystemLog() = default;

    /// Writes one line; it begins with "Velmor Quit: ". Never fails.
    virtual void write(std::string_view line) = 0;
};

} // namespace velmorquit
