#include "Linux/Windows/SessionTraits.h"

#include <cstdlib>
#include <string_view>

namespace velmorquit {

namespace {

bool hasDesktop(std::string_view desktops, std::string_view wanted) {
    for (;;) {
        const auto end = desktops.find(':');
        if (desktops.substr(0, end) == wanted)
            return true;
        if (end == std::string_view::npos)
            return false;
        desktops.remove_prefix(end + 1);
    }
}

} // namespace

SessionEnvironment SessionEnvironment::ofThisProcess() {
    const char* desktops = std::getenv("XDG_CURRENT_DESKTOP");
    return {.desktops = desktops ? desktops : "",
            .hasWaylandDisplay = std::getenv("WAYLAND_DISPLAY") != nullptr};
}

// On a Wayland desktop an X server sees and shows only its own clients' windows.
DesktopTraits traitsOf(const SessionEnvironment& session) {
    return {.tintsNamedIcons = hasDesktop(session.desktops, "KDE"),
            .isPointerKnown = !session.hasWaylandDisplay,
            .isScreenReadable = !session.hasWaylandDisplay};
}

} // namespace velmorquit
