#include "X11/OwnWindow.h"
#include "X11/WorkspaceTest.h"

#include <QThread>

#include <map>
#include <numeric>

namespace velmorquit {
namespace {

TEST_F(WorkspaceTest, TellsOfLaunchesEndsAndWindows) {
    const auto app = open({"--stay"});
    EXPECT_TRUE(waitUntil([&] { return count(WorkspaceEvent::launched) == 1; }));
    EXPECT_EQ(app->activationPolicy(), ActivationPolicy::regular);
    EXPECT_EQ(app->localizedName(), "Rude");
    EXPECT_FALSE(app->bundleIdentifier());
    EXPECT_TRUE(waitUntil([&] { return workspace.frontmostApplication() == app; }));
    EXPECT_TRUE(app->terminate(AskedBy::run));
    EXPECT_TRUE(waitUntil([&] { return count(WorkspaceEvent::policyChanged) == 1; }));
    EXPECT_EQ(app->activationPolicy(), ActivationPolicy::accessory);
    EXPECT_FALSE(app->isTerminated());
    EXPECT_FALSE(app->terminate(AskedBy::run)) << "nothing is left that could be asked";
    EXPECT_EQ(count(WorkspaceEvent::terminated), 0U);
    children.front()->send(SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return count(WorkspaceEvent::terminated) == 1; }));
    EXPECT_TRUE(workspace.runningApplications().empty());
    EXPECT_TRUE(app->isTerminated());
    const WorkspaceChange gone{WorkspaceEvent::activated, 0};
    EXPECT_TRUE(waitUntil([&] { return !events.empty() && events.back() == gone; }));
    for (const WorkspaceChange& change : events)
        EXPECT_TRUE(change == gone || change.process == app->processId());
}

TEST_F(WorkspaceTest, KnowsOneApplicationAProcessAndAsksEachOfItsWindowsOnce) {
    const auto app = open({"--windows", "3"});
    EXPECT_EQ(workspace.runningApplications().size(), 1U);
    EXPECT_TRUE(app->terminate(AskedBy::run));
    EXPECT_TRUE(waitUntil([&] { return app->isTerminated(); }));
    EXPECT_EQ(timesAsked(*children.front()), 3U);
}

TEST_F(WorkspaceTest, AsksNeitherADialogNorAWindowThatDoesNotUnderstand) {
    const auto busy = open({"--ignore", "--windows", "2", "--modal"});
    EXPECT_FALSE(busy->terminate(AskedBy::run)) << "its dialog keeps it from closing";
    const auto deaf = open({"--class", "Deaf", "--no-protocol"});
    EXPECT_FALSE(deaf->terminate(AskedBy::run));
    linger(200);
    EXPECT_EQ(timesAsked(*children.front()), 0U);
    EXPECT_FALSE(deaf->isTerminated()) << "the window manager was not made to kill it";
}

TEST_F(WorkspaceTest, LeavesOutPanelsAndTheProgramsOfOtherHosts) {
    start({"--class", "Elsewhere", "--machine", "some-other-host"});
    start({"--class", "Panel", "--type", "DOCK"});
    start({"--class", "Splash", "--type", "SPLASH", "--type", "NORMAL"});
    const auto dialog = open({"--class", "Question", "--type", "DIALOG"});
    EXPECT_TRUE(dialog->terminate(AskedBy::run))
        << "a dialog of nobody else is a program's own window";
    linger(200);
    for (const auto& application : workspace.runningApplications())
        EXPECT_EQ(application->localizedName(), "Question");
}

