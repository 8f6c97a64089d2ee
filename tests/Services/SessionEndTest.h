#pragma once

#include "Services/SessionEnd/EndNotice.h"
#include "Services/SessionEnd/SessionEnd.h"
#include "Simulated/SimulatedDesktop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace velmorquit {

/// The end of the session on a simulated desktop, with what the user reads of it.
class SessionEndTest : public testing::Test {
protected:
    SessionEndTest() { begin(); }

    /// The program begins anew, and so knows nothing of who had windows before.
    void begin() {
        endNotice.reset();
        end.reset();
        end = std::make_unique<SessionEnd>(SessionEnd::Surroundings{
            desktop.loop, desktop.systemLog, desktop.workspace, desktop.windows, desktop.processes,
            desktop.registry, desktop.input, desktop.sleepHold, desktop.endService});
        endNotice = std::make_unique<EndNotice>(desktop.loop, *end, notice);
    }

    void request(LoginRequest request, Attendance attendance = Attendance::attended) {
        EXPECT_EQ(end->request(request, {.attendance = attendance}), std::nullopt);
        EXPECT_THAT(desktop.log(), testing::Not(testing::HasSubstr("CALL")))
            << "called within the request";
    }
    [[nodiscard]] bool isCalled() const {
        return desktop.log().find("CALL") != std::string::npos ||
               desktop.log().find("ASK TO") != std::string::npos;
    }
    [[nodiscard]] EndState::Stage stage() const { return end->state->stage; }

    /// A process that is busy for so long from now on.
    void work(const SimulatedApplication& application, Duration time) {
        const Uptime begin = desktop.loop.uptime();
        desktop.processes.doing[application.processId()] = [this, begin, time] {
            return ProcessWork{.processorTime =
                                   std::min(desktop.loop.uptime() - begin, time) * 3 / 10};
        };
    }

    SimulatedDesktop desktop;
    SimulatedNotice notice{[this](std::string_view what) { desktop.write(what); }};
    std::unique_ptr<SessionEnd> end;
    std::unique_ptr<EndNotice> endNotice;
};

} // namespace velmorquit
