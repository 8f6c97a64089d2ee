#pragma once

#include "Simulated/SimulatedDesktop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace velmorquit {

/// What happens on a simulated desktop, told by its log.
class Story : public testing::Test {
protected:
    /// Lets time pass, and says what has happened since it was last called.
    std::string after(Duration time) {
        desktop.advance(time);
        std::string log = desktop.log();
        desktop.startLog();
        return log;
    }
    /// Does something when so much time has passed.
    void in(Duration time, std::function<void()> work) {
        timers_.push_back(desktop.loop.after(time, std::move(work)));
    }

    SimulatedDesktop desktop;

private:
    std::vector<Handle> timers_;
};

} // namespace velmorquit
