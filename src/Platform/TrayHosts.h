#pragma once

#include "Loop/Handle.h"

#include <cstdint>
#include <functional>

namespace velmorquit {

/// The kinds of tray.
enum class TrayHost {
    none,
    notifier, ///< draws the icons itself, from data that programs give it (StatusNotifierItem)
    embedding ///< embeds windows (XEmbed)
};

/// Which of them the desktop has.
class TrayHosts {
public:
    virtual ~TrayHosts() = default;

    /// The notifier if there are both. From memory.
    [[nodiscard]] virtual TrayHost present() const = 0;

    /// Asks the embedding tray to embed that window, which the toolkit has made for this program.
    /// Returns at once; nothing happens without such a tray.
    virtual void takeIn(std::uint64_t window) const = 0;

    /// Calls `changed` in a later turn when it changes, also when a tray is replaced by another of
    /// the same kind.
    [[nodiscard]] virtual Handle observe(std::function<void()> changed) const = 0;
};

} // namespace velmorquit
