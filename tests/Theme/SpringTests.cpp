#include "Theme/Spring.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace velmorquit {
namespace {

TEST(Spring, SwingsOverItsPlaceUnlessFullyDampedAndComesToRest) {
    const Spring spring{0.25, 0.7};
    EXPECT_EQ(spring.at(0), 0);
    double highest = 0;
    for (double time = 0; time < 1; time += 0.005)
        highest = std::max(highest, spring.at(time));
    // exp(-pi * 0.7 / sqrt(1 - 0.7 * 0.7)) beyond it
    EXPECT_NEAR(highest, 1.046, 0.002);
    for (double time = spring.settlingTime(); time < 2; time += 0.01)
        EXPECT_NEAR(spring.at(time), 1, 0.002);
    const Spring damped{0.4, 1};
    for (double time = 0; time < 2; time += 0.01)
        EXPECT_LE(damped.at(time), 1);
    EXPECT_NEAR(damped.at(damped.settlingTime()), 1, 0.002);
}

} // namespace
} // namespace velmorquit
