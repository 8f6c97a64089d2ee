#include "Linux/Loop/ClockWatch.h"

#include <cerrno>
#include <ctime>
#include <sys/timerfd.h>
#include <unistd.h>

namespace velmorquit {

namespace {

/// Two clocks can't be read at the same instant, and nobody closes a lid for less time.
constexpr Duration shortestSleep = 500ms;

Duration read(clockid_t clock) {
    timespec time{};
    ::clock_gettime(clock, &time);
    return std::chrono::seconds(time.tv_sec) + Duration(time.tv_nsec);
}

} // namespace

Duration ClockWatch::sleepSinceStart() { return read(CLOCK_BOOTTIME) - read(CLOCK_MONOTONIC); }

ClockWatch::ClockWatch(std::function<Duration()> slept)
    : slept_(std::move(slept)), known_(slept_()),
      timer_(::timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC)) {
    if (!timer_)
        return;
    notifier_ = std::make_unique<QSocketNotifier>(timer_.get(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { hear(); });
    arm();
}

// This timer never fires, but it is cancelled when the clock is set.
void ClockWatch::arm() {
    constexpr auto never = std::chrono::hours(24 * 365 * 100);
    itimerspec when{};
    when.it_value.tv_sec = read(CLOCK_REALTIME) / 1s + never / 1s;
    ::timerfd_settime(timer_.get(), TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &when, nullptr);
}

void ClockWatch::hear() {
    std::uint64_t expirations = 0;
    const ssize_t count = ::read(timer_.get(), &expirations, sizeof expirations);
    const bool isSet = count < 0 && errno == ECANCELED;
    arm();
    const Duration before = known_;
    look();
    if (isSet && known_ == before)
        subscribers_[ClockEvent::corrected].tell();
}

void ClockWatch::look() {
    const Duration slept = slept_();
    if (slept - known_ < shortestSleep)
        return;
    known_ = slept;
    subscribers_[ClockEvent::woke].tell();
}

} // namespace velmorquit
