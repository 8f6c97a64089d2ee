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

/// What other processes of the user can do with the controller and hear of it: the commands of
/// `Remote/Verbs`, where those that are about a run are taken when `RunAnswers` says, and the
/// changes of `Remote/ChangeJson`.
class RemoteControl {
public:
    /// What it is handed outlives it.
    RemoteControl(QuitController& controller, ActionRunner& actions, const Desktop& desktop);

    /// The part that is about the schedule and the published actions.
    [[nodiscard]] ScheduleCommands& schedule() { return schedule_; }

    /// Where the user is asked about what programs in a sandbox want.
    [[nodiscard]] CallerQuestion& callerQuestion() { return callerQuestion_; }

    /// Shows the program to its user. The token lets a window come to the front; it may be empty.
    std::function<void(const std::string& activationToken)> onShow;

private:
    RemoteAnswer answer(const RemoteCommand& command);
    /// The applications that it names, where it is about some of them.
    RunCommands::Meant meantBy(const RemoteCommand& command);
    [[nodiscard]] std::string situation(const std::vector<OpenApp>& meant) const;
    /// Does what the user has agreed to. Whoever wanted it has its answer already.
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
