#include "Linux/Windows/QtScreens.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

namespace velmorquit {

namespace {

ScreenRect counted(const QRect& area) {
    return turned(ScreenRect{area.x(), area.y(), area.width(), area.height()});
}

} // namespace

QtScreens::QtScreens(MainLoop& loop) : loop_(loop) {
    for (const QScreen* screen : QGuiApplication::screens())
        watch(*screen);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](const QScreen* screen) {
        watch(*screen);
        tell();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, [this] { tell(); });
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, [this] { tell(); });
}

void QtScreens::watch(const QScreen& screen) {
    connect(&screen, &QScreen::geometryChanged, this, [this] { tell(); });
    connect(&screen, &QScreen::availableGeometryChanged, this, [this] { tell(); });
}

// The toolkit's list begins with the main screen.
std::vector<Screen> QtScreens::all() const {
    std::vector<Screen> screens;
    for (const QScreen* screen : QGuiApplication::screens())
        screens.push_back({counted(screen->geometry()), counted(screen->availableGeometry())});
    return screens;
}

ScreenPoint QtScreens::pointer() const {
    const QPoint place = QCursor::pos();
    return turned(ScreenPoint{place.x(), place.y()});
}

} // namespace velmorquit
