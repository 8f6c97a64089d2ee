#include "StageScreens.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryFile>

#include <array>

namespace velmorquit::StageScreens {
namespace {

struct Screen {
    Kind kind;
    int scale;
    ScreenRect area;
};

constexpr std::array screens{
    Screen{Kind::ordinary, 1, {0, 0, 1440, 1400}},
    Screen{Kind::ordinary, 2, {1440, 0, 1440, 1400}},
    Screen{Kind::low, 1, {2880, 0, 1024, 600}},
    Screen{Kind::low, 2, {3904, 0, 1024, 600}},
};

QJsonObject described(const Screen& screen) {
    constexpr int dotsPerInch = 96;
    return {{"name", QStringLiteral("%1x").arg(screen.area.x)},
            {"x", screen.area.x},
            {"y", screen.area.y},
            {"width", screen.area.width},
            {"height", screen.area.height},
            {"logicalDpi", dotsPerInch},
            {"logicalBaseDpi", dotsPerInch},
            {"dpr", screen.scale}};
}

} // namespace

void prepare() {
    // Read when the application object is created; it stays until the end for that.
    static QTemporaryFile file;
    QJsonArray list;
    for (const Screen& screen : screens)
        list.append(described(screen));
    if (!file.open())
        return;
    file.write(QJsonDocument(QJsonObject{{"synchronousWindowSystemEvents", true},
                                         {"windowFrameMargins", false},
                                         {"screens", list}})
                   .toJson());
    file.flush();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + file.fileName().toLocal8Bit());
}

ScreenRect area(Kind kind, int scale) {
    for (const Screen& screen : screens) {
        if (screen.kind == kind && screen.scale == scale)
            return screen.area;
    }
    return screens.front().area;
}

} // namespace velmorquit::StageScreens
