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
    const Case cases[] = {
        {{}, plain, ""},
        // Of another type than they ought to be.
        {{{any + "color-scheme", "1"}, {own + "gtk-theme", 1}},
         {{"Net/ThemeName", 0}, {"Gtk/EnableAnimations", "0"}},
         ""},
        {{{any + "contrast", 1}}, plain, "contrast "},
        {{{"org.gnome.desktop.a11y.interface high-contrast", 1}}, plain, "contrast "},
        {{{any + "contrast", 0}}, {{"Net/ThemeName", "HighContrastInverse"}}, "dark contrast "},
        {{{any + "reduced-motion", 1}}, {}, "still "},
        {{{own + "enable-animations", 1}}, {{"Gtk/EnableAnimations", 0}}, "still "},
        // What the portal says plainly goes before what a theme is called.
        {{{any + "color-scheme", 1}, {own + "color-scheme", "prefer-light"}}, {}, "dark "},
        {{{own + "color-scheme", "prefer-light"}}, dark, ""},
        {{{any + "color-scheme", 0}}, dark, "dark "},
        {{}, {{"Net/ThemeName", "Breeze Dark"}}, "dark "},
        {{}, {{"Net/ThemeName", "Arc-Darker"}}, ""},
    };
    for (const Case& one : cases)
        EXPECT_EQ(asked(one.portal, one.manager), one.asked) << &one - cases;
}

TEST(XSettings, AreReadInEitherByteOrderAndRefusedWhenCutShort) {
    const DesktopSettings expected{{"Net/ThemeName", "Adwaita-dark"},
                                   {"Gtk/EnableAnimations", 0},
                                   {"Xft/Offset", -2},
                                   {"Odd", ""}};
    for (const auto order : {XSettingsBytes::Order::little, XSettingsBytes::Order::big}) {
        const std::string whole = XSettingsBytes(order)
                                      .add("Net/ThemeName", "Adwaita-dark")
                                      .addColour("Some/Colour")
                                      .add("Gtk/EnableAnimations", 0)
                                      .add("Xft/Offset", -2)
                                      .add("Odd", "")
                                      .bytes();
        EXPECT_EQ(parseXSettings(whole), expected);
        for (std::size_t length = 0; length < whole.size(); ++length)
            EXPECT_EQ(parseXSettings(whole.substr(0, length)), std::nullopt) << length;
    }
    EXPECT_EQ(parseXSettings(XSettingsBytes().bytes()), DesktopSettings());
}

} // namespace
} // namespace velmorquit
