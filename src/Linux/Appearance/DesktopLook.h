#pragma once

#include "Linux/Appearance/DesktopSettings.h"

#include <set>
#include <string>

namespace velmorquit {

/// The look according to a desktop's settings.
struct DesktopLook {
    bool isHighContrast = false;
    bool isMotionReduced = false;
    bool isDark = false;

    /// The portal settings that `of` reads, each prefixed by its group and a blank.
    static std::set<std::string> portalSettings();

    /// The portal's settings for all desktops alike take precedence. Where they leave the choice
    /// open, a request from either side is enough: the desktop's own settings, which the portal
    /// passes on, or those of its settings manager.
    static DesktopLook of(const DesktopSettings& portal, const DesktopSettings& manager);

    friend bool operator==(const DesktopLook&, const DesktopLook&) = default;
};

} // namespace velmorquit
