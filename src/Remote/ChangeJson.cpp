#include "Remote/ChangeJson.h"

#include <algorithm>
#include <array>

namespace velmorquit::remote {

namespace {

// In the order of the variant.
constexpr std::array<const char*, std::variant_size_v<Event>> eventNames{
    "quitDone",       "stubbornApps", "backupStarted",     "backupProgress",
    "backupFinished", "disksEjected", "confirmationNeeded"};

std::optional<Event> decodeEvent(const Fields& fields) {
    const std::array<Event, eventNames.size()> read{
        events::QuitDone{fields.number<int>("closed")},
        events::StubbornApps(),
        events::BackupStarted(),
        events::BackupProgress{fields.fraction("fraction").value_or(0)},
        events::BackupFinished{fields.flag("success")},
        events::DisksEjected{.count = fields.number<int>("count"),
                             .failed = fields.texts("failed")},
        events::ConfirmationNeeded()};
    const auto name = std::ranges::find(eventNames, fields.text("event"));
    if (name == eventNames.end())
        return std::nullopt;
    return read.at(static_cast<std::size_t>(name - eventNames.begin()));
}

/// A change and its name.
struct Kind {
    const char* name;
    std::optional<Change> (*decode)(const Json& json);
};

template <class Change> std::optional<remote::Change> ofApplication(const Json& json) {
    return Change{decodeApplication(Fields(json).at("application"))};
}

template <class Change> std::optional<remote::Change> ofKey(const Json& json) {
    return Change{Fields(json).text("key")};
}

std::optional<Change> happened(const Json& json) {
    auto event = decodeEvent(Fields(json));
    return event ? std::optional<Change>(changes::Happened{*std::move(event)}) : std::nullopt;
}

/// In the order of the variant.
constexpr std::array<Kind, std::variant_size_v<Change>> kinds{{
    {"phase",
     [](const Json& json) -> std::optional<Change> { return changes::Run{decodeRun(json)}; }},
    {"stubborn",
     [](const Json& json) -> std::optional<Change> {
         return changes::Stubborn{decodeApplications(json, "applications")};
     }},
    {"opened", ofApplication<changes::Opened>},
    {"closed", ofApplication<changes::Closed>},
    {"windowless", ofApplication<changes::Windowless>},
    {"excluded", ofKey<changes::Excluded>},
    {"included", ofKey<changes::Included>},
    {"event", happened},
    {"schedule",
     [](const Json& json) -> std::optional<Change> {
         return changes::Scheduled{decodeSchedule(Fields(json).at("schedule"))};
     }},
    {"attention",
     [](const Json& json) -> std::optional<Change> {
         return changes::Attention{Fields(json).number<std::int64_t>("seconds")};
     }},
    {"scheduleNote",
     [](const Json& json) -> std::optional<Change> {
         return changes::ScheduleNote{Fields(json).text("note")};
     }},
    {"ending",
     [](const Json& json) -> std::optional<Change> {
         return changes::EndingState{decodeEnding(Fields(json).at("ending"))};
     }},
}};

/// Adds a change's fields besides its name.
struct FieldsOf {
    Json& json;

    void operator()(const changes::Run& run) const { json.update(encode(run.state)); }
    void operator()(const changes::Stubborn& stubborn) const {
        json["applications"] = encodeStubborn(stubborn.applications);
    }
    void operator()(const changes::Opened& opened) const { add(opened.application); }
    void operator()(const changes::Closed& closed) const { add(closed.application); }
    void operator()(const changes::Windowless& windowless) const { add(windowless.application); }
    void operator()(const changes::Excluded& excluded) const { json["key"] = excluded.key; }
    void operator()(const changes::Included& included) const { json["key"] = included.key; }
    void operator()(const changes::Happened& happened) const {
        json["event"] = eventNames.at(happened.event.index());
        std::visit(*this, happened.event);
    }
    void operator()(const changes::Scheduled& scheduled) const {
        json["schedule"] = encode(scheduled.schedule);
    }
    void operator()(const changes::Attention& attention) const {
        json["seconds"] = attention.seconds;
    }
    void operator()(const changes::ScheduleNote& told) const { json["note"] = told.note; }
    void operator()(const changes::EndingState& state) const {
        json["ending"] = encode(state.ending);
    }

    void operator()(events::QuitDone quit) const { json["closed"] = quit.closed; }
    void operator()(events::StubbornApps) const {}
    void operator()(events::BackupStarted) const {}
    void operator()(events::BackupProgress progress) const { json["fraction"] = progress.fraction; }
    void operator()(events::BackupFinished finished) const { json["success"] = finished.success; }
    void operator()(const events::DisksEjected& ejected) const {
        json["count"] = ejected.count;
        json["failed"] = ejected.failed;
    }
    void operator()(events::ConfirmationNeeded) const {}

private:
    void add(const Application& application) const { json["application"] = encode(application); }
};

} // namespace

Json encode(const Change& change) {
    Json json{{"change", kinds.at(change.index()).name}};
    std::visit(FieldsOf{json}, change);
    return json;
}

std::optional<Change> decodeChange(const Json& json) {
    const auto kind = std::ranges::find(kinds, Fields(json).text("change"),
                                        [](const Kind& one) { return std::string_view(one.name); });
    return kind == kinds.end() ? std::nullopt : kind->decode(json);
}

} // namespace velmorquit::remote
