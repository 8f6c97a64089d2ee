#include "Linux/Appearance/DesktopLook.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <string_view>

namespace velmorquit {

namespace {

// The portal's names for all desktops alike; 0 leaves the choice open.
constexpr const char* scheme = "org.freedesktop.appearance color-scheme";
constexpr const char* contrast = "org.freedesktop.appearance contrast";
constexpr const char* motion = "org.freedesktop.appearance reduced-motion";
// One desktop's own names, which others have adopted.
constexpr const char* ownScheme = "org.gnome.desktop.interface color-scheme";
constexpr const char* ownTheme = "org.gnome.desktop.interface gtk-theme";
constexpr const char* ownAnimations = "org.gnome.desktop.interface enable-animations";
constexpr const char* ownContrast = "org.gnome.desktop.a11y.interface high-contrast";
// The settings manager's names.
constexpr const char* theme = "Net/ThemeName";
constexpr const char* animations = "Gtk/EnableAnimations";

std::optional<std::int64_t> number(const DesktopSettings& settings, const char* name) {
    const auto found = settings.find(name);
    const auto* value =
        found == settings.end() ? nullptr : std::get_if<std::int64_t>(&found->second);
    return value ? std::optional(*value) : std::nullopt;
}

std::string text(const DesktopSettings& settings, const char* name) {
    const auto found = settings.find(name);
    const auto* value =
        found == settings.end() ? nullptr : std::get_if<std::string>(&found->second);
    return value ? *value : std::string();
}

/// Only its name tells what a theme looks like.
struct Theme {
    explicit Theme(std::string name) {
        std::ranges::transform(name, name.begin(),
                               [](unsigned char letter) { return std::tolower(letter); });
        isHighContrast = name.starts_with("highcontrast") || name.starts_with("contrasthigh");
        isDark = hasPart(name, "dark") || (isHighContrast && name.ends_with("inverse"));
    }

    /// Only whole words count: "darker" is a theme of light windows with dark frames.
    static bool hasPart(std::string_view name, std::string_view part) {
        constexpr std::string_view separators = "-_: ";
        for (auto at = name.find(part); at != std::string_view::npos;
             at = name.find(part, at + 1)) {
            const auto end = at + part.size();
            const bool begins = at == 0 || separators.find(name[at - 1]) != std::string_view::npos;
            const bool ends =
                end == name.size() || separators.find(name[end]) != std::string_view::npos;
            if (begins && ends)
                return true;
        }
        return false;
    }

    bool isHighContrast;
    bool isDark;
};

bool wantsDark(const DesktopSettings& portal, const Theme& first, const Theme& second) {
    constexpr std::int64_t dark = 1;
    const auto stated = number(portal, scheme).value_or(0);
    if (stated != 0)
        return stated == dark;
    const std::string own = text(portal, ownScheme);
    if (own == "prefer-light" || own == "prefer-dark")
        return own == "prefer-dark";
    return first.isDark || second.isDark;
}

} // namespace

std::set<std::string> DesktopLook::portalSettings() {
    return {scheme, contrast, motion, ownScheme, ownTheme, ownAnimations, ownContrast};
}

DesktopLook DesktopLook::of(const DesktopSettings& portal, const DesktopSettings& manager) {
    const Theme first(text(portal, ownTheme));
    const Theme second(text(manager, theme));
    return {.isHighContrast = number(portal, contrast) == 1 || number(portal, ownContrast) == 1 ||
                              first.isHighContrast || second.isHighContrast,
            .isMotionReduced = number(portal, motion) == 1 || number(portal, ownAnimations) == 0 ||
                               number(manager, animations) == 0,
            .isDark = wantsDark(portal, first, second)};
}

} // namespace velmorquit
