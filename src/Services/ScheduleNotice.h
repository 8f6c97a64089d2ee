#pragma once

#include "Platform/Formats.h"
#include "Platform/Notice.h"
#include "Services/QuitController/QuitController.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velmorquit {

/// Tells the user of a scheduled quit by a desktop notice: when it is about to begin, when it waits
/// for an answer, and when it came to nothing.
class ScheduleNotice {
public:
    static constexpr int postponement = 10; ///< in minutes
    /// For how long after the run has begun its countdown may still be on the screen.
    static constexpr Duration lateness = 3s;

    /// Only this object listens to `notice`.
    ScheduleNotice(QuitController& controller, Notice& notice, const Formats& formats);
    ScheduleNotice(const ScheduleNotice&) = delete;
    ScheduleNotice& operator=(const ScheduleNotice&) = delete;
    ~ScheduleNotice();

    /// There is something to answer, and no notice can be answered. Called once per schedule.
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
    /// The schedule that the notice on show is about; none when nothing shown can become outdated.
    std::optional<ScheduledQuit> told_;
    /// The last schedule for which the user was shown the panel.
    std::optional<ScheduledQuit> shownInPanel_;
    /// When the run began whose countdown was shown.
    std::optional<Uptime> begunAt_;
    bool isQuestion_ = false;
    std::optional<std::string> toldNote_;
    std::vector<Handle> subscriptions_;
};

} // namespace velmorquit
