#include "Linux/X11/X11WindowSystem.h"
#include "X11/FaceTest.h"

#include <xcb/xinput.h>

#include <QAbstractEventDispatcher>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <memory>
#include <optional>

namespace velmorquit {
namespace {

class WindowSystemTest : public FaceTest {
protected:
    static void click(const std::string& button) { run({"xdotool", "click", button}); }
    static void moveTo(const std::string& x, const std::string& y, xcb_window_t window) {
        run({"xdotool", "mousemove", "--window", std::to_string(window), x, y});
    }

    /// How much the server has been asked to tell of the pointer.
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

TEST_F(WindowSystemTest, SeesPressesAnywhereWhileItIsObservedAndTakesThemFromNobody) {
    EXPECT_EQ(selections(), 0);
    int presses = 0;
    std::optional<Handle> watch = windows.observePresses([&] { ++presses; });
    EXPECT_EQ(selections(), 1);
    const xcb_window_t window = windowOf(start({"--type", "DIALOG"}));
    moveTo("900", "700", probe.connection.root());
    click("1");
    EXPECT_TRUE(waitUntil([&] { return presses == 1; })) << "on the bare desktop";
    moveTo("20", "20", window);
    click("3");
    EXPECT_TRUE(waitUntil([&] { return presses == 2; })) << "on another window";
    for (const char* wheel : {"4", "5", "6", "7"})
        click(wheel);
    linger(100);
    EXPECT_EQ(presses, 2) << "the wheel is no button";

    const auto grab =
        xcb_grab_pointer(probe.connection.get(), 0, probe.connection.root(), 0, XCB_GRAB_MODE_ASYNC,
                         XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, 0);
    const auto reply = owned(xcb_grab_pointer_reply(probe.connection.get(), grab, nullptr));
    ASSERT_EQ(reply->status, XCB_GRAB_STATUS_SUCCESS) << "somebody else has grabbed the pointer";
    click("1");
    EXPECT_TRUE(waitUntil([&] { return presses == 3; })) << "while a menu is open";

    watch.reset();
    EXPECT_EQ(selections(), 0);
    watch = windows.observePresses([&] { ++presses; });
    click("1");
    EXPECT_TRUE(waitUntil([&] { return presses == 4; }));
}

TEST_F(WindowSystemTest, ActivatesAWindowWhicheverOtherIsInUseAndWherever) {
    OwnWindow own;
    own.show();
    windows.keepOffLists(own.window);
    EXPECT_TRUE(waitUntil([&] {
        const auto states = own.connection.numbers(own.window, "_NET_WM_STATE", 0, 8);
        return std::ranges::count(states, own.connection.atom("_NET_WM_STATE_SKIP_TASKBAR")) == 1;
    }));
    start({"--class", "Other"});
    ASSERT_TRUE(waitUntil([&] { return !own.isActive() && !own.hasFocus(); }));
    windows.activate(own.window);
    EXPECT_TRUE(waitUntil([&] { return own.isActive() && own.hasFocus(); }));

    const auto shown = [&] {
        return probe.connection.number(probe.connection.root(), "_NET_CURRENT_DESKTOP");
    };
    run({"xdotool", "set_desktop", "1"});
    start({"--class", "There"});
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
    windows.activate(own.window);
    EXPECT_TRUE(waitUntil([&] { return own.hasFocus(); }));
    windows.activate(0x7FFFFFF);
    linger(50);
    EXPECT_TRUE(own.hasFocus()) << "a window that has gone is no reason to stop";
}

TEST_F(WindowSystemTest, FollowsACompositorThatComesAndGoes) {
    int changes = 0;
    const Handle watch = windows.observeCompositing([&] { ++changes; });
    EXPECT_FALSE(windows.isCompositing());
    auto compositor = std::make_unique<OwnWindow>();
    compositor->take("_NET_WM_CM_S0");
    EXPECT_TRUE(waitUntil([&] { return changes == 1 && windows.isCompositing(); }));
    EXPECT_TRUE(X11WindowSystem(loop, events).isCompositing()) << "one that was there before";
    compositor.reset();
    EXPECT_TRUE(waitUntil([&] { return changes == 2 && !windows.isCompositing(); }));
}

TEST_F(WindowSystemTest, SurvivesTheEndOfItsConnection) {
    X11Connection& connection = events.connection();
    Handle watch = windows.observePresses([] {});
    const xcb_window_t window = xcb_generate_id(connection.get());
    xcb_create_window(connection.get(), 0, window, connection.root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    static_cast<void>(connection.number(window, "WM_STATE"));
    xcb_kill_client(probe.connection.get(), window);
    xcb_flush(probe.connection.get());
    ASSERT_TRUE(waitUntil([&] { return xcb_connection_has_error(connection.get()); }));

    windows.activate(1);
    watch.reset();
    watch = windows.observePresses([] {});
    EXPECT_FALSE(windows.isCompositing());
    EXPECT_FALSE(X11WindowSystem(loop, events).isCompositing());
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
