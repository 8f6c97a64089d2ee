#pragma once

#include "Platform/RemoteCommands.h"
#include "Services/AskSome.h"
#include "Services/QuitController/QuitController.h"
#include "Services/Remote/StatusSource.h"

#include <string>
#include <variant>
#include <vector>

namespace velmorquit {

/// The commands that other processes can give about open applications, about a run and about what
/// follows it. `RunAnswers` has already accepted them for the present moment.
class RunCommands {
public:
    using Words = std::vector<std::string>;
    /// The applications, or why one of the names means none.
    using Meant = std::variant<std::vector<OpenApp>, std::string>;

    /// The arguments must outlive it.
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

    /// The open applications that these names stand for, each once.
    [[nodiscard]] Meant meant(const Words& names);

private:
    QuitController& controller_;
    LoginWindow& loginWindow_;
    const StatusSource& source_;
    AskSome some_;
};

} // namespace velmorquit
