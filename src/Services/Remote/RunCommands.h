#pragma once

#include "Platform/RemoteCommands.h"
#include "Services/AskSome.h"
#include "Services/QuitController/QuitController.h"
#include "Services/Remote/StatusSource.h"

#include <string>
#include <variant>
#include <vector>

namespace velmorquit {

/// What other processes can have done to the open applications, and to a run and what follows it.
/// `RunAnswers` has said before that it makes sense at this moment.
class RunCommands {
public:
    using Words = std::vector<std::string>;
    /// Applications, or why one of the names is none.
    using Meant = std::variant<std::vector<OpenApp>, std::string>;

    /// What it is handed outlives it.
    RunCommands(QuitController& controller, LoginWindow& loginWindow, const StatusSource& source)
        : controller_(controller), loginWindow_(loginWindow), source_(source), some_(controller) {}

    RemoteAnswer quitAll(const Words& action);
    RemoteAnswer quit(const Words& names);
    RemoteAnswer force();
    RemoteAnswer askAgain(const Words& name);
    RemoteAnswer leave();
    RemoteAnswer backup(const std::string& word);
    RemoteAnswer eject();
    RemoteAnswer reopen();
    RemoteAnswer forget();
    RemoteAnswer anyway(const std::string& list);

    /// The open applications that all these names mean, each once.
    [[nodiscard]] Meant meant(const Words& names);

private:
    QuitController& controller_;
    LoginWindow& loginWindow_;
    const StatusSource& source_;
    AskSome some_;
};

} // namespace velmorquit
