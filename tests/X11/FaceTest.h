#pragma once

#include "Linux/Loop/QtMainLoop.h"
#include "Linux/X11/X11Events.h"
#include "Linux/X11/X11Windows.h"
#include "X11/OwnWindow.h"
#include "support/Child.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <string>
#include <vector>

namespace velmorquit {

/// Sees a desktop's X server as the program does, and plays the other programs.
class FaceTest : public testing::Test {
protected:
    static void run(const std::vector<std::string>& command) {
        Child child(command);
        EXPECT_TRUE(waitUntil([&] { return !child.isRunning(); }));
        EXPECT_EQ(child.status(), 0) << command.front() << ": " << child.output();
    }

    Child& openRude(std::vector<std::string> arguments = {}) {
        arguments.insert(arguments.begin(), RUDE_CLIENT);
        children.push_back(std::make_unique<Child>(arguments));
        Child& child = *children.back();
        EXPECT_TRUE(waitUntil([&] { return child.output().starts_with("ready"); }));
        return child;
    }

    /// Kills the process that owns a window. Only in a virtual desktop, whose display it is on.
    void killOwnerOf(xcb_window_t window) {
        const ProcessId process = X11Windows(probe.connection).process(window);
        ASSERT_GT(process, 1);
        ASSERT_NE(std::getenv("VELMOR_VIRTUAL_DESKTOP"), nullptr);
        ::kill(process, SIGKILL);
    }
    void killWindowManager() {
        const auto check = [this](xcb_window_t window) {
            return probe.connection.number(window, "_NET_SUPPORTING_WM_CHECK").value_or(0);
        };
        const xcb_window_t window = check(probe.connection.root());
        killOwnerOf(window);
        EXPECT_TRUE(waitUntil([&] { return check(window) == 0; }));
    }
    [[nodiscard]] xcb_window_t ownerOf(const std::string& selection) {
        const auto cookie =
            xcb_get_selection_owner(probe.connection.get(), probe.connection.atom(selection));
        const auto reply =
            owned(xcb_get_selection_owner_reply(probe.connection.get(), cookie, nullptr));
        return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
    }

    QtMainLoop loop;
    X11Events events{*X11Connection::open()};
    OwnWindow probe;
    std::vector<std::unique_ptr<Child>> children;
};

} // namespace velmorquit
