#pragma once

#include "Loop/Published.h"
#include "Model/ScheduledQuit.h"
#include "Platform/Desktop.h"
#include "Platform/LoginWindow.h"
#include "Services/QuitController/EventFeed.h"
#include "Services/Settings.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velmorquit {

/// Begins a run at a later time, and calls the user before.
class Scheduler {
public:
    /// All of it must outlive the scheduler.
    struct Surroundings {
        std::function<void(PowerAction, Attendance)> begin; ///< begins a run, except during one
        const EventFeed& events;
    };

    Scheduler(const Desktop& desktop, Settings& settings, Surroundings surroundings);

    /// The scheduled run; it isn't kept across starts.
    Published<std::optional<ScheduledQuit>, Scheduler> schedule;
    /// The time has come, and the user is being asked whether the run may begin.
    Published<bool, Scheduler> awaitingConfirmation;
    /// Whether the user wants to be asked first.
    const Setting<bool>& confirmScheduled;
    /// Tells the user why a schedule came to nothing.
    Published<std::optional<std::string>, Scheduler> scheduleNote;

    /// Schedules the run, replacing an earlier schedule. A date in the past means one second from
    /// now. The computer doesn't fall asleep by itself until then.
    void scheduleQuit(WallTime date, PowerAction action);
    /// Postpones it by so many minutes: from its date, or from now once that has passed.
    void postponeSchedule(int minutes);
    /// Begins the run that waits for the user's confirmation.
    void confirmScheduledQuit();
    void cancelSchedule();
    /// The user has read the note.
    void dismissScheduleNote() { scheduleNote = std::nullopt; }
    /// Chooses whether the next schedule asks, and stores the choice.
    void chooseConfirmScheduled(bool isChosen);

    /// Lets the computer sleep, since somebody else holds sleep off; the next tick holds it again.
    void letSleep() { sleepActivity_.reset(); }

private:
    void holdSleepForSchedule();
    void tickAtNextSecond();
    void tickWhenNeeded(Duration remaining);
    void tickAfter(int ticks);
    void scheduleTick();
    [[nodiscard]] bool isAttentionDue(Duration remaining);
    void meetDeadline();
    void checkMissedSchedule();

    Desktop desktop_;
    Settings& settings_;
    Surroundings surroundings_;
    Uptime scheduledAt_;
    Handle scheduleTimer_;
    int scheduleWarnings_ = 0; ///< how many have been given
    std::optional<std::int64_t> lastBeepSecond_;
    Handle sleepActivity_;
    std::vector<Handle> observers_;
};

} // namespace velmorquit
