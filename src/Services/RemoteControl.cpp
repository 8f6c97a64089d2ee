#include "Services/RemoteControl.h"

#include "Services/Panel/CardTexts.h"
#include "Services/Panel/PanelTexts.h"
#include "Services/RunAnswers.h"
#include "Texts/Localized.h"
#include "Texts/Shown.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace velmorquit {

namespace {

template <class... Cases> struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <class... Cases> Overloaded(Cases...) -> Overloaded<Cases...>;

/// Names come from other programs and are shown whatever bytes they hold.
std::string text(const nlohmann::ordered_json& json) {
    return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

RemoteAnswer done(const nlohmann::ordered_json& json) {
    return {RemoteAnswer::Status::done, text(json)};
}

RemoteAnswer refused(std::string why) { return {RemoteAnswer::Status::refused, std::move(why)}; }

char lowered(char letter) { return letter >= 'A' && letter <= 'Z' ? letter - 'A' + 'a' : letter; }

bool equalIgnoringCase(std::string_view one, std::string_view other) {
    return std::ranges::equal(one, other, {}, lowered, lowered);
}

const char* rawValue(StayReason reason) {
    static constexpr std::array<const char*, 7> names{
        nullptr,        "asking",        "windowless", "cannotBeAsked",
        "busyTerminal", "notResponding", "inTray"};
    return names.at(static_cast<std::size_t>(reason));
}

const char* rawValue(Sight sight) {
    static constexpr std::array<const char*, 4> names{"all", "noWindowList", "incomplete",
                                                      "anotherDisplay"};
    return names.at(static_cast<std::size_t>(sight));
}

/// Since 1970.
std::int64_t seconds(WallTime date) {
    return std::chrono::duration_cast<std::chrono::seconds>(date.time_since_epoch()).count();
}

bool holds(const std::vector<OpenApp>& apps, const OpenApp& wanted) {
    return std::ranges::any_of(apps, [&](const OpenApp& app) { return app.app == wanted.app; });
}

} // namespace

RemoteControl::RemoteControl(QuitController& controller, ActionRunner& actions,
                             const Desktop& desktop)
    : controller_(controller), remote_(desktop.remote), loginWindow_(desktop.loginWindow),
      schedule_({controller, actions, desktop.formats, desktop.kernel},
                [this](const Json& change) { announce(change); }),
      end_(desktop.loginWindow, [this](const Json& change) { announce(change); }),
      callerQuestion_(desktop.loop), knownApps_(controller.apps),
      knownExclusions_(controller.excluded) {
    remote_.serve({.answer = [this](const RemoteCommand& command) { return answer(command); },
                   .mattersWhose = CallerQuestion::isAbout});
    announceChanges();
    subscriptions_.push_back(
        controller_.hearEvents([this](const Event& event) { announce(event); }));
    subscriptions_.push_back(desktop.workspace.observe([this](const WorkspaceChanges& changes) {
        if (hasAnyOf(changes, {WorkspaceEvent::terminated}))
            announceEnds();
    }));
}

RemoteAnswer RemoteControl::answer(const RemoteCommand& command) {
    const auto moment = RunAnswers::momentOf(controller_, loginWindow_.state);
    if (auto why = RunAnswers::refusal(command, moment))
        return refused(std::move(*why));
    auto agreed = [this, command, seen = situation()] { perform(command, seen); };
    if (auto asked = callerQuestion_.consider(command, std::move(agreed)))
        return *std::move(asked);
    return carryOut(command);
}

/// What words like "force" and "confirm" are about.
std::string RemoteControl::situation() const {
    const auto& schedule = controller_.schedule.get();
    Json seen{controller_.phase.get().index(),
              schedule ? schedule->date.time_since_epoch().count() : 0};
    for (const OpenApp& app : controller_.stubborn.get())
        seen.push_back(app.id);
    return seen.dump();
}

// The yes was to what was there when the question was put.
void RemoteControl::perform(RemoteCommand command, const std::string& seen) {
    command.caller = {};
    const RemoteAnswer answer =
        seen == situation()
            ? this->answer(command)
            : refused(localized("Nel frattempo le cose sono cambiate: non faccio niente."));
    if (answer.status != RemoteAnswer::Status::done && schedule_.onAnswer)
        schedule_.onAnswer({.status = ActionAnswer::Status::done, .text = answer.text});
}

RemoteAnswer RemoteControl::carryOut(const RemoteCommand& command) {
    const std::string& verb = command.verb;
    const std::vector<std::string>& arguments = command.arguments;
    const std::size_t count = arguments.size();
    if (verb == "status" && count == 0)
        return status();
    if (verb == "quitAll" && count <= 1)
        return quitAll(arguments);
    if (verb == "force" && count == 0)
        return force();
    if (verb == "askAgain" && count <= 1)
        return askAgain(arguments);
    if (verb == "leave" && count == 0)
        return leave();
    if (verb == "backup" && count == 1)
        return backup(arguments.front());
    if (verb == "eject" && count == 0)
        return eject();
    if (verb == "reopen" && count == 0)
        return reopen();
    if (verb == "forget" && count == 0)
        return forget();
    if ((verb == "exclude" || verb == "include") && count == 1)
        return setExcluded(arguments.front(), verb == "exclude");
    if (verb == "show" && count <= 1) {
        if (onShow)
            onShow(arguments.empty() ? std::string() : arguments.front());
        return done(Json::object());
    }
    auto answer = schedule_.answer(command);
    if (!answer)
        answer = end_.answer(command);
    return answer ? *answer
                  : RemoteAnswer{RemoteAnswer::Status::unknown,
                                 localized("Comando sconosciuto: %@", verb)};
}

RemoteAnswer RemoteControl::status() {
    controller_.refresh();
    Json json = describePhase();
    json["applications"] = describeAll(controller_.apps);
    json["sight"] = rawValue(controller_.sight.get());
    json["stubborn"] = describeStubborn();
    json["excluded"] = controller_.excluded.get();
    const MemoryMonitor::SystemMemory& memory = controller_.systemMemory;
    json["memory"] = {{"used", memory.used}, {"total", memory.total}};
    json["afterQuit"] = rawValue(controller_.afterQuit);
    json["backupFirst"] = controller_.backupFirst.get();
    json["ejectDrives"] = controller_.ejectDrives.get();
    const TimeMachine::Info& backups = controller_.timeMachine;
    json["backups"] = {{"configured", backups.isConfigured},
                       {"last", backups.lastBackup ? Json(seconds(*backups.lastBackup)) : Json()}};
    json["drives"] = describeDrives();
    json["schedule"] = schedule_.describe();
    json["ending"] = end_.describe();
    json["limits"] = end_.limits();
    const auto& scheduleNote = controller_.scheduleNote.get();
    json["scheduleNote"] = scheduleNote ? Json(*scheduleNote) : Json();
    json["reopenable"] = describeSaved(controller_.reopenable());
    json["note"] = controller_.resultNote.get() ? Json(*controller_.resultNote.get()) : Json();
    return done(json);
}

RemoteAnswer RemoteControl::quitAll(const std::vector<std::string>& arguments) {
    const auto action =
        arguments.empty() ? PowerAction::none : powerActionFromRaw(arguments.front());
    if (!action)
        return {RemoteAnswer::Status::unknown,
                localized("Azione sconosciuta: %@", arguments.front())};
    controller_.quitAll(*action);
    return done({{"asked", describeAll(controller_.targets())}, {"then", rawValue(*action)}});
}

RemoteAnswer RemoteControl::force() {
    if (controller_.stubborn->empty())
        return refused(localized("Nessuna app è rimasta aperta."));
    Json forced = describeAll(controller_.stubborn);
    const auto protectedNames = controller_.forceQuitStubborn();
    return done({{"forced", std::move(forced)}, {"refused", protectedNames}});
}

RemoteAnswer RemoteControl::askAgain(const std::vector<std::string>& name) {
    std::vector<OpenApp> apps = controller_.stubborn;
    if (!name.empty())
        apps = named(name.front(), apps);
    if (apps.empty())
        return refused(name.empty()
                           ? localized("Nessuna app è rimasta aperta.")
                           : localized("Nessuna app rimasta aperta si chiama «%@».", name.front()));
    // Being asked twice is an answer to some: it is to be meant.
    if (name.empty() && apps.size() > 1) {
        std::string names;
        for (const OpenApp& app : apps)
            names += (names.empty() ? "" : ", ") + app.name;
        return refused(localized("Di' a quale: %@.", names));
    }
    std::vector<OpenApp> asked;
    std::string text;
    for (const OpenApp& app : apps) {
        if (const auto why = controller_.askAgain(app))
            text += (text.empty() ? "" : "\n") + app.name + ": " + PanelTexts::stayHelp(*why);
        else
            asked.push_back(app);
    }
    if (asked.empty())
        return refused(std::move(text));
    std::string names;
    for (const OpenApp& app : asked)
        names += (names.empty() ? "" : ", ") + app.name;
    const std::string told = localized("Chiedo di nuovo di chiudersi a: %@.", names);
    return done(
        {{"asked", describeAll(asked)}, {"text", text.empty() ? told : told + '\n' + text}});
}

RemoteAnswer RemoteControl::leave() {
    controller_.leaveStubbornOpen();
    return done(describePhase());
}

RemoteAnswer RemoteControl::backup(const std::string& word) {
    using Stop = QuitController::BackupStop;
    using Choice = QuitController::FailureChoice;
    const bool isStop = word == "skip" || word == "cancel";
    if (!isStop && word != "continue" && word != "stop")
        return {RemoteAnswer::Status::unknown, localized("Comando sconosciuto: %@", word)};
    if (isStop)
        controller_.stopBackup(word == "skip" ? Stop::skip : Stop::cancel);
    else
        controller_.resolveBackupFailure(word == "stop" ? Choice::stop : Choice::goOn);
    return done(describePhase());
}

RemoteAnswer RemoteControl::eject() {
    if (controller_.isRunning() || controller_.isEjecting())
        return refused(localized("Velmor Quit è già al lavoro."));
    controller_.refresh();
    if (controller_.externalDrives->empty())
        return refused(localized("Nessun disco esterno collegato."));
    controller_.ejectNow();
    return done({{"drives", describeDrives()}});
}

RemoteAnswer RemoteControl::reopen() {
    const std::vector<SavedApp> apps = controller_.reopenable();
    const std::string lost = CardTexts::notReopenable(controller_.notReopenable());
    std::string text = localized("Non ci sono app da riaprire.");
    if (!apps.empty()) {
        controller_.reopenLastSession();
        text = apps.size() == 1 ? localized("Riapro 1 app.")
                                : localized("Riapro %lld app.", apps.size());
    }
    return done(
        {{"reopened", describeSaved(apps)}, {"text", lost.empty() ? text : text + ' ' + lost}});
}

RemoteAnswer RemoteControl::forget() {
    controller_.forgetLastSession();
    return done({{"reopenable", Json::array()}});
}

RemoteControl::Json RemoteControl::describeSaved(const std::vector<SavedApp>& apps) {
    Json list = Json::array();
    for (const SavedApp& app : apps)
        list.push_back({{"name", app.name}, {"path", app.path}});
    return list;
}

RemoteControl::Json RemoteControl::describeDrives() const {
    Json drives = Json::array();
    for (const ExternalDrives::Drive& drive : controller_.externalDrives.get())
        drives.push_back({{"name", drive.name}, {"path", drive.url}});
    return drives;
}

RemoteAnswer RemoteControl::setExcluded(const std::string& name, bool isExcluded) {
    // A stored key is meant before an application that is called alike.
    if (!isExcluded && controller_.includeAgain(name))
        return done({{"key", name}, {"excluded", false}});
    const auto apps = named(name, controller_.apps);
    if (apps.empty() && !isExcluded)
        return includeShown(name);
    if (apps.empty())
        return refused(localized("Nessuna app aperta si chiama «%@».", name));
    const std::string& key = apps.front().exclusionKey();
    for (const OpenApp& app : apps) {
        if (app.exclusionKey() != key)
            return refused(localized("Più app si chiamano «%@»: indica l'id di una.", name));
    }
    if (controller_.isExcluded(apps.front()) != isExcluded)
        controller_.toggleExclusion(apps.front());
    return done({{"key", key}, {"excluded", isExcluded}});
}

/// One that doesn't run is known to a person as it was shown.
RemoteAnswer RemoteControl::includeShown(const std::string& name) {
    std::vector<std::string> keys;
    std::ranges::copy_if(controller_.excluded.get(), std::back_inserter(keys),
                         [&](const std::string& key) { return shownName(key) == name; });
    if (keys.size() > 1)
        return refused(localized("Più app si chiamano «%@»: indica l'id di una.", name));
    if (keys.empty() || !controller_.includeAgain(keys.front()))
        return refused(localized("Nessuna app aperta si chiama «%@».", name));
    return done({{"key", keys.front()}, {"excluded", false}});
}

/// Those of the applications that a person means by `name`: the first way of reading it that fits
/// any.
std::vector<OpenApp> RemoteControl::named(const std::string& name,
                                          const std::vector<OpenApp>& apps) {
    const auto matching = [&](auto fits) {
        std::vector<OpenApp> found;
        std::ranges::copy_if(apps, std::back_inserter(found), fits);
        return found;
    };
    auto found = matching([&](const OpenApp& app) { return app.exclusionKey() == name; });
    if (found.empty())
        found = matching([&](const OpenApp& app) { return equalIgnoringCase(app.name, name); });
    if (found.empty()) {
        found = matching(
            [&](const OpenApp& app) { return equalIgnoringCase(app.exclusionKey(), name); });
    }
    if (found.empty())
        found = matching([&](const OpenApp& app) { return std::to_string(app.id) == name; });
    return found;
}

RemoteControl::Json RemoteControl::describe(const OpenApp& app) const {
    return {{"name", app.name},
            {"id", app.bundleID ? Json(*app.bundleID) : Json()},
            {"process", app.id},
            {"memory", app.memory},
            {"excluded", controller_.isExcluded(app)}};
}

RemoteControl::Json RemoteControl::describeAll(const std::vector<OpenApp>& apps) const {
    Json list = Json::array();
    for (const OpenApp& app : apps)
        list.push_back(describe(app));
    return list;
}

RemoteControl::Json RemoteControl::describeStubborn() const {
    Json list = Json::array();
    const auto& reasons = controller_.stayReasons.get();
    for (const OpenApp& app : controller_.stubborn.get()) {
        const auto known = reasons.find(app.id);
        const char* reason = known == reasons.end() ? nullptr : rawValue(known->second);
        list.push_back(describe(app));
        list.back()["reason"] = reason ? Json(reason) : Json();
    }
    return list;
}

RemoteControl::Json RemoteControl::describePhase() const {
    const auto& until = controller_.autoContinueAt.get();
    const auto& note = controller_.resultNote.get();
    return std::visit(
        Overloaded{[](phases::Idle) { return Json{{"phase", "idle"}}; },
                   [](phases::Quitting quitting) {
                       return Json{{"phase", "quitting"}, {"total", quitting.total}};
                   },
                   [](phases::Waiting) { return Json{{"phase", "waiting"}}; },
                   [](const phases::BackingUp& backup) {
                       return Json{{"phase", "backingUp"},
                                   {"fraction", backup.fraction ? Json(*backup.fraction) : Json()}};
                   },
                   [&](const phases::BackupFailed& failed) {
                       return Json{{"phase", "backupFailed"},
                                   {"reason", failed.reason},
                                   {"continuesAt", until ? Json(seconds(*until)) : Json()}};
                   },
                   [](phases::Ejecting) { return Json{{"phase", "ejecting"}}; },
                   [&](phases::Done done) {
                       return Json{{"phase", "done"},
                                   {"closed", done.closed},
                                   {"freed", done.freed},
                                   {"note", note ? Json(*note) : Json()},
                                   {"then", velmorquit::rawValue(controller_.runningAction)}};
                   }},
        controller_.phase.get());
}

void RemoteControl::announceChanges() {
    subscriptions_.push_back(controller_.apps.subscribe([this] { announceApps(); }));
    subscriptions_.push_back(controller_.excluded.subscribe([this] { announceExclusions(); }));
    subscriptions_.push_back(controller_.stubborn.subscribe([this] { announceStubborn(); }));
    subscriptions_.push_back(controller_.stayReasons.subscribe([this] { announceStubborn(); }));
    subscriptions_.push_back(controller_.phase.subscribe([this] {
        Json change = {{"change", "phase"}};
        change.update(describePhase());
        announce(change);
    }));
}

void RemoteControl::announceApps() {
    const std::vector<OpenApp> before = std::exchange(knownApps_, controller_.apps);
    for (const OpenApp& app : before) {
        if (holds(knownApps_, app))
            continue;
        const bool hasEnded = app.app->isTerminated();
        announce({{"change", hasEnded ? "closed" : "windowless"}, {"application", describe(app)}});
        if (!hasEnded)
            windowless_.push_back(app);
    }
    for (const OpenApp& app : knownApps_) {
        if (holds(before, app))
            continue;
        announce({{"change", "opened"}, {"application", describe(app)}});
        std::erase_if(windowless_, [&](const OpenApp& one) { return one.app == app.app; });
    }
}

/// The list of open applications doesn't change any more when one of these ends.
void RemoteControl::announceEnds() {
    for (const OpenApp& app : windowless_) {
        if (app.app->isTerminated())
            announce({{"change", "closed"}, {"application", describe(app)}});
    }
    std::erase_if(windowless_, [](const OpenApp& app) { return app.app->isTerminated(); });
}

/// Told when the list changes, or why somebody is on it, once for both.
void RemoteControl::announceStubborn() {
    Json stubborn = describeStubborn();
    if (stubborn == knownStubborn_)
        return;
    knownStubborn_ = stubborn;
    announce({{"change", "stubborn"}, {"applications", std::move(stubborn)}});
}

void RemoteControl::announceExclusions() {
    const std::set<std::string> before = std::exchange(knownExclusions_, controller_.excluded);
    for (const std::string& key : before) {
        if (!knownExclusions_.contains(key))
            announce({{"change", "included"}, {"key", key}});
    }
    for (const std::string& key : knownExclusions_) {
        if (!before.contains(key))
            announce({{"change", "excluded"}, {"key", key}});
    }
}

void RemoteControl::announce(const Event& event) {
    Json change = std::visit(
        Overloaded{
            [](events::QuitDone quit) {
                return Json{{"event", "quitDone"}, {"closed", quit.closed}};
            },
            [](events::StubbornApps) { return Json{{"event", "stubbornApps"}}; },
            [](events::BackupStarted) { return Json{{"event", "backupStarted"}}; },
            [](events::BackupProgress progress) {
                return Json{{"event", "backupProgress"}, {"fraction", progress.fraction}};
            },
            [](events::BackupFinished finished) {
                return Json{{"event", "backupFinished"}, {"success", finished.success}};
            },
            [](const events::DisksEjected& ejected) {
                return Json{{"event", "disksEjected"},
                            {"count", ejected.count},
                            {"failed", ejected.failed}};
            },
            [](events::ConfirmationNeeded) { return Json{{"event", "confirmationNeeded"}}; }},
        event);
    Json told = {{"change", "event"}};
    told.update(change);
    announce(told);
}

void RemoteControl::announce(const Json& change) { remote_.announce(text(change)); }

} // namespace velmorquit
