#include "Linux/Appearance/DesktopAppearance.h"
#include "Linux/X11/XSettings.h"
#include "X11/FaceTest.h"
#include "support/XSettingsBytes.h"

#include <optional>

namespace velmorquit {
namespace {

/// A settings manager with a theme and a say on animations.
struct Manager : OwnWindow {
    void say(const std::string& theme, int animations) {
        set("_XSETTINGS_SETTINGS", XSettingsBytes()
                                       .add("Net/ThemeName", theme)
                                       .add("Gtk/EnableAnimations", animations)
                                       .bytes());
    }
    void begin() { take("_XSETTINGS_S0"); }
};

using AppearanceTest = FaceTest;

TEST_F(AppearanceTest, FollowsTheSettingsManagerThroughItsLife) {
    std::optional<Manager> manager(std::in_place);
    manager->say("HighContrast", 1);
    manager->begin();
    ASSERT_TRUE(waitUntil([&] { return ownerOf("_XSETTINGS_S0") == manager->window; }));
    XSettings settings(events);
    const DesktopAppearance look(QDBusConnection("no bus"), &settings);
    EXPECT_TRUE(look.isHighContrast()) << "known from the start on";
    int changes = 0;
    const Handle watch = look.observe([&] { ++changes; });
    manager->set("_XSETTINGS_SETTINGS", "damaged");
    manager->say("Adwaita-dark", 0);
    EXPECT_TRUE(waitUntil([&] { return look.isDark(); }));
    manager.reset();
    EXPECT_TRUE(waitUntil([&] { return !look.isDark() && !look.isMotionReduced(); }));
    Manager next;
    next.begin();
    next.say("Adwaita", 0);
    EXPECT_TRUE(waitUntil([&] { return changes == 3 && look.isMotionReduced(); }));
}

} // namespace
} // namespace velmorquit