TEST_F(WorkspaceTest, KnowsProgramsByTheirDesktopEntries) {
    installEntry("org.example.Plain", "Name=Plain Program\nName[it]=Programma semplice\n");
    installEntry("byclass", "Name=By Class\nStartupWMClass=SomethingElse\n");
    installEntry("byinstance", "Name=By Instance\n");
    installEntry("broken", "Name");
    EXPECT_EQ(open({"--class", "SomethingElse"})->bundleIdentifier(), "byclass");
    const auto instance = open({"--class", "ByInstance"});
    EXPECT_EQ(instance->bundleIdentifier(), "byinstance");
    EXPECT_EQ(instance->localizedName(), "By Instance");
    EXPECT_TRUE(instance->bundlePath()->ends_with("/applications/byinstance.desktop"));
    EXPECT_EQ(open({"--class", "org.example.Plain"})->bundleIdentifier(), "org.example.Plain");
    EXPECT_FALSE(open({"--class", "Broken"})->bundleIdentifier());
    EXPECT_FALSE(open({"--class", "../../evil"})->bundleIdentifier());

    installEntry("late", "Name=Installed Later\nStartupWMClass=LateComer\n");
    EXPECT_EQ(open({"--class", "LateComer"})->localizedName(), "Installed Later");
}

TEST_F(WorkspaceTest, ReadsWhoLaunchedAProcessOnlyFromItsOwnVariables) {
    installEntry("launched", "Name=Launched\n");
    const std::string file =
        std::string(std::getenv("XDG_DATA_HOME")) + "/applications/launched.desktop";
    const auto launch = [&](const std::string& className, const std::string& id) {
        children.push_back(std::make_unique<Child>(std::vector<std::string>{
            "sh", "-c",
            "GIO_LAUNCHED_DESKTOP_FILE=" + file + " GIO_LAUNCHED_DESKTOP_FILE_PID=" + id +
                " exec " + RUDE_CLIENT + " --class " + className}));
        const pid_t process = children.back()->id();
        EXPECT_TRUE(waitUntil([&] { return find(process) != nullptr; }));
        return find(process)->bundleIdentifier();
    };
    EXPECT_EQ(launch("Own", "$$"), "launched");
    EXPECT_EQ(launch("Inherited", "1"), std::nullopt);
}

TEST_F(WorkspaceTest, LeavesOutWhatMakesUpTheDesktopAndWhatIsNotForTheUser) {
    installEntry("agent", "Name=Agent\nNoDisplay=true\n");
    installEntry("helper", "Name=Helper\nNoDisplay=true\nStartupWMClass=Painter\n");
    installEntry("paint", "Name=Paint\nStartupWMClass=Painter\n");
    EXPECT_EQ(open({"--class", "Agent"})->activationPolicy(), ActivationPolicy::accessory);
    const auto panel = open({"--class", "Panel", "--windows", "2", "--dock"});
    EXPECT_EQ(panel->activationPolicy(), ActivationPolicy::accessory)
        << "its settings are open, which doesn't make it an application";
    installEntry("opener", "Name=Opener\nNoDisplay=true\nExec=true %f\n");
    EXPECT_EQ(open({"--class", "Opener"})->activationPolicy(), ActivationPolicy::regular)
        << "what opens files is no helper";
    const auto paint = open({"--class", "Painter"});
    EXPECT_EQ(paint->bundleIdentifier(), "paint");
    EXPECT_EQ(paint->activationPolicy(), ActivationPolicy::regular);
    const auto both = open({"--class", "Agent", "--next-class", "Paint"});
    EXPECT_TRUE(waitUntil([&] { return both->otherIdentities().size() == 1; }));
    EXPECT_TRUE(waitUntil([&] { return both->activationPolicy() == ActivationPolicy::regular; }));
}

