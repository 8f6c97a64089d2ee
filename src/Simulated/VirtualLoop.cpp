#include "Simulated/VirtualLoop.h"

#include <utility>

namespace velmorquit {

void VirtualLoop::post(std::function<void()> work) { posted_.push_back(std::move(work)); }

Handle VirtualLoop::after(Duration delay, std::function<void()> work) {
    return timers_.add(uptime_ + delay, std::move(work));
}

Handle VirtualLoop::every(Duration interval, std::function<void()> work) {
    return timers_.addRepeating(uptime_, interval, std::move(work));
}

Handle VirtualLoop::background(std::function<void()> work, std::function<void()> done) {
    post(std::move(work));
    return after(Duration::zero(), std::move(done));
}

void VirtualLoop::advance(Duration time) {
    const Uptime end = uptime_ + time;
    runPosted();
    while (timers_.nextDue() && *timers_.nextDue() <= end) {
        if (uptime_ < *timers_.nextDue())
            uptime_ = *timers_.nextDue();
        timers_.fireNext(uptime_);
        runPosted();
    }
    uptime_ = end;
}

void VirtualLoop::runPosted() {
    while (!posted_.empty()) {
        const auto work = std::move(posted_.front());
        posted_.pop_front();
        work();
    }
}

} // namespace velmorquit
