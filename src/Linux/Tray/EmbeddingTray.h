#pragma once

#include "Loop/Handle.h"
#include "Platform/RunningApplication.h"

#include <cstdint>
#include <functional>
#include <set>

namespace velmorquit {

/// A window system's tray, which embeds icons that are windows.
class EmbeddingTray {
public:
    virtual ~EmbeddingTray() = default;

    /// Whether there is a tray. From memory.
    [[nodiscard]] virtual bool isPresent() const = 0;

    /// Asks it to embed that window, which the toolkit has made for this program. Returns at once;
    /// does nothing without a tray.
    virtual void takeIn(std::uint64_t window) const = 0;

    /// The processes whose windows are embedded, by some short questions.
    [[nodiscard]] virtual std::set<ProcessId> owners() = 0;

    /// Clicks the icon of that process; false when it has none. Asks some short questions first.
    virtual bool click(ProcessId process) = 0;

    /// Calls `changed` whenever a tray appears, disappears or is replaced.
    [[nodiscard]] virtual Handle observe(std::function<void()> changed) = 0;
};

} // namespace velmorquit
