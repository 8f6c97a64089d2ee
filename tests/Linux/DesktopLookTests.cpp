#include "Linux/Appearance/DesktopLook.h"
#include "Linux/X11/XSettings.h"
#include "support/XSettingsBytes.h"

#include <gtest/gtest.h>

namespace velmorquit {
namespace {

const std::string any = "org.freedesktop.appearance ";
const std::string own = "org.gnome.desktop.interface ";

/// "dark", "contrast" and "still" for what it asks for.
std::string asked(const DesktopSettings& portal, const DesktopSettings& manager = {}) {
    const DesktopLook look = DesktopLook::of(portal, manager);
    return std::string(look.isDark ? "dark " : "") + (look.isHighContrast ? "contrast " : "") +
           (look.isMotionReduced ? "still " : "");
}

TEST(DesktopLook, AsksForWhatOneAsksForAndByItselfForNothing) {
    struct Case {
        DesktopSettings portal;
        DesktopSettings manager;
        const char* asked;
    };
    const DesktopSettings plain{{"Net/ThemeName", "Adwaita"}, {"Gtk/EnableAnimations", 1}};
    const DesktopSettings dark{{"Net/ThemeName", "Adwaita-dark"}};
    const std::string contrast = "org.gnome.desktop.a11y.interface high-contrast";
    const Case cases[] = {
        {{}, {}, ""},
        {{{any + "color-scheme", 0},
          {any + "contrast", 0},
          {any + "reduced-motion", 0},
          {own + "color-scheme", "default"},
          {own + "enable-animations", 1},
          {own + "gtk-theme", "Adwaita"},
          {contrast, 0}},
         plain,
         ""},
        // Of another type than they ought to be.
        {{{any + "color-scheme", "1"}, {own + "gtk-theme", 1}},
         {{"Net/ThemeName", 0}, {"Gtk/EnableAnimations", "0"}},
         ""},
        {{{any + "contrast", 1}}, plain, "contrast "},
        {{{contrast, 1}}, plain, "contrast "},
        {{{own + "gtk-theme", "HighContrast"}}, plain, "contrast "},
        {{{any + "contrast", 0}}, {{"Net/ThemeName", "HighContrastInverse"}}, "dark contrast "},
        {{{any + "reduced-motion", 1}}, {}, "still "},
        {{{own + "enable-animations", 0}}, plain, "still "},
        {{{own + "enable-animations", 1}}, {{"Gtk/EnableAnimations", 0}}, "still "},
        // What the portal says plainly goes before what a theme is called.
        {{{any + "color-scheme", 1}, {own + "color-scheme", "prefer-light"}}, {}, "dark "},
        {{{any + "color-scheme", 2}, {own + "gtk-theme", "Adwaita-dark"}}, dark, ""},
        {{{any + "color-scheme", 0}, {own + "color-scheme", "prefer-dark"}}, {}, "dark "},
        {{{own + "color-scheme", "prefer-light"}}, dark, ""},
        {{{any + "color-scheme", 0}}, dark, "dark "},
    };
    for (const Case& one : cases)
        EXPECT_EQ(asked(one.portal, one.manager), one.asked) << &one - cases;
}

TEST(DesktopLook, KnowsDarkThemesByTheirNames) {
    for (const char* name : {"Adwaita-dark", "Yaru-blue-dark", "Arc-Dark", "Mint-Y-Dark-Aqua",
                             "Greybird_dark", "Dark", "Breeze Dark"})
        EXPECT_EQ(asked({}, {{"Net/ThemeName", name}}), "dark ") << name;
    for (const char* name : {"", "Arc-Darker", "Darkness", "Inverse", "Nodark-x"})
        EXPECT_EQ(asked({}, {{"Net/ThemeName", name}}), "") << name;
    EXPECT_EQ(asked({}, {{"Net/ThemeName", "HighContrast"}}), "contrast ");
}

TEST(XSettings, AreReadInEitherByteOrderAndRefusedWhenCutShortOrMadeOfNothingKnown) {
    using Order = XSettingsBytes::Order;
    const auto written = [](Order order) {
        return XSettingsBytes(order)
            .add("Net/ThemeName", "Adwaita-dark")
            .addColour("Some/Colour")
            .add("Gtk/EnableAnimations", 0)
            .add("Xft/Offset", -2)
            .add("Odd", "")
            .bytes();
    };
    const DesktopSettings expected{{"Net/ThemeName", "Adwaita-dark"},
                                   {"Gtk/EnableAnimations", 0},
                                   {"Xft/Offset", -2},
                                   {"Odd", ""}};
    for (const Order order : {Order::little, Order::big}) {
        EXPECT_EQ(parseXSettings(written(order)), expected);
        EXPECT_EQ(parseXSettings(XSettingsBytes(order).bytes()), DesktopSettings());
    }
    const std::string whole = written(Order::big);
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_EQ(parseXSettings(std::string_view(whole).substr(0, length)), std::nullopt)
            << length;
    // A text that says it is longer than all memory, and a count that says there are as many.
    const std::string text = XSettingsBytes().add("A", "x").bytes();
    const std::string most = "\xff\xff\xff\xff";
    for (const std::string& bytes :
         {XSettingsBytes().addUnknown("New/Kind").bytes(), '\2' + whole.substr(1),
          std::string(text).replace(text.size() - 8, 4, most),
          written(Order::little).replace(8, 4, most)})
        EXPECT_EQ(parseXSettings(bytes), std::nullopt);
}

} // namespace
} // namespace velmorquit
