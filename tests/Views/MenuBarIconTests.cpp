#include "Views/MenuBarIcon.h"

#include <QImage>
#include <QPixmap>

#include <gtest/gtest.h>

#include <cstdlib>
#include <utility>

namespace velmorquit {
namespace {

QImage drawn(int side) { return MenuBarIcon::icon(Qt::red, {}).pixmap(side).toImage(); }

TEST(MenuBarIconTest, HasItsStrokesWhereTheyBelong) {
    const QImage image = drawn(240);
    // Ten pixels for each unit of its grid.
    const auto isDrawn = [&](double x, double y) {
        return image.pixelColor(static_cast<int>(x * 10), static_cast<int>(y * 10)) ==
               QColor(Qt::red);
    };
    for (const auto& [x, y] : {std::pair(1.4, 13.0), {20.5, 13.0}, {11.0, 3.4}, {11.0, 22.5}})
        EXPECT_TRUE(isDrawn(x, y)) << "circle " << x << ' ' << y;
    for (const auto& [x, y] : {std::pair(11.0, 18.3), {6.5, 13.8}, {15.4, 13.8}, {8.2, 10.3}})
        EXPECT_TRUE(isDrawn(x, y)) << "arc " << x << ' ' << y;
    for (const auto& [x, y] : {std::pair(11.0, 6.5), {11.0, 13.6}, {9.9, 10.0}, {12.1, 10.0}})
        EXPECT_TRUE(isDrawn(x, y)) << "stem, with its ends " << x << ' ' << y;
    for (const auto& [x, y] : {std::pair(19.9, 3.2), {23.2, 3.2}, {21.6, 1.5}})
        EXPECT_TRUE(isDrawn(x, y)) << "ring " << x << ' ' << y;
    for (const auto& [x, y] : {std::pair(21.6, 3.2), {11.0, 15.5}, {9.2, 8.0}, {4.0, 13.0}, {0, 0}})
        EXPECT_EQ(image.pixelColor(static_cast<int>(x * 10), static_cast<int>(y * 10)).alpha(), 0)
            << x << ' ' << y;
}

TEST(MenuBarIconTest, IsTheSameDrawingInEverySize) {
    const QImage large = drawn(144);
    for (const int side : {16, 18, 22, 36, 48}) {
        const QImage scaled =
            large.scaled(side, side, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        const QImage image = drawn(side);
        int difference = 0;
        for (int y = 0; y < side; ++y)
            for (int x = 0; x < side; ++x)
                difference +=
                    std::abs(image.pixelColor(x, y).alpha() - scaled.pixelColor(x, y).alpha());
        EXPECT_LT(difference / (side * side), 12) << side;
    }
}

} // namespace
} // namespace velmorquit
