#pragma once

#include "Remote/Verbs.h"
#include "Services/Remote/CallerQuestion.h"
#include "Services/Remote/ChangeFeed.h"
#include "Services/Remote/ExclusionCommands.h"
#include "Services/Remote/RunCommands.h"
#include "Services/Remote/ScheduleCommands.h"
#include "Services/Remote/StatusSource.h"

#include <functional>
#include <string>

namespace velmorquit {

/// What other processes of the user can do with the controller and hear from it: the commands of
/// `Remote/Verbs` (those about a run only when `RunAnswers` accepts them) and the changes of
/// `Remote/ChangeJson`.
class RemoteControl {
public:
    /// The arguments must outlive it.
    RemoteControl(QuitController& controller, ActionRunner& actions, const Desktop& desktop);

    /// The commands for the schedule and the published actions.
    [[nodiscard]] ScheduleCommands& schedule() { return schedule_; }

    /// Asks the user to confirm what sandboxed programs want.
    [[nodiscard]] CallerQuestion& callerQuestion() { return callerQuestion_; }

    /// Shows the program to its user. The token lets a window come to the front; it may be empty.
    std::function<void(const std::string& activationToken)> onShow;

private:
    RemoteAnswer answer(const RemoteCommand& command);
    /// The applications that the command names; none where it names none.
    RunCommands::Meant meantBy(const RemoteCommand& command);
    [[nodiscard]] std::string situation(const std::vector<OpenApp>& meant) const;
    /// Does what the user has agreed to. The caller already has its answer.
    void perform(RemoteCommand command, const std::string& seen);
    RemoteAnswer carryOut(remote::Verb verb, const std::vector<std::string>& arguments);
    RemoteAnswer status();
    RemoteAnswer show(const std::vector<std::string>& token);

    QuitController& controller_;
    const LoginWindow& loginWindow_;
    StatusSource source_;
    ChangeFeed feed_;
    RunCommands run_;
    ExclusionCommands exclusions_;
    ScheduleCommands schedule_;
    CallerQuestion callerQuestion_;
};

} // namespace velmorquit
