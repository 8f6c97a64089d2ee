#include "Views/ScreenGround.h"

#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QScreen>

#include <algorithm>

namespace velmorquit::ScreenGround {

QRect panel() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen)
        return {};
    const QRect all = screen->geometry();
    const QRect free = screen->availableGeometry();
    if (free.top() > all.top())
        return {all.topLeft(), QSize(all.width(), free.top() - all.top())};
    if (free.bottom() < all.bottom())
        return {QPoint(all.left(), free.bottom() + 1), all.bottomRight()};
    if (free.left() > all.left())
        return {all.topLeft(), QSize(free.left() - all.left(), all.height())};
    return {QPoint(free.right() + 1, all.top()), all.bottomRight()};
}

bool isInPanel(const QPoint& place) {
    const QScreen* screen = QGuiApplication::screenAt(place);
    return screen && !screen->availableGeometry().contains(place);
}

std::optional<bool> isDark(const QRect& place) {
    QScreen* screen = QGuiApplication::screenAt(place.center());
    if (!screen || place.isEmpty())
        return std::nullopt;
    const QPoint corner = place.topLeft() - screen->geometry().topLeft();
    const QImage seen = screen->grabWindow(0, corner.x(), corner.y(), place.width(), place.height())
                            .toImage()
                            .convertToFormat(QImage::Format_Grayscale8);
    if (seen.isNull())
        return std::nullopt;
    // What is drawn on it, strokes and letters, takes less than half of the place.
    constexpr int middle = 128;
    std::ptrdiff_t dark = 0;
    for (int line = 0; line < seen.height(); ++line) {
        const uchar* pixels = seen.constScanLine(line);
        dark += std::count_if(pixels, pixels + seen.width(),
                              [](uchar pixel) { return pixel < middle; });
    }
    return 2 * dark > static_cast<std::ptrdiff_t>(seen.width()) * seen.height();
}

} // namespace velmorquit::ScreenGround
