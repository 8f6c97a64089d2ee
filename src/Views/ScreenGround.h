#pragma once

#include <QRect>

#include <optional>

namespace velmorquit {
class Screens;
}

namespace velmorquit::ScreenGround {

/// Where a panel lies along an edge of the main screen; the upper edge comes before the others.
/// Empty where no room is kept for one.
[[nodiscard]] QRect panel(const Screens& screens);

/// Where the pointer is, if that point of the screen is kept for panels.
[[nodiscard]] std::optional<QPoint> pointerInPanel(const Screens& screens);

/// Whether the most of what the screen shows there is dark, by what can be seen of it now. None
/// where the screen can't be read.
[[nodiscard]] std::optional<bool> isDark(const QRect& place);

} // namespace velmorquit::ScreenGround
