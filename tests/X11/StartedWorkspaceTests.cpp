#include "X11/WorkspaceTest.h"

namespace velmorquit {
namespace {

/// The processes are real, and what they were started from is made up.
class StartedWorkspaceTest : public WorkspaceTest {
protected:
    StartedWorkspaceTest() {
        for (const char* id : {"mailer", "org.example.term", "firebox_firebox"})
            installEntry(id, std::string("Name=") + id + "\n");
        write(proc / "stat", "cpu 0\nbtime 1000\n");
    }

    ProcessId begin(const std::string& unit, Words arguments, int startTime = 500) {
        const pid_t id = start(std::move(arguments)).id();
        const auto folder = proc / std::to_string(id);
        write(folder / "cgroup", "0::/user.slice/user@1000.service/" + unit + "\n");
        write(folder / "stat", std::to_string(id) +
                                   " (x) S 1 1 1 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 " +
                                   std::to_string(startTime) + " 0\n");
        return id;
    }

    std::filesystem::path proc = std::filesystem::path(std::getenv("XDG_RUNTIME_DIR")) / "proc";
};

TEST_F(StartedWorkspaceTest, AUnitNamesTheProgramItWasMadeForAndNotThoseStartedFromThere) {
    const std::string unit = "app-maker-org.example.term-12.scope";
    const ProcessId terminal = begin(unit, {"--class", "Odd"});
    const ProcessId guest = begin(unit, {"--class", "Mailer"}, 600);
    const ProcessId snap = begin("snap.firebox.firebox-0a1b2c3d-0a1b-0a1b-0a1b-0a1b2c3d4e5f.scope",
                                 {"--class", "Mailer"});
    linger(200);
    LinuxWorkspace other(loop, log, toplevels, {.proc = proc});
    EXPECT_EQ(find(terminal, other)->bundleIdentifier(), "org.example.term");
    EXPECT_EQ(find(guest, other)->bundleIdentifier(), "mailer");
    EXPECT_EQ(find(snap, other)->bundleIdentifier(), "firebox_firebox");
    EXPECT_EQ(find(snap, other)->otherIdentities(), Words{"mailer"});
    EXPECT_EQ(find(guest, other)->launchDate(), WallTime(1006s));
}

TEST_F(StartedWorkspaceTest, AServiceHasEndedWithItsLastWindowAndAnyOtherIsAskedOnceMore) {
    const std::string unit = "dbus-:1.2-org.example@0.service";
    const ProcessId service = begin(unit, {"--stay"});
    const ProcessId opened = begin(unit, {"--stay", "--class", "Opened"}, 600);
    const ProcessId player = begin("app-player-1.scope", {"--stay", "--class", "Player"});
    linger(200);
    std::vector<ProcessId> asked;
    LinuxWorkspace other(
        loop, log, toplevels,
        {.withoutWindows = {.ask = [&](ProcessId id) { asked.push_back(id); }}, .proc = proc});
    int ends = 0;
    const Handle watch = other.observe([&](const WorkspaceChanges& changes) {
        ends += static_cast<int>(changes.count({WorkspaceEvent::terminated, service}));
    });
    const App serving = find(service, other);
    const App playing = find(player, other);
    const App begun = find(opened, other);
    for (const App& app : {serving, playing, begun})
        EXPECT_TRUE(app->terminate(AskedBy::run));
    EXPECT_TRUE(waitUntil([&] { return serving->isTerminated() && ends == 1; }));
    EXPECT_TRUE(
        waitUntil([&] { return playing->activationPolicy() == ActivationPolicy::accessory; }));
    EXPECT_EQ(find(service, other), nullptr);
    EXPECT_FALSE(playing->isTerminated());
    EXPECT_FALSE(begun->isTerminated()) << "what a service has started is none";
    EXPECT_TRUE(asked.empty());
    EXPECT_TRUE(playing->terminate(AskedBy::run));
    EXPECT_FALSE(serving->terminate(AskedBy::run));
    EXPECT_EQ(asked, std::vector<ProcessId>{player});
}

} // namespace
} // namespace velmorquit
