#pragma once

#include "Platform/Formats.h"
#include "Platform/Notice.h"
#include "Services/QuitController/QuitController.h"

#include <functional>
#include <set>
#include <vector>

namespace velmorquit {

/// Tells the user by a notice of the desktop's what a run waits for, while the panel, which shows
/// all of it, is closed. There it can be answered, too.
class RunNotice {
public:
    /// What is over by then is worth no notice. A second look at the applications is within it,
    /// which knows more of why they stay.
    static constexpr Duration delay = 1500ms;
    /// Between two texts of one wait: each may come up before the user's eyes again.
    static constexpr Duration pause = 5s;
    /// How long the question after a failed backup has to have been there before the answer that
    /// goes on counts: the finger may have been on its way to what was there before.
    static constexpr Duration readingTime = 1500ms;
    /// More applications than that are counted rather than named.
    static constexpr std::size_t mostNames = 5;

    /// `notice` is its own to listen to; all outlive it.
    RunNotice(QuitController& controller, Notice& notice, const Formats& formats);
    RunNotice(const RunNotice&) = delete;
    RunNotice& operator=(const RunNotice&) = delete;
    ~RunNotice();

    void panelOpened();
    void panelClosed();

    /// The user wants to see what the run waits for, and it can't be shown by itself.
    std::function<void()> onShow;
    /// The run waits, and no notice can be answered. Called once in a wait of which the user has
    /// not seen the panel.
    std::function<void()> onUnanswerable;

private:
    enum class Wait { none, applications, backup };
    /// What a text is about.
    struct Subject {
        std::vector<ProcessId> apps;
        std::set<ProcessId> explained; ///< those of which it is said why they stay
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
