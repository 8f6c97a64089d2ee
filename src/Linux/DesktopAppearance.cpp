#include "Linux/DesktopAppearance.h"

#include <utility>

namespace velmorquit {

DesktopAppearance::DesktopAppearance(MainLoop& loop, const QDBusConnection& bus, X11Events& events)
    : loop_(loop), portal_(bus, DesktopLook::portalSettings(), [this] { update(); }),
      manager_(events, [this] { update(); }),
      look_(DesktopLook::of(portal_.values(), manager_.values())) {}

void DesktopAppearance::update() {
    const DesktopLook look = DesktopLook::of(portal_.values(), manager_.values());
    if (std::exchange(look_, look) != look)
        observers_.tellLater(loop_);
}

} // namespace velmorquit
