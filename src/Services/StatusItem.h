#pragma once

#include "Platform/ScreenRect.h"
#include "Services/MenuBar/Menu.h"

#include <functional>
#include <optional>

namespace velmorquit {

/// The program's icon among those of the desktop. For the main thread; nothing fails or waits, and
/// where the desktop shows no icons nothing happens.
class StatusItem {
public:
    struct Click {
        enum class Button { left, right };

        Button button = Button::left;
        bool isControlHeld = false;
    };

    virtual ~StatusItem() = default;

    /// Where the icon is, as far as the desktop tells. Where it doesn't, it is the spot at which
    /// the icon was clicked last. None before that, and where there is no icon.
    [[nodiscard]] virtual std::optional<ScreenRect> frame() const = 0;

    /// Opens this menu at the icon, in place of one that is open. Returns at once.
    virtual void popUp(const Menu& menu) = 0;

    /// Hands over the menu for desktops that open it themselves at a right click, of which nobody
    /// hears then; others do nothing with it. One that is open keeps its lines until it is closed:
    /// only their titles change under the pointer.
    virtual void keepMenu(const Menu& menu) = 0;

    /// Hears of each click that the desktop doesn't answer itself.
    std::function<void(const Click&)> onClick;
};

} // namespace velmorquit
