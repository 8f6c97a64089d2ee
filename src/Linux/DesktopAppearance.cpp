#include "Linux/DesktopAppearance.h"

#include <utility>

namespace velmorquit {

namespace {

/// With every change of the look all is painted anew.
constexpr Paced::Pace pace{.rest = std::chrono::milliseconds(200)};

} // namespace

DesktopAppearance::DesktopAppearance(const QDBusConnection& bus, X11Events& events)
    : changes_(pace, [this] { observers_.tell(); }),
      portal_(bus, DesktopLook::portalSettings(), [this] { update(); }),
      manager_(events, [this] { update(); }),
      look_(DesktopLook::of(portal_.values(), manager_.values())) {}

void DesktopAppearance::update() {
    const DesktopLook look = DesktopLook::of(portal_.values(), manager_.values());
    if (std::exchange(look_, look) != look)
        changes_.ask();
}

} // namespace velmorquit
