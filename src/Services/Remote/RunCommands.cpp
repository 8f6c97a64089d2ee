#include "Services/Remote/RunCommands.h"

#include "Model/AppTexts.h"
#include "Remote/AnswerJson.h"
#include "Services/Panel/CardTexts.h"
#include "Services/Remote/Answers.h"
#include "Services/Remote/AppNames.h"
#include "Services/RunAnswers.h"

#include <algorithm>

namespace velmorquit {

using remote::done;
using remote::refused;

namespace {

void addLine(std::string& text, const std::string& line) {
    text += (text.empty() ? "" : "\n") + line;
}

} // namespace

RemoteAnswer RunCommands::quitAll(const Words& words) {
    const auto action = words.empty() ? PowerAction::none : powerActionFromRaw(words.front());
    if (!action)
        return remote::unknownAction(words.front());
    controller_.quitAll(*action);
    return done(remote::encodeAsked(source_.applications(controller_.targets()), *action));
}

RunCommands::Meant RunCommands::meant(const Words& names) {
    controller_.refresh();
    std::vector<OpenApp> all;
    for (const std::string& name : names) {
        auto apps = AppNames::one(name, AppNames::named(name, controller_.apps));
        if (auto* several = std::get_if<std::string>(&apps))
            return *std::move(several);
        const auto& found = std::get<std::vector<OpenApp>>(apps);
        if (found.empty())
            return AppNames::noneIsOpen(name);
        for (const OpenApp& app : found) {
            if (std::ranges::find(all, app.id, &OpenApp::id) == all.end())
                all.push_back(app);
        }
    }
    return all;
}

RemoteAnswer RunCommands::quit(const Words& names) {
    const auto apps = meant(names);
    if (const auto* why = std::get_if<std::string>(&apps))
        return refused(*why);
    const AskSome::Result result = some_.ask(std::get<std::vector<OpenApp>>(apps));
    std::string text;
    if (!result.asked.empty())
        text = localized("Chiedo di chiudersi a: %@.", AppNames::list(result.asked));
    std::vector<remote::Application> notAsked;
    for (const AskSome::Result::NotAsked& one : result.notAsked) {
        addLine(text, one.app.name + ": " + stayHelp(one.why));
        notAsked.push_back(source_.application(one.app));
        notAsked.back().reason = one.why;
    }
    if (result.asked.empty())
        return refused(std::move(text));
    return done(remote::encodeAsked(source_.applications(result.asked), notAsked, text));
}

RemoteAnswer RunCommands::force() {
    if (controller_.stubborn->empty())
        return refused(localized(RunAnswers::noneStayed));
    const auto forced = source_.applications(controller_.stubborn);
    const auto protectedNames = controller_.forceQuitStubborn();
    return done(remote::encodeForced(forced, protectedNames));
}

RemoteAnswer RunCommands::askAgain(const Words& name) {
    std::vector<OpenApp> apps = controller_.stubborn;
    if (!name.empty()) {
        auto found = AppNames::named(name.front(), apps);
        if (found.empty())
            return refused(localized("Nessuna app rimasta aperta si chiama «%@».", name.front()));
        if (!AppNames::areCalledAlike(found))
            return refused(AppNames::severalBegin(name.front(), AppNames::list(found)));
        apps = std::move(found);
    }
    if (apps.empty())
        return refused(localized(RunAnswers::noneStayed));
    // Some take a second request as an answer, so it must be deliberate.
    const std::string names = AppNames::list(apps);
    if (name.empty() && apps.size() > 1)
        return refused(localized("Di' a quale: %@.", names));
    std::vector<OpenApp> asked;
    std::string text;
    for (const OpenApp& app : apps) {
        if (const auto why = controller_.askAgain(app))
            addLine(text, app.name + ": " + stayHelp(*why));
        else
            asked.push_back(app);
    }
    if (asked.empty())
        return refused(std::move(text));
    std::string told = localized("Chiedo di nuovo di chiudersi a: %@.", AppNames::list(asked));
    if (!text.empty())
        addLine(told, text);
    return done(remote::encodeAsked(source_.applications(asked), told));
}

RemoteAnswer RunCommands::leave() {
    controller_.leaveStubbornOpen();
    return done(remote::encode(source_.run()));
}

RemoteAnswer RunCommands::backup(const std::string& word) {
    using Stop = QuitController::BackupStop;
    using Choice = QuitController::FailureChoice;
    if (word == "skip" || word == "cancel")
        controller_.stopBackup(word == "skip" ? Stop::skip : Stop::cancel);
    else if (word == "continue" || word == "stop")
        controller_.resolveBackupFailure(word == "stop" ? Choice::stop : Choice::goOn);
    else
        return remote::unknownCommand(word);
    return done(remote::encode(source_.run()));
}

RemoteAnswer RunCommands::eject() {
    if (controller_.isRunning() || controller_.isEjecting())
        return refused(localized(RunAnswers::alreadyAtWork));
    controller_.refresh();
    if (controller_.externalDrives->empty())
        return refused(localized("Nessun disco esterno collegato."));
    controller_.ejectNow();
    return done({{"drives", remote::encode(source_.drives())}});
}

RemoteAnswer RunCommands::reopen() {
    const std::vector<SavedApp> apps = controller_.reopenable();
    const std::string lost = CardTexts::notReopenable(controller_.notReopenable());
    std::string text = localized(RunAnswers::nothingToReopen);
    if (!apps.empty()) {
        controller_.reopenLastSession();
        text = RunAnswers::reopening(apps.size());
    }
    return done(
        {{"reopened", remote::encode(apps)}, {"text", lost.empty() ? text : text + ' ' + lost}});
}

RemoteAnswer RunCommands::forget() {
    controller_.forgetLastSession();
    return done({{"reopenable", remote::Json::array()}});
}

RemoteAnswer RunCommands::anyway(const std::string& list) {
    const EndState& state = loginWindow_.state;
    const bool isMeant = std::to_string(state.list) == list;
    if (!isMeant || !loginWindow_.endAnyway(state.list))
        return refused(localized(RunAnswers::othersStay));
    return done(remote::Json::object());
}

} // namespace velmorquit
