#include "Services/QuitController/QuitRun.h"

#include "Platform/SleepHold.h"
#include "Texts/Localized.h"

#include <utility>

namespace velmorquit {

QuitRun::QuitRun(const Desktop& desktop, Surroundings surroundings, PowerAction action,
                 Attendance attendance)
    : desktop_(desktop), surroundings_(std::move(surroundings)), action_(action) {
    // A session end requested by an earlier run gives way to this one.
    desktop_.loginWindow.cancel();
    holdSleep();
    surroundings_.refresh();
    surroundings_.status.begin(action, attendance);
    // After sleep nobody can tell how long the wait has been.
    waking_ = desktop_.loop.observe(ClockEvent::woke, [this] { isLate_ |= waiting_.isSet(); });
    targets_.emplace(desktop_.loop, surroundings_.applications,
                     surroundings_.applications.quittable());
    if (targets_->list().empty()) {
        finishAsking(AfterSteps::run);
        return;
    }
    surroundings_.status.enter(phases::Quitting{static_cast<int>(targets_->list().size())});
    targets_->ask();
    polling_ = poll(desktop_.loop.uptime() + gracePeriod);
}

const std::vector<OpenApp>& QuitRun::targets() const {
    static const std::vector<OpenApp> none;
    return targets_ ? targets_->list() : none;
}

Task<> QuitRun::poll(Uptime deadline) {
    const Uptime lastAsking = desktop_.loop.uptime() + askingTime;
    for (;;) {
        co_await sleep(pollInterval);
        if (targets_->ask() && is<phases::Quitting>(surroundings_.status.phase))
            surroundings_.status.enter(phases::Quitting{static_cast<int>(targets_->list().size())});
        std::vector<OpenApp> running = targets_->running();
        if (running.empty()) {
            finishAsking(AfterSteps::run);
            co_return;
        }
        targets_->noteWindowless(running);
        const Uptime now = desktop_.loop.uptime();
        if (now <= lastAsking)
            targets_->askHindered(running);
        if (now < deadline)
            continue;
        look(std::move(running));
        if (!is<phases::Waiting>(surroundings_.status.phase)) {
            surroundings_.events.tell(events::StubbornApps{});
            co_await unlessCancelled();
            surroundings_.status.enter(phases::Waiting{});
            beginWaiting();
        }
    }
}

void QuitRun::look(std::vector<OpenApp> running) {
    targets_->askWindowless(running);
    const Uptime now = desktop_.loop.uptime();
    if (!lookedAt_ || now - *lookedAt_ >= reasonInterval) {
        surroundings_.status.explain(RunTargets::reasonsOf(running));
        for (const auto& [id, reason] : surroundings_.status.stayReasons.get()) {
            if (reason == StayReason::busyTerminal)
                targets_->noteHindered(id);
        }
        lookedAt_ = now;
    }
    surroundings_.status.stay(std::move(running));
}

// With nobody there, the computer would fall asleep in the middle of the run.
void QuitRun::holdSleep() {
    if (!sleepHold_.isSet())
        sleepHold_ = desktop_.sleepHold.begin(localized("Velmor Quit sta chiudendo le app"));
}

void QuitRun::beginWaiting() {
    if (!surroundings_.status.unattended)
        sleepHold_.reset();
    waiting_ = desktop_.loop.after(longWait, [this] {
        isLate_ = true;
        sleepHold_.reset();
    });
}

void QuitRun::noteAsked(ProcessId id) {
    if (targets_)
        targets_->noteAsked(id);
}

void QuitRun::leave() {
    if (stage_ == Stage::asking) {
        surroundings_.status.dropPending();
        finishAsking(AfterSteps::skip);
    } else if (stage_ == Stage::asked) {
        following_.cancel();
        conclude(std::nullopt);
    }
}

void QuitRun::finishAsking(AfterSteps steps) {
    polling_.cancel();
    waiting_.reset();
    targets_->stopAsking();
    const std::vector<OpenApp> closed = targets_->closed();
    result_ = RunTargets::resultOf(closed);
    // Before the refresh: it and the steps that follow may take long, and the session may end
    // with them.
    surroundings_.lastSession.remember(closed);
    surroundings_.status.stay({});
    surroundings_.status.explain({});
    targets_.reset();
    surroundings_.refresh();
    const PowerAction planned = surroundings_.status.endWaiting();
    if (steps == AfterSteps::skip) {
        conclude(std::nullopt);
        return;
    }
    holdSleep();
    stage_ = Stage::asked;
    following_ = follow(planned);
}

void QuitRun::conclude(std::optional<std::string> note) {
    stage_ = Stage::over;
    surroundings_.status.show(result_, std::move(note));
    surroundings_.status.end();
    sleepHold_.reset();
}

} // namespace velmorquit
