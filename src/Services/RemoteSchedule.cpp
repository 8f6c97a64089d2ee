#include "Services/RemoteSchedule.h"

#include "Services/MemoryMonitor.h"
#include "Texts/Localized.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace velmorquit {

namespace {

using Json = RemoteSchedule::Json;

constexpr int longestPostponement = 600;

RemoteAnswer done(const Json& json) {
    return {RemoteAnswer::Status::done, json.dump(-1, ' ', false, Json::error_handler_t::replace)};
}
RemoteAnswer said(const std::string& text) { return done({{"text", text}}); }
RemoteAnswer refused(std::string why) { return {RemoteAnswer::Status::refused, std::move(why)}; }
RemoteAnswer unknown(const std::string& what) {
    return {RemoteAnswer::Status::unknown, localized("Comando sconosciuto: %@", what)};
}

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

/// Since 1970.
std::int64_t seconds(WallTime date) {
    return std::chrono::duration_cast<std::chrono::seconds>(date.time_since_epoch()).count();
}

} // namespace

RemoteSchedule::RemoteSchedule(const Surroundings& surroundings, Announce announce)
    : surroundings_(surroundings), announce_(std::move(announce)) {
    QuitController& controller = surroundings_.controller;
    const auto tell = [this] {
        Json now = describe();
        if (now == known_)
            return;
        known_ = std::move(now);
        announce_({{"change", "schedule"}, {"schedule", known_}});
    };
    subscriptions_.push_back(controller.hearCalls([this] { announceAttention(); }));
    subscriptions_.push_back(controller.schedule.subscribe(tell));
    subscriptions_.push_back(controller.awaitingConfirmation.subscribe(tell));
    subscriptions_.push_back(controller.scheduleNote.subscribe([this, &controller] {
        if (const auto& note = controller.scheduleNote.get())
            announce_({{"change", "scheduleNote"}, {"note", *note}});
    }));
}

std::optional<RemoteAnswer> RemoteSchedule::answer(const RemoteCommand& command) {
    const std::string& verb = command.verb;
    const std::vector<std::string>& arguments = command.arguments;
    const std::size_t count = arguments.size();
    if (verb == "schedule" && count == 3)
        return schedule(arguments);
    if (verb == "postpone" && count == 1)
        return postpone(arguments.front());
    if (verb == "confirm" && count == 0)
        return confirm();
    if (verb == "cancel" && count == 0)
        return cancel();
    if (verb == "memory" && count == 0)
        return memory();
    if (verb == "actions" && count == 0)
        return listActions();
    if (verb == "action" && count >= 1)
        return act(arguments);
    return std::nullopt;
}

RemoteSchedule::Json RemoteSchedule::describe() const {
    const auto& schedule = surroundings_.controller.schedule.get();
    if (!schedule)
        return nullptr;
    return {{"date", seconds(schedule->date)},
            {"then", rawValue(schedule->action)},
            {"asks", schedule->needsConfirmation},
            {"awaiting", surroundings_.controller.awaitingConfirmation.get()}};
}

void RemoteSchedule::announceAttention() {
    const auto& schedule = surroundings_.controller.schedule.get();
    if (!schedule)
        return;
    const auto left = schedule->date - surroundings_.controller.mainLoop().now();
    const auto whole = std::chrono::ceil<std::chrono::seconds>(left).count();
    announce_({{"change", "attention"}, {"seconds", std::max<std::int64_t>(whole, 0)}});
}

RemoteAnswer RemoteSchedule::schedule(const std::vector<std::string>& arguments) {
    const auto action = powerActionFromRaw(arguments[2]);
    if (!action)
        return {RemoteAnswer::Status::unknown, localized("Azione sconosciuta: %@", arguments[2])};
    QuitController& controller = surroundings_.controller;
    const WallTime now = controller.mainLoop().now();
    WallTime date;
    if (arguments[0] == "minutes") {
        const auto minutes = numberFrom(arguments[1]);
        const auto problem =
            problemOf({.kind = ActionKind::scheduleQuit, .minutes = minutes.value_or(0)});
        if (problem)
            return refused(*problem);
        date = now + std::chrono::minutes(*minutes);
    } else if (arguments[0] == "at") {
        const auto time = clockTimeFrom(arguments[1]);
        if (!time)
            return refused(localized("L'ora si scrive così: 23:05."));
        date = surroundings_.formats.nextOccurrence(*time, now);
    } else {
        return unknown(arguments[0]);
    }
    controller.scheduleQuit(date, *action);
    return said(scheduledText(date, *action, surroundings_.formats));
}

RemoteAnswer RemoteSchedule::postpone(const std::string& minutes) {
    QuitController& controller = surroundings_.controller;
    const auto number = numberFrom(minutes);
    if (!number || *number < 1 || *number > longestPostponement)
        return refused(localized("I minuti vanno da %lld a %lld.", 1, longestPostponement));
    if (!controller.schedule.get())
        return refused(localized("Non c'è nessuna chiusura programmata."));
    controller.postponeSchedule(*number);
    const ScheduledQuit& schedule = *controller.schedule.get();
    return said(scheduledText(schedule.date, schedule.action, surroundings_.formats));
}

RemoteAnswer RemoteSchedule::confirm() {
    QuitController& controller = surroundings_.controller;
    if (!controller.awaitingConfirmation)
        return refused(localized("Nessuna chiusura aspetta una conferma."));
    controller.confirmScheduledQuit();
    return said(localized("Confermata: chiudo le app."));
}

RemoteAnswer RemoteSchedule::cancel() {
    QuitController& controller = surroundings_.controller;
    const bool hadSchedule = controller.schedule.get().has_value();
    controller.cancelSchedule();
    const bool hadAction = controller.cancelPowerAction();
    // A run that has begun goes on.
    if (hadAction)
        return said(localized("Annullato: non spengo, non riavvio e non esco."));
    return said(hadSchedule ? localized("Annullata: non chiudo niente.")
                            : localized("Non c'è nessuna chiusura programmata."));
}

RemoteAnswer RemoteSchedule::memory() {
    const MemoryMonitor::SystemMemory memory = MemoryMonitor::system(surroundings_.kernel);
    const ActionAnswer answer = memoryAnswer(memory, surroundings_.formats);
    return done({{"text", answer.text},
                 {"used", memory.used},
                 {"total", memory.total},
                 {"percent", answer.value.value_or(0)}});
}

RemoteAnswer RemoteSchedule::listActions() {
    Json list = Json::array();
    for (const ActionDescription& action : allActions()) {
        Json described = {{"name", action.name},
                          {"title", action.title},
                          {"shortTitle", action.shortTitle},
                          {"summary", action.summary},
                          {"phrases", action.phrases},
                          {"symbol", action.symbol},
                          {"parameters", Json::object()}};
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
    return done({{"actions", list}});
}

RemoteAnswer RemoteSchedule::act(const std::vector<std::string>& arguments) {
    auto request = actionNamed(arguments.front());
    if (!request)
        return {RemoteAnswer::Status::unknown,
                localized("Azione sconosciuta: %@", arguments.front())};
    for (std::size_t index = 1; index < arguments.size(); ++index) {
        const std::string_view argument = arguments[index];
        const std::size_t sign = argument.find('=');
        const std::string_view value = argument.substr(std::min(sign, argument.size() - 1) + 1);
        const auto minutes = numberFrom(value);
        const auto then = afterQuitFromRaw(value);
        if (argument.starts_with("minutes=") && minutes)
            request->minutes = *minutes;
        else if (argument.starts_with("then=") && then)
            request->then = *then;
        else
            return unknown(arguments[index]);
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