TEST_F(WorkspaceTest, SaysWhyAnApplicationStays) {
    const std::map<std::string, StayReason> manners{
        {"--asks", StayReason::asking},          {"--asks-plainly", StayReason::asking},
        {"--stay", StayReason::windowless},      {"--no-protocol", StayReason::cannotBeAsked},
        {"--frozen", StayReason::notResponding}, {"--ignore", StayReason::unknown}};
    std::vector<std::shared_ptr<RunningApplication>> apps;
    std::vector<StayReason> expected;
    for (const auto& [manner, reason] : manners) {
        apps.push_back(open({"--class", "C" + manner.substr(2), manner, "--pongs-as-qt"}));
        expected.push_back(reason);
    }
    for (const auto& app : apps)
        app->terminate(AskedBy::run);
    const auto reasons = [&] {
        std::vector<StayReason> found;
        for (const auto& app : apps)
            found.push_back(app->stayReason());
        return found;
    };
    EXPECT_TRUE(waitUntil([&] { return reasons() == expected; }))
        << testing::PrintToString(reasons());
    linger(3000);
    EXPECT_EQ(reasons(), expected) << "whoever answers is not deaf a while later";
}

// Being asked twice, some dismiss their question, and others lose what they have asked about.
TEST_F(WorkspaceTest, ARunAsksAgainOnlyWhatWasUsedSinceAndShowsNoQuestion) {
    const auto old = open({"--class", "Old", "--ignore"});
    Child& oldChild = *children.back();
    const auto silent = open({"--ignore", "--ping"});
    Child& silentChild = *children.back();
    const auto asking = open({"--class", "Asking", "--asks-plainly"});
    Child& askingChild = *children.back();
    const auto modal = open({"--class", "Modal", "--modal"});
    for (const auto& app : {silent, asking})
        EXPECT_TRUE(app->terminate(AskedBy::run));
    EXPECT_EQ(modal->obstacle(), StayReason::asking);
    EXPECT_FALSE(modal->terminate(AskedBy::run));
    EXPECT_TRUE(waitUntil([&] { return timesAsked(silentChild) + timesAsked(askingChild) == 2; }));
    linger(300);
    for (const auto& app : {silent, asking})
        EXPECT_TRUE(app->terminate(AskedBy::run)) << "it was asked";
    EXPECT_FALSE(asking->terminate(AskedBy::user)) << "that would answer its question";
    linger(300);
    EXPECT_EQ(timesAsked(silentChild), 1U);
    EXPECT_EQ(timesAsked(askingChild), 1U);
    EXPECT_TRUE(silent->terminate(AskedBy::user));
    EXPECT_TRUE(waitUntil([&] { return timesAsked(silentChild) == 2; }));
    EXPECT_TRUE(old->terminate(AskedBy::run));
    linger(1100);
    old->activate();
    EXPECT_TRUE(waitUntil([&] { return old->lastUsed() && timesAsked(oldChild) == 1; }));
    linger(1100);
    EXPECT_TRUE(old->terminate(AskedBy::run));
    silent->activate();
    EXPECT_TRUE(waitUntil([&] {
        const auto used = silent->lastUsed();
        return used && loop.uptime() - *used < 100ms;
    }));
    silent->terminate(AskedBy::run);
    EXPECT_TRUE(waitUntil([&] { return timesAsked(silentChild) == 3; }));
    EXPECT_EQ(timesAsked(oldChild), 1U) << "nobody can know what that would mean to it";
}

TEST_F(WorkspaceTest, HasIconsByNameByFileAndFromTheWindowAndKnowsWhenItBegan) {
    installEntry("themed", "Name=Themed\nIcon=accessories-text-editor\n");
    installEntry("pictured", "Name=Pictured\nIcon=/usr/share/some picture.png\n");
    EXPECT_EQ(open({"--class", "Themed"})->icon()->name, "accessories-text-editor");
    EXPECT_EQ(open({"--class", "Pictured"})->icon()->file, "/usr/share/some picture.png");
    const auto plain = open({"--class", "Plain", "--icon"});
    const Image& image = plain->icon()->image;
    EXPECT_EQ(image.width, 64);
    EXPECT_EQ(image.height, 64);
    EXPECT_EQ(image.pixels, std::vector<std::uint32_t>(64 * 64, 0xFF000040));
    ASSERT_TRUE(plain->launchDate());
    EXPECT_LT(std::chrono::abs(loop.now() - *plain->launchDate()), 60s);
}

