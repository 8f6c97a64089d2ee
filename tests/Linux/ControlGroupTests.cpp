#include "Linux/Proc/ControlGroup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmorquit {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* manager = "0::/user.slice/user-1000.slice/user@1000.service";

TEST(ControlGroup, ApplicationUnitsAreKnownByTheirNames) {
    EXPECT_EQ(applicationUnit("0::/user.slice/app.slice/app-org.x-1.scope/sub\n"),
              "/user.slice/app.slice/app-org.x-1.scope");
    EXPECT_EQ(applicationUnit("1:cpu:/app-no.scope\n0::/a/app-x@1.service\n"),
              "/a/app-x@1.service");
    for (const char* none : {"", "0::", "0::/", "0::/session-1.scope", "0::/app.slice/x.service",
                             "1:cpu:/app-x.scope\n", "0::/app-x.slice", "0::/snap.x.y.service"})
        EXPECT_EQ(applicationUnit(none), "") << none;
    EXPECT_EQ(sandboxedApplication("/a/app-flatpak-org.x.Y-12.scope"), "org.x.Y");
    EXPECT_EQ(sandboxedApplication("/a/app-gnome-org.x.Y-12.scope"), "");
}

TEST(ControlGroup, UnitsNameTheDesktopEntryThatWasStarted) {
    EXPECT_THAT(desktopEntriesOfUnit("/x/app-gnome-org.gnome.TextEditor-4021.scope"),
                ElementsAre("gnome-org.gnome.TextEditor", "org.gnome.TextEditor"));
    EXPECT_THAT(desktopEntriesOfUnit("/x/app-flatpak-org.example.App-99.scope"),
                ElementsAre("flatpak-org.example.App", "org.example.App"));
    EXPECT_THAT(desktopEntriesOfUnit("/x/app-web\\x2dbrowser@7f3a.service"),
                ElementsAre("web-browser"));
    EXPECT_THAT(desktopEntriesOfUnit("/x/app-my-tool@autostart.service"),
                ElementsAre("my-tool", "tool"));
    EXPECT_THAT(desktopEntriesOfUnit(
                    "/x/snap.web-browser.web-browser-0a1b2c3d-0a1b-0a1b-0a1b-0a1b2c3d4e5f.scope"),
                ElementsAre("web-browser_web-browser"));
    for (const char* odd : {"", "/x/app-.scope", "/x/app-1.scope", "/x/snap.a.scope",
                            "/x/snap.0a1b2c3d-0a1b-0a1b-0a1b-0a1b2c3d4e5fxx.scope"})
        EXPECT_THAT(desktopEntriesOfUnit(odd), IsEmpty()) << odd;
    EXPECT_THAT(desktopEntriesOfUnit("/x/app-a\\x-1.scope"), ElementsAre("a\\x"));
}

TEST(ControlGroup, ServicesOfTheSessionAreNoApplications) {
    const std::string base = manager;
    for (const char* service :
         {"/session.slice/org.gnome.Shell@x11.service", "/app.slice/gnome-terminal-server.service",
          "/app.slice/dbus-:1.2-org.example.Files@0.service", "/dbus.service/child"})
        EXPECT_TRUE(isUserService(base + service)) << service;
    for (const char* other : {"", "/init.scope", "/app.slice/app-x-1.scope",
                              "/app.slice/app-x@autostart.service", "/a.service/app-x-1.scope"})
        EXPECT_FALSE(isUserService(base + other)) << other;
    EXPECT_FALSE(isUserService("0::/system.slice/display-manager.service"));
}

} // namespace
} // namespace velmorquit
