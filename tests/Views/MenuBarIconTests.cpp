#include "Views/MenuBarIcon.h"

#include <QImage>
#include <QPixmap>

#include <gtest/gtest.h>

namespace velmorquit {
namespace {

TEST(MenuBarIconTest, HasItsStrokesInTheColourThatIsAskedForAndNothingBetweenThem) {
    // Ten pixels for each unit of its grid.
    const QImage image = MenuBarIcon::icon(Qt::red, {}).pixmap(240).toImage();
    for (const QPoint& place : {QPoint(14, 130), QPoint(110, 65), QPoint(199, 32)})
        EXPECT_EQ(image.pixelColor(place), QColor(Qt::red)) << place.x();
    for (const QPoint& place : {QPoint(216, 32), QPoint(110, 155), QPoint(0, 0)})
        EXPECT_EQ(image.pixelColor(place).alpha(), 0) << place.x();
}

} // namespace
} // namespace velmorquit
