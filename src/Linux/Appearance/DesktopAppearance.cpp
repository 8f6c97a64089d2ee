#include "Linux/Appearance/DesktopAppearance.h"

#include <utility>

namespace velmorquit {

namespace {

/// Every change of the look repaints everything.
constexpr Paced::Pace pace{.rest = std::chrono::milliseconds(200)};

} // namespace

DesktopAppearance::DesktopAppearance(const QDBusConnection& bus, SettingsManager* manager)
    : changes_(pace, [this] { observers_.tell(); }),
      portal_(bus, DesktopLook::portalSettings(), [this] { update(); }), manager_(manager),
      look_(read()) {
    if (manager_)
        managerChanges_ = manager_->observe([this] { update(); });
}

DesktopLook DesktopAppearance::read() const {
    return DesktopLook::of(portal_.values(), manager_ ? manager_->values() : DesktopSettings());
}

void DesktopAppearance::update() {
    const DesktopLook look = read();
    if (std::exchange(look_, look) != look)
        changes_.ask();
}

} // namespace velmorquit
