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

/// Has a run begin later, and calls the user before.
class Scheduler {
public:
    /// What it works with; all of it outlives it.
    struct Surroundings {
        std::function<void(PowerAction, Attendance)> begin; ///< a run; nothing during another
        const EventFeed& events;
    };

    Scheduler(const Desktop& desktop, Settings& settings, Surroundings surroundings);

    /// The run that is to begin later; it isn't kept across starts.
    Published<std::optional<ScheduledQuit>, Scheduler> schedule;
    /// Its moment has come, and the user is asked whether it is to begin.
    Published<bool, Scheduler> awaitingConfirmation;
    /// Whether the user wants to be asked then.
    const Setting<bool>& confirmScheduled;
    /// What the user should know of a schedule that came to nothing.
    Published<std::optional<std::string>, Scheduler> scheduleNote;

    /// Sets the run for later, in place of one that was set before. A date that has passed is one
    /// second from now. The computer doesn't fall asleep by itself until then.
    void scheduleQuit(WallTime date, PowerAction action);
    /// Sets it for so many minutes later than it was to be, or than now when that has passed.
    void postponeSchedule(int minutes);
    /// Lets the run begin that waits for the user's word.
    void confirmScheduledQuit();
    void cancelSchedule();
    /// The user has read the note.
    void dismissScheduleNote() { scheduleNote = std::nullopt; }
    /// Chooses whether the next schedule asks, and stores the choice.
    void chooseConfirmScheduled(bool isChosen);

    /// Gives sleep free: somebody else holds it off, until the next tick.
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
    int scheduleWarnings_ = 0; ///< marks that were told
    std::optional<std::int64_t> lastBeepSecond_;
    Handle sleepActivity_;
    std::vector<Handle> observers_;
};

} // namespace velmorquit
