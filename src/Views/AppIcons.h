#pragma once

#include "Platform/Icon.h"

#include <QPixmap>

class QPainter;
class QRectF;

namespace velmorquit::AppIcons {

/// The application's icon, that many points large and sharp at `scale` pixels a point. Slow the
/// first time that an icon is asked for: only for what is on the screen.
[[nodiscard]] QPixmap pixmap(const Icon& icon, int size, double scale);

/// The one of this program.
[[nodiscard]] QPixmap own(int size, double scale);

/// Draws a pixmap of these into the middle of `area`.
void draw(QPainter& painter, const QRectF& area, const QPixmap& pixmap);

} // namespace velmorquit::AppIcons
