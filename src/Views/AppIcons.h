#pragma once

#include "Platform/Icon.h"

#include <QPixmap>

class QPainter;
class QRectF;

namespace velmorquit::AppIcons {

/// The application's icon with that size in points, sharp at `scale` pixels per point. Slow for the
/// first request of an icon: only for those on the screen.
[[nodiscard]] QPixmap pixmap(const Icon& icon, int size, double scale);

/// The icon of this program.
[[nodiscard]] QPixmap own(int size, double scale);

/// Draws such a pixmap into the centre of `area`.
void draw(QPainter& painter, const QRectF& area, const QPixmap& pixmap);

} // namespace velmorquit::AppIcons
