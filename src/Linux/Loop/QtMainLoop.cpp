#include "Linux/Loop/QtMainLoop.h"

#include <QThreadPool>

#include <algorithm>
#include <utility>

namespace velmorquit {

QtMainLoop::QtMainLoop() {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, this, [this] { runDueTimers(); });
}

// Work on other threads posts to this object when done, so it has to be done first.
QtMainLoop::~QtMainLoop() { QThreadPool::globalInstance()->waitForDone(); }

WallTime QtMainLoop::now() const {
    return std::chrono::time_point_cast<Duration>(std::chrono::system_clock::now());
}

Uptime QtMainLoop::uptime() const {
    return {
        std::chrono::duration_cast<Duration>(std::chrono::steady_clock::now().time_since_epoch())};
}

void QtMainLoop::post(std::function<void()> work) {
    QMetaObject::invokeMethod(this, std::move(work), Qt::QueuedConnection);
}

Handle QtMainLoop::after(Duration delay, std::function<void()> work) {
    Handle handle = timers_.add(uptime() + delay, std::move(work));
    armTimer();
    return handle;
}

Handle QtMainLoop::every(Duration interval, std::function<void()> work) {
    Handle handle = timers_.addRepeating(uptime(), interval, std::move(work));
    armTimer();
    return handle;
}

Handle QtMainLoop::background(std::function<void()> work, std::function<void()> done) {
    const std::uint64_t id = ++pending_->lastId;
    pending_->done.emplace(id, std::move(done));
    const auto finished = [pending = pending_.get(), id] {
        const auto found = pending->done.extract(id);
        if (found)
            found.mapped()();
    };
    QThreadPool::globalInstance()->start([this, work = std::move(work), finished] {
        work();
        QMetaObject::invokeMethod(this, finished, Qt::QueuedConnection);
    });
    return {pending_, id};
}

void QtMainLoop::armTimer() {
    const auto due = timers_.nextDue();
    if (!due) {
        timer_.stop();
        return;
    }
    // A QTimer counts milliseconds in 32 bits; a wait that was shortened is armed again.
    const Duration wait = std::clamp<Duration>(*due - uptime(), Duration::zero(), 24h);
    timer_.start(std::chrono::ceil<std::chrono::milliseconds>(wait));
}

// Timers that fall due meanwhile wait for the next turn, so that the loop gets to other work. The
// timer is armed already, since a callback may run an event loop of its own (a dialog does).
void QtMainLoop::runDueTimers() {
    clock_.look();
    const Uptime reached = uptime();
    timer_.start(0);
    while (timers_.fireNext(reached)) {
    }
    armTimer();
}

} // namespace velmorquit
