#pragma once

#include "Platform/DesktopTraits.h"

#include <string>

namespace velmorquit {

/// The variables of a session that tell what its desktop is like.
struct SessionEnvironment {
    std::string desktops{};         ///< XDG_CURRENT_DESKTOP: names with colons between them
    bool hasWaylandDisplay = false; ///< whether WAYLAND_DISPLAY is set, to whatever

    static SessionEnvironment ofThisProcess();
};

[[nodiscard]] DesktopTraits traitsOf(const SessionEnvironment& session);

} // namespace velmorquit
