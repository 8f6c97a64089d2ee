#pragma once

#include "Linux/X11/X11Connection.h"

#include <set>
#include <vector>

namespace velmorquit {

/// Finds the windows embedded in a tray.
class X11TrayIcons {
public:
    /// The connection must outlive it.
    explicit X11TrayIcons(X11Connection& connection) : connection_(connection) {}

    /// Windows of other programs inside those of the owner of the tray's selection; none without
    /// one. Asks the display server some short questions, one for each level of nested windows. On
    /// a screen with thousands of windows not all are looked at.
    [[nodiscard]] std::set<xcb_window_t> windows();

    /// Sends the window a click at its centre. The pointer stays where it is.
    void click(xcb_window_t icon);

private:
    struct Found {
        xcb_window_t window;
        xcb_window_t parent;
    };

    [[nodiscard]] xcb_window_t tray();
    [[nodiscard]] xcb_window_t programOf(xcb_window_t window) const;
    [[nodiscard]] std::vector<Found> childrenOf(const std::vector<xcb_window_t>& parents);
    [[nodiscard]] std::set<xcb_window_t> unmanaged(const std::vector<xcb_window_t>& windows);

    X11Connection& connection_;
};

} // namespace velmorquit
