#include "Model/ScheduledQuit.h"

#include "Platform/Formats.h"
#include "Platform/Preferences.h"
#include "Platform/SleepHold.h"
#include "Services/QuitController/QuitController.h"
#include "Texts/Localized.h"

#include <algorithm>
#include <array>

namespace velmorquit {

namespace {

/// What is left when the user is alerted.
constexpr std::array<Duration, 2> warningMarks{60s, 30s};
/// From here on every second is told.
constexpr Duration finalCountdown = 10s;
constexpr Duration tickInterval = 1s;
/// So long it takes at most until a clock that somebody sets is noticed where nobody tells of it.
constexpr int mostTicksSkipped = 60;
/// How late a run may still begin by itself when the computer wakes.
constexpr Duration mostLate = 120s;

/// What is left at the next moment at which anything happens.
Duration nextThreshold(Duration remaining) {
    for (const Duration mark : warningMarks) {
        if (remaining > mark)
            return mark;
    }
    return finalCountdown;
}

} // namespace

void QuitController::chooseConfirmScheduled(bool isChosen) {
    if (confirmScheduled.get() == isChosen)
        return;
    confirmScheduled = isChosen;
    desktop_.preferences.set("confirmScheduled", isChosen);
}

void QuitController::observeClock() {
    observers_.push_back(
        desktop_.loop.observe(ClockEvent::woke, [this] { checkMissedSchedule(); }));
    // Of the wait it is not known how long it was.
    observers_.push_back(
        desktop_.loop.observe(ClockEvent::woke, [this] { isLate_ |= asking_.isSet(); }));
    observers_.push_back(
        desktop_.loop.observe(ClockEvent::corrected, [this] { tickAtNextSecond(); }));
}

void QuitController::scheduleQuit(WallTime date, PowerAction action) {
    cancelSchedule();
    scheduleNote = std::nullopt;
    schedule = ScheduledQuit{date, action, desktop_.loop.now(), confirmScheduled};
    scheduleWarnings_ = 0;
    lastBeepSecond_.reset();
    scheduledAt_ = desktop_.loop.uptime();
    holdSleepForSchedule();
    tickAtNextSecond();
}

void QuitController::holdSleepForSchedule() {
    if (!sleepActivity_.isSet())
        sleepActivity_ = desktop_.sleepHold.begin(localized("Chiusura programmata di Velmor Quit"));
}

void QuitController::tickAtNextSecond() {
    if (schedule.get() && !awaitingConfirmation)
        tickAfter(1);
}

// Ticks fall on whole seconds since the schedule was set. Those at which nothing happens are left
// out, so that a schedule for the night doesn't wake the machine every second of the day.
void QuitController::tickWhenNeeded(Duration remaining) {
    if (remaining <= finalCountdown) {
        tickAfter(1);
        return;
    }
    const Duration wait = remaining - nextThreshold(remaining);
    const auto ticks = static_cast<int>(
        std::min<std::int64_t>(mostTicksSkipped, (wait + tickInterval - 1ns) / tickInterval));
    tickAfter(std::max(ticks, 1));
}

void QuitController::tickAfter(int ticks) {
    const Duration elapsed = desktop_.loop.uptime() - scheduledAt_;
    const Duration due = (elapsed / tickInterval + ticks) * tickInterval;
    scheduleTimer_ = desktop_.loop.after(due - elapsed, [this] { scheduleTick(); });
}

void QuitController::scheduleTick() {
    if (!schedule.get() || awaitingConfirmation)
        return;
    holdSleepForSchedule();
    const int number = scheduleNumber_;
    const Duration remaining = schedule.get()->date - desktop_.loop.now();
    if (isAttentionDue(remaining)) {
        calls_.tell();
        if (number != scheduleNumber_)
            return;
    }
    if (remaining > Duration::zero())
        tickWhenNeeded(remaining);
    else
        meetDeadline();
}

bool QuitController::isAttentionDue(Duration remaining) {
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

void QuitController::meetDeadline() {
    if (schedule.get()->needsConfirmation) {
        awaitingConfirmation = true;
        scheduleTimer_.reset();
        sleepActivity_.reset();
        emit(events::ConfirmationNeeded{});
        return;
    }
    const PowerAction action = schedule.get()->action;
    // Until the run has one of its own.
    const Handle hold = std::move(sleepActivity_);
    cancelSchedule();
    if (isRunning())
        return;
    quitAll(action);
    unattended = true;
}

void QuitController::postponeSchedule(int minutes) {
    if (!schedule.get())
        return;
    const WallTime now = desktop_.loop.now();
    const WallTime date = schedule.get()->date;
    // What is put off again and again, by whomever, is not put off for ever.
    constexpr auto furthest = std::chrono::hours(7 * 24);
    const WallTime later = std::max(now, date) + std::chrono::minutes(minutes);
    scheduleQuit(std::max(date, std::min<WallTime>(later, now + furthest)), schedule.get()->action);
}

void QuitController::confirmScheduledQuit() {
    if (!schedule.get() || !awaitingConfirmation)
        return;
    const PowerAction action = schedule.get()->action;
    cancelSchedule();
    quitAll(action);
}

void QuitController::cancelSchedule() {
    ++scheduleNumber_;
    scheduleTimer_.reset();
    sleepActivity_.reset();
    schedule = std::nullopt;
    awaitingConfirmation = false;
}

void QuitController::checkMissedSchedule() {
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
