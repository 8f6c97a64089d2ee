#pragma once

#include "Platform/Formats.h"
#include "Platform/Notice.h"
#include "Services/QuitController/QuitController.h"

#include <functional>
#include <set>
#include <vector>

namespace velmorquit {

/// Tells the user by a desktop notice what a run is waiting for, while the panel, which shows all
/// of it, is closed. The notice can also be answered.
class RunNotice {
public:
    /// A wait that is over sooner needs no notice. By then the applications have been looked at
    /// twice, and more is known about why they stay.
    static constexpr Duration delay = 1500ms;
    /// Between two texts of the same wait, since each may pop up in front of the user again.
    static constexpr Duration pause = 5s;
    /// How long the question after a failed backup must have been shown before "go on" counts: the
    /// press may have been meant for whatever was there before.
    static constexpr Duration readingTime = 1500ms;
    /// More applications than this are counted instead of named.
    static constexpr std::size_t mostNames = 5;

    /// Only this object listens to `notice`; all arguments must outlive it.
    RunNotice(QuitController& controller, Notice& notice, const Formats& formats);
    RunNotice(const RunNotice&) = delete;
    RunNotice& operator=(const RunNotice&) = delete;
    ~RunNotice();

    void panelOpened();
    void panelClosed();

    /// The user wants to see what the run is waiting for, and it has no window to bring up.
    std::function<void()> onShow;
    /// The run is waiting, and no notice can be answered. Called once per wait, unless the user has
    /// seen the panel meanwhile.
    std::function<void()> onUnanswerable;

private:
    enum class Wait { none, applications, backup };
    /// What a notice is about.
    struct Subject {
        std::vector<ProcessId> apps;
        std::set<ProcessId> explained; ///< those whose reason for staying was given
        PowerAction action = PowerAction::none;
    };

    [[nodiscard]] Wait present() const;
    [[nodiscard]] PowerAction action() const;
    [[nodiscard]] Subject subject() const;
    [[nodiscard]] bool isNews() const;
    void follow();
    void tell();
    void withdraw();
    [[nodiscard]] Notice::Content aboutApplications() const;
    [[nodiscard]] Notice::Content aboutBackup() const;
    void answer(const std::string& button);
    void showFirst();
    void goOn();
    void hearUnanswerable();

    QuitController& controller_;
    Notice& notice_;
    const Formats& formats_;
    Wait wait_ = Wait::none;
    bool isPanelShown_ = false;
    /// The user has not seen the panel during this wait.
    bool isPanelDue_ = false;
    bool isShown_ = false;
    Subject told_;
    Uptime toldAt_;
    Handle telling_;
    std::vector<Handle> subscriptions_;
};

} // namespace velmorquit
