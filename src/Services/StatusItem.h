#pragma once

#include "Platform/ScreenRect.h"
#include "Services/MenuBar/Menu.h"

#include <functional>
#include <optional>

namespace velmorquit {

/// The program's icon in the desktop's tray. For the main thread; nothing fails or waits, and where
/// the desktop shows no icons nothing happens.
class StatusItem {
public:
    struct Click {
        enum class Button { left, right };

        Button button = Button::left;
        bool isControlHeld = false;
    };

    virtual ~StatusItem() = default;

    /// Where the icon is, if the desktop tells; otherwise where the icon was last clicked. None
    /// before the first click, and where there is no icon.
    [[nodiscard]] virtual std::optional<ScreenRect> frame() const = 0;

    /// Opens this menu at the icon, replacing one that is open. Returns at once.
    virtual void popUp(const Menu& menu) = 0;

    /// Sets the menu for desktops that open it themselves at a right click, without telling the
    /// program; others ignore it. While the menu is open its lines stay: only their titles change
    /// under the pointer.
    virtual void keepMenu(const Menu& menu) = 0;

    /// Called for each click that the desktop doesn't handle itself.
    std::function<void(const Click&)> onClick;
};

} // namespace velmorquit
