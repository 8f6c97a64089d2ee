#pragma once

#include "Loop/Handle.h"

#include <cstdint>
#include <functional>

namespace velmorquit {

/// Who shows tray icons.
enum class TrayHost {
    none,
    notifier, ///< one that draws the icons itself, from what programs tell it (StatusNotifierItem)
    embedding ///< one that takes windows in (XEmbed)
};

/// Which of them the desktop has.
class TrayHosts {
public:
    virtual ~TrayHosts() = default;

    /// A notifier where there are both. From memory.
    [[nodiscard]] virtual TrayHost present() const = 0;

    /// Asks the one that takes windows in for that window of this program, which the toolkit has
    /// made. Returns at once; nothing happens where there is none.
    virtual void takeIn(std::uint64_t window) const = 0;

    /// Calls `changed` in a later turn when it changes, also when one was replaced by another of
    /// its kind.
    [[nodiscard]] virtual Handle observe(std::function<void()> changed) const = 0;
};

} // namespace velmorquit
