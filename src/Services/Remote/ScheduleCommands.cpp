#include "Services/Remote/ScheduleCommands.h"

#include "Remote/AnswerJson.h"
#include "Services/MemoryMonitor.h"
#include "Services/Remote/Answers.h"
#include "Services/RunAnswers.h"
#include "Texts/Localized.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace velmorquit {

using remote::done;
using remote::Json;
using remote::refused;

namespace {

constexpr int longestPostponement = 600;

RemoteAnswer said(const std::string& text) { return done(remote::encodeText(text)); }

/// A whole number and nothing else.
std::optional<int> numberFrom(std::string_view text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = error == std::errc{} && end == text.data() + text.size();
    return isWhole ? std::optional(number) : std::nullopt;
}

/// "23:05", and "7:05" too.
std::optional<ClockTime> clockTimeFrom(std::string_view text) {
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos || text.size() - colon != 3)
        return std::nullopt;
    const auto hour = numberFrom(text.substr(0, colon));
    const auto minute = numberFrom(text.substr(colon + 1));
    if (!hour || !minute || *hour < 0 || *hour > 23 || *minute < 0 || *minute > 59)
        return std::nullopt;
    return ClockTime{*hour, *minute};
}

} // namespace

RemoteAnswer ScheduleCommands::schedule(const Words& words) {
    const auto action = powerActionFromRaw(words[2]);
    if (!action)
        return remote::unknownAction(words[2]);
    QuitController& controller = surroundings_.controller;
    const WallTime now = controller.mainLoop().now();
    WallTime date;
    if (words[0] == "minutes") {
        const auto minutes = numberFrom(words[1]);
        const auto problem =
            problemOf({.kind = ActionKind::scheduleQuit, .minutes = minutes.value_or(0)});
        if (problem)
            return refused(*problem);
        date = now + std::chrono::minutes(*minutes);
    } else if (words[0] == "at") {
        const auto time = clockTimeFrom(words[1]);
        if (!time)
            return refused(localized("L'ora si scrive così: 23:05."));
        date = surroundings_.formats.nextOccurrence(*time, now);
    } else {
        return remote::unknownCommand(words[0]);
    }
    controller.scheduleQuit(date, *action);
    return said(scheduledText(date, *action, surroundings_.formats));
}

RemoteAnswer ScheduleCommands::postpone(const std::string& minutes) {
    QuitController& controller = surroundings_.controller;
    const auto number = numberFrom(minutes);
    if (!number || *number < 1 || *number > longestPostponement)
        return refused(localized("I minuti vanno da %lld a %lld.", 1, longestPostponement));
    if (!controller.schedule.get())
        return refused(localized(RunAnswers::nothingScheduled));
    controller.postponeSchedule(*number);
    const ScheduledQuit& schedule = *controller.schedule.get();
    return said(scheduledText(schedule.date, schedule.action, surroundings_.formats));
}

RemoteAnswer ScheduleCommands::confirm() {
    QuitController& controller = surroundings_.controller;
    if (!controller.awaitingConfirmation)
        return refused(localized("Nessuna chiusura aspetta una conferma."));
    controller.confirmScheduledQuit();
    return said(localized("Confermata: chiudo le app."));
}

RemoteAnswer ScheduleCommands::cancel() {
    QuitController& controller = surroundings_.controller;
    const bool hadSchedule = controller.schedule.get().has_value();
    controller.cancelSchedule();
    const bool hadAction = controller.cancelPowerAction();
    // A run that has begun is not cancelled.
    if (hadAction)
        return said(remote::givenUpText());
    return said(hadSchedule ? localized(RunAnswers::scheduleCancelled)
                            : localized(RunAnswers::nothingScheduled));
}

RemoteAnswer ScheduleCommands::memory() {
    const MemoryMonitor::SystemMemory memory = MemoryMonitor::system(surroundings_.kernel);
    const ActionAnswer answer = memoryAnswer(memory, surroundings_.formats);
    return done({{"text", answer.text},
                 {"used", memory.used},
                 {"total", memory.total},
                 {"percent", answer.value.value_or(0)}});
}

RemoteAnswer ScheduleCommands::listActions() {
    Json list = Json::array();
    for (const ActionDescription& action : allActions()) {
        Json described = remote::encodeAction(action.name, action.title);
        described["shortTitle"] = action.shortTitle;
        described["summary"] = action.summary;
        described["phrases"] = action.phrases;
        described["symbol"] = action.symbol;
        described["parameters"] = Json::object();
        if (const auto& minutes = action.minutes) {
            described["parameters"]["minutes"] = {{"title", minutes->title},
                                                  {"default", minutes->fallback},
                                                  {"lowest", minutes->lowest},
                                                  {"highest", minutes->highest}};
        }
        if (const auto& then = action.then) {
            Json choices = Json::object();
            for (const AfterQuit choice : allAfterQuits)
                choices[std::string(rawValue(choice))] = displayTitle(choice);
            described["parameters"]["then"] = {{"title", then->title},
                                               {"type", localized("Dopo la chiusura")},
                                               {"default", rawValue(then->fallback)},
                                               {"choices", choices}};
        }
        list.push_back(std::move(described));
    }
    return done(remote::encodeActions(std::move(list)));
}

RemoteAnswer ScheduleCommands::act(const Words& words) {
    auto request = actionNamed(words.front());
    if (!request)
        return remote::unknownAction(words.front());
    for (std::size_t index = 1; index < words.size(); ++index) {
        const std::string_view argument = words[index];
        const std::size_t sign = argument.find('=');
        const std::string_view value = argument.substr(std::min(sign, argument.size() - 1) + 1);
        const auto minutes = numberFrom(value);
        const auto then = afterQuitFromRaw(value);
        if (argument.starts_with("minutes=") && minutes)
            request->minutes = *minutes;
        else if (argument.starts_with("then=") && then)
            request->then = *then;
        else
            return remote::unknownCommand(words[index]);
    }
    if (const auto problem = problemOf(*request))
        return refused(*problem);
    surroundings_.actions.perform(
        *request,
        [this](const std::string& question, const std::string& button,
               std::function<void(bool)> answer) {
            if (onConfirm)
                onConfirm(question, button, std::move(answer));
            else
                answer(false);
        },
        [this](const ActionAnswer& answer) {
            if (onAnswer && !answer.text.empty())
                onAnswer(answer);
        });
    return done(Json::object());
}

} // namespace velmorquit
