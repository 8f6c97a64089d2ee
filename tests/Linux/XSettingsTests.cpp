#include "Linux/X11/XSettings.h"
#include "support/XSettingsBytes.h"

#include <gtest/gtest.h>

namespace velmorquit {
namespace {

using Order = XSettingsBytes::Order;

std::string sample(Order order) {
    return XSettingsBytes(order)
        .add("Net/ThemeName", "Adwaita-dark")
        .addColour("Some/Colour")
        .add("Gtk/EnableAnimations", 0)
        .add("Xft/Offset", -2)
        .add("Odd", "")
        .bytes();
}

TEST(XSettings, ReadsNumbersAndTextsInEitherByteOrder) {
    const DesktopSettings expected{{"Net/ThemeName", "Adwaita-dark"},
                                   {"Gtk/EnableAnimations", 0},
                                   {"Xft/Offset", -2},
                                   {"Odd", ""}};
    for (const Order order : {Order::little, Order::big}) {
        EXPECT_EQ(parseXSettings(sample(order)), expected);
        EXPECT_EQ(parseXSettings(XSettingsBytes(order).bytes()), DesktopSettings());
    }
}

TEST(XSettings, RefusesWhatIsCutShortOrMadeOfNothingKnown) {
    const std::string whole = sample(Order::big);
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_EQ(parseXSettings(std::string_view(whole).substr(0, length)), std::nullopt)
            << length;
    EXPECT_EQ(parseXSettings(XSettingsBytes().addUnknown("New/Kind").bytes()), std::nullopt);
    std::string order = whole;
    order[0] = 2;
    EXPECT_EQ(parseXSettings(order), std::nullopt);
    // A text that says it is longer than all memory, and a count that says there are as many.
    std::string huge = XSettingsBytes().add("A", "x").bytes();
    huge.replace(huge.size() - 8, 4, "\xff\xff\xff\xff");
    EXPECT_EQ(parseXSettings(huge), std::nullopt);
    std::string many = sample(Order::little);
    many.replace(8, 4, "\xff\xff\xff\xff");
    EXPECT_EQ(parseXSettings(many), std::nullopt);
}

} // namespace
} // namespace velmorquit
