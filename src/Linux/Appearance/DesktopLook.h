#pragma once

#include "Linux/Appearance/DesktopSettings.h"

#include <set>
#include <string>

namespace velmorquit {

/// What a desktop's settings say of its look.
struct DesktopLook {
    bool isHighContrast = false;
    bool isMotionReduced = false;
    bool isDark = false;

    /// The settings of the portal that `of` looks at, each led by its group and a blank.
    static std::set<std::string> portalSettings();

    /// What the portal says of all desktops alike counts, whatever the others say. Where it leaves
    /// the choice open, one that asks for something is enough: a desktop's own settings, which the
    /// portal hands on, or those of its settings manager.
    static DesktopLook of(const DesktopSettings& portal, const DesktopSettings& manager);

    friend bool operator==(const DesktopLook&, const DesktopLook&) = default;
};

} // namespace velmorquit
