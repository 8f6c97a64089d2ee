#include "Theme/Symbols.h"

#include <QDir>
#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

namespace velmorquit {
namespace {

QImage ground() {
    QImage image(120, 120, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

QImage drawn(const QString& name, const QRectF& box) {
    QImage image = ground();
    QPainter painter(&image);
    Symbols::draw(painter, name, box, Qt::white);
    return image;
}

QStringList names() {
    QStringList names = QDir(QStringLiteral(":/symbols")).entryList({QStringLiteral("*.svg")});
    names.replaceInStrings(QStringLiteral(".svg"), QString());
    return names;
}

/// The pixels that are not quite transparent.
QRect ink(const QImage& image) {
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).alpha() > 8)
                ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

TEST(Symbols, allLieWithinTheirBoxAndFillMostOfIt) {
    ASSERT_GE(names().size(), 25);
    for (const QString& name : names()) {
        const QRect area = ink(drawn(name, {12, 12, 96, 96}));
        EXPECT_TRUE(QRect(13, 13, 94, 94).contains(area)) << name.toStdString();
        EXPECT_GE(area.width(), 36) << name.toStdString();
        const QPoint away = area.center() - QPoint(59, 59);
        EXPECT_LE(away.manhattanLength(), 12) << name.toStdString();
    }
}

TEST(Symbols, signsAreCutOutOfWhatIsFilled) {
    const struct {
        const char* name;
        QPointF sign, ground; ///< on the grid of 24 units
    } filled[] = {
        {"xmark.circle.fill", {9, 9}, {12, 6}},
        {"exclamationmark.triangle.fill", {12, 17.5}, {8, 17}},
        {"memorychip.fill", {12, 12}, {12, 9}},
    };
    for (const auto& symbol : filled) {
        const QImage image = drawn(QLatin1String(symbol.name), {0, 0, 96, 96});
        EXPECT_EQ(image.pixelColor((symbol.sign * 4).toPoint()).alpha(), 0) << symbol.name;
        EXPECT_EQ(image.pixelColor((symbol.ground * 4).toPoint()).alpha(), 255) << symbol.name;
    }
}

TEST(Symbols, anIconIsSquareAndFainterWhereItIsDisabled) {
    const QIcon icon = Symbols::icon(QStringLiteral("circle"), Qt::white);
    QImage image = ground();
    QPainter painter(&image);
    icon.paint(&painter, {0, 0, 96, 24});
    icon.paint(&painter, {0, 48, 24, 24}, Qt::AlignCenter, QIcon::Disabled);
    const QRect whole = ink(image.copy(0, 0, 96, 24));
    EXPECT_EQ(whole.width(), whole.height());
    EXPECT_EQ(whole.center().x(), 47);
    EXPECT_EQ(image.pixelColor(48, 2).alpha(), 255);
    EXPECT_LT(image.pixelColor(12, 50).alpha(), 140);
    EXPECT_GT(image.pixelColor(12, 50).alpha(), 80);
}

} // namespace
} // namespace velmorquit
