#pragma once

#include "Platform/DesktopTraits.h"

#include <string>

namespace velmorquit {

/// Variables of a session that tell which desktop it has.
struct SessionEnvironment {
    std::string desktops{};         ///< XDG_CURRENT_DESKTOP: names separated by colons
    bool hasWaylandDisplay = false; ///< whether WAYLAND_DISPLAY is set, to any value

    static SessionEnvironment ofThisProcess();
};

[[nodiscard]] DesktopTraits traitsOf(const SessionEnvironment& session);

} // namespace velmorquit
