#pragma once

#include "Linux/Loop/QtMainLoop.h"
#include "support/Outcome.h"

#include <gtest/gtest.h>

#include <list>
#include <string>
#include <vector>

#include <xcb/xcb.h>

namespace velmorquit {

/// Plays the other programs of a desktop that has a real X server.
class ClientsTest : public testing::Test {
protected:
    static void run(const Words& command) {
        EXPECT_THAT(velmorquit::run(command), ends(0, testing::_)) << command.front();
    }

    /// Starts a rude client and waits until its windows are on the screen.
    Child& start(Words arguments = {}) {
        arguments.insert(arguments.begin(), RUDE_CLIENT);
        Child& child = children.emplace_back(arguments);
        EXPECT_TRUE(waitUntil([&] { return child.output().find('\n') != std::string::npos; }));
        return child;
    }
    /// The last of the windows that it has begun with.
    static xcb_window_t windowOf(Child& child) {
        const std::string line = child.output().substr(0, child.output().find('\n'));
        return static_cast<xcb_window_t>(std::stoul(line.substr(line.rfind(' '))));
    }

    QtMainLoop loop;
    std::list<Child> children;
};

} // namespace velmorquit
