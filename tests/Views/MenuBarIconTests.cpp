#include "Views/MenuBarIcon.h"

#include <QImage>
#include <QPixmap>

#include <gtest/gtest.h>

#include <cstdlib>

namespace velmorquit {
namespace {

QImage drawn(int side) { return MenuBarIcon::icon(Qt::red, {}).pixmap(side).toImage(); }

TEST(MenuBarIconTest, HasItsStrokesWhereTheyBelongInEverySize) {
    const QImage image = drawn(240);
    // Ten pixels for each unit of its grid: a circle, an arc in it, a stem with its ends, a ring.
    for (const QPointF& place :
         {QPointF(1.4, 13.0), QPointF(20.5, 13.0), QPointF(11.0, 3.4), QPointF(11.0, 22.5),
          QPointF(11.0, 18.3), QPointF(6.5, 13.8), QPointF(15.4, 13.8), QPointF(8.2, 10.3),
          QPointF(11.0, 6.5), QPointF(11.0, 13.6), QPointF(9.9, 10.0), QPointF(12.1, 10.0),
          QPointF(19.9, 3.2), QPointF(23.2, 3.2), QPointF(21.6, 1.5)})
        EXPECT_EQ(image.pixelColor((place * 10).toPoint()), QColor(Qt::red))
            << place.x() << ' ' << place.y();
    for (const QPointF& place : {QPointF(21.6, 3.2), QPointF(11.0, 15.5), QPointF(9.2, 8.0),
                                 QPointF(4.0, 13.0), QPointF(0, 0)})
        EXPECT_EQ(image.pixelColor((place * 10).toPoint()).alpha(), 0)
            << place.x() << ' ' << place.y();
    for (const int side : {16, 18, 22, 36, 48}) {
        const QImage small = drawn(side);
        const QImage scaled =
            image.scaled(side, side, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        int difference = 0;
        for (int pixel = 0; pixel < side * side; ++pixel) {
            const QPoint place(pixel % side, pixel / side);
            difference +=
                std::abs(small.pixelColor(place).alpha() - scaled.pixelColor(place).alpha());
        }
        EXPECT_LT(difference / (side * side), 12) << side;
    }
}

} // namespace
} // namespace velmorquit
