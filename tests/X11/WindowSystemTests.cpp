#include "Linux/X11/X11WindowSystem.h"
#include "X11/FaceTest.h"

#include <xcb/xinput.h>

#include <QAbstractEventDispatcher>
#include <QEventLoop>
#include <QTimer>

#include <cctype>
#include <optional>

namespace velmorquit {
namespace {

class WindowSystemTest : public FaceTest {
protected:
    void click(const std::string& button) { run({"xdotool", "click", button}); }
    static void moveTo(const std::string& x, const std::string& y) {
        run({"xdotool", "mousemove", x, y});
    }

    /// A server that says its number may have warned of something before; " " until a line is
    /// whole.
    static std::string lastLine(Child& child) {
        std::string text = child.output();
        if (!text.ends_with('\n'))
            return " ";
        text.pop_back();
        return text.substr(text.rfind('\n') + 1);
    }

    /// What the server has been asked to tell of the pointer.
    [[nodiscard]] int selections() {
        xcb_connection_t* connection = events.connection().get();
        const auto cookie =
            xcb_input_xi_get_selected_events(connection, events.connection().root());
        const auto reply =
            owned(xcb_input_xi_get_selected_events_reply(connection, cookie, nullptr));
        return reply ? reply->num_masks : -1;
    }

    X11WindowSystem windows{loop, events};
};

TEST_F(WindowSystemTest, LetsThePointerThroughBesideTheArea) {
    X11Connection& connection = events.connection();
    Child& rude = openRude({"--type", "DIALOG"});
    const std::string line = rude.output().substr(rude.output().rfind(' ') + 1);
    const auto window = static_cast<xcb_window_t>(std::stoul(line, nullptr, 0));
    const auto isOver = [&] {
        xcb_window_t below = connection.root();
        while (below != XCB_WINDOW_NONE && below != window) {
            const auto reply = owned(xcb_query_pointer_reply(
                connection.get(), xcb_query_pointer(connection.get(), below), nullptr));
            below = reply ? reply->child : xcb_window_t{XCB_WINDOW_NONE};
        }
        return below == window;
    };
    const std::string id = std::to_string(window);
    run({"xdotool", "mousemove", "--window", id, "40", "40"});
    EXPECT_TRUE(waitUntil(isOver));
    windows.limitInput(window, {0, 0, 20, 20});
    EXPECT_TRUE(waitUntil([&] { return !isOver(); }));
    run({"xdotool", "mousemove", "--window", id, "10", "10"});
    EXPECT_TRUE(waitUntil(isOver));
}

TEST_F(WindowSystemTest, SeesPressesAnywhereAndTakesThemFromNobody) {
    int presses = 0;
    const Handle watch = windows.observePresses([&] { ++presses; });
    Child& rude = openRude({"--type", "DIALOG"});
    const std::string window = rude.output().substr(rude.output().rfind(' ') + 1);
    moveTo("900", "700");
    click("1");
    EXPECT_TRUE(waitUntil([&] { return presses == 1; })) << "on the bare desktop";
    run({"xdotool", "mousemove", "--window", window.substr(0, window.find('\n')), "20", "20"});
    click("3");
    EXPECT_TRUE(waitUntil([&] { return presses == 2; })) << "on another window";
    for (const char* wheel : {"4", "5", "6", "7"})
        click(wheel);
    click("8");
    EXPECT_TRUE(waitUntil([&] { return presses == 3; }));
    linger(100);
    EXPECT_EQ(presses, 3) << "the wheel is no button";

    const auto grab =
        xcb_grab_pointer(probe.connection.get(), 0, probe.connection.root(), 0, XCB_GRAB_MODE_ASYNC,
                         XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, 0);
    const auto reply = owned(xcb_grab_pointer_reply(probe.connection.get(), grab, nullptr));
    ASSERT_EQ(reply->status, XCB_GRAB_STATUS_SUCCESS) << "somebody else has grabbed the pointer";
    click("1");
    EXPECT_TRUE(waitUntil([&] { return presses == 4; })) << "while a menu is open";
}

TEST_F(WindowSystemTest, HearsOfPressesOnlyWhileSomebodyObserves) {
    int first = 0;
    int second = 0;
    EXPECT_EQ(selections(), 0);
    std::optional<Handle> one = windows.observePresses([&] { ++first; });
    // It ends itself when it is told.
    std::optional<Handle> other;
    other = windows.observePresses([&] {
        ++second;
        other.reset();
    });
    click("1");
    EXPECT_TRUE(waitUntil([&] { return first == 1 && second == 1; }));
    EXPECT_EQ(selections(), 1);
    click("1");
    EXPECT_TRUE(waitUntil([&] { return first == 2; }));
    one.reset();
    EXPECT_EQ(selections(), 0);
    click("1");
    linger(100);
    EXPECT_EQ(first, 2);
    EXPECT_EQ(second, 1);
    one = windows.observePresses([&] { ++first; });
    click("1");
    EXPECT_TRUE(waitUntil([&] { return first == 3; }));
}

TEST_F(WindowSystemTest, ActivatesAWindowWhicheverOtherIsInUseAndWherever) {
    OwnWindow own;
    own.show();
    openRude({"--class", "Other"});
    ASSERT_TRUE(waitUntil([&] { return !own.isActive() && !own.hasFocus(); }));
    windows.activate(own.window);
    EXPECT_TRUE(waitUntil([&] { return own.isActive() && own.hasFocus(); }));

    const auto shown = [&] {
        return probe.connection.number(probe.connection.root(), "_NET_CURRENT_DESKTOP");
    };
    run({"xdotool", "set_desktop", "1"});
    openRude({"--class", "There"});
    ASSERT_TRUE(waitUntil([&] { return shown() == 1U && !own.isActive(); }));
    windows.activate(own.window);
    EXPECT_TRUE(waitUntil([&] { return own.isActive() && own.hasFocus(); }));
    EXPECT_EQ(shown(), 1U) << "the window comes to the user";
    EXPECT_EQ(own.connection.number(own.window, "_NET_WM_DESKTOP"), 1U);
}

TEST_F(WindowSystemTest, ActivatesWithoutAWindowManager) {
    killWindowManager();
    OwnWindow own;
    own.show();
    OwnWindow above;
    above.show();
    windows.activate(above.window);
    ASSERT_TRUE(waitUntil([&] { return above.hasFocus(); }));
    windows.activate(own.window);
    EXPECT_TRUE(waitUntil([&] { return own.hasFocus(); }));
    const auto cookie = xcb_query_tree(own.connection.get(), own.connection.root());
    const auto tree = owned(xcb_query_tree_reply(own.connection.get(), cookie, nullptr));
    const xcb_window_t* children = xcb_query_tree_children(tree.get());
    EXPECT_EQ(children[xcb_query_tree_children_length(tree.get()) - 1], own.window);

    windows.activate(0x7FFFFFF);
    linger(50);
    EXPECT_TRUE(own.hasFocus()) << "a window that has gone is no reason to stop";
}

TEST_F(WindowSystemTest, FollowsACompositorThatComesAndGoes) {
    int changes = 0;
    const Handle watch = windows.observeCompositing([&] { ++changes; });
    EXPECT_FALSE(windows.isCompositing());
    Child compositor({"picom", "--backend", "xrender", "--config", "/dev/null"});
    EXPECT_TRUE(waitUntil([&] { return windows.isCompositing(); })) << compositor.output();
    EXPECT_TRUE(waitUntil([&] { return changes == 1; }));
    EXPECT_TRUE(X11WindowSystem(loop, events).isCompositing()) << "one that was there before";
    compositor.send(SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return changes == 2; }));
    EXPECT_FALSE(windows.isCompositing());

