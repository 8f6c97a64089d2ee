#include "Linux/Proc/ControlGroup.h"
#include "Linux/Proc/ProcKernel.h"
#include "Linux/Proc/ProcessStat.h"
#include "support/Child.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include <unistd.h>

namespace velmorquit {
namespace {

TEST(ProcessStatTest, SurvivesAnyNameThatAProgramMayHaveAndRefusesWhatIsNoSuchLine) {
    const std::string rest = " S 7 8 9 34816 10 4194304 1 2 3 4 5 6 7 8 20 0 1 0 424242 99 88\n";
    for (const std::string name :
         {"bash", "a) R 1 (b", "two words", "new\nline", ")", "", "\xff\xfe"}) {
        const auto stat = parseProcessStat("123 (" + name + ")" + rest);
        ASSERT_TRUE(stat) << name;
        EXPECT_EQ(stat->command, name);
        EXPECT_EQ(stat->state, 'S');
        EXPECT_EQ((std::vector<long>{stat->id, stat->parent, stat->group, stat->session,
                                     stat->terminal, stat->foreground}),
                  (std::vector<long>{123, 7, 8, 9, 34816, 10}));
        EXPECT_EQ(stat->processorTime, 5U + 6 + 7 + 8);
        EXPECT_EQ(stat->startTime, 424242U);
    }
    for (const char* line :
         {"", "123", "123 (bash", "123 bash) S 7 8 9", "(bash) S 7", "123 (bash) S 7 8",
          "123 (bash) S x 8 9 0 -1 0 0", "123 (b) S 7 8 9 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0"})
        EXPECT_FALSE(parseProcessStat(line)) << line;
}

TEST(ProcessStatTest, SeesThisProcessesChildrenAndWhatTheyWereStartedWith) {
    const Child child({"env", "-i", "AB=1=2", "ABC=3", "EMPTY=", "/bin/sleep", "1000"});
    ASSERT_TRUE(waitUntil([&] { return executableName(child.id()) == "sleep"; }));
    EXPECT_TRUE(std::ranges::any_of(readProcessTable(), [&](const ProcessStat& process) {
        return process.id == child.id() && process.parent == ::getpid();
    }));
    EXPECT_EQ(processArguments(child.id()), (std::vector<std::string>{"/bin/sleep", "1000"}));
    EXPECT_EQ(processEnvironment(child.id(), "AB"), "1=2");
    EXPECT_EQ(processEnvironment(child.id(), "ABC"), "3");
    EXPECT_EQ(processEnvironment(child.id(), "EMPTY"), "");
    EXPECT_FALSE(processEnvironment(child.id(), "A"));
    EXPECT_FALSE(readProcessStat(-1));
    EXPECT_EQ(executableName(-1), "");
}

TEST(FootprintTest, CountsWhatWouldComeFreeAndToleratesMissingLines) {
    const std::pair<const char*, std::optional<std::uint64_t>> cases[] = {
        {"Name:\tx\nRssAnon:\t     100 kB\nRssFile:\t 9999 kB\nRssShmem:\t  20 kB\n"
         "VmSwap:\t   3 kB\n",
         123 * 1024},
        {"Name:\tRssAnon: 7 kB\nVmSwap:\t 3 kB\n", 3 * 1024},
        {"Name:\tkthreadd\nThreads:\t1\n", {}},
        {"", {}},
        {"x\nRssAnon:\t -\n", {}}};
    for (const auto& [status, bytes] : cases)
        EXPECT_EQ(footprintFromStatus(status), bytes) << status;
}

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
    using Names = std::vector<std::string>;
    const std::pair<const char*, Names> units[] = {
        {"app-gnome-org.gnome.TextEditor-4021.scope",
         {"gnome-org.gnome.TextEditor", "org.gnome.TextEditor"}},
        {"app-web\\x2dbrowser@7f3a.service", {"web-browser"}},
        {"app-my-tool@autostart.service", {"my-tool", "tool"}},
        {"snap.web-browser.web-browser-0a1b2c3d-0a1b-0a1b-0a1b-0a1b2c3d4e5f.scope",
         {"web-browser_web-browser"}},
        {"app-a\\x-1.scope", {"a\\x"}},
        {"app-.scope", {}},
        {"snap.a.scope", {}},
        {"snap.0a1b2c3d-0a1b-0a1b-0a1b-0a1b2c3d4e5fxx.scope", {}}};
    for (const auto& [unit, names] : units)
        EXPECT_EQ(desktopEntriesOfUnit(std::string("/x/") + unit), names) << unit;
    EXPECT_EQ(desktopEntriesOfUnit(""), Names());
}

TEST(ControlGroup, ServicesOfTheSessionAreNoApplications) {
    const std::string base = "0::/user.slice/user-1000.slice/user@1000.service";
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
