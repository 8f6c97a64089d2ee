#pragma once

#include "Platform/ScreenRect.h"

#include <functional>
#include <optional>

namespace velmorquit {

/// The window that holds the panel: it hangs at the program's icon and closes by itself when the
/// user turns to something else.
class Popover {
public:
    virtual ~Popover() = default;

    /// False from the moment it begins to close.
    [[nodiscard]] virtual bool isShown() const = 0;

    /// Opens it at that place, or else in a corner of the screen, and gives it the keyboard. If it
    /// is open already, it stays where it is.
    virtual void show(const std::optional<ScreenRect>& anchor) = 0;

    /// Opens it without taking the keyboard from a user who is busy elsewhere; pointer clicks also
    /// go to the windows below until the user can have noticed the panel. If it is open already, it
    /// stays as it is; `show` gives it the keyboard later.
    virtual void showAside(const std::optional<ScreenRect>& anchor) = 0;

    /// Closes it if it is open.
    virtual void close() = 0;

    /// Whether the last press of a pointer button, anywhere, closed it. The icon may be told of the
    /// same press as a click, which must then not open the panel again.
    [[nodiscard]] virtual bool wasClosedByLastPress() const = 0;

    /// Called whenever it closes, for any reason; it already counts as closed then.
    std::function<void()> onClose;
};

} // namespace velmorquit
