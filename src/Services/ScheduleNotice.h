#pragma once

#include "Platform/Formats.h"
#include "Platform/Notice.h"
#include "Services/QuitController/QuitController.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velmorquit {

/// Tells the user of a scheduled quit by a notice of the desktop's: when it is about to begin, when
/// it waits for an answer, and when it came to nothing.
class ScheduleNotice {
public:
    static constexpr int postponement = 10; ///< in minutes
    /// How long after a run's beginning its countdown may still be before the user's eyes.
    static constexpr Duration lateness = 3s;

    /// `notice` is its own to listen to.
    ScheduleNotice(QuitController& controller, Notice& notice, const Formats& formats);
    ScheduleNotice(const ScheduleNotice&) = delete;
    ScheduleNotice& operator=(const ScheduleNotice&) = delete;
    ~ScheduleNotice();

    /// There is something to answer, and no notice can be answered. Called once in a schedule.
    std::function<void()> onUnanswerable;

private:
    /// Says how many seconds are left.
    void callAttention();
    /// Asks whether the run is to begin.
    void ask();
    void hearUnanswerable();
    void answer(const std::string& button);
    void follow();
    void show(std::string title, std::string text, std::vector<Notice::Button> buttons);

    QuitController& controller_;
    Notice& notice_;
    const Formats& formats_;
    /// What the notice on show is about; none when there is none that could be out of date.
    std::optional<ScheduledQuit> told_;
    /// For which of them the user has been shown the panel.
    std::optional<ScheduledQuit> shownInPanel_;
    /// When the run began that was told of.
    std::optional<Uptime> begunAt_;
    bool isQuestion_ = false;
    std::optional<std::string> toldNote_;
    std::vector<Handle> subscriptions_;
};

} // namespace velmorquit
