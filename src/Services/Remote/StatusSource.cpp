#include "Services/Remote/StatusSource.h"

#include "Remote/Fields.h"
#include "Services/SessionEnd/EndTexts.h"
#include "Texts/Shown.h"

namespace velmorquit {

remote::Status StatusSource::status() const {
    const auto& excluded = controller_.excluded.get();
    const MemoryMonitor::SystemMemory& memory = controller_.systemMemory;
    const TimeMachine::Info& backups = controller_.timeMachine;
    std::string limits = EndTexts::outlook(loginWindow_.outlook(LoginRequest::shutDown));
    return {.run = run(),
            .applications = applications(controller_.apps),
            .sight = controller_.sight,
            .stubborn = stubborn(),
            .excluded = {excluded.begin(), excluded.end()},
            .memory = {.used = memory.used, .total = memory.total},
            .afterQuit = controller_.afterQuit,
            .backupFirst = controller_.backupFirst,
            .ejectDrives = controller_.ejectDrives,
            .backups = {.areConfigured = backups.isConfigured, .last = backups.lastBackup},
            .drives = drives(),
            .schedule = schedule(),
            .ending = ending(),
            .limits = limits.empty() ? std::nullopt : std::optional(std::move(limits)),
            .scheduleNote = controller_.scheduleNote.get(),
            .reopenable = controller_.reopenable()};
}

remote::Application StatusSource::application(const OpenApp& app) const {
    return {.name = app.name,
            .id = app.bundleID,
            .process = app.id,
            .memory = app.memory,
            .isExcluded = controller_.isExcluded(app)};
}

std::vector<remote::Application>
StatusSource::applications(const std::vector<OpenApp>& apps) const {
    std::vector<remote::Application> described;
    for (const OpenApp& app : apps)
        described.push_back(application(app));
    return described;
}

std::vector<remote::Application> StatusSource::stubborn() const {
    const auto& reasons = controller_.stayReasons.get();
    std::vector<remote::Application> described = applications(controller_.stubborn);
    for (remote::Application& one : described) {
        if (const auto known = reasons.find(one.process); known != reasons.end())
            one.reason = known->second;
    }
    return described;
}

remote::RunState StatusSource::run() const {
    return {.phase = controller_.phase,
            .continuesAt = controller_.autoContinueAt.get(),
            .note = controller_.resultNote.get(),
            .then = controller_.runningAction};
}

std::vector<remote::Drive> StatusSource::drives() const {
    std::vector<remote::Drive> described;
    for (const ExternalDrives::Drive& drive : controller_.externalDrives.get())
        described.push_back({.name = drive.name, .path = drive.url});
    return described;
}

std::optional<remote::Schedule> StatusSource::schedule() const {
    const auto& schedule = controller_.schedule.get();
    if (!schedule)
        return std::nullopt;
    return remote::Schedule{.date = remote::dateOf(remote::secondsOf(schedule->date)),
                            .then = schedule->action,
                            .asks = schedule->needsConfirmation,
                            .isAwaiting = controller_.awaitingConfirmation};
}

std::optional<remote::Ending> StatusSource::ending() const {
    const EndState& state = loginWindow_.state;
    if (state.stage == EndState::Stage::none)
        return std::nullopt;
    remote::Ending ending{.stage = state.stage,
                          .then = state.request,
                          .text = EndTexts::line(state),
                          .obstacles = {},
                          .list = std::nullopt,
                          .question = {}};
    for (const EndObstacle& obstacle : state.obstacles)
        ending.obstacles.push_back({.kind = obstacle.kind, .name = shownName(obstacle.name)});
    if (state.canBeForced) {
        ending.list = std::to_string(state.list);
        ending.question =
            EndTexts::anywayText(state) + ' ' + EndTexts::anywayQuestion(state.request);
    }
    return ending;
}

} // namespace velmorquit