    OwnWindow first;
    first.take("_NET_WM_CM_S0");
    EXPECT_TRUE(waitUntil([&] { return changes == 3; }));
    OwnWindow second;
    second.take("_NET_WM_CM_S0");
    linger(50);
    EXPECT_TRUE(windows.isCompositing());
    EXPECT_EQ(changes, 3) << "nothing changes when one takes over from another";
}

TEST_F(WindowSystemTest, SurvivesAServerThatGoesAway) {
    Child server({"Xvfb", "-displayfd", "1", "-nolisten", "tcp"});
    ASSERT_TRUE(waitUntil([&] { return std::isdigit(lastLine(server).front()); }));
    const std::string former = std::getenv("DISPLAY");
    ::setenv("DISPLAY", (":" + lastLine(server)).c_str(), 1);
    auto connection = X11Connection::open();
    ::setenv("DISPLAY", former.c_str(), 1);
    ASSERT_TRUE(connection);
    X11Events others(std::move(*connection));
    X11WindowSystem theirs(loop, others);
    Handle watch = theirs.observePresses([] {});
    // Killed it would leave its socket behind.
    server.send(SIGTERM);
    ASSERT_TRUE(waitUntil([&] { return xcb_connection_has_error(others.connection().get()); }));

    theirs.activate(1);
    watch.reset();
    watch = theirs.observePresses([] {});
    EXPECT_FALSE(theirs.isCompositing());
    EXPECT_FALSE(X11WindowSystem(loop, others).isCompositing());
    int turns = 0;
    QEventLoop turning;
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake,
                     &turning, [&] { ++turns; });
    QTimer::singleShot(100, &turning, &QEventLoop::quit);
    turning.exec();
    EXPECT_LT(turns, 20) << "what has gone doesn't keep the loop awake";
}

} // namespace
} // namespace velmorquit