TEST_F(WorkspaceTest, KeepsTheFirstIdentityOfAProcessAndRemembersTheOthers) {
    installEntry("writer", "Name=Writer\n");
    installEntry("calc", "Name=Calc\n");
    const auto app =
        open({"--class", "Writer", "--next-class", "Calc", "--next-class", "Nameless"});
    EXPECT_TRUE(waitUntil([&] { return app->otherIdentities().size() == 2; }));
    EXPECT_EQ(app->bundleIdentifier(), "writer");
    EXPECT_EQ(app->otherIdentities(), (std::vector<std::string>{"Nameless", "calc"}));
}

TEST_F(WorkspaceTest, BringsAnApplicationToTheFront) {
    const auto first = open({"--class", "First"});
    const auto second = open({"--class", "Second"});
    ASSERT_TRUE(waitUntil([&] { return workspace.frontmostApplication() != nullptr; }));
    EXPECT_TRUE(first->activate());
    EXPECT_TRUE(waitUntil([&] { return workspace.frontmostApplication() == first; }));
    EXPECT_TRUE(second->activate());
    EXPECT_TRUE(waitUntil([&] { return workspace.frontmostApplication() == second; }));
    EXPECT_GE(count(WorkspaceEvent::activated), 2U);
}

TEST_F(WorkspaceTest, WhoWasInFrontStaysSoWhileAWindowOfThisProgramIsActive) {
    const auto first = open({"--class", "First"});
    const auto second = open({"--class", "Second"});
    EXPECT_TRUE(first->activate());
    ASSERT_TRUE(waitUntil([&] { return workspace.frontmostApplication() == first; }));
    events.clear();
    OwnWindow own;
    own.show();
    ASSERT_TRUE(waitUntil([&] { return toplevels.activeWindow() == own.window; }));
    linger(100);
    EXPECT_EQ(workspace.frontmostApplication(), first);
    EXPECT_EQ(count(WorkspaceEvent::activated), 0U);
    EXPECT_TRUE(second->activate());
    EXPECT_TRUE(waitUntil([&] { return workspace.frontmostApplication() == second; }));
}

TEST_F(WorkspaceTest, MissesNobodyWhoCameThisVeryMoment) {
    // No event loop runs here: what the server knows has to count when somebody asks.
    Child child({RUDE_CLIENT});
    for (int tries = 0; tries < 2000 && !find(child.id()); ++tries)
        QThread::msleep(5);
    EXPECT_NE(find(child.id()), nullptr);
    EXPECT_TRUE(events.empty());
    EXPECT_TRUE(waitUntil([&] { return count(WorkspaceEvent::launched) == 1; }));
}

// Whoever thinks that all is closed shuts the computer down.
TEST_F(WorkspaceTest, KnowsThatItDoesNotSeeAllOfAListThatIsTooLong) {
    ASSERT_EQ(workspace.sight(), Sight::all);
    X11Connection connection = *X11Connection::open();
    std::vector<xcb_window_t> list(X11Toplevels::mostWindows + 1);
    std::iota(list.begin(), list.end(), 0x1F000000);
    const auto setList = [&](std::size_t count) {
        xcb_change_property(connection.get(), XCB_PROP_MODE_REPLACE, connection.root(),
                            connection.atom("_NET_CLIENT_LIST"), XCB_ATOM_WINDOW, 32,
                            static_cast<std::uint32_t>(count), list.data());
        static_cast<void>(connection.number(connection.root(), "_NET_CLIENT_LIST"));
    };
    setList(list.size());
    EXPECT_TRUE(waitUntil([this] { return workspace.sight() == Sight::incomplete; }));
    setList(3);
    EXPECT_TRUE(waitUntil([this] { return workspace.sight() == Sight::all; }));
}

