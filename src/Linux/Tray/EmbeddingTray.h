#pragma once

#include "Loop/Handle.h"
#include "Platform/RunningApplication.h"

#include <cstdint>
#include <functional>
#include <set>

namespace velmorquit {

/// The place of a window system for icons that are windows, which a tray takes in.
class EmbeddingTray {
public:
    virtual ~EmbeddingTray() = default;

    /// Whether there is a tray. From memory.
    [[nodiscard]] virtual bool isPresent() const = 0;

    /// Asks it for that window of this program, which the toolkit has made. Returns at once;
    /// nothing happens where there is none.
    virtual void takeIn(std::uint64_t window) const = 0;

    /// The processes whose windows it has taken in, by some short questions.
    [[nodiscard]] virtual std::set<ProcessId> owners() = 0;

    /// Clicks the icon of that process; false when it has none. Returns after some short questions.
    virtual bool click(ProcessId process) = 0;

    /// Calls `changed` whenever a tray comes, goes or takes another one's place.
    [[nodiscard]] virtual Handle observe(std::function<void()> changed) = 0;
};

} // namespace velmorquit
