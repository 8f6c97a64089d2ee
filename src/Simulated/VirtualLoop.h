#pragma once

#include "Platform/MainLoop.h"
#include "Platform/TimerQueue.h"

#include <deque>

namespace velmorquit {

/// A main loop in virtual time: nothing happens until it is told to advance, and then at once.
class VirtualLoop final : public MainLoop {
public:
    [[nodiscard]] WallTime now() const override { return epoch_ + uptime_.sinceStart; }
    [[nodiscard]] Uptime uptime() const override { return uptime_; }
    void post(std::function<void()> work) override;
    [[nodiscard]] Handle after(Duration delay, std::function<void()> work) override;
    [[nodiscard]] Handle every(Duration interval, std::function<void()> work) override;
    /// `work` is done in a later turn, `done` is called in the one after that.
    [[nodiscard]] Handle background(std::function<void()> work,
                                    std::function<void()> done) override;

    /// Lets `time` pass and everything happen that falls due in it, its end included.
    void advance(Duration time);

    /// Lets everything happen that needs no time to pass.
    void settle() { advance(Duration::zero()); }

    /// Corrects the clock on the wall; running time knows nothing of it.
    void moveWallClock(Duration by) { epoch_ += by; }

private:
    void runPosted();

    WallTime epoch_{std::chrono::sys_days{std::chrono::year{2026} / 3 / 2} + 9h};
    Uptime uptime_;
    std::deque<std::function<void()>> posted_;
    TimerQueue timers_;
};

} // namespace velmorquit
