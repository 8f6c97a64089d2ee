#include "Theme/Symbols.h"

#include <QCache>
#include <QFile>
#include <QIconEngine>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace velmorquit::Symbols {
namespace {

constexpr double boxPerTextSize = 1.2;
constexpr double disabledOpacity = 0.45;
/// Room for all symbols of the panel; sizes that only occur during animations displace each
/// other.
constexpr int cacheBytes = 512 * 1024;

struct Drawn {
    QString name;
    int side; ///< pixels
    QRgb colour;

    friend bool operator==(const Drawn&, const Drawn&) = default;
    friend size_t qHash(const Drawn& drawn, size_t seed) {
        return qHashMulti(seed, drawn.name, drawn.side, drawn.colour);
    }
};

/// A null image for an unknown symbol.
QImage drawnAnew(const Drawn& drawn) {
    const QString path = QStringLiteral(":/symbols/%1.svg").arg(drawn.name);
    if (!QFile::exists(path)) {
        return {};
    }
    QImage image(drawn.side, drawn.side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QSvgRenderer(path).render(&painter, QRectF(image.rect()));
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), QColor::fromRgba(drawn.colour));
    return image;
}

QImage symbolImage(const Drawn& drawn) {
    static QCache<Drawn, QImage> cache(cacheBytes);
    if (const QImage* known = cache.object(drawn)) {
        return *known;
    }
    QImage image = drawnAnew(drawn);
    cache.insert(drawn, std::make_unique<QImage>(image).release(),
                 std::max(1, static_cast<int>(image.sizeInBytes())));
    return image;
}

/// Draws the symbol for each requested size, instead of scaling it.
class SymbolIconEngine : public QIconEngine {
public:
    SymbolIconEngine(QString name, const QColor& colour, const QColor& selected)
        : name_(std::move(name)), colour_(colour), selected_(selected) {}

    void paint(QPainter* painter, const QRect& area, QIcon::Mode mode, QIcon::State) override {
        const int side = std::min(area.width(), area.height());
        QRect box(0, 0, side, side);
        box.moveCenter(area.center());
        const bool isSelected = mode == QIcon::Selected || mode == QIcon::Active;
        QColor colour = isSelected ? selected_ : colour_;
        if (mode == QIcon::Disabled) {
            colour.setAlphaF(colour.alphaF() * static_cast<float>(disabledOpacity));
        }
        draw(*painter, name_, box, colour);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, pixmap.rect(), mode, state);
        return pixmap;
    }

    [[nodiscard]] QIconEngine* clone() const override {
        return std::make_unique<SymbolIconEngine>(*this).release();
    }

private:
    QString name_;
    QColor colour_;
    QColor selected_;
};

} // namespace

int boxSize(double textSize) { return static_cast<int>(std::lround(boxPerTextSize * textSize)); }

void draw(QPainter& painter, const QString& name, const QRectF& box, const QColor& colour) {
    const double scale = std::sqrt(std::abs(painter.deviceTransform().determinant()));
    const int side = static_cast<int>(std::ceil(std::min(box.width(), box.height()) * scale));
    if (side <= 0) {
        return;
    }
    const QImage image = symbolImage({name, side, colour.rgba()});
    if (image.isNull()) {
        return;
    }
    QRectF target(0, 0, side / scale, side / scale);
    target.moveCenter(box.center());
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(target, image);
    painter.restore();
}

QIcon icon(const QString& name, const QColor& colour) { return icon(name, colour, colour); }

QIcon icon(const QString& name, const QColor& colour, const QColor& selected) {
    return QIcon(std::make_unique<SymbolIconEngine>(name, colour, selected).release());
}

} // namespace velmorquit::Symbols
