#pragma once

#include <QTimer>

#include <algorithm>
#include <chrono>
#include <functional>
#include <utility>

namespace velmorquit {

/// Work that other programs can trigger as often as they like: done once for a burst of triggers,
/// and never for more than a fifth of the time.
class Paced {
public:
    using Duration = std::chrono::milliseconds;

    struct Pace {
        /// From the first trigger of a burst until the work is done.
        Duration gathering{0};
        /// The shortest time from the end of the work until it is done again.
        Duration rest{0};
    };

    /// Works in turns of its own on the main thread, for as long as it exists.
    Paced(Pace pace, std::function<void()> work) : pace_(pace), work_(std::move(work)) {
        timer_.setSingleShot(true);
        timer_.setTimerType(Qt::PreciseTimer);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { run(); });
    }

    /// Triggers the work.
    void ask() {
        if (timer_.isActive())
            return;
        const auto left = std::chrono::ceil<Duration>(restsUntil_ - Clock::now());
        timer_.start(std::max({pace_.gathering, left, Duration::zero()}));
    }

private:
    using Clock = std::chrono::steady_clock;
    /// Rest is this many times as long as the work took, but no longer than `longest`.
    static constexpr int restsPerWork = 4;
    static constexpr Duration longest{2000};

    void run() {
        const auto begun = Clock::now();
        work_();
        const auto ended = Clock::now();
        const auto earned = std::chrono::ceil<Duration>(restsPerWork * (ended - begun));
        restsUntil_ = ended + std::max(pace_.rest, std::min(earned, longest));
    }

    Pace pace_;
    std::function<void()> work_;
    QTimer timer_;
    Clock::time_point restsUntil_;
};

} // namespace velmorquit