TEST_F(WorkspaceTest, NobodySeemsToEndWhenTheWindowManagerDoes) {
    const auto app = open({"--class", "Steady"});
    Child stop({"pkill", "-x", "openbox"});
    ASSERT_TRUE(waitUntil([&] { return !stop.isRunning(); }));
    linger(500);
    ASSERT_NE(find(app->processId()), nullptr);
    EXPECT_EQ(app->activationPolicy(), ActivationPolicy::regular);
    EXPECT_EQ(count(WorkspaceEvent::terminated), 0U);

    const Child manager({"openbox", "--sm-disable"});
    const auto late = open({"--class", "Late"});
    EXPECT_TRUE(waitUntil([&] { return app->activationPolicy() == ActivationPolicy::regular; }));
    EXPECT_TRUE(app->terminate(AskedBy::run));
    EXPECT_TRUE(waitUntil([&] { return app->isTerminated(); }));
    EXPECT_FALSE(late->isTerminated());
    EXPECT_EQ(count(WorkspaceEvent::launched), 2U);
}

TEST_F(WorkspaceTest, AnApplicationMayOutliveTheWorkspace) {
    std::shared_ptr<RunningApplication> app;
    {
        LinuxWorkspace other(loop, log, toplevels, {});
        const pid_t id = start({}).id();
        EXPECT_TRUE(waitUntil([&] {
            for (const auto& running : other.runningApplications())
                app = running->processId() == id ? running : app;
            return app != nullptr;
        }));
    }
    EXPECT_FALSE(app->terminate(AskedBy::run));
    EXPECT_FALSE(app->activate());
    EXPECT_TRUE(app->forceTerminate());
    EXPECT_TRUE(waitUntil([&] { return app->isTerminated(); }));
    linger(100);
}

TEST_F(WorkspaceTest, NobodySeemsToLoseTheirWindowsWhenAnotherWindowManagerTakesOver) {
    for (int number = 0; number < 60; ++number)
        children.push_back(std::make_unique<Child>(std::vector<std::string>{RUDE_CLIENT}));
    ASSERT_TRUE(waitUntil([&] { return workspace.runningApplications().size() == 60; }));
    linger(100);
    events.clear();
    Child manager({"openbox", "--replace", "--sm-disable"});
    for (int look = 0; look < 300; ++look) {
        linger(5);
        ASSERT_EQ(toplevels.toplevels().size(), 60U);
    }
    EXPECT_EQ(count(WorkspaceEvent::policyChanged) + count(WorkspaceEvent::terminated) +
                  count(WorkspaceEvent::launched),
              0U);
}

TEST_F(WorkspaceTest, LooksAgainAtWindowsThatHaveChangedBeforeItAsks) {
    installEntry("writer", "Name=Writer\n");
    const auto app = open({"--class", "Begin", "--ignore"});
    Child& child = *children.back();
    const std::string window =
        child.output().substr(child.output().rfind(' ') + 1, std::string::npos);
    Child rename({"xprop", "-id", window.substr(0, window.find('\n')), "-f", "WM_CLASS", "8s",
                  "-set", "WM_CLASS", "writer"});
    ASSERT_TRUE(waitUntil([&] { return !rename.isRunning(); }));
    linger(150);
    ASSERT_EQ(workspace.runningApplications().size(), 1U);
    EXPECT_EQ(app->bundleIdentifier(), "writer");
    EXPECT_EQ(app->otherIdentities(), std::vector<std::string>{"Begin"});

    Child modal({"xprop", "-id", window.substr(0, window.find('\n')), "-f", "_NET_WM_STATE", "32a",
                 "-set", "_NET_WM_STATE", "_NET_WM_STATE_MODAL"});
    ASSERT_TRUE(waitUntil([&] { return !modal.isRunning(); }));
    linger(150);
    EXPECT_FALSE(app->terminate(AskedBy::run));
    linger(100);
    EXPECT_EQ(timesAsked(child), 0U);
}

} // namespace
} // namespace velmorquit
