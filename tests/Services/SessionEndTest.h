#pragma once

#include "Services/SessionEnd/EndNotice.h"
#include "Services/SessionEnd/SessionEnd.h"
#include "Services/Story.h"

#include <algorithm>
#include <memory>

namespace velmorquit {

/// The end of the session on a simulated desktop: what the user reads of it, and that it was
/// refused, is in the desktop's log.
class SessionEndTest : public Story {
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
        watching_ = end->state.subscribe([this] {
            const bool isRefused = end->state->stage == EndState::Stage::refused;
            if (!std::exchange(wasRefused_, isRefused) && isRefused)
                desktop.write(end->state->canBeForced ? "refused" : "refused for good");
        });
    }

    void request(LoginRequest request, const EndTerms& terms = {}) {
        EXPECT_EQ(end->request(request, terms), std::nullopt);
        EXPECT_THAT(desktop.log(), testing::Not(testing::HasSubstr("CALL")))
            << "called within the request";
    }
    /// Asks for the end, and says what happens in that time.
    std::string ask(LoginRequest wanted, Duration time, const EndTerms& terms = {}) {
        desktop.startLog();
        request(wanted, terms);
        return after(time);
    }

    /// A process that is busy for so long from now on.
    void work(const SimulatedApplication& application, Duration time) {
        const Uptime begin = desktop.loop.uptime();
        desktop.processes.doing[application.processId()] = [this, begin, time] {
            return ProcessWork{.processorTime =
                                   std::min(desktop.loop.uptime() - begin, time) * 3 / 10};
        };
    }

    SimulatedNotice notice{[this](std::string_view what) { desktop.write(what); }};
    std::unique_ptr<SessionEnd> end;
    std::unique_ptr<EndNotice> endNotice;

private:
    bool wasRefused_ = false;
    Handle watching_;
};

} // namespace velmorquit
