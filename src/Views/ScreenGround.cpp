#include "Views/ScreenGround.h"

#include "Platform/Screens.h"

#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QScreen>

#include <algorithm>
#include <vector>

namespace velmorquit::ScreenGround {
namespace {

QRect onScreen(const ScreenRect& counted) {
    const ScreenRect area = turned(counted);
    return {area.x, area.y, area.width, area.height};
}

} // namespace

QRect panel(const Screens& screens) {
    const std::vector<Screen> all = screens.all();
    if (all.empty())
        return {};
    const QRect whole = onScreen(all.front().frame);
    const QRect free = onScreen(all.front().usable);
    if (free.top() > whole.top())
        return {whole.topLeft(), QSize(whole.width(), free.top() - whole.top())};
    if (free.bottom() < whole.bottom())
        return {QPoint(whole.left(), free.bottom() + 1), whole.bottomRight()};
    if (free.left() > whole.left())
        return {whole.topLeft(), QSize(free.left() - whole.left(), whole.height())};
    return {QPoint(free.right() + 1, whole.top()), whole.bottomRight()};
}

std::optional<QPoint> pointerInPanel(const Screens& screens) {
    const ScreenPoint place = turned(screens.pointer());
    const Screen screen = screens.at(screens.pointer());
    const QPoint pointer(place.x, place.y);
    const bool isInPanel =
        onScreen(screen.frame).contains(pointer) && !onScreen(screen.usable).contains(pointer);
    return isInPanel ? std::optional(pointer) : std::nullopt;
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
    // Strokes and letters drawn on it cover less than half of the place.
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
