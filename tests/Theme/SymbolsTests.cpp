#include "Theme/Symbols.h"

#include <QDir>
#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

namespace velmorquit {
namespace {

QImage ground(int side, double scale = 1) {
    const int pixels = static_cast<int>(side * scale);
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    return image;
}

QImage drawn(const QString& name, const QRectF& box, const QColor& colour = Qt::white,
             double scale = 1) {
    QImage image = ground(120, scale);
    QPainter painter(&image);
    Symbols::draw(painter, name, box, colour);
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
        {"checkmark.circle.fill", {10.7, 15.4}, {12, 6}},
        {"checkmark.seal.fill", {10.8, 15.2}, {12, 6}},
        {"exclamationmark.circle.fill", {12, 9}, {8, 12}},
        {"exclamationmark.triangle.fill", {12, 17.5}, {8, 17}},
        {"info.circle.fill", {12, 7.3}, {8, 12}},
        {"eject.circle.fill", {12, 10}, {12, 14.6}},
        {"arrow.down.circle.fill", {9, 13.8}, {8, 9}},
        {"gearshape.fill", {12, 12}, {7, 12}},
        {"memorychip.fill", {12, 12}, {12, 9}},
    };
    for (const auto& symbol : filled) {
        const QImage image = drawn(QLatin1String(symbol.name), {0, 0, 96, 96});
        EXPECT_EQ(image.pixelColor((symbol.sign * 4).toPoint()).alpha(), 0) << symbol.name;
        EXPECT_EQ(image.pixelColor((symbol.ground * 4).toPoint()).alpha(), 255) << symbol.name;
    }
}

TEST(Symbols, takeTheColourAndTheOpacityThatTheyAreDrawnIn) {
    const QString name = QStringLiteral("exclamationmark.circle.fill");
    for (const QColor& colour : {QColor(240, 160, 50), QColor(255, 255, 255, 102), QColor(Qt::red)})
        EXPECT_EQ(drawn(name, {0, 0, 48, 48}, colour).pixelColor(12, 24).rgba(), colour.rgba());
}

TEST(Symbols, areSharpWhereverTheyStand) {
    const QString name = QStringLiteral("eject");
    EXPECT_EQ(drawn(name, {10.4, 9.6, 24, 24}), drawn(name, {10, 10, 24, 24}));

    QImage larger = drawn(name, {10.2, 9.8, 24, 24}, Qt::white, 1.5);
    larger.setDevicePixelRatio(1);
    EXPECT_EQ(larger.copy(0, 0, 120, 120), drawn(name, {15, 15, 36, 36}));
}

TEST(Symbols, nothingIsDrawnForANameThatNoneHas) {
    EXPECT_TRUE(ink(drawn(QStringLiteral("nothing.like.that"), {0, 0, 96, 96})).isNull());
    EXPECT_TRUE(ink(drawn(QStringLiteral("xmark"), {5, 5, 0, 0})).isNull());
}

TEST(Symbols, anIconIsSquareAndFainterWhereItIsDisabled) {
    const QIcon icon = Symbols::icon(QStringLiteral("circle"), Qt::white);
    QImage image = ground(120);
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
