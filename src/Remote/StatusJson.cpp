#include "Remote/StatusJson.h"

#include "Model/RawValues.h"

#include <algorithm>
#include <array>

namespace velmorquit::remote {

namespace {

/// In the order of the variant.
constexpr std::array<const char*, std::variant_size_v<Phase>> phaseNames{
    "idle", "quitting", "waiting", "backingUp", "backupFailed", "ejecting", "done"};

/// For drives and for applications to reopen.
template <class Element> Json namesAndPaths(const std::vector<Element>& elements) {
    Json list = Json::array();
    for (const Element& element : elements)
        list.push_back({{"name", element.name}, {"path", element.path}});
    return list;
}

template <class Element> Element nameAndPath(const Json& json) {
    const Fields fields(json);
    return {.name = fields.text("name"), .path = fields.text("path")};
}

PowerAction actionIn(const Fields& fields) {
    return powerActionFromRaw(fields.text("then")).value_or(PowerAction::none);
}

} // namespace

Json encode(const Application& application) {
    return {{"name", application.name},
            {"id", encode(application.id)},
            {"process", application.process},
            {"memory", application.memory},
            {"excluded", application.isExcluded}};
}

Json encode(const std::vector<Application>& applications) {
    Json list = Json::array();
    for (const Application& application : applications)
        list.push_back(encode(application));
    return list;
}

Json encodeStubborn(const std::vector<Application>& applications) {
    Json list = Json::array();
    for (const Application& application : applications) {
        const std::string_view reason = rawValue(application.reason);
        list.push_back(encode(application));
        list.back()["reason"] = reason.empty() ? Json() : Json(reason);
    }
    return list;
}

Application decodeApplication(const Json& json) {
    const Fields fields(json);
    return {.name = fields.text("name"),
            .id = fields.optionalText("id"),
            .process = fields.number<ProcessId>("process"),
            .memory = fields.number<std::uint64_t>("memory"),
            .isExcluded = fields.flag("excluded"),
            .reason = stayReasonFromRaw(fields.text("reason"))};
}

std::vector<Application> decodeApplications(const Json& json, const char* key) {
    return Fields(json).list(key, decodeApplication);
}

Json encode(const RunState& run) {
    Json json{{"phase", phaseNames.at(run.phase.index())}};
    if (const auto* quitting = std::get_if<phases::Quitting>(&run.phase)) {
        json["total"] = quitting->total;
    } else if (const auto* backup = std::get_if<phases::BackingUp>(&run.phase)) {
        json["fraction"] = backup->fraction ? Json(*backup->fraction) : Json();
    } else if (const auto* failed = std::get_if<phases::BackupFailed>(&run.phase)) {
        json["reason"] = failed->reason;
        json["continuesAt"] = encode(run.continuesAt);
    } else if (const auto* done = std::get_if<phases::Done>(&run.phase)) {
        json["closed"] = done->closed;
        json["freed"] = done->freed;
        json["note"] = encode(run.note);
        json["then"] = rawValue(run.then);
    }
    return json;
}

RunState decodeRun(const Json& json) {
    const Fields fields(json);
    const auto name = std::ranges::find(phaseNames, fields.text("phase"));
    RunState run{.phase = phases::Idle(),
                 .continuesAt = fields.date("continuesAt"),
                 .note = fields.optionalText("note"),
                 .then = actionIn(fields)};
    const std::array<Phase, phaseNames.size()> read{
        phases::Idle(),
        phases::Quitting{fields.number<int>("total")},
        phases::Waiting(),
        phases::BackingUp{fields.fraction("fraction")},
        phases::BackupFailed{fields.text("reason")},
        phases::Ejecting(),
        phases::Done{.closed = fields.number<int>("closed"),
                     .freed = fields.number<std::uint64_t>("freed")}};
    if (name != phaseNames.end())
        run.phase = read.at(static_cast<std::size_t>(name - phaseNames.begin()));
    return run;
}

Json encode(const std::optional<Schedule>& schedule) {
    if (!schedule)
        return nullptr;
    return {{"date", secondsOf(schedule->date)},
            {"then", rawValue(schedule->then)},
            {"asks", schedule->asks},
            {"awaiting", schedule->isAwaiting}};
}

std::optional<Schedule> decodeSchedule(const Json& json) {
    if (!json.is_object())
        return std::nullopt;
    const Fields fields(json);
    return Schedule{.date = fields.date("date").value_or(dateOf(0)),
                    .then = actionIn(fields),
                    .asks = fields.flag("asks"),
                    .isAwaiting = fields.flag("awaiting")};
}

Json encode(const std::optional<Ending>& ending) {
    if (!ending)
        return nullptr;
    Json obstacles = Json::array();
    for (const Ending::Obstacle& obstacle : ending->obstacles)
        obstacles.push_back({{"kind", rawValue(obstacle.kind)}, {"name", obstacle.name}});
    Json json{{"stage", rawValue(ending->stage)},
              {"then", rawValue(ending->then)},
              {"text", ending->text},
              {"obstacles", std::move(obstacles)},
              {"list", encode(ending->list)}};
    if (ending->list)
        json["question"] = ending->question;
    return json;
}

std::optional<Ending> decodeEnding(const Json& json) {
    if (!json.is_object())
        return std::nullopt;
    const Fields fields(json);
    return Ending{.stage = endStageFromRaw(fields.text("stage")),
                  .then = loginRequestFromRaw(fields.text("then")).value_or(LoginRequest::shutDown),
                  .text = fields.text("text"),
                  .obstacles = fields.list("obstacles",
                                           [](const Json& obstacle) {
                                               const Fields one(obstacle);
                                               return Ending::Obstacle{
                                                   .kind = obstacleKindFromRaw(one.text("kind")),
                                                   .name = one.text("name")};
                                           }),
                  .list = fields.optionalText("list"),
                  .question = fields.text("question")};
}

Json encode(const std::vector<Drive>& drives) { return namesAndPaths(drives); }

Json encode(const std::vector<SavedApp>& apps) { return namesAndPaths(apps); }

Json encode(const Status& status) {
    Json json = encode(status.run);
    json["applications"] = encode(status.applications);
    json["sight"] = rawValue(status.sight);
    json["stubborn"] = encodeStubborn(status.stubborn);
    json["excluded"] = status.excluded;
    json["memory"] = {{"used", status.memory.used}, {"total", status.memory.total}};
    json["afterQuit"] = rawValue(status.afterQuit);
    json["backupFirst"] = status.backupFirst;
    json["ejectDrives"] = status.ejectDrives;
    json["backups"] = {{"configured", status.backups.areConfigured},
                       {"last", encode(status.backups.last)}};
    json["drives"] = encode(status.drives);
    json["schedule"] = encode(status.schedule);
    json["ending"] = encode(status.ending);
    json["limits"] = encode(status.limits);
    json["scheduleNote"] = encode(status.scheduleNote);
    json["reopenable"] = encode(status.reopenable);
    json["note"] = encode(status.run.note);
    return json;
}

Status decodeStatus(const Json& json) {
    const Fields fields(json);
    const Fields memory(fields.at("memory"));
    const Fields backups(fields.at("backups"));
    return {.run = decodeRun(json),
            .applications = fields.list("applications", decodeApplication),
            .sight = sightFromRaw(fields.text("sight")),
            .stubborn = fields.list("stubborn", decodeApplication),
            .excluded = fields.texts("excluded"),
            .memory = {.used = memory.number<std::uint64_t>("used"),
                       .total = memory.number<std::uint64_t>("total")},
            .afterQuit = powerActionFromRaw(fields.text("afterQuit")).value_or(PowerAction::none),
            .backupFirst = fields.flag("backupFirst"),
            .ejectDrives = fields.flag("ejectDrives"),
            .backups = {.areConfigured = backups.flag("configured"), .last = backups.date("last")},
            .drives = fields.list("drives", nameAndPath<Drive>),
            .schedule = decodeSchedule(fields.at("schedule")),
            .ending = decodeEnding(fields.at("ending")),
            .limits = fields.optionalText("limits"),
            .scheduleNote = fields.optionalText("scheduleNote"),
            .reopenable = fields.list("reopenable", nameAndPath<SavedApp>)};
}

bool isStatus(const Json& json) { return Fields(json).at("phase").is_string(); }

} // namespace velmorquit::remote
