#include "Services/QuitController/Scheduler.h"

#include "Platform/Formats.h"
#include "Platform/SleepHold.h"
#include "Texts/Localized.h"

#include <algorithm>
#include <array>

namespace velmorquit {

namespace {

/// The remaining times at which the user is alerted.
constexpr std::array<Duration, 2> warningMarks{60s, 30s};
/// With this much left, every second is told.
constexpr Duration finalCountdown = 10s;
constexpr Duration tickInterval = 1s;
/// The longest time until a change of the clock is noticed on systems that don't tell of it.
constexpr int mostTicksSkipped = 60;
/// How late a run may still begin unasked when the computer wakes.
constexpr Duration mostLate = 120s;

/// The remaining time at the next moment when something happens.
Duration nextThreshold(Duration remaining) {
    for (const Duration mark : warningMarks) {
        if (remaining > mark)
            return mark;
    }
    return finalCountdown;
}

} // namespace

Scheduler::Scheduler(const Desktop& desktop, Settings& settings, Surroundings surroundings)
    : schedule(desktop.loop), awaitingConfirmation(desktop.loop),
      confirmScheduled(settings.confirmScheduled), scheduleNote(desktop.loop), desktop_(desktop),
      settings_(settings), surroundings_(std::move(surroundings)) {
    observers_.push_back(
        desktop_.loop.observe(ClockEvent::woke, [this] { checkMissedSchedule(); }));
    observers_.push_back(
        desktop_.loop.observe(ClockEvent::corrected, [this] { tickAtNextSecond(); }));
}

void Scheduler::chooseConfirmScheduled(bool isChosen) {
    settings_.confirmScheduled.store(isChosen);
}

void Scheduler::scheduleQuit(WallTime date, PowerAction action) {
    cancelSchedule();
    scheduleNote = std::nullopt;
    schedule = ScheduledQuit{date, action, desktop_.loop.now(), confirmScheduled};
    scheduleWarnings_ = 0;
    lastBeepSecond_.reset();
    scheduledAt_ = desktop_.loop.uptime();
    holdSleepForSchedule();
    tickAtNextSecond();
}

void Scheduler::holdSleepForSchedule() {
    if (!sleepActivity_.isSet())
        sleepActivity_ = desktop_.sleepHold.begin(localized("Chiusura programmata di Velmor Quit"));
}

void Scheduler::tickAtNextSecond() {
    if (schedule.get() && !awaitingConfirmation)
        tickAfter(1);
}

// Ticks fall on whole seconds since the schedule was set. Those without anything to do are skipped,
// so that a schedule for the night doesn't wake the machine every second of the day.
void Scheduler::tickWhenNeeded(Duration remaining) {
    if (remaining <= finalCountdown) {
        tickAfter(1);
        return;
    }
    const Duration wait = remaining - nextThreshold(remaining);
    const auto ticks = static_cast<int>(
        std::min<std::int64_t>(mostTicksSkipped, (wait + tickInterval - 1ns) / tickInterval));
    tickAfter(std::max(ticks, 1));
}

void Scheduler::tickAfter(int ticks) {
    const Duration elapsed = desktop_.loop.uptime() - scheduledAt_;
    const Duration due = (elapsed / tickInterval + ticks) * tickInterval;
    scheduleTimer_ = desktop_.loop.after(due - elapsed, [this] { scheduleTick(); });
}

void Scheduler::scheduleTick() {
    if (!schedule.get() || awaitingConfirmation)
        return;
    holdSleepForSchedule();
    const std::optional<ScheduledQuit> before = schedule;
    const Duration remaining = schedule.get()->date - desktop_.loop.now();
    if (isAttentionDue(remaining)) {
        surroundings_.events.callUser();
        if (schedule.get() != before)
            return;
    }
    if (remaining > Duration::zero())
        tickWhenNeeded(remaining);
    else
        meetDeadline();
}

bool Scheduler::isAttentionDue(Duration remaining) {
    const auto passed = static_cast<int>(
        std::ranges::count_if(warningMarks, [&](Duration mark) { return remaining <= mark; }));
    const std::int64_t second = std::chrono::ceil<std::chrono::seconds>(remaining).count();
    const bool isFinal = second >= 1 && second <= finalCountdown / 1s;
    const bool isMark = scheduleWarnings_ < passed;
    const bool isBeep = isFinal && lastBeepSecond_ != second;
    scheduleWarnings_ = std::max(scheduleWarnings_, passed);
    if (isFinal)
        lastBeepSecond_ = second;
    return isMark || isBeep;
}

void Scheduler::meetDeadline() {
    if (schedule.get()->needsConfirmation) {
        awaitingConfirmation = true;
        scheduleTimer_.reset();
        sleepActivity_.reset();
        surroundings_.events.tell(events::ConfirmationNeeded{});
        return;
    }
    const PowerAction action = schedule.get()->action;
    // Bridges the time until the run holds sleep off itself.
    const Handle hold = std::move(sleepActivity_);
    cancelSchedule();
    surroundings_.begin(action, Attendance::unattended);
}

void Scheduler::postponeSchedule(int minutes) {
    if (!schedule.get())
        return;
    const WallTime now = desktop_.loop.now();
    const WallTime date = schedule.get()->date;
    // Callers can't postpone it for ever by asking again and again.
    constexpr auto furthest = std::chrono::hours(7 * 24);
    const WallTime later = std::max(now, date) + std::chrono::minutes(minutes);
    scheduleQuit(std::max(date, std::min<WallTime>(later, now + furthest)), schedule.get()->action);
}

void Scheduler::confirmScheduledQuit() {
    if (!schedule.get() || !awaitingConfirmation)
        return;
    const PowerAction action = schedule.get()->action;
    cancelSchedule();
    surroundings_.begin(action, Attendance::attended);
}

void Scheduler::cancelSchedule() {
    scheduleTimer_.reset();
    sleepActivity_.reset();
    schedule = std::nullopt;
    awaitingConfirmation = false;
}

void Scheduler::checkMissedSchedule() {
    if (!schedule.get() || awaitingConfirmation)
        return;
    const WallTime date = schedule.get()->date;
    if (desktop_.loop.now() - date <= mostLate) {
        tickAtNextSecond();
        return;
    }
    cancelSchedule();
    scheduleNote = localized("La chiusura programmata delle %@ non è partita: il Mac era in stop.",
                             desktop_.formats.shortTime(date));
}

} // namespace velmorquit
