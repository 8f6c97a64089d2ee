#include "Linux/Appearance/DesktopLook.h"

#include <gtest/gtest.h>

namespace velmorquit {
namespace {

const std::string any = "org.freedesktop.appearance ";
const std::string own = "org.gnome.desktop.interface ";

bool isDark(const DesktopSettings& portal, const DesktopSettings& manager = {}) {
    return DesktopLook::of(portal, manager).isDark;
}

TEST(DesktopLook, AsksForNothingByItself) {
    EXPECT_EQ(DesktopLook::of({}, {}), DesktopLook());
    const DesktopSettings usual{{any + "color-scheme", 0},
                                {any + "contrast", 0},
                                {any + "reduced-motion", 0},
                                {own + "color-scheme", "default"},
                                {own + "enable-animations", 1},
                                {own + "gtk-theme", "Adwaita"},
                                {"org.gnome.desktop.a11y.interface high-contrast", 0}};
    EXPECT_EQ(DesktopLook::of(usual, {{"Net/ThemeName", "Adwaita"}, {"Gtk/EnableAnimations", 1}}),
              DesktopLook());
    // Of another type than they ought to be.
    EXPECT_EQ(DesktopLook::of({{any + "color-scheme", "1"}, {own + "gtk-theme", 1}},
                              {{"Net/ThemeName", 0}, {"Gtk/EnableAnimations", "0"}}),
              DesktopLook());
}

TEST(DesktopLook, OneThatAsksIsEnough) {
    for (const DesktopSettings& portal :
         {DesktopSettings{{any + "contrast", 1}},
          DesktopSettings{{"org.gnome.desktop.a11y.interface high-contrast", 1}},
          DesktopSettings{{own + "gtk-theme", "HighContrast"}}})
        EXPECT_TRUE(DesktopLook::of(portal, {{"Net/ThemeName", "Adwaita"}}).isHighContrast);
    EXPECT_TRUE(DesktopLook::of({{any + "contrast", 0}}, {{"Net/ThemeName", "HighContrastInverse"}})
                    .isHighContrast);
    EXPECT_TRUE(DesktopLook::of({{any + "reduced-motion", 1}}, {}).isMotionReduced);
    EXPECT_TRUE(DesktopLook::of({{own + "enable-animations", 0}}, {{"Gtk/EnableAnimations", 1}})
                    .isMotionReduced);
    EXPECT_TRUE(DesktopLook::of({{own + "enable-animations", 1}}, {{"Gtk/EnableAnimations", 0}})
                    .isMotionReduced);
}

TEST(DesktopLook, WhatThePortalSaysPlainlyGoesBeforeWhatAThemeIsCalled) {
    EXPECT_TRUE(isDark({{any + "color-scheme", 1}, {own + "color-scheme", "prefer-light"}}));
    EXPECT_FALSE(isDark({{any + "color-scheme", 2}, {own + "gtk-theme", "Adwaita-dark"}},
                        {{"Net/ThemeName", "Adwaita-dark"}}));
    EXPECT_TRUE(isDark({{any + "color-scheme", 0}, {own + "color-scheme", "prefer-dark"}}));
    EXPECT_FALSE(
        isDark({{own + "color-scheme", "prefer-light"}}, {{"Net/ThemeName", "Adwaita-dark"}}));
    EXPECT_TRUE(isDark({{any + "color-scheme", 0}}, {{"Net/ThemeName", "Adwaita-dark"}}));
}

TEST(DesktopLook, KnowsDarkThemesByTheirNames) {
    for (const char* name : {"Adwaita-dark", "Yaru-blue-dark", "Arc-Dark", "Mint-Y-Dark-Aqua",
                             "Greybird_dark", "Dark", "Breeze Dark", "HighContrastInverse"})
        EXPECT_TRUE(isDark({}, {{"Net/ThemeName", name}})) << name;
    for (const char* name : {"", "Arc-Darker", "Darkness", "HighContrast", "Inverse", "Nodark-x"})
        EXPECT_FALSE(isDark({}, {{"Net/ThemeName", name}})) << name;
}

} // namespace
} // namespace velmorquit
