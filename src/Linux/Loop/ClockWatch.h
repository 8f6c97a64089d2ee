#pragma once

#include "Linux/Files/Descriptor.h"
#include "Loop/MainLoop.h"
#include "Loop/Subscribers.h"

#include <QSocketNotifier>

#include <map>
#include <memory>

namespace velmorquit {

/// Notices what happens to the clocks. The kernel tells when the clock on the wall is set, and it
/// also sets it when the computer wakes; which of the two it was shows the clock that goes on in
/// sleep.
class ClockWatch {
public:
    /// Says how long the computer has slept since it was started.
    explicit ClockWatch(std::function<Duration()> slept = sleepSinceStart);

    [[nodiscard]] Handle observe(ClockEvent event, std::function<void()> told) {
        return subscribers_[event].add(std::move(told));
    }

    /// Tells of a sleep of which nothing was told yet.
    void look();

    /// Time since the start of the system in which it was asleep.
    [[nodiscard]] static Duration sleepSinceStart();

private:
    void arm();
    void hear();

    std::function<Duration()> slept_;
    Duration known_;
    Descriptor timer_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::map<ClockEvent, Subscribers> subscribers_;
};

} // namespace velmorquit
