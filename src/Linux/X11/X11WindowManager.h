#pragma once

#include "Linux/X11/X11Connection.h"

#include <string>

namespace velmorquit {

/// Whether a window manager runs. One that died may have left its name behind: its own window shows
/// whether it lives. A short question to the display server.
[[nodiscard]] bool hasWindowManager(X11Connection& connection);

/// Whether there is one that lists `hint` as supported. A short question as well.
[[nodiscard]] bool windowManagerKnows(X11Connection& connection, const std::string& hint);

/// Asks the window manager to raise that window and give it the keyboard, on behalf of
/// the user. Returns at once.
void askToActivate(X11Connection& connection, xcb_window_t window);

/// The virtual desktop that a window is on, or that the root window shows; none if it is on all of
/// them or unknown. A short question.
[[nodiscard]] std::optional<std::uint32_t> desktopOf(X11Connection& connection,
                                                     xcb_window_t window);

} // namespace velmorquit
