#pragma once

#include "Linux/X11/X11Connection.h"

#include <string>

namespace velmorquit {

/// Whether a window manager runs. One that died may have left its name behind: its own window tells
/// whether it lives. A short question to the display server.
[[nodiscard]] bool hasWindowManager(X11Connection& connection);

/// Whether one runs that lists `hint` among what it understands. A short question as well.
[[nodiscard]] bool windowManagerKnows(X11Connection& connection, const std::string& hint);

/// Asks the window manager to put that window before the others and to give it the keyboard, in the
/// name of the user. Returns at once.
void askToActivate(X11Connection& connection, xcb_window_t window);

/// The virtual desktop that a window is on, or that the root window shows; none when it is on all
/// of them or nobody says. A short question.
[[nodiscard]] std::optional<std::uint32_t> desktopOf(X11Connection& connection,
                                                     xcb_window_t window);

} // namespace velmorquit
