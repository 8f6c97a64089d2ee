#pragma once

#include <QRect>

#include <optional>

namespace velmorquit {
class Screens;
}

namespace velmorquit::ScreenGround {

/// The place of a panel along an edge of the main screen, preferably the upper one. Empty if no
/// room is reserved for one.
[[nodiscard]] QRect panel(const Screens& screens);

/// The pointer's position, if that point of the screen is reserved for panels.
[[nodiscard]] std::optional<QPoint> pointerInPanel(const Screens& screens);

/// Whether most of the screen's content there is dark, as far as it can be seen now. None if the
/// screen can't be read.
[[nodiscard]] std::optional<bool> isDark(const QRect& place);

} // namespace velmorquit::ScreenGround
