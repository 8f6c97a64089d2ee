#include "Linux/X11/X11WindowManager.h"

#include <algorithm>

namespace velmorquit {

bool hasWindowManager(X11Connection& connection) {
    const auto window = connection.number(connection.root(), "_NET_SUPPORTING_WM_CHECK");
    return window && connection.number(*window, "_NET_SUPPORTING_WM_CHECK") == window;
}

bool windowManagerKnows(X11Connection& connection, const std::string& hint) {
    const auto known = connection.numbers(connection.request(connection.root(), "_NET_SUPPORTED"));
    return std::ranges::find(known, connection.atom(hint)) != known.end() &&
           hasWindowManager(connection);
}

void askToActivate(X11Connection& connection, xcb_window_t window) {
    constexpr std::uint32_t onBehalfOfTheUser = 2;
    connection.sendMessage(connection.root(), window, "_NET_ACTIVE_WINDOW",
                           {onBehalfOfTheUser, XCB_CURRENT_TIME, 0});
}

std::optional<std::uint32_t> desktopOf(X11Connection& connection, xcb_window_t window) {
    constexpr std::uint32_t all = 0xFFFFFFFF;
    const bool isRoot = window == connection.root();
    const auto desktop =
        connection.number(window, isRoot ? "_NET_CURRENT_DESKTOP" : "_NET_WM_DESKTOP");
    return desktop == all ? std::nullopt : desktop;
}

} // namespace velmorquit
