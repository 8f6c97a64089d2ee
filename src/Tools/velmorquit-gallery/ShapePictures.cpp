#include "Pictures.h"
#include "Stage.h"
#include "Theme/AppTheme.h"
#include "Theme/Drawing.h"
#include "Theme/Symbols.h"
#include "Views/AppIcons.h"
#include "Views/MenuBarIcon.h"

#include <QDir>
#include <QPainter>
#include <QWidget>

#include <memory>

namespace velmorquit {
namespace {

const QColor darkGround(46, 44, 54);
const QColor lightGround(242, 242, 244);

/// Every symbol in three sizes above its name.
class SymbolTable : public QWidget {
public:
    SymbolTable() : names_(QDir(QStringLiteral(":/symbols")).entryList()) {
        names_.replaceInStrings(QStringLiteral(".svg"), QString());
        const auto rows = static_cast<int>((names_.size() + columns - 1) / columns);
        setFixedSize(columns * cellWidth, rows * cellHeight);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setFont(AppTheme::smallCaptionFont());
        painter.fillRect(rect(), darkGround);
        for (int at = 0; at < names_.size(); ++at)
            paintCell(painter, names_.at(at),
                      QPoint(at % columns * cellWidth, at / columns * cellHeight));
    }

private:
    static constexpr int columns = 6;
    static constexpr int cellWidth = 188;
    static constexpr int cellHeight = 140;

    static void paintCell(QPainter& painter, const QString& name, const QPoint& corner) {
        constexpr int middle = 62;
        int x = 14;
        for (const int side : {12, 24, 96}) {
            Symbols::draw(painter, name,
                          QRectF(corner.x() + x, corner.y() + middle - side / 2.0, side, side),
                          AppTheme::text());
            x += side + 14;
        }
        painter.setPen(AppTheme::text(0.7));
        painter.drawText(QRect(corner + QPoint(0, 112), QSize(cellWidth, 20)), Qt::AlignCenter,
                         name);
    }

    QStringList names_;
};

/// The program's icons: those for light and dark panels, and the large one.
class OwnIcons : public QWidget {
public:
    OwnIcons() { setFixedSize(3 * cellWidth, cellHeight); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        paintMenuBarIcons(painter, {0, 0, cellWidth, cellHeight}, lightGround, Qt::black);
        paintMenuBarIcons(painter, {cellWidth, 0, cellWidth, cellHeight}, darkGround, Qt::white);
        int x = 2 * cellWidth + 18;
        for (const int side : {16, 34, 128}) {
            AppIcons::draw(painter, QRectF(x, (cellHeight - side) / 2.0, side, side),
                           AppIcons::own(side, devicePixelRatioF()));
            x += side + 24;
        }
    }

private:
    static constexpr int cellWidth = 300;
    static constexpr int cellHeight = 190;

    static void paintMenuBarIcons(QPainter& painter, const QRect& cell, const QColor& ground,
                                  const QColor& colour) {
        painter.fillRect(cell, ground);
        int x = cell.x() + 24;
        for (const int side : {18, 36, 144}) {
            MenuBarIcon::draw(painter, QRectF(x, (cell.height() - side) / 2.0, side, side), colour);
            x += side + 24;
        }
    }
};

void symbols(Stage& stage) { stage.show(std::make_unique<SymbolTable>()); }

void icons(Stage& stage) { stage.show(std::make_unique<OwnIcons>()); }

} // namespace

std::vector<Picture> shapePictures() { return {{"icons", icons}, {"symbols", symbols}}; }

} // namespace velmorquit
