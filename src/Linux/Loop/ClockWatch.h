#pragma once

#include "Linux/Files/Descriptor.h"
#include "Loop/MainLoop.h"
#include "Loop/Subscribers.h"

#include <QSocketNotifier>

#include <map>
#include <memory>

namespace velmorquit {

/// Notices sleep and changes of the clock. The kernel tells when the wall clock is set, which it
/// also does when the computer wakes; the clock that goes on during sleep tells these two cases
/// apart.
class ClockWatch {
public:
    /// `slept` tells how long the computer has slept since it was started.
    explicit ClockWatch(std::function<Duration()> slept = sleepSinceStart);

    [[nodiscard]] Handle observe(ClockEvent event, std::function<void()> told) {
        return subscribers_[event].add(std::move(told));
    }

    /// Reports any sleep not reported yet.
    void look();

    /// How long the system has slept since its start.
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
