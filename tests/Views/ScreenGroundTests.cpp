#include "Simulated/SimulatedFace.h"
#include "Views/ScreenGround.h"

#include <gtest/gtest.h>

namespace velmorquit {
namespace {

TEST(ScreenGround, ThePanelIsTheStripThatWindowsLeaveFreeAtAnyEdge) {
    SimulatedScreens screens;
    const std::vector<std::pair<ScreenRect, QRect>> usable{
        {{0, 30, 800, 570}, {0, 0, 800, 30}},
        {{0, 0, 800, 570}, {0, 570, 800, 30}},
        {{40, 0, 760, 600}, {0, 0, 40, 600}},
        {{0, 0, 760, 600}, {760, 0, 40, 600}},
    };
    for (const auto& [area, panel] : usable) {
        screens.set({{{0, 0, 800, 600}, area}});
        EXPECT_EQ(ScreenGround::panel(screens), panel);
    }
}

} // namespace
} // namespace velmorquit
