#pragma once

#include "Linux/X11/X11Events.h"
#include "Linux/X11/X11Windows.h"
#include "X11/ClientsTest.h"
#include "X11/OwnWindow.h"

#include <csignal>
#include <cstdlib>
#include <memory>

namespace velmorquit {

/// Sees a desktop's X server as the program does.
class FaceTest : public ClientsTest {
protected:
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

    X11Events events{*X11Connection::open()};
    OwnWindow probe;
};

} // namespace velmorquit
