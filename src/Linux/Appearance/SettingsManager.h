#pragma once

#include "Linux/Appearance/DesktopSettings.h"
#include "Loop/Handle.h"

#include <functional>

namespace velmorquit {

/// The program that tells the clients of a window system how the desktop should look.
class SettingsManager {
public:
    virtual ~SettingsManager() = default;

    /// From memory; empty while there is none.
    [[nodiscard]] virtual const DesktopSettings& values() const = 0;

    /// Calls `changed` when the values change.
    [[nodiscard]] virtual Handle observe(std::function<void()> changed) = 0;
};

} // namespace velmorquit
