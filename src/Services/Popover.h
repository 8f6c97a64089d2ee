#pragma once

#include "Platform/ScreenRect.h"

#include <functional>
#include <optional>

namespace velmorquit {

/// The window that the panel opens in: it hangs at the program's icon and closes by itself when the
/// user turns to something else.
class Popover {
public:
    virtual ~Popover() = default;

    /// False from the moment that it begins to close.
    [[nodiscard]] virtual bool isShown() const = 0;

    /// Opens it at that place, else in a corner of the screen, and gives it the keyboard. One that
    /// is open stays where it is.
    virtual void show(const std::optional<ScreenRect>& anchor) = 0;

    /// Opens it as well, for a user who is busy elsewhere: the keyboard stays where it is, and what
    /// the pointer does there goes to the windows below until the panel can have been seen. One
    /// that is open stays as it is; `show` gives it the keyboard later.
    virtual void showAside(const std::optional<ScreenRect>& anchor) = 0;

    /// Closes it; one that is closed stays so.
    virtual void close() = 0;

    /// Whether it was closed by the pointer button that went down last anywhere. What the icon is
    /// told of that press is to be ignored then: it closed the panel already.
    [[nodiscard]] virtual bool wasClosedByLastPress() const = 0;

    /// Called each time when it closes, whoever closed it; it counts as closed by then.
    std::function<void()> onClose;
};

} // namespace velmorquit
