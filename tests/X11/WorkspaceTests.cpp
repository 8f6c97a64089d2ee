#include "X11/OwnWindow.h"
#include "X11/WorkspaceTest.h"

#include <QThread>

#include <numeric>

namespace velmorquit {
namespace {

TEST_F(WorkspaceTest, TellsOfLaunchesEndsAndWindows) {
    const auto app = open({"--stay", "--windows", "3"});
    EXPECT_TRUE(comes(WorkspaceEvent::launched));
    EXPECT_EQ(workspace.runningApplications().size(), 1U);
    EXPECT_EQ(app->activationPolicy(), ActivationPolicy::regular);
    EXPECT_EQ(app->localizedName(), "Rude");
    EXPECT_FALSE(app->bundleIdentifier());
    EXPECT_TRUE(waitUntil([&] { return workspace.frontmostApplication() == app; }));
    EXPECT_TRUE(app->terminate(AskedBy::run));
    EXPECT_TRUE(comes(WorkspaceEvent::policyChanged));
    EXPECT_EQ(timesAsked(children.front()), 3U) << "each window once";
    EXPECT_EQ(app->activationPolicy(), ActivationPolicy::accessory);
    EXPECT_FALSE(app->isTerminated());
    EXPECT_FALSE(app->terminate(AskedBy::run)) << "nothing is left that could be asked";
    EXPECT_EQ(count(WorkspaceEvent::terminated), 0U);
    children.front().send(SIGKILL);
    EXPECT_TRUE(comes(WorkspaceEvent::terminated));
    EXPECT_TRUE(workspace.runningApplications().empty());
    EXPECT_TRUE(app->isTerminated());
    const WorkspaceChange gone{WorkspaceEvent::activated, 0};
    EXPECT_TRUE(waitUntil([&] { return !events.empty() && events.back() == gone; }));
    for (const WorkspaceChange& change : events)
        EXPECT_TRUE(change == gone || change.process == app->processId());
}

TEST_F(WorkspaceTest, WhoIsInFrontStaysSoWhileAWindowOfThisProgramIsActive) {
    const auto first = open({"--class", "First"});
    const auto second = open({"--class", "Second"});
    const auto bringToFront = [&](const App& app) {
        EXPECT_TRUE(app->activate());
        EXPECT_TRUE(waitUntil([&] { return workspace.frontmostApplication() == app; }));
        EXPECT_GE(count(WorkspaceEvent::activated), 1U);
        events.clear();
    };
    bringToFront(second);
    bringToFront(first);
    OwnWindow own;
    own.show();
    ASSERT_TRUE(waitUntil([&] { return toplevels.activeWindow() == own.window; }));
    linger(100);
    EXPECT_EQ(workspace.frontmostApplication(), first);
    EXPECT_EQ(count(WorkspaceEvent::activated), 0U);
    bringToFront(second);
}

TEST_F(WorkspaceTest, MissesNobodyWhoCameThisVeryMoment) {
    // No event loop runs here: what the server knows has to count when somebody asks.
    Child child({RUDE_CLIENT});
    for (int tries = 0; tries < 2000 && !find(child.id()); ++tries)
        QThread::msleep(5);
    EXPECT_NE(find(child.id()), nullptr);
    EXPECT_TRUE(events.empty());
    EXPECT_TRUE(comes(WorkspaceEvent::launched));
}

// A computer is shut down when all seems to be closed.
TEST_F(WorkspaceTest, KnowsThatItDoesNotSeeAllOfAListThatIsTooLong) {
    ASSERT_EQ(workspace.sight(), Sight::all);
    X11Connection connection = *X11Connection::open();
    std::vector<xcb_window_t> list(X11Toplevels::mostWindows + 1);
    std::iota(list.begin(), list.end(), 0x1F000000);
    for (const auto& [count, sight] :
         {std::pair(list.size(), Sight::incomplete), {3, Sight::all}}) {
        xcb_change_property(connection.get(), XCB_PROP_MODE_REPLACE, connection.root(),
                            connection.atom("_NET_CLIENT_LIST"), XCB_ATOM_WINDOW, 32,
                            static_cast<std::uint32_t>(count), list.data());
        static_cast<void>(connection.number(connection.root(), "_NET_CLIENT_LIST"));
        EXPECT_TRUE(waitUntil([&] { return workspace.sight() == sight; }));
    }
}

// Asked to go, a window manager empties the list of windows; killed, it leaves it behind.
TEST_F(WorkspaceTest, NobodySeemsToEndWhenTheWindowManagerDoes) {
    const auto app = open({"--class", "Steady"});
    for (const std::string signal : {"-TERM", "-KILL"}) {
        run({"pkill", signal, "-x", "openbox"});
        linger(500);
        ASSERT_NE(find(app->processId()), nullptr);
        EXPECT_EQ(app->activationPolicy(), ActivationPolicy::regular);
        const Child& manager = children.emplace_back(Words{"openbox", "--sm-disable"});
        EXPECT_GT(manager.id(), 0);
        open({"--class", "Late"});
        linger(500);
        EXPECT_EQ(app->activationPolicy(), ActivationPolicy::regular);
    }
    EXPECT_EQ(count(WorkspaceEvent::launched), 3U);
    EXPECT_EQ(count(WorkspaceEvent::terminated) + count(WorkspaceEvent::policyChanged), 0U);
    run({"pkill", "-x", "openbox"});
    EXPECT_TRUE(app->terminate(AskedBy::run)) << "nobody is needed to ask";
    EXPECT_TRUE(waitUntil([&] { return app->isTerminated(); }));
}

TEST_F(WorkspaceTest, NobodySeemsToLoseTheirWindowsWhenAnotherWindowManagerTakesOver) {
    constexpr std::size_t clients = 60;
    while (children.size() < clients)
        children.emplace_back(Words{RUDE_CLIENT});
    ASSERT_TRUE(waitUntil([&] { return workspace.runningApplications().size() == clients; }));
    linger(100);
    events.clear();
    const Child manager({"openbox", "--replace", "--sm-disable"});
    for (int look = 0; look < 300; ++look) {
        linger(5);
        ASSERT_EQ(toplevels.toplevels().size(), clients);
    }
    EXPECT_EQ(events.size(), count(WorkspaceEvent::activated));
}

TEST_F(WorkspaceTest, AnApplicationMayOutliveTheWorkspace) {
    const Child& child = start();
    App app;
    {
        LinuxWorkspace other(loop, log, toplevels, {});
        EXPECT_TRUE(waitUntil([&] { return (app = find(child.id(), other)) != nullptr; }));
    }
    EXPECT_FALSE(app->terminate(AskedBy::run));
    EXPECT_FALSE(app->activate());
    EXPECT_TRUE(app->forceTerminate());
    EXPECT_TRUE(waitUntil([&] { return app->isTerminated(); }));
    linger(100);
}

} // namespace
} // namespace velmorquit
