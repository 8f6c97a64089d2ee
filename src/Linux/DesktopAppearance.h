#pragma once

#include "Linux/DBus/PortalSettings.h"
#include "Linux/DesktopLook.h"
#include "Linux/Paced.h"
#include "Linux/X11/XSettings.h"
#include "Loop/Subscribers.h"
#include "Platform/Appearance.h"

namespace velmorquit {

/// How the user has asked the desktop to look, from what its settings manager says, which is known
/// at once, and its portal, which is asked without waiting.
class DesktopAppearance final : public Appearance {
public:
    /// `bus` is the session bus, connected or not. The events outlive it.
    DesktopAppearance(const QDBusConnection& bus, X11Events& events);

    [[nodiscard]] bool isHighContrast() const override { return look_.isHighContrast; }
    [[nodiscard]] bool isMotionReduced() const override { return look_.isMotionReduced; }
    [[nodiscard]] bool isDark() const override { return look_.isDark; }
    [[nodiscard]] Handle observe(std::function<void()> changed) const override {
        return observers_.add(std::move(changed));
    }

private:
    void update();

    mutable Subscribers observers_;
    Paced changes_;
    PortalSettings portal_;
    XSettings manager_;
    DesktopLook look_;
};

} // namespace velmorquit
