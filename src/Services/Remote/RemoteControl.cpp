#include "Services/Remote/RemoteControl.h"

#include "Remote/StatusJson.h"
#include "Services/Remote/Answers.h"
#include "Services/Remote/AppNames.h"
#include "Services/RunAnswers.h"

#include <algorithm>
#include <utility>

namespace velmorquit {

using remote::done;
using remote::refused;
using remote::Verb;

RemoteControl::RemoteControl(QuitController& controller, ActionRunner& actions,
                             const Desktop& desktop)
    : controller_(controller), loginWindow_(desktop.loginWindow),
      source_(controller, desktop.loginWindow), feed_(controller, desktop, source_),
      run_(controller, desktop.loginWindow, source_), exclusions_(controller),
      schedule_({controller, actions, desktop.formats, desktop.kernel}),
      callerQuestion_(desktop.loop) {
    desktop.remote.serve(
        {.answer = [this](const RemoteCommand& command) { return answer(command); },
         .mattersWhose = CallerQuestion::isAbout});
}

RemoteAnswer RemoteControl::answer(const RemoteCommand& command) {
    const remote::Command* const known = remote::find(command);
    if (!known)
        return remote::unknownCommand(command.verb);
    const auto moment = RunAnswers::momentOf(controller_, loginWindow_.state);
    if (auto why = RunAnswers::refusal(command, moment))
        return refused(std::move(*why));
    const auto meant = meantBy(command);
    if (const auto* why = std::get_if<std::string>(&meant))
        return refused(*why);
    const auto& apps = std::get<std::vector<OpenApp>>(meant);
    auto agreed = [this, command, seen = situation(apps)] { perform(command, seen); };
    if (auto asked = callerQuestion_.consider(command, AppNames::list(apps), std::move(agreed)))
        return *std::move(asked);
    return carryOut(known->verb, command.arguments);
}

RunCommands::Meant RemoteControl::meantBy(const RemoteCommand& command) {
    const bool isByName = command.verb == remote::commandOf(Verb::quit).name;
    return isByName ? run_.meant(command.arguments) : RunCommands::Meant();
}

/// Everything that words like "force" and "confirm" refer to, and the applications meant by name.
std::string RemoteControl::situation(const std::vector<OpenApp>& meant) const {
    const auto& schedule = controller_.schedule.get();
    remote::Json seen{controller_.phase.get().index(),
                      schedule ? schedule->date.time_since_epoch().count() : 0};
    for (const OpenApp& app : controller_.stubborn.get())
        seen.push_back(app.id);
    for (const OpenApp& app : meant)
        seen.push_back(app.id);
    return seen.dump();
}

// The user agreed to the situation at the time of the question, and to no other.
void RemoteControl::perform(RemoteCommand command, const std::string& seen) {
    command.caller = {};
    const auto meant = meantBy(command);
    const auto* apps = std::get_if<std::vector<OpenApp>>(&meant);
    const RemoteAnswer answer =
        apps && seen == situation(*apps)
            ? this->answer(command)
            : refused(localized("Nel frattempo le cose sono cambiate: non faccio niente."));
    if (answer.status != RemoteAnswer::Status::done && schedule_.onAnswer)
        schedule_.onAnswer({.status = ActionAnswer::Status::done, .text = answer.text});
}

RemoteAnswer RemoteControl::carryOut(Verb verb, const std::vector<std::string>& arguments) {
    switch (verb) {
    case Verb::status:
        return status();
    case Verb::quitAll:
        return run_.quitAll(arguments);
    case Verb::quit:
        return run_.quit(arguments);
    case Verb::askAgain:
        return run_.askAgain(arguments);
    case Verb::force:
        return run_.force();
    case Verb::leave:
        return run_.leave();
    case Verb::exclude:
        return exclusions_.exclude(arguments.front());
    case Verb::include:
        return exclusions_.include(arguments.front());
    case Verb::backup:
        return run_.backup(arguments.front());
    case Verb::eject:
        return run_.eject();
    case Verb::schedule:
        return schedule_.schedule(arguments);
    case Verb::postpone:
        return schedule_.postpone(arguments.front());
    case Verb::confirm:
        return schedule_.confirm();
    case Verb::cancel:
        return schedule_.cancel();
    case Verb::anyway:
        return run_.anyway(arguments.front());
    case Verb::memory:
        return schedule_.memory();
    case Verb::actions:
        return ScheduleCommands::listActions();
    case Verb::action:
        return schedule_.act(arguments);
    case Verb::reopen:
        return run_.reopen();
    case Verb::forget:
        return run_.forget();
    case Verb::show:
        return show(arguments);
    // Only velmorctl knows these: no command has them.
    case Verb::help:
    case Verb::version:
    case Verb::watch:
        break;
    }
    return remote::unknownCommand(remote::commandOf(verb).control);
}

RemoteAnswer RemoteControl::status() {
    controller_.refresh();
    return done(remote::encode(source_.status()));
}

RemoteAnswer RemoteControl::show(const std::vector<std::string>& token) {
    if (onShow)
        onShow(token.empty() ? std::string() : token.front());
    return done(remote::Json::object());
}

} // namespace velmorquit
