#pragma once

#include "Linux/Appearance/DesktopLook.h"
#include "Linux/Appearance/PortalSettings.h"
#include "Linux/Appearance/SettingsManager.h"
#include "Linux/Loop/Paced.h"
#include "Loop/Subscribers.h"
#include "Platform/Appearance.h"

namespace velmorquit {

/// The look that the user has asked of the desktop: from its settings manager, which answers at
/// once, and from its portal, which is asked without waiting.
class DesktopAppearance final : public Appearance {
public:
    /// `bus` is the session bus, connected or not. The manager, which may be null, must outlive it.
    DesktopAppearance(const QDBusConnection& bus, SettingsManager* manager);

    [[nodiscard]] bool isHighContrast() const override { return look_.isHighContrast; }
    [[nodiscard]] bool isMotionReduced() const override { return look_.isMotionReduced; }
    [[nodiscard]] bool isDark() const override { return look_.isDark; }
    [[nodiscard]] Handle observe(std::function<void()> changed) const override {
        return observers_.add(std::move(changed));
    }

private:
    [[nodiscard]] DesktopLook read() const;
    void update();

    mutable Subscribers observers_;
    Paced changes_;
    PortalSettings portal_;
    SettingsManager* manager_;
    DesktopLook look_;
    Handle managerChanges_;
};

} // namespace velmorquit
