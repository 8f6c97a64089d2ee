#pragma once

#include "Loop/MainLoop.h"
#include "Loop/Subscribers.h"
#include "Loop/TimerQueue.h"

#include <deque>
#include <map>

namespace velmorquit {

/// A main loop in virtual time: nothing happens until it is told to advance, and then at once.
class VirtualLoop final : public MainLoop {
public:
    [[nodiscard]] WallTime now() const override { return epoch_ + uptime_.sinceStart; }
    [[nodiscard]] Uptime uptime() const override { return uptime_; }
    void post(std::function<void()> work) override;
    [[nodiscard]] Handle after(Duration delay, std::function<void()> work) override;
    [[nodiscard]] Handle every(Duration interval, std::function<void()> work) override;
    /// `work` is done in a later turn, and `done` is called in the turn after that.
    [[nodiscard]] Handle background(std::function<void()> work,
                                    std::function<void()> done) override;
    [[nodiscard]] Handle observe(ClockEvent event, std::function<void()> told) override {
        return clockEvents_[event].add(std::move(told));
    }

    /// Lets `time` pass, with everything that falls due up to and including its end.
    void advance(Duration time);

    /// Lets everything happen that is due now.
    void settle() { advance(Duration::zero()); }

    /// Corrects the wall clock without affecting running time.
    void moveWallClock(Duration by) {
        epoch_ += by;
        clockEvents_[ClockEvent::corrected].tell();
    }

    /// Lets the computer sleep for so long: nothing happens during that time.
    void fallAsleep(Duration time) {
        epoch_ += time;
        clockEvents_[ClockEvent::woke].tell();
    }

private:
    void runPosted();

    WallTime epoch_{std::chrono::sys_days{std::chrono::year{2026} / 3 / 2} + 9h};
    Uptime uptime_;
    std::deque<std::function<void()>> posted_;
    TimerQueue timers_;
    std::map<ClockEvent, Subscribers> clockEvents_;
};

} // namespace velmorquit
